# SPDX-License-Identifier: Apache-2.0
# Settings of the whole build: language, compiler cache, sanitizers, and the warnings that our own targets use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# Static and shared builds compile alike, so that the second one comes out of the compiler cache.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

include(GNUInstallDirs)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Paths inside the source folder are hashed relative to it: worktrees and clones share one cache. The sloppiness lets
# sources with precompiled headers into it. The headers themselves stay out: one from the cache of another worktree was
# older than the sources beside it.
find_program(PELVOR_CCACHE ccache)
if(PELVOR_CCACHE AND (NOT CMAKE_CXX_COMPILER_LAUNCHER OR CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache$"))
    set(CMAKE_CXX_COMPILER_LAUNCHER
        env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=true
        CCACHE_SLOPPINESS=time_macros "${PELVOR_CCACHE}")
endif()

if(PELVOR_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(PELVOR_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(PELVOR_SANITIZE STREQUAL "fuzz")
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(PELVOR_SANITIZE)
    message(FATAL_ERROR "PELVOR_SANITIZE is '${PELVOR_SANITIZE}'; it can be empty, address, thread or fuzz")
endif()

if(PELVOR_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()

# Has all sources of a target start with a header that is compiled once: `header` is named as between the angle
# brackets of an #include, since a path would keep clones from sharing the compiler cache, or it is a target that
# precompiles the header with the same options. With gcc only: the cache does not share what clang precompiles, nor
# what is compiled with it.
function(pelvor_precompile target header)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    if(TARGET ${header})
        target_precompile_headers(${target} REUSE_FROM ${header})
    else()
        target_precompile_headers(${target} PRIVATE "<${header}>")
    endif()
    target_compile_options(${target} PRIVATE -fpch-preprocess)
endfunction()

# Code that only tests run is compiled quickly rather than well.
function(pelvor_unoptimised target)
    target_compile_options(${target} PRIVATE -O0)
endfunction()

# Gives a target of ours its warnings; they never reach those who link it. g++ 12 takes the sum of a literal and a
# string for an overlapping copy.
function(pelvor_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough
        -Wundef -Wno-unused-parameter
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
        $<$<BOOL:${PELVOR_WERROR}>:-Werror>)
endfunction()

# Sets RESULT to ON once a folder of the tree holds sources: a floor has no target before its first class.
function(pelvor_has_sources folder result)
    file(GLOB_RECURSE found LIST_DIRECTORIES false "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
    if(found)
        set(${result} ON PARENT_SCOPE)
    else()
        set(${result} OFF PARENT_SCOPE)
    endif()
endfunction()
