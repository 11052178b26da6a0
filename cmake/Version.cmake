# vorn_version: the version and the commit, for strings(1) in every program and library of ours and for
# --version of the tools. The commit is looked up in each build, but only this one source knows it, so
# that another commit compiles one file and links what is installed, nothing else.
set(version_source ${PROJECT_BINARY_DIR}/generated/version.c)
add_custom_target(vorn_commit
    COMMAND ${CMAKE_COMMAND} -D VERSION=${PROJECT_VERSION} -D OUTPUT=${version_source}
        -P ${CMAKE_CURRENT_LIST_DIR}/writeVersion.cmake
    BYPRODUCTS ${version_source}
    COMMENT "" VERBATIM)
add_library(vorn_version OBJECT ${version_source})
set_target_properties(vorn_version PROPERTIES C_VISIBILITY_PRESET hidden)
add_dependencies(vorn_version vorn_commit)

# Tests needn't be linked anew because a library tells another commit.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

# tell_version(TARGET...): puts it into these programs and shared libraries
function(tell_version)
    foreach(target IN LISTS ARGN)
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:vorn_version>)
    endforeach()
endfunction()
