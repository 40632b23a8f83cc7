# Helpers shared by the CMake files of the project.

include(ZqResources)

# zq_collect_sources(<out-var> <dir>...): the .cpp/.c files below the given
# folders, without test files. Folders are globbed (re-checked at every
# build) so that adding a file to a subsystem needs no edit here.
function(zq_collect_sources out)
    set(result)
    foreach(dir IN LISTS ARGN)
        file(GLOB_RECURSE found CONFIGURE_DEPENDS ${dir}/*.cpp ${dir}/*.c)
        list(FILTER found EXCLUDE REGEX "_test\\.cpp$")
        list(APPEND result ${found})
    endforeach()
    set(${out} ${result} PARENT_SCOPE)
endfunction()

# zq_collect_tests(<out-var> <dir>...): the *_test.cpp files below the folders.
function(zq_collect_tests out)
    set(result)
    foreach(dir IN LISTS ARGN)
        file(GLOB_RECURSE found CONFIGURE_DEPENDS ${dir}/*_test.cpp)
        list(APPEND result ${found})
    endforeach()
    set(${out} ${result} PARENT_SCOPE)
endfunction()

# zq_add_test_suite(<name> SOURCES ... LIBS ...): one GoogleTest executable,
# run by CTest with a fresh temporary prefix per test process.
function(zq_add_test_suite name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    if(NOT ARG_SOURCES)
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES} ${CMAKE_SOURCE_DIR}/tests/support/test_main.cpp)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} zq_test_support GTest::gtest GTest::gmock)
    # Registry keys derive from the running program's version block: every
    # test program has one of its own.
    zq_add_version_info(${name} DESCRIPTION "${name} test program")
    gtest_discover_tests(${name}
        WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/bin
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 300)
endfunction()
