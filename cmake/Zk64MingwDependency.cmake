# zk64_mingw_dependency(TARGET WHAT LIBRARY...): for the Windows cross-build,
# an imported target over the static libraries (lib<LIBRARY>.a, in link order)
# that scripts/mingw-deps.sh WHAT builds from Debian's source packages into
# ZK64_<WHAT>_PREFIX, a cache folder outside the source tree. Configuring runs
# the script when the first library is missing.
function(zk64_mingw_dependency target what)
    if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
        set(cache_home "$ENV{XDG_CACHE_HOME}")
    else()
        set(cache_home "$ENV{HOME}/.cache")
    endif()
    string(TOUPPER "${what}" upper)
    set(ZK64_${upper}_PREFIX "${cache_home}/zk64/mingw-w64/${what}" CACHE PATH
        "Where scripts/mingw-deps.sh installs ${what} for the Windows cross-build")
    set(prefix "${ZK64_${upper}_PREFIX}")
    set(libraries "")
    foreach(library IN LISTS ARGN)
        list(APPEND libraries "${prefix}/lib/lib${library}.a")
    endforeach()
    list(GET libraries 0 first)
    if(NOT EXISTS "${first}")
        execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/mingw-deps.sh" ${what} "${prefix}"
                        RESULT_VARIABLE result)
        if(NOT result EQUAL 0)
            message(FATAL_ERROR "${what} for mingw-w64 could not be built (scripts/mingw-deps.sh)")
        endif()
    endif()
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES
        INTERFACE_LINK_LIBRARIES "${libraries}"
        INTERFACE_INCLUDE_DIRECTORIES "${prefix}/include")
endfunction()
