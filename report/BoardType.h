#pragma once

/** Families of CPU boards; the numbers are fixed, 3 is not given out. */
enum BoardType {
    BOARD_UNRECOGNISED = 0,
    BOARD_JIDA_BY_NAME = 1, ///< "COMe-bIP6" or "ChiefRiver"
    BOARD_CGOS_BY_NAME = 2, ///< "TS77"
    BOARD_CGOS = 4,         ///< "Aptio CRB" or "TCA3"
};

/**
 * Tells the CPU board by its name in the BIOS data.
 * @param type set only if there is such a name; a name that no board has gives BOARD_UNRECOGNISED
 * @return false if there is no readable name
 */
bool readBoardType(BoardType &type);
