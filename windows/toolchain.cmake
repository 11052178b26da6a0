# Cross-compiles for 64-bit Windows with Debian's MinGW-w64. The libraries of the other side, Qt and
# SQLite, lie where windows/libraries puts them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# Of the two kinds of threads, the one in which C++ has std::thread and std::mutex.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT VORN_WINDOWS_LIBRARIES)
    set(options --path)
    if(VORN_QT STREQUAL "Qt5")
        list(PREPEND options --qt5)
    endif()
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/libraries ${options}
        OUTPUT_VARIABLE VORN_WINDOWS_LIBRARIES OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VORN_WINDOWS_LIBRARIES)

set(CMAKE_FIND_ROOT_PATH ${VORN_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(PREPEND CMAKE_PREFIX_PATH ${VORN_WINDOWS_LIBRARIES})

# moc, uic and rcc run here.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)

