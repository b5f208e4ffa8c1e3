# SPDX-License-Identifier: Apache-2.0
# pelvor_test_program(): a GoogleTest program, registered with CTest.

find_package(GTest REQUIRED)
find_package(Threads REQUIRED)
include(GoogleTest)

# What all test programs share: the main function, and the prelude that each test starts with.
add_library(PelvorTestPrelude OBJECT
    "${PROJECT_SOURCE_DIR}/Tests/StuckTest.cpp"
    "${PROJECT_SOURCE_DIR}/Tests/TestMain.cpp"
)
pelvor_warnings(PelvorTestPrelude)
pelvor_unoptimised(PelvorTestPrelude)
target_include_directories(PelvorTestPrelude PUBLIC "${PROJECT_SOURCE_DIR}/Tests")
target_link_libraries(PelvorTestPrelude PUBLIC Pelvor::Foundation GTest::gmock GTest::gtest Threads::Threads)
target_compile_options(PelvorTestPrelude PRIVATE -fPIE)  # like the programs, or they cannot use what it precompiles
pelvor_precompile(PelvorTestPrelude Prelude.h)

# pelvor_test_program(NAME <target> DEPS <target>…)
# The folders under Tests/ add its sources with target_sources().
function(pelvor_test_program)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "DEPS")
    add_executable(${arg_NAME})
    pelvor_warnings(${arg_NAME})
    pelvor_unoptimised(${arg_NAME})
    pelvor_precompile(${arg_NAME} PelvorTestPrelude)
    target_link_libraries(${arg_NAME} PRIVATE ${arg_DEPS} PelvorTestPrelude)
    pelvor_loads_plugins(${arg_NAME})
    if(PELVOR_TEST_SHARDS GREATER 0)
        _pelvor_register_shards(${arg_NAME})
    else()
        gtest_discover_tests(${arg_NAME} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
    endif()
endfunction()

function(_pelvor_register_shards target)
    math(EXPR last "${PELVOR_TEST_SHARDS} - 1")
    foreach(index RANGE ${last})
        add_test(NAME ${target}.${index} COMMAND ${target} --gtest_brief=1)
        set_tests_properties(${target}.${index} PROPERTIES TIMEOUT 900
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${PELVOR_TEST_SHARDS};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()
