/*
 * A small unit that keeps the contract, and breaks one rule of it by a definition: BREAK_<RULE>,
 * the names of which are in CMakeLists.txt. Its numbers live as long as the process; its strings
 * are files in the folder that BROKENUNIT_STORE names.
 */

#include "frame/VornAux2.h"

#include <fenv.h>
#include <locale.h>
#include <signal.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef _WIN32
#    include <direct.h>
#    include <windows.h>
#    define chdir _chdir
#else
#    include <fcntl.h>
#    include <pthread.h>
#    include <sys/stat.h>
#    include <time.h>
#    include <unistd.h>
#endif

static void sleepFor(int milliseconds)
{
#ifdef _WIN32
    Sleep((DWORD)milliseconds);
#else
    const struct timespec time = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    nanosleep(&time, NULL);
#endif
}

enum { CELLS = 2000, NAME = 120, OUTS = 8 };

/** What the unit knows: a number for each argument of each pair of operations. */
struct Cell {
    char name[NAME];
    double value;
};
static struct Cell cells[CELLS];
static int cellCount;
static atomic_flag busy = ATOMIC_FLAG_INIT;

static void lock(void)
{
    while (atomic_flag_test_and_set(&busy)) {
    }
}

static void unlock(void)
{
    atomic_flag_clear(&busy);
}

/** One call on its way. */
struct Call {
    const char *name;
    DeviceCode code;
    long channel;
    const char *text;  /* the first that was given */
    const char *value; /* the second */
    struct {
        const char *name;
        double value;
    } given[OUTS];
    int givenCount;
};

static int is(const struct Call *call, const char *name)
{
    return strcmp(call->name, name) == 0;
}

static int isSetter(const struct Call *call)
{
    return strstr(call->name, "_set") != NULL;
}

/** Both operations of a pair name it alike. */
static double *cell(const struct Call *call, const char *argument)
{
    char name[NAME];
    char *verb;
    int i;
    snprintf(name, sizeof name, "%s %ld %s", call->name, call->channel, argument);
    verb = strstr(name, "_set");
    if (verb)
        verb[1] = 'g';
    for (i = 0; i < cellCount; ++i) {
        if (strcmp(cells[i].name, name) == 0)
            return &cells[i].value;
    }
    if (cellCount == CELLS)
        abort();
    strcpy(cells[cellCount].name, name);
    cells[cellCount].value = 1;
    if (strncmp(name, "Buzzer_getFrequency", 19) == 0)
        cells[cellCount].value = 1000;
    if (strcmp(argument, "running") == 0)
        cells[cellCount].value = 0;
    return &cells[cellCount++].value;
}

/** Whether the device takes it. */
static int isLegal(const struct Call *call, const char *argument, double value)
{
    static const struct {
        const char *argument;
        double low;
        double high;
    } ranges[] = {{"volume", 0, 51}, {"celsius", -25, 5}, {"dutyCycle", 0, 100}, {"red", 0, 15},
        {"green", 0, 15}, {"blue", 0, 15}, {"mask", 0, 15}, {"status", 0, 1}, {"trigger", 1, 3},
        {"action", 0, 2}, {"frameType", 0, 2}, {"range", 0, 1}, {"samplingMode", 0, 2},
        {"mode", 0, 3}, {"color", 0, 5}};
    static const double touch[] = {
        65535, 4095, 4095, 16383, 16383, 16383, 16383, 32767, 65535, 32767, 65535};
    size_t i;
    if (is(call, "Touch_setAdvancedSetting"))
        return value <= touch[call->channel];
    if (is(call, "Buzzer_setFrequency"))
        return value >= 700 && value <= 10000;
    for (i = 0; i < sizeof ranges / sizeof *ranges; ++i) {
        if (strcmp(argument, ranges[i].argument) == 0)
            return value >= ranges[i].low && value <= ranges[i].high;
    }
    return 1;
}

/** What a selecting argument may be. */
static DeviceCode choose(struct Call *call, const char *argument, double value)
{
    call->channel = (long)value;
    if (strcmp(argument, "index") == 0) {
#ifdef BREAK_SENSORS_ENDLESS
        return 0;
#elif defined BREAK_SENSORS_AGAIN
        return value < 3 || value == 200 ? 0 : 7;
#else
        return value < 3 ? 0 : 7;
#endif
    }
    if (strcmp(argument, "number") == 0) {
#ifdef BREAK_CHANNEL_TOUCH
        if (value == 12)
            return 0;
#endif
        return value >= 0 && value < TOUCH_RESTORE_DEFAULTS ? 0 : 6;
    }
    if (strncmp(call->name, "Adc", 3) == 0) {
#ifdef BREAK_CHANNEL_ADC
        if (value == 1)
            return 0;
#endif
        return value == 1 || value > 23 ? 6 : 0;
    }
#ifdef BREAK_CHANNEL_CAN
    if (value == 2)
        return 0;
#endif
    return value == 1 ? 0 : 6;
}

