# tinyxml2, the library's one dependency (it reads application manifests).
# Natively: Debian's shared library (libtinyxml2-dev). For Windows: a static
# build made with the cross compiler by scripts/tinyxml2-mingw.sh into a
# prefix outside the source tree, linked into zk64.dll so that callers need
# no further DLL. Configuring runs the script when the prefix is empty.
# Sets ZK64_TINYXML2 to the target to link.

if(CMAKE_CROSSCOMPILING AND WIN32)
    if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
        set(cache_home "$ENV{XDG_CACHE_HOME}")
    else()
        set(cache_home "$ENV{HOME}/.cache")
    endif()
    set(ZK64_TINYXML2_PREFIX "${cache_home}/zk64/mingw-w64/tinyxml2" CACHE PATH
        "Where scripts/tinyxml2-mingw.sh installs tinyxml2 for the Windows cross-build")
    if(NOT EXISTS "${ZK64_TINYXML2_PREFIX}/lib/libtinyxml2.a")
        execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/tinyxml2-mingw.sh" "${ZK64_TINYXML2_PREFIX}"
                        RESULT_VARIABLE tinyxml2_result)
        if(NOT tinyxml2_result EQUAL 0)
            message(FATAL_ERROR "tinyxml2 for mingw-w64 could not be built (scripts/tinyxml2-mingw.sh)")
        endif()
    endif()
    add_library(zk64_tinyxml2 STATIC IMPORTED)
    set_target_properties(zk64_tinyxml2 PROPERTIES
        IMPORTED_LOCATION "${ZK64_TINYXML2_PREFIX}/lib/libtinyxml2.a"
        INTERFACE_INCLUDE_DIRECTORIES "${ZK64_TINYXML2_PREFIX}/include")
    set(ZK64_TINYXML2 zk64_tinyxml2)
    set(ZK64_TINYXML2_SHARED OFF)
else()
    find_package(tinyxml2 CONFIG REQUIRED)
    set(ZK64_TINYXML2 tinyxml2::tinyxml2)
    set(ZK64_TINYXML2_SHARED ON)
endif()
