# Nothing leaves the library that is not listed here: tqimage20.def holds the names every build has,
# automation.txt those that only a system without OLE Automation needs.
set(def ${CMAKE_CURRENT_LIST_DIR}/tqimage20.def)
set(automation ${CMAKE_CURRENT_LIST_DIR}/automation.txt)
set_property(TARGET tqimage20 APPEND PROPERTY LINK_DEPENDS ${def} ${automation})

if(WIN32)
    include(exports/windows_exports.cmake)
    return()
endif()

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${def} ${automation})
file(STRINGS ${def} names REGEX "^  [A-Za-z]")
file(STRINGS ${automation} automation_names REGEX "^[A-Za-z]")
list(APPEND names ${automation_names})
list(TRANSFORM names STRIP)
list(JOIN names ";\n        " globals)
if(names)
    set(globals "    global:\n        ${globals};\n")
endif()
set(script ${CMAKE_CURRENT_BINARY_DIR}/tqimage20.map)
file(CONFIGURE OUTPUT ${script} CONTENT "{\n@globals@    local:\n        *;\n};\n" @ONLY)

# A listed name without a function behind it fails the link, as it does on Windows.
target_link_options(tqimage20 PRIVATE
    -Wl,--version-script=${script} -Wl,--no-undefined-version -Wl,-z,defs)
set_property(TARGET tqimage20 APPEND PROPERTY LINK_DEPENDS ${script})
