include(GNUInstallDirs)

option(TQIMAGE_TESTS "Build the tests" ON)
option(TQIMAGE_FUZZ "Build the fuzz targets and nothing else; needs clang" OFF)
set(TQIMAGE_BENCH OFF CACHE STRING "Build the benchmarks: ON, OFF, or AUTO (when their libraries are found)")

# Whoever builds two work trees of this repository gets the second one from the cache: paths below the
# source directory are hashed relative to it.
find_program(TQIMAGE_CCACHE ccache)
if(TQIMAGE_CCACHE)
    set(launcher ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
                 ${TQIMAGE_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

# float-cast-overflow is not in the "undefined" group of GCC, though the conversion is undefined; every such
# conversion has to go through the library's own truncation.
set(sanitizers -fsanitize=address,undefined,float-cast-overflow)
set(CMAKE_C_FLAGS_SANITIZE "-O1 -g -fno-omit-frame-pointer")
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g -fno-omit-frame-pointer")
if(CMAKE_BUILD_TYPE STREQUAL "Sanitize")
    add_compile_options(${sanitizers} -fno-sanitize-recover=all)
    add_link_options(${sanitizers})
endif()
set(CMAKE_C_FLAGS_THREADS "-O1 -g")
set(CMAKE_CXX_FLAGS_THREADS "-O1 -g")
if(CMAKE_BUILD_TYPE STREQUAL "Threads")
    add_compile_options(-fsanitize=thread)
    add_link_options(-fsanitize=thread)
endif()
if(TQIMAGE_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Properties of everything compiled here (GoogleTest excluded). Contraction stays off so that an FMA target
# gives the same bits as SSE2. -Wno-psabi: the remark about passing AVX vectors concerns code that meets
# objects of compilers older than GCC 4.6. -Wno-restrict: GCC 12 sees overlap in every literal + std::string.
add_library(tqimage_flags INTERFACE)
target_compile_options(tqimage_flags INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Werror -Wno-psabi -Wno-restrict
    -ffp-contract=off -fno-math-errno
    # Warnings of GCC that clang does not know.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-unknown-warning-option>)