static void give(struct Call *call, const char *argument, double value)
{
    if (strcmp(argument, "index") == 0 || strcmp(argument, "number") == 0 ||
        strcmp(argument, "channel") == 0) {
        if (call->code == 0)
            call->code = choose(call, argument, value);
        return;
    }
#ifdef BREAK_WAIT
    if (strcmp(argument, "wait") == 0 && value != 0)
        sleepFor(1300);
#endif
    call->given[call->givenCount].name = argument;
    call->given[call->givenCount].value = value;
    ++call->givenCount;
}

static void giveText(struct Call *call, const char *text)
{
    if (call->text)
        call->value = text;
    else
        call->text = text;
}

/* Strings. */

#ifdef BREAK_STRINGS_FORGOTTEN
static char forgotten[4096];
static int isStored;
#endif

static void storePath(const char *key, char *path, size_t size)
{
    const char *folder = getenv("BROKENUNIT_STORE");
    snprintf(path, size, "%s/%s", folder ? folder : ".", key);
}

static DeviceCode storeString(const char *key, const char *value)
{
#ifdef BREAK_STRINGS_FORGOTTEN
    (void)key;
    strcpy(forgotten, value);
    isStored = 1;
    return 0;
#else
    char path[1000];
    FILE *file;
    size_t length = strlen(value);
#    ifdef BREAK_STRINGS_EMPTY
    if (length == 0)
        return 5;
#    endif
#    ifdef BREAK_STRINGS_CUT
    length = length > 254 ? 254 : length;
#    endif
    storePath(key, path, sizeof path);
    file = fopen(path, "wb");
    if (!file)
        return 12;
    for (size_t i = 0; i < length; ++i) {
        int byte = (unsigned char)value[i];
#    ifdef BREAK_STRINGS_ASCII
        byte = byte > 127 ? '?' : byte;
#    endif
        fputc(byte, file);
    }
    fclose(file);
    return 0;
#endif
}

static DeviceCode loadString(const char *key, char *text, size_t size)
{
#ifdef BREAK_STRINGS_FORGOTTEN
    if (!isStored || strcmp(key, "VornCheck") != 0)
        return 26;
    snprintf(text, size, "%s", forgotten);
    return 0;
#else
    char path[1000];
    FILE *file;
    size_t length;
    storePath(key, path, sizeof path);
    file = fopen(path, "rb");
    if (!file)
        return 26;
    length = fread(text, 1, size - 1, file);
    text[length] = '\0';
    fclose(file);
    return 0;
#endif
}

static void putText(struct Call *call, const char *text, char *buffer, uint32_t size)
{
    const size_t length = strlen(text);
#ifdef BREAK_TEXT_NO_END
    strncpy(buffer, text, size);
    return;
#endif
#ifdef BREAK_TEXT_BEYOND
    if (length >= size) {
        memcpy(buffer, text, size);
        buffer[size] = '\0';
        return;
    }
#endif
#ifdef BREAK_TEXT_SIZE
    if (length >= size) {
        call->code = 5;
        return;
    }
#endif
#ifdef BREAK_TEXT_PREFIX
    if (length >= size && size == 8)
        text = "Tex...";
#endif
#ifdef BREAK_TEXT_ONE
    if (size == 1) {
        buffer[0] = *text;
        buffer[1] = '\0';
        return;
    }
#endif
    (void)call;
    (void)length;
    snprintf(buffer, size, "%s", text);
}

static void buffer_(struct Call *call, char *buffer, uint32_t size)
{
    char text[4096];
    if (call->code != 0)
        return;
    if (call->text) {
        call->code = loadString(call->text, text, sizeof text);
#ifdef BREAK_UNTOUCHED_TEXT
        if (call->code != 0)
            buffer[0] = '\0';
#endif
    } else {
        snprintf(text, sizeof text, "Text of %s", call->name);
    }
    if (call->code == 0)
        putText(call, text, buffer, size);
}

/* Firmware: a job is done as soon as it is asked for. */

static char jobPath[1000];
static int hasJob;
static int asked;

