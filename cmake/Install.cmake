# What a host's build needs: headers, library or DLL with its import library, a CMake package and a pkg-config
# file. Both packages find their files from where they lie themselves, so an installed tree can be moved.
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/TqImage20)
set(generated ${CMAKE_CURRENT_BINARY_DIR}/package)

install(DIRECTORY include/tqimage DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS tqimage20 EXPORT TqImage20Targets)
install(EXPORT TqImage20Targets NAMESPACE TqImage20:: DESTINATION ${package})
# Other tool chains than MinGW make an import library of their own from the definition file.
if(WIN32)
    install(FILES src/exports/tqimage20.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(TARGET tqimage_program)
    install(TARGETS tqimage_program)
endif()

# The shared library has no dependency that a host's link would see, so the list of targets is the package.
file(WRITE ${generated}/TqImage20Config.cmake
     "include(\"\${CMAKE_CURRENT_LIST_DIR}/TqImage20Targets.cmake\")\n")
write_basic_package_version_file(${generated}/TqImage20ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${generated}/TqImage20Config.cmake ${generated}/TqImage20ConfigVersion.cmake
        DESTINATION ${package})

file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/tqimage20.pc.in ${generated}/tqimage20.pc @ONLY)
install(FILES ${generated}/tqimage20.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
