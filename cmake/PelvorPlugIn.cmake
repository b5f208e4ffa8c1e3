# SPDX-License-Identifier: Apache-2.0
# Lays out bundles: a plug-in's, and a host program's own. Installed with the package, for hosts and plug-ins
# outside this tree.
#
# Both kinds are a folder <Name>.bundle (a plug-in) or <Name> (a host) that holds
#   Contents/Info.plist            identifier, name, version, name of the executable; of a plug-in with code also
#                                  the interface version that the code is built with
#   Contents/Resources/            Profiles.plist, <language>.lproj/ string tables, other resources
#   Contents/Linux/<Name>[.so]     the code, if any
#   Contents/PlugIns/              the host's plug-ins

# pelvor_add_plugin(NAME <name> IDENTIFIER <id> [SOURCES <file>…] [PROFILES <plist>] [STRINGS_DIRS <dir>.lproj…]
#                   [RESOURCES <file or dir>…] [VERSION <version>] [INFO <key>=<text>…] [LIBRARIES <target>…]
#                   [HOST <target> | DESTINATION <dir>])
# Makes the target <name>, which builds <name>.bundle in the PlugIns folder of HOST (a target that was given to
# pelvor_host_bundle), in DESTINATION, or else in the current build folder. Without SOURCES the plug-in is data
# alone. LIBRARIES are those the code uses; Pelvor::Base or, where that is missing, Pelvor::Foundation by default.
function(pelvor_add_plugin)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;IDENTIFIER;PROFILES;VERSION;HOST;DESTINATION"
        "SOURCES;STRINGS_DIRS;RESOURCES;INFO;LIBRARIES")
    _pelvor_require(pelvor_add_plugin NAME IDENTIFIER)
    if(arg_HOST)
        get_target_property(folder ${arg_HOST} PELVOR_BUNDLE)
        set(arg_DESTINATION "${folder}/Contents/PlugIns")
    elseif(NOT arg_DESTINATION)
        set(arg_DESTINATION "${CMAKE_CURRENT_BINARY_DIR}")
    endif()
    set(bundle "${arg_DESTINATION}/${arg_NAME}.bundle")
    _pelvor_bundle_contents("${bundle}" BNDL "${arg_NAME}.so" files)
    if(arg_SOURCES)
        _pelvor_plugin_module()
    else()
        add_custom_target(${arg_NAME} ALL DEPENDS ${files})
    endif()
    set_target_properties(${arg_NAME} PROPERTIES PELVOR_BUNDLE "${bundle}")
    if(arg_HOST)
        add_dependencies(${arg_HOST}-contents ${arg_NAME})
    endif()
endfunction()

# pelvor_host_bundle(TARGET <executable> NAME <name> IDENTIFIER <id> [PROFILES <plist>]
#                    [STRINGS_DIRS <dir>.lproj…] [RESOURCES <file or dir>…] [VERSION <version>]
#                    [INFO <key>=<text>…] [DESTINATION <dir>])
# Lays out the folder <name> in DESTINATION (the current build folder by default) and has TARGET built as its
# Contents/Linux/<name>, able to load plug-ins. The property PELVOR_BUNDLE of TARGET is the folder.
function(pelvor_host_bundle)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;NAME;IDENTIFIER;PROFILES;VERSION;DESTINATION"
        "STRINGS_DIRS;RESOURCES;INFO")
    _pelvor_require(pelvor_host_bundle TARGET NAME IDENTIFIER)
    if(NOT arg_DESTINATION)
        set(arg_DESTINATION "${CMAKE_CURRENT_BINARY_DIR}")
    endif()
    set(arg_SOURCES YES)
    set(bundle "${arg_DESTINATION}/${arg_NAME}")
    _pelvor_bundle_contents("${bundle}" APPL "${arg_NAME}" files)
    file(MAKE_DIRECTORY "${bundle}/Contents/PlugIns")
    add_custom_target(${arg_TARGET}-contents ALL DEPENDS ${files})
    add_dependencies(${arg_TARGET} ${arg_TARGET}-contents)
    set_target_properties(${arg_TARGET} PROPERTIES
        OUTPUT_NAME "${arg_NAME}"
        RUNTIME_OUTPUT_DIRECTORY "${bundle}/Contents/Linux"
        PELVOR_BUNDLE "${bundle}")
    pelvor_loads_plugins(${arg_TARGET})
    # The library's programs, and what shows windows, lie beside its code, which is in the host where the library is static.
    _pelvor_is_static(Pelvor::Foundation static)
    if(static AND TARGET Pelvor::Archiver)
        set(programs "${bundle}/Contents/Linux/pelvor")
        add_custom_command(TARGET ${arg_TARGET} POST_BUILD VERBATIM
            COMMAND "${CMAKE_COMMAND}" -E make_directory "${programs}"
            COMMAND "${CMAKE_COMMAND}" -E copy_if_different $<TARGET_FILE:Pelvor::Archiver> "${programs}")
    endif()
    if(static AND TARGET Pelvor::InterfaceXCB)
        add_custom_command(TARGET ${arg_TARGET} POST_BUILD VERBATIM
            COMMAND "${CMAKE_COMMAND}" -E copy_if_different
                $<TARGET_FILE:Pelvor::InterfaceXCB> "${bundle}/Contents/Linux")
    endif()
endfunction()

