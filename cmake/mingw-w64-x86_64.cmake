# Cross-build for 64-bit Windows with Debian's mingw-w64 (posix threads
# flavour, which std::thread and std::mutex need). Programs run under Wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ZK64_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ZK64_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZK64_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${ZK64_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${ZK64_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The mingw runtime (libstdc++, libgcc, winpthread) is linked dynamically, in
# zk64.dll and in every program alike: one C++ runtime in the process, so that
# standard-library objects whose identity crosses the DLL boundary (error
# categories, locale facets, iostream globals) are the same objects on both
# sides. The project copies the runtime DLLs beside zk64.dll and installs them.

find_program(ZK64_WINE NAMES wine)
if(ZK64_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${ZK64_WINE})
endif()
