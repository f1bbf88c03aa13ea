# What the library itself needs; tests, benchmarks and the program look for theirs where they are built.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

if(WIN32)
    # Debian has no Highway and no libjpeg-turbo for Windows: they are built once from Debian's source packages
    # for this target.
    set(deps ${CMAKE_SOURCE_DIR}/build/deps/${TQIMAGE_WINDOWS})
    execute_process(
        COMMAND ${CMAKE_SOURCE_DIR}/tools/cross_deps.sh ${TQIMAGE_WINDOWS}
        COMMAND_ERROR_IS_FATAL ANY)
    set(hwy_DIR ${deps}/lib/cmake/hwy)
    # The DLL brings everything but the system along, so the archive, never the import library of zlib1.dll.
    find_library(ZLIB_LIBRARY NAMES libz.a REQUIRED)
    set(JPEG_LIBRARY ${deps}/lib/libjpeg.a)
    set(JPEG_INCLUDE_DIR ${deps}/include)
endif()
find_package(hwy CONFIG REQUIRED)
find_package(ZLIB REQUIRED)
find_package(JPEG REQUIRED)
# Headers only, so the ones of the build machine serve every target.
find_package(Eigen3 REQUIRED NO_MODULE)
