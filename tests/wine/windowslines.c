/*
 * Preloaded into wine and its server, this gives serial lines on pseudo-terminals the documented
 * behaviour of Windows in four points where wine 8 or the kernel has another one:
 * - A read whose time-outs ask for what is there (interval and multiplier MAXDWORD) returns with it
 *   at once. Wine goes on waiting for the buffer to be filled. It does so in poll(), behind a
 *   read() that gave too few bytes, and there it is told that nothing more comes.
 * - A line has one holder. Wine's server, which opens all files, gives it out again.
 * - To abort what is being received leaves the bytes that have been. Wine drops them as if that had
 *   been asked for, which the program never does.
 * - Character size and parity are kept. The kernel's pseudo-terminals hold 8 bits without parity.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdarg.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

enum { MOST_LINES = 4096, PTY_SLAVES = 136, KEPT = CSIZE | PARENB | PARODD };

#define NEXT(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

/* The line that has given this thread some of the bytes that it wants, and not all. */
static __thread int partlyRead = -1;

/* What was set on each pseudo-terminal by its number, and whether anything was. */
static tcflag_t kept[MOST_LINES];
static char isKept[MOST_LINES];

/* Number of the pseudo-terminal whose near end that is, or -1. */
static int lineNumber(int handle)
{
    struct stat info;
    if (fstat(handle, &info) != 0 || !S_ISCHR(info.st_mode) || major(info.st_rdev) != PTY_SLAVES)
        return -1;
    return minor(info.st_rdev) < MOST_LINES ? (int)minor(info.st_rdev) : -1;
}

ssize_t read(int handle, void *buffer, size_t size)
{
    const ssize_t got = NEXT(read)(handle, buffer, size);
    const int error = errno;
    if (got > 0 && lineNumber(handle) >= 0)
        partlyRead = (size_t)got < size ? handle : -1;
    errno = error;
    return got;
}

int poll(struct pollfd *handles, nfds_t count, int milliseconds)
{
    if (count == 1 && handles->fd >= 0 && handles->fd == partlyRead) {
        partlyRead = -1;
        handles->revents = 0;
        return 0;
    }
    return NEXT(poll)(handles, count, milliseconds);
}

static int heldAlone(int handle)
{
    if (handle < 0 || lineNumber(handle) < 0 ||
        !strstr(program_invocation_short_name, "wineserver"))
        return handle;
    if (flock(handle, LOCK_EX | LOCK_NB) == 0)
        return handle;
    close(handle);
    errno = EACCES;
    return -1;
}

static mode_t modeOf(int flags, va_list arguments)
{
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return heldAlone(NEXT(open)(path, flags, mode));
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return heldAlone(NEXT(open64)(path, flags, mode));
}

int tcsetattr(int handle, int when, const struct termios *state)
{
    const int number = lineNumber(handle);
    struct termios possible = *state;
    if (number >= 0)
        possible.c_cflag = (possible.c_cflag & ~(tcflag_t)KEPT) | CS8;
    const int result = NEXT(tcsetattr)(handle, when, &possible);
    if (result == 0 && number >= 0) {
        kept[number] = state->c_cflag & KEPT;
        isKept[number] = 1;
    }
    return result;
}

int tcgetattr(int handle, struct termios *state)
{
    const int number = lineNumber(handle);
    const int result = NEXT(tcgetattr)(handle, state);
    if (result == 0 && number >= 0 && isKept[number])
        state->c_cflag = (state->c_cflag & ~(tcflag_t)KEPT) | kept[number];
    return result;
}

int tcflush(int handle, int queue)
{
    return queue == TCIFLUSH && lineNumber(handle) >= 0 ? 0 : NEXT(tcflush)(handle, queue);
}
