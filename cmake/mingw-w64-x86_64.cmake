# Windows x86-64 with Debian's mingw-w64 (the posix thread variant, which
# std::thread and std::mutex need). Programs link the runtime statically, so
# they run with the system DLLs alone; wine runs them for the tests.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KORV_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KORV_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KORV_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KORV_MINGW_TRIPLE}-windres)
set(CMAKE_AR ${KORV_MINGW_TRIPLE}-gcc-ar-posix)
set(CMAKE_RANLIB ${KORV_MINGW_TRIPLE}-gcc-ranlib-posix)

set(CMAKE_FIND_ROOT_PATH /usr/${KORV_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# Every test executable runs under wine, in a prefix of this build folder.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run ${CMAKE_BINARY_DIR}/wineprefix)
