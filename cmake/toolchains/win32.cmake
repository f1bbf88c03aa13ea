set(TQIMAGE_WINDOWS win32)
set(processor i686)
# SSE2 arithmetic gives the bits of the 64-bit builds, which x87 would not. Hosts of the 32-bit DLL promise a
# stack aligned to 4 bytes only, so every function that spills vectors realigns it.
set(target_flags "-msse2 -mfpmath=sse -mstackrealign")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
