# VORN_EXPORT: what a function of a library is marked with that others are to find. On Windows
# libraries are named without a prefix, as those that they stand in for.
if(WIN32)
    set(VORN_EXPORT "__declspec(dllexport)")
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
else()
    set(VORN_EXPORT "__attribute__((visibility(\"default\")))")
endif()
