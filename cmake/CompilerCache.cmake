# ccache where it is installed. Paths below the source folder count as relative, so that several
# working copies share what one of them compiled. What was never compiled before is read once, by the
# compiler alone, which tells what it read; ccache would preprocess it first.
option(VORN_CCACHE "Use ccache where it is installed" ON)
find_program(CCACHE_PROGRAM ccache)
if(VORN_CCACHE AND CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(launcher ${CMAKE_COMMAND} -E env
        CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
        CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM}) # as precompiled headers ask for
    set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
    elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        add_compile_options("SHELL:$<$<COMPILE_LANGUAGE:CXX>:-Xclang -fno-pch-timestamp>")
    endif()
endif()
