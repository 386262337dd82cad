# tinyxml2, the library's one dependency (it reads application manifests).
# Natively: Debian's shared library (libtinyxml2-dev). For Windows: a static
# build made with the cross compiler (Zk64MingwDependency.cmake), linked into
# zk64.dll so that callers need no further DLL.
# Sets ZK64_TINYXML2 to the target to link.

if(CMAKE_CROSSCOMPILING AND WIN32)
    include(${CMAKE_CURRENT_LIST_DIR}/Zk64MingwDependency.cmake)
    zk64_mingw_dependency(zk64_tinyxml2 tinyxml2 tinyxml2)
    set(ZK64_TINYXML2 zk64_tinyxml2)
    set(ZK64_TINYXML2_SHARED OFF)
else()
    find_package(tinyxml2 CONFIG REQUIRED)
    set(ZK64_TINYXML2 tinyxml2::tinyxml2)
    set(ZK64_TINYXML2_SHARED ON)
endif()
