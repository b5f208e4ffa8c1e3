# SPDX-License-Identifier: Apache-2.0
# pelvor_benchmark(): a Google Benchmark program, built by the target "benchmarks" and run by ./bench.

find_package(benchmark QUIET)
add_custom_target(benchmarks)

# pelvor_benchmark(<Name> DEPS <target>… [PEERS <pkg-config module>…])
# Builds Benchmarks/<Name>.cpp; a name may hold folders. PEERS are libraries measured beside ours: without one of
# them the program is left out.
function(pelvor_benchmark path)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "DEPS;PEERS")
    get_filename_component(target "${path}" NAME)
    if(NOT benchmark_FOUND)
        return()
    endif()
    if(arg_PEERS)
        find_package(PkgConfig QUIET)
        if(NOT PkgConfig_FOUND)
            return()
        endif()
        pkg_check_modules(${target}_peers QUIET IMPORTED_TARGET ${arg_PEERS})
        if(NOT ${target}_peers_FOUND)
            message(STATUS "Benchmark ${target} left out: ${arg_PEERS} not found")
            return()
        endif()
        set(peers PkgConfig::${target}_peers)
    endif()
    add_executable(${target} EXCLUDE_FROM_ALL "${path}.cpp")
    pelvor_warnings(${target})
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/Benchmarks")
    target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${target} PRIVATE ${arg_DEPS} ${peers} benchmark::benchmark_main)
    add_dependencies(benchmarks ${target})
endfunction()
