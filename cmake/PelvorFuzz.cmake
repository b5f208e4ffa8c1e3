# SPDX-License-Identifier: Apache-2.0
# pelvor_fuzz_target(): a fuzz target, or the replay of its corpus as a test.

if(NOT PELVOR_SANITIZE STREQUAL "fuzz")
    add_library(PelvorFuzzReplay OBJECT "${PROJECT_SOURCE_DIR}/Fuzz/ReplayMain.cpp")
    pelvor_warnings(PelvorFuzzReplay)
    pelvor_unoptimised(PelvorFuzzReplay)
    target_link_libraries(PelvorFuzzReplay PRIVATE Pelvor::Foundation)
endif()

# pelvor_fuzz_target(<Name> DEPS <target>…)
# Builds Fuzz/<Name>.cpp, whose seeds are the files of Fuzz/corpus/<Name>/. With PELVOR_SANITIZE=fuzz the program
# is a fuzzer; in every build the test Fuzz.<Name> runs each seed once.
function(pelvor_fuzz_target name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "DEPS")
    set(target Fuzz${name})
    set(corpus "${PROJECT_SOURCE_DIR}/Fuzz/corpus/${name}")
    if(NOT IS_DIRECTORY "${corpus}")
        message(FATAL_ERROR "Fuzz target ${name} has no seeds in Fuzz/corpus/${name}")
    endif()
    add_executable(${target} "${PROJECT_SOURCE_DIR}/Fuzz/${name}.cpp")
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
    pelvor_warnings(${target})
    target_link_libraries(${target} PRIVATE ${arg_DEPS})
    if(PELVOR_SANITIZE STREQUAL "fuzz")
        target_link_options(${target} PRIVATE -fsanitize=fuzzer)
        add_test(NAME Fuzz.${name} COMMAND ${target} -runs=0 -timeout=5 "${corpus}")
    else()
        pelvor_unoptimised(${target})
        target_link_libraries(${target} PRIVATE PelvorFuzzReplay)
        add_test(NAME Fuzz.${name} COMMAND ${target} "${corpus}")
    endif()
    set_tests_properties(Fuzz.${name} PROPERTIES TIMEOUT 300)
endfunction()
