# VORN_SANITIZE: the value of -fsanitize for everything that is built here; empty for none.
set(VORN_SANITIZE "" CACHE STRING "Sanitizers, as the compiler's -fsanitize takes them")
if(VORN_SANITIZE)
    add_compile_options(-fsanitize=${VORN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VORN_SANITIZE})
endif()

# What tests find in their environment, so that a finding ends them and says where it is. strndup is
# left alone: the X server's keyboard names, which the toolkit's library takes by their length, have
# no zero behind them.
set(VORN_SANITIZE_ENVIRONMENT
    "ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:intercept_strndup=0"
    "LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_CURRENT_LIST_DIR}/lsan.supp"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=${CMAKE_CURRENT_LIST_DIR}/tsan.supp")
