# A relocatable install: CMake package (zk64::zk64) and pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS zk64 EXPORT zk64Targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

if(ZK64_RUNTIME_DLLS)
    install(FILES ${ZK64_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(FILES ${PROJECT_SOURCE_DIR}/zk64.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zk64)
foreach(subsystem IN LISTS ZK64_SUBSYSTEMS)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/${subsystem}/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zk64/${subsystem}
        FILES_MATCHING PATTERN "*.h"
        PATTERN "detail" EXCLUDE)
endforeach()

# Natively tinyxml2 is Debian's shared library, which consumers' links must
# find; the Windows DLL holds its own static copy.
if(ZK64_TINYXML2_SHARED)
    set(ZK64_CONFIG_DEPENDENCIES "find_dependency(tinyxml2 CONFIG)")
    set(ZK64_PC_REQUIRES_PRIVATE "Requires.private: tinyxml2")
else()
    set(ZK64_CONFIG_DEPENDENCIES "")
    set(ZK64_PC_REQUIRES_PRIVATE "")
endif()

set(ZK64_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/zk64)
install(EXPORT zk64Targets NAMESPACE zk64:: DESTINATION ${ZK64_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/zk64Config.cmake.in
    ${PROJECT_BINARY_DIR}/zk64Config.cmake
    INSTALL_DESTINATION ${ZK64_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zk64ConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zk64Config.cmake ${PROJECT_BINARY_DIR}/zk64ConfigVersion.cmake
    DESTINATION ${ZK64_CMAKE_DIR})

# pkg-config: the prefix is found from the .pc file's own place.
set(ZK64_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH ZK64_PC_TO_PREFIX /root/${ZK64_PC_DIR} /root)
string(REGEX REPLACE "/$" "" ZK64_PC_TO_PREFIX "${ZK64_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zk64.pc.in ${PROJECT_BINARY_DIR}/zk64.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zk64.pc DESTINATION ${ZK64_PC_DIR})
