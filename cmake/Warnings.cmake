# The warnings that all of our own code is built with; they are errors.
add_library(vorn_warnings INTERFACE)
if(MSVC)
    target_compile_options(vorn_warnings INTERFACE /W4 /WX /permissive-)
else()
    target_compile_options(vorn_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align
        -Wcast-qual -Wformat=2 -Wundef -Wunused -Wdouble-promotion -Werror
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
            -Wextra-semi -Wzero-as-null-pointer-constant>)
    # GCC 12 sees overlaps in std::string's own operator+ where there are none (its bug 105651).
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(vorn_warnings INTERFACE -Wno-restrict)
    endif()
    # What Qt 6 deprecates may be what Qt 5.15 has; GCC doesn't see it in the macros of Qt Test.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        target_compile_options(vorn_warnings INTERFACE -Wno-deprecated-declarations)
    endif()
endif()
