# The 32-bit functions are __stdcall, their symbols decorated (_tqName@8), and hosts look them up undecorated.
# The definition file names them undecorated and the linker matches the decorated ones. The import library of
# that link would carry undecorated symbols, which no caller compiled from the headers asks for; so it is made
# anew from the decorated symbols found in the objects, each standing for the undecorated export.
enable_language(RC)
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/version.rc @ONLY)
target_sources(tqimage20 PRIVATE ${def} ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/version.rc TARGET_DIRECTORY tqimage20
                            PROPERTIES GENERATED ON)
set_target_properties(tqimage20 PROPERTIES PREFIX "")

# --exclude-all-symbols: with an empty list the linker would export every symbol.
target_link_options(tqimage20 PRIVATE -Wl,--enable-stdcall-fixup -Wl,--exclude-all-symbols)

set(objects ${CMAKE_CURRENT_BINARY_DIR}/objects.txt)
file(GENERATE OUTPUT ${objects} CONTENT "$<JOIN:$<TARGET_OBJECTS:tqimage20_objects>,\n>\n")
add_custom_command(TARGET tqimage20 POST_BUILD
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tools/import_library.py
            --def ${def} --objects ${objects} --nm ${CMAKE_NM} --dlltool ${CMAKE_DLLTOOL}
            --dll $<TARGET_FILE_NAME:tqimage20> --output $<TARGET_LINKER_FILE:tqimage20>
    VERBATIM)