# Lets an executable load plug-ins: they find its symbols and, where our libraries are static, the whole of those
# libraries inside it, so that there is one copy of their state in the process.
function(pelvor_loads_plugins target)
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON PELVOR_LOADS_PLUGINS ON)
endfunction()

macro(_pelvor_require function)
    foreach(_pelvor_name ${ARGN})
        if(NOT arg_${_pelvor_name})
            message(FATAL_ERROR "${function}: ${_pelvor_name} is missing")
        endif()
    endforeach()
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${function}: unknown argument ${arg_UNPARSED_ARGUMENTS}")
    endif()
endmacro()

function(_pelvor_is_static target result)
    set(${result} NO PARENT_SCOPE)
    if(TARGET ${target})
        get_target_property(type ${target} TYPE)
        if(type STREQUAL "STATIC_LIBRARY")
            set(${result} YES PARENT_SCOPE)
        endif()
    endif()
endfunction()

# The module of a plug-in with code. A static library of ours lends it headers alone: its code is in the host.
macro(_pelvor_plugin_module)
    add_library(${arg_NAME} MODULE ${arg_SOURCES})
    add_custom_target(${arg_NAME}-contents DEPENDS ${files})
    add_dependencies(${arg_NAME} ${arg_NAME}-contents)
    set_target_properties(${arg_NAME} PROPERTIES
        PREFIX ""
        SUFFIX ".so"
        OUTPUT_NAME "${arg_NAME}"
        CXX_VISIBILITY_PRESET hidden
        LIBRARY_OUTPUT_DIRECTORY "${bundle}/Contents/Linux")
    if(NOT arg_LIBRARIES)
        set(arg_LIBRARIES Pelvor::Foundation)
        if(TARGET Pelvor::Base)
            set(arg_LIBRARIES Pelvor::Base)
        endif()
    endif()
    foreach(library IN LISTS arg_LIBRARIES)
        _pelvor_is_static(${library} static)
        if(static AND library MATCHES "^Pelvor::")
            target_include_directories(${arg_NAME} PRIVATE
                $<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>)
            target_compile_features(${arg_NAME} PRIVATE cxx_std_20)
        else()
            target_link_libraries(${arg_NAME} PRIVATE ${library})
        endif()
    endforeach()
endmacro()

# Writes Info.plist and has the resources copied; FILES becomes the list of the files to depend on.
function(_pelvor_bundle_contents bundle type executable files)
    _pelvor_write_info("${bundle}/Contents/Info.plist" ${type} "${executable}")
    set(resources "${bundle}/Contents/Resources")
    file(MAKE_DIRECTORY "${resources}")
    set(copies "")
    if(arg_PROFILES)
        _pelvor_copy("${arg_PROFILES}" "${resources}/Profiles.plist")
    endif()
    foreach(path IN LISTS arg_STRINGS_DIRS arg_RESOURCES)
        cmake_path(ABSOLUTE_PATH path NORMALIZE)
        string(REGEX REPLACE "/$" "" path "${path}")
        cmake_path(GET path FILENAME name)
        if(IS_DIRECTORY "${path}")
            file(GLOB_RECURSE members RELATIVE "${path}" CONFIGURE_DEPENDS "${path}/*")
            foreach(member IN LISTS members)
                _pelvor_copy("${path}/${member}" "${resources}/${name}/${member}")
            endforeach()
        else()
            _pelvor_copy("${path}" "${resources}/${name}")
        endif()
    endforeach()
    set(${files} ${copies} PARENT_SCOPE)
endfunction()

macro(_pelvor_copy from to)
    set(_pelvor_from "${from}")
    cmake_path(ABSOLUTE_PATH _pelvor_from)
    add_custom_command(OUTPUT "${to}" DEPENDS "${_pelvor_from}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${_pelvor_from}" "${to}" VERBATIM)
    list(APPEND copies "${to}")
endmacro()

function(_pelvor_write_info path type executable)
    if(NOT arg_VERSION)
        set(arg_VERSION 1.0)
    endif()
    set(pairs "CFBundleInfoDictionaryVersion=6.0" "CFBundleIdentifier=${arg_IDENTIFIER}"
        "CFBundleName=${arg_NAME}" "CFBundlePackageType=${type}" "CFBundleDevelopmentRegion=en"
        "CFBundleShortVersionString=${arg_VERSION}" "CFBundleVersion=${arg_VERSION}" ${arg_INFO})
    if(arg_SOURCES)
        list(APPEND pairs "CFBundleExecutable=${executable}")
        if(type STREQUAL "BNDL")
            # kInterfaceVersion in Runtime/Registry.h: a process loads no code that says another one.
            list(APPEND pairs "PelvorInterfaceVersion=4")
        endif()
    endif()
    set(entries "")
    foreach(pair IN LISTS pairs)
        string(REPLACE "&" "&amp;" pair "${pair}")
        string(REPLACE "<" "&lt;" pair "${pair}")
        string(REPLACE ">" "&gt;" pair "${pair}")
        string(REGEX REPLACE "^([^=]*)=(.*)$" "    <key>\\1</key>\n    <string>\\2</string>\n" entry "${pair}")
        string(APPEND entries "${entry}")
    endforeach()
    file(CONFIGURE OUTPUT "${path}" @ONLY CONTENT [[<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
@entries@</dict>
</plist>
]])
endfunction()
