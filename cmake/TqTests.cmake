# Tests ask for blocks that no machine has; the sanitizer is to refuse them as the system's allocator does,
# not to end the program.
set(TQ_TEST_ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 ASAN_OPTIONS=allocator_may_return_null=1
    UBSAN_OPTIONS=print_stacktrace=1)

# tq_add_test_program(<folder> <source>...): the GoogleTest program <folder>_test. It meets the library as a
# host does, through the public headers; the kernels' tests alone are linked with the objects, because they
# force every instruction set in turn. One ctest entry a program: under Wine a start costs seconds.
function(tq_add_test_program folder)
    set(program ${folder}_test)
    add_executable(${program} ${ARGN})
    if(folder STREQUAL "kernels")
        target_link_libraries(${program} PRIVATE tqimage20_objects)
    else()
        target_link_libraries(${program} PRIVATE tqimage20)
    endif()
    target_link_libraries(${program} PRIVATE tqimage_flags test_support)
    # Relative, because GoogleTest under Windows takes a path without a drive letter for relative anyway.
    add_test(NAME ${folder} COMMAND ${program} --gtest_brief=1 --gtest_output=xml:results/${folder}.xml
             WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
    set_tests_properties(${folder} PROPERTIES TIMEOUT 900 ENVIRONMENT "${TQ_TEST_ENVIRONMENT}")
    if(WIN32)
        set_tests_properties(${folder} PROPERTIES FIXTURES_REQUIRED wine)
    endif()
endfunction()
