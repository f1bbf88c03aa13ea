set(TQIMAGE_WINDOWS win64)
set(processor x86_64)
set(target_flags "")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
