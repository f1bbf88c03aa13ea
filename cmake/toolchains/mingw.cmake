# Common to both Windows targets; win32.cmake and win64.cmake set TQIMAGE_WINDOWS and `processor` first.
# The posix thread model has std::mutex and std::call_once, the win32 one of this compiler has not.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(triplet ${processor}-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_DLLTOOL ${triplet}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE NEVER)

# GCC cannot align the stack beyond 16 bytes under the 64-bit Windows unwinder, yet spills 32- and 64-byte
# vectors with moves that fault on such addresses. The assembler writes the unaligned form of every vector
# move instead; on any processor that has these vectors it is as fast.
set(flags "-Wa,-muse-unaligned-vector-move ${target_flags}")
set(CMAKE_C_FLAGS_INIT "${flags}")
set(CMAKE_CXX_FLAGS_INIT "${flags}")

# libgcc, libstdc++, libquadmath and winpthread come along: a host installs one file.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tools/wine_run.sh ${TQIMAGE_WINDOWS})