static DeviceCode jobStatus(FirmwareUpgradeStatus *status)
{
    FILE *file;
    if (!hasJob)
        return 24;
    file = fopen(jobPath, "rb");
    status->state = file ? FIRMWARE_DONE : FIRMWARE_FAILED;
    status->percent = 100;
    status->errorCode = file ? 0 : 16;
#ifdef BREAK_FIRMWARE_STATE
    status->state = FIRMWARE_DONE;
#endif
#ifdef BREAK_FIRMWARE_CODE
    if (!file)
        return 16;
#endif
#ifdef BREAK_FIRMWARE_BACK
    if (file && asked < 2) {
        status->state = FIRMWARE_VERIFYING;
        status->percent = asked == 0 ? 50 : 40;
    }
#endif
    ++asked;
    if (file)
        fclose(file);
    return 0;
}

/* The rules that are broken before an operation does anything. */

static _Thread_local const char *lastName = "";
static _Thread_local int isAgain;
static _Thread_local int hasReleased;

static DeviceCode disturb(const struct Call *call)
{
    DeviceCode code = 0;
#ifdef BREAK_CRASH
    if (is(call, "Battery_getTimes"))
        raise(SIGSEGV);
#endif
#ifdef BREAK_ABORT
    if (is(call, "Battery_getTimes"))
        abort();
#endif
#ifdef BREAK_EXIT
    if (is(call, "Battery_getTimes"))
        exit(0);
#endif
#ifdef BREAK_ENDLESS
    while (is(call, "Battery_getTimes"))
        sleepFor(100);
#endif
#ifdef BREAK_SLOW
    if (is(call, "Battery_getTimes"))
        sleepFor(130);
#endif
#ifdef BREAK_TOO_SLOW
    if (is(call, "Battery_getTimes"))
        sleepFor(5300);
#endif
#ifdef BREAK_PRINTS
    if (is(call, "Battery_getTimes"))
        puts("reading the times");
#endif
#ifdef BREAK_PRINTS_ERRORS
    if (is(call, "Battery_getTimes"))
        fputs("reading the times\n", stderr);
#endif
#ifdef BREAK_LOCALE
    setlocale(LC_ALL, "C");
#endif
#ifdef BREAK_FOLDER
    if (chdir("/") != 0)
        abort();
#endif
#ifdef BREAK_UMASK
    umask(0);
#endif
#ifdef BREAK_SIGNALS
    signal(SIGUSR1, SIG_IGN);
#endif
#ifdef BREAK_ROUNDING
    fesetround(FE_UPWARD);
#endif
#ifdef BREAK_CODE_20
    if (is(call, "Battery_getTemperature"))
        code = DEVICE_AUTOMATIC_BACKLIGHT_RUNS;
#endif
#ifdef BREAK_FAULT
    if (is(call, "Battery_getTemperature"))
        code = 14;
#endif
#ifdef BREAK_CODE_REPEATED
    if (is(call, "Diagnostics_getSSTemp"))
        code = strcmp(lastName, call->name) == 0 && isAgain % 2 == 0 ? 18 : 0;
    isAgain = strcmp(lastName, call->name) == 0 ? isAgain + 1 : 0;
#endif
#ifdef BREAK_HARDWARE_AFFIRMS
    if (strncmp(call->name, "Touch_get", 9) == 0)
        code = DEVICE_NOT_SUPPORTED;
#endif
#ifdef BREAK_HANDLES
    if (hasReleased)
        code = 3;
#endif
#ifdef BREAK_THREADS
    static atomic_int inside;
    if (is(call, "Smart_getInitialTime")) {
        if (atomic_fetch_add(&inside, 1) > 0)
            code = 18;
        sleepFor(1);
        atomic_fetch_sub(&inside, 1);
    }
#endif
    (void)hasReleased;
    (void)isAgain;
    lastName = call->name;
    return code;
}

/** What a getter tells beside what was set. */
static double told(const struct Call *call, const char *argument)
{
#ifdef BREAK_HARDWARE_DENIES
    if (is(call, "Hardware_hasWlan"))
        return 0;
#endif
#ifdef BREAK_FLAGS
    if (is(call, "Hardware_hasWlan"))
        return 255;
#endif
#ifdef BREAK_OUTPUTS
    if (is(call, "DigIO_getDigIO"))
        return (int)*cell(call, argument) & 7;
#endif
    return *cell(call, argument);
}

