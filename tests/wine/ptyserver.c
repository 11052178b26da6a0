/*
 * Holds the far ends of serial lines for tests that run under wine, which can't make any of their
 * own: ptyserver DOSDEVICES. DOSDEVICES is the folder where the wine world keeps its port names.
 * Prints the TCP port on this machine at which it is asked, and ends with its standard input.
 *
 * Each connection holds one line, a pseudo-terminal; both end together. A question is one byte,
 * two numbers of 32 bits, and as many bytes as the first number says:
 *   N text        gives the line a port name            -> nothing
 *   F text        "speed stopbits", set from this end   -> nothing
 *   T             what the near end has set             -> the same text
 *   S bytes       are sent to the near end              -> "1", or "0" if it takes no more for 5 s
 *   R 0 count ms  what the near end wrote; count is in four bytes of their own, ms in the second
 *   H             the line vanishes                     -> nothing
 * An answer is its length in 32 bits and its bytes.
 */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

enum { MOST_NAMES = 4, MOST_BYTES = 1 << 20 };

static const struct {
    speed_t code;
    int baud;
} speeds[] = {{B1200, 1200}, {B2400, 2400}, {B4800, 4800}, {B9600, 9600}, {B19200, 19200},
    {B38400, 38400}, {B57600, 57600}, {B115200, 115200}};

static const char *folder;
static char names[MOST_NAMES][512];
static int nameCount;
static int line = -1;
static char bytes[MOST_BYTES + 1];

static void fail(const char *what)
{
    perror(what);
    exit(1);
}

static int waitFor(int handle, short event, int milliseconds)
{
    struct pollfd one = {handle, event, 0};
    return poll(&one, 1, milliseconds) > 0 && (one.revents & event) != 0;
}

static long long now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000LL + time.tv_nsec / 1000000;
}

static void openLine(void)
{
    struct termios raw;
    line = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (line < 0 || grantpt(line) != 0 || unlockpt(line) != 0 || tcgetattr(line, &raw) != 0)
        fail("pseudo-terminal");
    cfmakeraw(&raw);
    cfsetspeed(&raw, B38400);
    tcsetattr(line, TCSANOW, &raw);
}

static void giveName(const char *text)
{
    char *name;
    if (nameCount == MOST_NAMES)
        exit(1);
    name = names[nameCount++];
    snprintf(name, sizeof names[0], "%s/%s", folder, text);
    unlink(name);
    if (symlink(ptsname(line), name) != 0)
        fail(name);
}

static void takeNamesAway(void)
{
    while (nameCount > 0)
        unlink(names[--nameCount]);
}

static void setFormat(const char *text)
{
    struct termios state;
    int baud = 0;
    int stops = 0;
    size_t i;
    if (sscanf(text, "%d %d", &baud, &stops) != 2 || tcgetattr(line, &state) != 0)
        exit(1);
    for (i = 0; i < sizeof speeds / sizeof *speeds; ++i) {
        if (speeds[i].baud == baud)
            cfsetspeed(&state, speeds[i].code);
    }
    state.c_cflag = stops == 2 ? state.c_cflag | CSTOPB : state.c_cflag & ~(tcflag_t)CSTOPB;
    tcsetattr(line, TCSANOW, &state);
}

static uint32_t format(void)
{
    struct termios state;
    int baud = -1;
    size_t i;
    if (tcgetattr(line, &state) != 0)
        fail("state");
    for (i = 0; i < sizeof speeds / sizeof *speeds; ++i) {
        if (speeds[i].code == cfgetospeed(&state))
            baud = speeds[i].baud;
    }
    return (uint32_t)sprintf(bytes, "%d %d", baud, state.c_cflag & CSTOPB ? 2 : 1);
}

static uint32_t sendBytes(uint32_t count)
{
    long long end = now() + 5000;
    uint32_t sent = 0;
    while (sent < count && now() < end) {
        const ssize_t result = write(line, bytes + sent, count - sent);
        if (result > 0) {
            sent += (uint32_t)result;
            end = now() + 5000;
        } else {
            waitFor(line, POLLOUT, 100); /* the system doesn't tell of all room */
        }
    }
    bytes[0] = sent == count ? '1' : '0';
    return 1;
}

static uint32_t receiveBytes(uint32_t count, uint32_t milliseconds)
{
    const long long end = now() + milliseconds;
    uint32_t got = 0;
    while (got < count) {
        const long long left = end - now();
        ssize_t result;
        if (!waitFor(line, POLLIN, left > 0 ? (int)left : 0))
            break;
        result = read(line, bytes + got, count - got);
        if (result <= 0)
            break;
        got += (uint32_t)result;
    }
    return got;
}

static int takeAll(int client, void *out, size_t size)
{
    char *next = out;
    while (size > 0) {
        const ssize_t got = read(client, next, size);
        if (got <= 0)
            return 0;
        next += got;
        size -= (size_t)got;
    }
    return 1;
}

static uint32_t answer(char question, uint32_t size, uint32_t milliseconds)
{
    uint32_t count;
    bytes[size] = '\0';
    switch (question) {
    case 'N':
        giveName(bytes);
        return 0;
    case 'F':
        setFormat(bytes);
        return 0;
    case 'T':
        return format();
    case 'S':
        return sendBytes(size);
    case 'R':
        memcpy(&count, bytes, sizeof count);
        return count > MOST_BYTES ? 0 : receiveBytes(count, milliseconds);
    case 'H':
        close(line);
        line = -1;
        return 0;
    default:
        exit(1);
    }
}

static void serve(int client)
{
    struct __attribute__((packed)) {
        char question;
        uint32_t size;
        uint32_t milliseconds;
    } head;
    const int yes = 1;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    openLine();
    atexit(takeNamesAway);
    while (takeAll(client, &head, sizeof head) && head.size <= MOST_BYTES &&
           takeAll(client, bytes, head.size)) {
        const uint32_t size = answer(head.question, head.size, head.milliseconds);
        if (write(client, &size, sizeof size) != sizeof size ||
            write(client, bytes, size) != (ssize_t)size)
            exit(1);
    }
}

int main(int argc, char **argv)
{
    struct sockaddr_in address = {.sin_family = AF_INET, .sin_addr.s_addr = htonl(INADDR_LOOPBACK)};
    socklen_t size = sizeof address;
    const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (argc != 2 || bind(server, (struct sockaddr *)&address, size) != 0 ||
        listen(server, 16) != 0 || getsockname(server, (struct sockaddr *)&address, &size) != 0)
        fail("ptyserver DOSDEVICES");
    folder = argv[1];
    printf("%d\n", ntohs(address.sin_port));
    fclose(stdout);
    signal(SIGCHLD, SIG_IGN);
    for (;;) {
        struct pollfd events[] = {{server, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        int client;
        if (poll(events, 2, -1) < 0 && errno != EINTR)
            fail("poll");
        if (events[1].revents != 0)
            return 0;
        if (events[0].revents == 0 || (client = accept(server, NULL, NULL)) < 0)
            continue;
        if (fork() == 0) {
            close(server);
            serve(client);
            exit(0);
        }
        close(client);
    }
}
