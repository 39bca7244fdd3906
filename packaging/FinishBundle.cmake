# Prepares a bundle for other Macs: puts Qt into it, checks that it needs nothing else from outside, signs it from the
# inside out and verifies the signature. A step that fails ends the packaging.
#
# BUNDLE            the bundle as it was built
# QT_PROGRAMS       the folder in which to look for macdeployqt before PATH
# SIGNING_IDENTITY  the identity that codesign signs with; "-" signs ad hoc, as Apple silicon starts no unsigned program
cmake_minimum_required(VERSION 3.21)

# Sets RESULT to the programs and libraries in the bundle: the files that begin with a Mach-O header, of one
# architecture or of several.
function(list_binaries result)
    set(binaries "")
    file(GLOB_RECURSE files LIST_DIRECTORIES false "${BUNDLE}/Contents/*")
    foreach(file IN LISTS files)
        file(READ "${file}" magic LIMIT 4 HEX)
        if(magic MATCHES "^(cffaedfe|cafebabe)$" AND NOT IS_SYMLINK "${file}")
            list(APPEND binaries "${file}")
        endif()
    endforeach()
    set(${result} "${binaries}" PARENT_SCOPE)
endfunction()

# Sets RESULT to what BINARY links that is neither the system's nor in the bundle.
function(list_outside_links binary result)
    get_filename_component(folder "${binary}" DIRECTORY)
    get_filename_component(name "${binary}" NAME)
    execute_process(COMMAND otool -arch all -L "${binary}" OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "\t[^\n]+ \\(compatibility" links "${listing}")
    list(TRANSFORM links REPLACE "^\t(.+) \\(compatibility$" "\\1")
    list(REMOVE_DUPLICATES links)
    set(outside "")
    foreach(link IN LISTS links)
        # A library lists itself, too.
        get_filename_component(linked_name "${link}" NAME)
        if(linked_name STREQUAL name OR link MATCHES "^/usr/lib/|^/System/Library/")
            continue()
        endif()
        string(REGEX REPLACE "^@executable_path/" "${BUNDLE}/Contents/MacOS/" file "${link}")
        string(REGEX REPLACE "^@loader_path/" "${folder}/" file "${file}")
        string(REGEX REPLACE "^@rpath/" "${BUNDLE}/Contents/Frameworks/" file "${file}")
        cmake_path(IS_PREFIX BUNDLE "${file}" NORMALIZE inside)
        if(NOT inside OR NOT EXISTS "${file}")
            list(APPEND outside "${link}")
        endif()
    endforeach()
    set(${result} "${outside}" PARENT_SCOPE)
endfunction()

function(sign code)
    set(options "")
    if(NOT SIGNING_IDENTITY STREQUAL "-")
        set(options --timestamp --options runtime)
    endif()
    execute_process(COMMAND codesign --force ${options} --sign "${SIGNING_IDENTITY}" "${code}"
        COMMAND_ERROR_IS_FATAL ANY)
endfunction()

find_program(macdeployqt macdeployqt HINTS "${QT_PROGRAMS}" REQUIRED)
execute_process(COMMAND "${macdeployqt}" "${BUNDLE}" COMMAND_ERROR_IS_FATAL ANY)

list_binaries(binaries)
get_filename_component(program "${BUNDLE}" NAME_WLE)
set(program "${BUNDLE}/Contents/MacOS/${program}")
if(NOT program IN_LIST binaries)
    message(FATAL_ERROR "No program at ${program}")
endif()

# macdeployqt reports success even when it has left something out.
set(complaint "")
foreach(binary IN LISTS binaries)
    list_outside_links("${binary}" links)
    foreach(link IN LISTS links)
        string(APPEND complaint "\n  ${binary}: ${link}")
    endforeach()
endforeach()
if(complaint)
    message(FATAL_ERROR "Linked from outside the bundle:${complaint}")
endif()

# codesign signs a framework together with the library in it, and the bundle together with its program.
file(GLOB frameworks "${BUNDLE}/Contents/Frameworks/*.framework")
list(REMOVE_ITEM binaries "${program}")
list(FILTER binaries EXCLUDE REGEX "\\.framework/")
foreach(code IN LISTS frameworks binaries ITEMS "${BUNDLE}")
    sign("${code}")
endforeach()
execute_process(COMMAND codesign --verify --strict --deep --verbose=2 "${BUNDLE}" COMMAND_ERROR_IS_FATAL ANY)
