# Installs the build tree's zk64, moves the installed tree elsewhere (the
# package must be relocatable), then builds and runs a consumer through
# find_package and through pkg-config.
#
# Inputs: ZK64_BUILD_DIR, ZK64_CONSUMER_DIR, ZK64_WORK_DIR, ZK64_CXX, ZK64_GENERATOR;
# for the Windows package also ZK64_TOOLCHAIN (the mingw toolchain file) and
# ZK64_EMULATOR (wine). The Windows consumers then run with only the installed
# bin folder on Wine's search path: zk64.dll and the C++ runtime DLLs must
# come from the package.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        string(JOIN " " command ${ARGN})
        message(FATAL_ERROR "failed (${result}): ${command}\n${out}\n${err}")
    endif()
    set(last_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${ZK64_WORK_DIR})
set(installed ${ZK64_WORK_DIR}/installed)
set(prefix ${ZK64_WORK_DIR}/moved/prefix)
run(${CMAKE_COMMAND} --install ${ZK64_BUILD_DIR} --prefix ${installed})
file(MAKE_DIRECTORY ${ZK64_WORK_DIR}/moved)
file(RENAME ${installed} ${prefix})

set(required_files include/zk64/zk64.h include/zk64/foundation/ZKString.h lib/pkgconfig/zk64.pc
    lib/cmake/zk64/zk64Config.cmake)
if(ZK64_TOOLCHAIN)
    list(APPEND required_files bin/zk64.dll lib/libzk64.dll.a bin/libstdc++-6.dll bin/libgcc_s_seh-1.dll
        bin/libwinpthread-1.dll)
    # Wine takes its search path in Windows form; Z: is the Unix root.
    string(REPLACE "/" "\\" wine_bin "Z:${prefix}/bin")
    set(ENV{WINEPATH} "${wine_bin}")
    set(cross_options -DCMAKE_TOOLCHAIN_FILE=${ZK64_TOOLCHAIN} -Dzk64_DIR=${prefix}/lib/cmake/zk64)
    set(exe_suffix .exe)
endif()
foreach(required IN LISTS required_files)
    if(NOT EXISTS ${prefix}/${required})
        message(FATAL_ERROR "the installed package lacks ${required}")
    endif()
endforeach()
if(EXISTS ${prefix}/include/zk64/foundation/detail)
    message(FATAL_ERROR "internal headers were installed")
endif()

# CMake package.
run(${CMAKE_COMMAND} -S ${ZK64_CONSUMER_DIR} -B ${ZK64_WORK_DIR}/cmake-build -G ${ZK64_GENERATOR}
    -DCMAKE_CXX_COMPILER=${ZK64_CXX} -DCMAKE_PREFIX_PATH=${prefix} ${cross_options})
run(${CMAKE_COMMAND} --build ${ZK64_WORK_DIR}/cmake-build)
run(${ZK64_EMULATOR} ${ZK64_WORK_DIR}/cmake-build/consumer${exe_suffix})
if(NOT last_output MATCHES "Zenkor 0.0.20.5.16")
    message(FATAL_ERROR "unexpected consumer output: ${last_output}")
endif()

# pkg-config.
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run(${PKG_CONFIG} --cflags --libs zk64)
string(STRIP "${last_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${ZK64_CXX} -std=c++20 ${ZK64_CONSUMER_DIR}/main.cpp ${flags} -o ${ZK64_WORK_DIR}/pkgconfig-consumer${exe_suffix})
set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
run(${ZK64_EMULATOR} ${ZK64_WORK_DIR}/pkgconfig-consumer${exe_suffix})
message(STATUS "consumer via CMake and pkg-config: ${last_output}")
