# SPDX-License-Identifier: Apache-2.0
# pelvor_library(): declares one library with all that belongs to it.

# All libraries, for those who install them without the rest.
add_custom_target(pelvor-libraries)

# While building, the libraries stand beside each other as they do once installed, and so find each other in the same
# way. A folder for building alone would be overwritten when they are installed; CMake fills such a place up with empty
# entries, each of which means the folder that a program is started in.
set(PELVOR_LIBRARY_FOLDER "${PROJECT_BINARY_DIR}/Libraries")

# pelvor_library(NAME <target> ALIAS <name> INCLUDE_ROOT <dir> HEADERS <dir>…
#                [DEPS <name>…] [PACKAGES "<find_package arguments>"…] [PKG_CONFIG <module>…] [LIBRARIES <target>…])
#
#   NAME          the target; its sources are added by the folders with target_sources()
#   ALIAS         the name behind Pelvor::, in the tree and for consumers, and the package's component
#   INCLUDE_ROOT  what include paths start at, while building
#   HEADERS       folders whose headers are installed, below INCLUDE_ROOT, "." for the root itself; a folder below
#                 one of them is installed only if it is named too. Libraries that share a folder name it once.
#   DEPS          libraries of ours, by alias, that the public headers need
#   PACKAGES      third-party packages, each as the arguments of find_package()
#   PKG_CONFIG    third-party packages that pkg-config knows; private as well
#   LIBRARIES     the targets of PACKAGES; private, for no public header may show them
function(pelvor_library)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;ALIAS;INCLUDE_ROOT" "HEADERS;DEPS;PACKAGES;PKG_CONFIG;LIBRARIES")
    foreach(package IN LISTS arg_PACKAGES)
        separate_arguments(words UNIX_COMMAND "${package}")
        find_package(${words} REQUIRED)
    endforeach()
    if(arg_PKG_CONFIG)
        find_package(PkgConfig REQUIRED)
        pkg_check_modules(${arg_NAME}_packages REQUIRED IMPORTED_TARGET GLOBAL ${arg_PKG_CONFIG})
        list(APPEND arg_LIBRARIES PkgConfig::${arg_NAME}_packages)
    endif()

    add_library(${arg_NAME})
    add_library(Pelvor::${arg_ALIAS} ALIAS ${arg_NAME})
    set_target_properties(${arg_NAME} PROPERTIES
        EXPORT_NAME ${arg_ALIAS}
        DEFINE_SYMBOL ""
        LIBRARY_OUTPUT_DIRECTORY "${PELVOR_LIBRARY_FOLDER}"
        INSTALL_RPATH "\$ORIGIN"
        BUILD_WITH_INSTALL_RPATH ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    target_compile_features(${arg_NAME} PUBLIC cxx_std_20)
    # Calls inside a library go straight to their functions: nobody replaces single functions of ours.
    target_compile_options(${arg_NAME} PRIVATE -ftls-model=initial-exec -fno-semantic-interposition)
    target_link_options(${arg_NAME} PRIVATE -Wl,-Bsymbolic-functions)
    pelvor_warnings(${arg_NAME})
    if(NOT PELVOR_SANITIZE)
        target_link_options(${arg_NAME} PRIVATE -Wl,--no-undefined)
    endif()
    target_include_directories(${arg_NAME} PUBLIC
        $<BUILD_INTERFACE:${arg_INCLUDE_ROOT}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/pelvor>)
    if(NOT BUILD_SHARED_LIBS)
        # A program that loads plug-ins holds all of the library, not only what it calls itself.
        target_link_options(${arg_NAME} INTERFACE
            "$<$<BOOL:$<TARGET_PROPERTY:PELVOR_LOADS_PLUGINS>>:SHELL:-Wl,--whole-archive $<TARGET_FILE:Pelvor::${arg_ALIAS}> -Wl,--no-whole-archive>")
    endif()
    list(TRANSFORM arg_DEPS PREPEND Pelvor:: OUTPUT_VARIABLE deps)
    target_link_libraries(${arg_NAME} PUBLIC ${deps} PRIVATE ${arg_LIBRARIES})
    add_dependencies(pelvor-libraries ${arg_NAME})
    _pelvor_install_library()
endfunction()

# The install rules, the export entry and the component file that PelvorConfig.cmake reads.
macro(_pelvor_install_library)
    install(TARGETS ${arg_NAME} EXPORT Pelvor${arg_ALIAS}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Pelvor
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Pelvor)
    install(EXPORT Pelvor${arg_ALIAS}Targets NAMESPACE Pelvor::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Pelvor COMPONENT Pelvor)
    foreach(folder IN LISTS arg_HEADERS)
        file(GLOB headers CONFIGURE_DEPENDS "${arg_INCLUDE_ROOT}/${folder}/*.h")
        install(FILES ${headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/pelvor/${folder}" COMPONENT Pelvor)
    endforeach()

    # A static library hands the libraries behind it on to whoever links it.
    set(component "")
    foreach(dep IN LISTS arg_DEPS)
        string(APPEND component "_pelvor_bring_in(${dep})\n")
    endforeach()
    if(NOT BUILD_SHARED_LIBS)
        foreach(package IN LISTS arg_PACKAGES)
            string(APPEND component "find_dependency(${package})\n")
        endforeach()
        if(arg_PKG_CONFIG)
            list(JOIN arg_PKG_CONFIG " " modules)
            string(APPEND component "find_dependency(PkgConfig)\n"
                "pkg_check_modules(${arg_NAME}_packages REQUIRED IMPORTED_TARGET GLOBAL ${modules})\n")
        endif()
    endif()
    set(component_file "${PROJECT_BINARY_DIR}/Pelvor${arg_ALIAS}Component.cmake")
    file(WRITE "${component_file}" "${component}")
    install(FILES "${component_file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Pelvor COMPONENT Pelvor)
endmacro()

include(CMakePackageConfigHelpers)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/PelvorConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/PelvorConfig.cmake"
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Pelvor)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/PelvorConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/PelvorConfig.cmake"
    "${PROJECT_BINARY_DIR}/PelvorConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/PelvorPlugIn.cmake"
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Pelvor COMPONENT Pelvor)
