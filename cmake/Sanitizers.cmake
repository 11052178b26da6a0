# VORN_SANITIZE: the value of -fsanitize for everything that is built here; empty for none.
set(VORN_SANITIZE "" CACHE STRING "Sanitizers, as the compiler's -fsanitize takes them")
if(VORN_SANITIZE)
    add_compile_options(-fsanitize=${VORN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VORN_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # C functions are declared again by whoever loads them by name, with their own names for records.
        add_compile_options(-fno-sanitize=function)
        # One runtime for a program, its libraries and what is loaded before them.
        if(VORN_SANITIZE MATCHES "address")
            execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-runtime-dir
                OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
            add_link_options(-shared-libasan -Wl,-rpath,${runtime})
        endif()
    endif()
    # Headers are most of what compiling takes: several sources together read them once. In release each is
    # compiled by itself.
    set(CMAKE_UNITY_BUILD ON)
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
    # Compilers have no common name for it. Tests of memory ask.
    if(VORN_SANITIZE MATCHES "address")
        add_compile_definitions(VORN_ADDRESS_SANITIZER)
    endif()
endif()

# What tests find in their environment, so that a finding ends them and says where it is. strndup is
# left alone: the X server's keyboard names, which the toolkit's library takes by their length, have
# no zero behind them. Qt starts processes in its own memory, after which the thread sanitizer takes us for a
# fork that must start no threads.
set(VORN_SANITIZE_ENVIRONMENT
    "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:intercept_strndup=0"
    "LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_LIST_DIR}/lsan.supp"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "TSAN_OPTIONS=halt_on_error=1:die_after_fork=0:second_deadlock_stack=1:suppressions=${CMAKE_CURRENT_LIST_DIR}/tsan.supp")
