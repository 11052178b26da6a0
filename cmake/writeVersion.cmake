# cmake -D VERSION=... -D OUTPUT=FILE -P writeVersion.cmake: the source behind commandline/version.h.
# The file "commit" names the commit where the tree was exported by "git archive" or by ./dev package; in
# a working copy, which it is no news to, git does.
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/commit commit LIMIT_COUNT 1)
get_filename_component(source ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
if(NOT commit MATCHES "^[0-9a-f]+")
    # The tree may be another user's; nothing but its name is read, and nothing written.
    execute_process(
        COMMAND git --no-optional-locks -c safe.directory=${source} -C ${source}
            describe --always --dirty=-changed --abbrev=40 --exclude=*
        OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        set(commit unknown)
    endif()
endif()
# As many letters everywhere, however many git finds necessary in a copy.
string(REGEX REPLACE "^([0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f])[0-9a-f]+" "\\1" commit "${commit}")
set(text "/* Made by cmake/writeVersion.cmake. */
extern const char vornVersion[];
const char vornVersion[] = \"VornSettings ${VERSION} (${commit})\";
")
# Nothing is compiled anew for the same text.
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "${text}")