static DeviceCode perform(struct Call *call)
{
    int i;
    static int automatic;
    if (is(call, "Backlight_startAutomaticBL") || is(call, "Backlight_stopAutomaticBL")) {
        struct Call status = {"Backlight_getAutomaticBLStatus", 0, 0, NULL, NULL, {{NULL, 0}}, 0};
        automatic = is(call, "Backlight_startAutomaticBL");
#ifndef BREAK_AUTOMATIC
        *cell(&status, "running") = automatic;
#endif
        return 0;
    }
    if (is(call, "LightSensor_startAverageCalc")) {
#ifdef BREAK_AVERAGES_START
        return DEVICE_AUTOMATIC_BACKLIGHT_RUNS;
#endif
        return automatic ? DEVICE_AUTOMATIC_BACKLIGHT_RUNS : 0;
    }
#ifdef BREAK_AVERAGES_STOP
    if (is(call, "LightSensor_stopAverageCalc"))
        return 15;
#endif
    if (strstr(call->name, "Verification")) {
        snprintf(jobPath, sizeof jobPath, "%s", call->text);
        hasJob = 1;
        asked = 0;
        return 0;
    }
    if (is(call, "Firmware_shutDown") ||
        (strstr(call->name, "_start") && strstr(call->name, "Upgrade")))
        abort(); /* nobody was allowed to */
    if (is(call, "Settings_setString"))
        return storeString(call->text, call->value);
    if (!isSetter(call))
        return 0;
#ifdef BREAK_SET_REFUSED
    if (is(call, "Buzzer_setVolume") && call->given[0].value == 51)
        return 5;
#endif
    for (i = 0; i < call->givenCount; ++i) {
        if (isLegal(call, call->given[i].name, call->given[i].value))
            continue;
#ifdef BREAK_RANGE_TAKEN
        if (is(call, "Buzzer_setVolume"))
            continue;
#endif
#ifdef BREAK_RANGE_CHANGES
        if (is(call, "Buzzer_setVolume"))
            *cell(call, "volume") = 51;
#endif
        return 5;
    }
    for (i = 0; i < call->givenCount; ++i) {
#ifdef BREAK_SET_IGNORED
        if (is(call, "Buzzer_setVolume"))
            continue;
#endif
#ifdef BREAK_SET_WRONG
        if (is(call, "Buzzer_setVolume") && call->given[i].value == 51)
            call->given[i].value = 50;
#endif
        *cell(call, call->given[i].name) = call->given[i].value;
    }
#ifdef BREAK_NEIGHBOUR
    if (is(call, "Buzzer_setVolume")) {
        struct Call other = {"Buzzer_getFrequency", 0, 0, NULL, NULL, {{NULL, 0}}, 0};
        *cell(&other, "hertz") = 3000;
    }
#endif
    return 0;
}

/* Out values. */

static void put(
    const struct Call *call, const char *argument, void *out, const void *value, size_t size)
{
    if (call->code != 0) {
#ifdef BREAK_UNTOUCHED
        memset(out, 0, size);
#endif
        return;
    }
    (void)argument;
#ifdef BREAK_OUT_BEYOND
    if (is(call, "Battery_getTemperature"))
        ((char *)out)[size] = 0;
#endif
#ifdef BREAK_OUT_BEFORE
    if (is(call, "Battery_getTemperature"))
        ((char *)out)[-1] = 0;
#endif
#ifdef BREAK_OUT_FAR
    if (is(call, "Battery_getTemperature"))
        ((char *)out)[size + 40] = 0;
#endif
#ifdef BREAK_WIDTH_NARROW
    if (is(call, "Config_getExtOnOffSigTrigTime"))
        size = 2;
#endif
#ifdef BREAK_WIDTH_NONE
    if (is(call, "Battery_getTemperature"))
        return;
#endif
#ifdef BREAK_WIDTH_RECORD
    if (is(call, "Battery_getTimes"))
        size -= 4;
#endif
    memcpy(out, value, size);
}

/* Handles. */

struct Handle {
#ifdef _WIN32
    DWORD thread;
#else
    pthread_t thread;
#endif
};

static void *create(void)
{
    struct Handle *handle = malloc(sizeof *handle);
    if (!handle)
        return NULL;
#ifdef BREAK_LEAK
    if (!malloc(64))
        abort();
#endif
#ifdef BREAK_DESCRIPTOR
#    ifdef _WIN32
    CreateEventA(NULL, FALSE, FALSE, NULL);
#    else
    if (open("/dev/null", O_RDONLY) < 0)
        return NULL;
#    endif
#endif
    hasReleased = 0;
#ifdef _WIN32
    handle->thread = GetCurrentThreadId();
#else
    handle->thread = pthread_self();
#endif
    return handle;
}

