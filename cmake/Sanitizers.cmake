# VORN_SANITIZE: the value of -fsanitize for everything that is built here; empty for none.
set(VORN_SANITIZE "" CACHE STRING "Sanitizers, as the compiler's -fsanitize takes them")
if(VORN_SANITIZE)
    add_compile_options(-fsanitize=${VORN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VORN_SANITIZE})
endif()
