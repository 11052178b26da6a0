/*
 * A vendor's board library: JIDA or CGOS by definition, less the procedure that WITHOUT_<role>
 * takes away. BOARD_FAIL names the procedure that fails, BOARD_LOG the file that gets a line for
 * each call.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef BOARD_JIDA
#    define INITIALISE_NAME JidaDllInitialize
#    define UNINITIALISE_NAME JidaDllUninitialize
#    define OPEN_BY_NAME_NAME JidaBoardOpenByNameW
#    define OPEN_NAME JidaBoardOpenW
#    define CLOSE_NAME JidaBoardClose
#    define GET_INFO_NAME JidaBoardGetInfoW
#    define RECORD_SIZE 464
#else
#    define INITIALISE_NAME CgosLibInitialize
#    define UNINITIALISE_NAME CgosLibUninitialize
#    define OPEN_BY_NAME_NAME CgosBoardOpenByNameW
#    define OPEN_NAME CgosBoardOpen
#    define CLOSE_NAME CgosBoardClose
#    define GET_INFO_NAME CgosBoardGetInfoW
#    define RECORD_SIZE 304
#endif

enum { BOARD = 0x4711 };

static void note(const char *line)
{
    const char *name = getenv("BOARD_LOG");
    FILE *file = name ? fopen(name, "ab") : NULL;
    if (file) {
        fprintf(file, "%s\n", line);
        fclose(file);
    }
}

static int32_t answer(const char *procedure)
{
    const char *failing = getenv("BOARD_FAIL");
    note(procedure);
    return !failing || strcmp(failing, procedure) != 0;
}

#if !defined(WITHOUT_INITIALISE)
int32_t INITIALISE_NAME(void)
{
    return answer("initialise");
}
#endif

#if !defined(WITHOUT_UNINITIALISE)
int32_t UNINITIALISE_NAME(void)
{
    return answer("uninitialise");
}
#endif

#if !defined(WITHOUT_OPEN_BY_NAME)
int32_t OPEN_BY_NAME_NAME(const uint16_t *name, uint32_t *board)
{
    char line[80] = "name ";
    size_t length = strlen(line);
    for (; *name && length < sizeof line - 1; ++name)
        line[length++] = (char)*name;
    note(line);
    *board = BOARD;
    return answer("open");
}
#endif

#if !defined(WITHOUT_OPEN)
int32_t OPEN_NAME(const uint16_t *boardClass, uint32_t number, uint32_t flags, uint32_t *board)
{
    char line[80];
    snprintf(line, sizeof line, "numbers %d %u %u", boardClass != NULL, number, flags);
    note(line);
    *board = BOARD;
    return answer("open");
}
#endif

#if !defined(WITHOUT_CLOSE)
int32_t CLOSE_NAME(uint32_t board)
{
    (void)board;
    return answer("close");
}
#endif

#if !defined(WITHOUT_GET_INFO)
static void putWord(unsigned char *record, size_t offset, uint16_t value)
{
    memcpy(record + offset, &value, sizeof value);
}

static void putText(unsigned char *record, size_t offset, const char *text)
{
    for (; *text; offset += 2)
        putWord(record, offset, (unsigned char)*text++);
}

int32_t GET_INFO_NAME(uint32_t board, void *out)
{
    unsigned char *record = out;
    char line[80];
    uint32_t size;
    size_t offset;
    memcpy(&size, record, sizeof size);
    snprintf(line, sizeof line, "info %#x %u", board, size);
    note(line);

    for (offset = sizeof size; offset < RECORD_SIZE; ++offset) {
        if (record[offset] != 0)
            note("record not cleared");
    }
    /* The words between the fields are no zeros, so a wrong offset shows. */
    putText(record, 40, "Board %1");
    putText(record, 72, "Sub \xB5");
    putWord(record, 136, 2011);
    putWord(record, 138, 12);
    putWord(record, 140, 6);
    putWord(record, 142, 31);
    putText(record, 168, "SN-0001");
    putWord(record, 200, 0x4131);
    putWord(record, 202, 65535);
    putText(record, 220, "PN 220");
#    ifdef BOARD_CGOS
    putText(record, 260, "EAN4567890123456789012"); /* to the record's last byte, without an end */
#    endif
    return answer("info");
}
#endif