static void release(struct Handle *handle, const char *name)
{
#ifdef BREAK_CRASH_RELEASE
    if (strcmp(name, "Buzzer_release") == 0)
        raise(SIGSEGV);
#endif
#ifdef BREAK_RELEASE_ELSEWHERE
#    ifdef _WIN32
    if (handle->thread != GetCurrentThreadId())
        abort();
#    else
    if (!pthread_equal(handle->thread, pthread_self()))
        abort();
#    endif
#endif
    (void)name;
    hasReleased = 1;
    free(handle);
}

#ifdef BREAK_THREAD_LEFT
#    ifdef _WIN32
static DWORD WINAPI stay(void *nothing)
{
    (void)nothing;
    sleepFor(600000);
    return 0;
}
#    else
static void *stay(void *nothing)
{
    sleepFor(600000);
    return nothing;
}
#    endif
#endif

static void leaveThread(void)
{
#ifdef BREAK_THREAD_LEFT
#    ifdef _WIN32
    static int hasLeft;
    if (hasLeft++ == 0)
        CloseHandle(CreateThread(NULL, 0, stay, NULL, 0, NULL));
#    else
    static int hasLeft;
    pthread_t thread;
    if (hasLeft++ > 0)
        return;
    pthread_create(&thread, NULL, stay, NULL);
    pthread_detach(thread);
#    endif
#endif
}

#ifdef BREAK_LOADING
__attribute__((constructor)) static void load(void)
{
    if (getenv("BROKENUNIT_LOADED"))
        abort();
#    ifdef _WIN32
    SetEnvironmentVariableA("BROKENUNIT_LOADED", "1");
    _putenv("BROKENUNIT_LOADED=1");
#    else
    setenv("BROKENUNIT_LOADED", "1", 1);
#    endif
}
#endif

/* The contract. */

#ifdef BREAK_MISSING
#    define Battery_getTimes Battery_getTimesGone
#endif
#ifdef BREAK_MISSING_SETTER
#    define Buzzer_setVolume Buzzer_setVolumeGone
#endif
#ifdef BREAK_MISSING_TEXT
#    define deviceErrorText deviceErrorTextGone
#endif

#define CONTRACT_CREATE(family, name, comment) \
    family##Handle name(void)                  \
    {                                          \
        if (strcmp(#family, "Battery") == 0)   \
            leaveThread();                     \
        return create();                       \
    }
#define CONTRACT_RELEASE(family, name, comment)  \
    void name(family##Handle handle)             \
    {                                            \
        release((struct Handle *)handle, #name); \
    }
#define CONTRACT_IN(type, name) give(&call, #name, (double)name);
#define CONTRACT_STRING(name) giveText(&call, name);
#define CONTRACT_OUT(type, name)                                            \
    {                                                                       \
        const type found = (type)(call.code == 0 ? told(&call, #name) : 0); \
        put(&call, #name, name, &found, sizeof found);                      \
    }
#define CONTRACT_RECORD(type, name)                                          \
    {                                                                        \
        type record;                                                         \
        memset(&record, 7, sizeof record);                                   \
        if (strcmp(#type, "FirmwareUpgradeStatus") == 0)                     \
            call.code = jobStatus((FirmwareUpgradeStatus *)(void *)&record); \
        put(&call, #name, name, &record, sizeof record);                     \
    }
#define CONTRACT_BUFFER(name, size) buffer_(&call, name, size);
#define CONTRACT_OPERATION(family, name_, parameters, arguments, each, comment) \
    DeviceCode name_ parameters                                                 \
    {                                                                           \
        struct Call call = {#name_, 0, 0, NULL, NULL, {{NULL, 0}}, 0};          \
        (void)handle;                                                           \
        call.code = disturb(&call);                                             \
        lock();                                                                 \
        each;                                                                   \
        if (call.code == 0)                                                     \
            call.code = perform(&call);                                         \
        unlock();                                                               \
        return call.code;                                                       \
    }
#include "devicetools/contractList.h"

const char *deviceErrorText(int32_t code)
{
#ifdef BREAK_TEXT_NULL
    if (code == 300)
        return NULL;
#endif
#ifdef BREAK_TEXT_EMPTY
    if (code < 0)
        return "";
#endif
#ifdef BREAK_TEXT_BUFFER
    static char text[40];
    snprintf(text, sizeof text, "error %d", code);
    return text;
#else
    return code == 0 ? "no error" : "an error";
#endif
}

const char *Diagnostics_startupReasonText(uint16_t reason)
{
#ifdef BREAK_REASON_EMPTY
    if (reason == 65535)
        return "";
#endif
    (void)reason;
    return "a reason";
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
#ifdef BREAK_WORD_CHANGES
    static int count;
    return ++count % 2 == 0 || status > 3 ? "an error" : "one error more";
#else
    return status == 0 ? "no error" : "an error";
#endif
}
