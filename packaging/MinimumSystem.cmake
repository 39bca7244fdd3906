# Raises CMAKE_OSX_DEPLOYMENT_TARGET to the oldest macOS that the linked Qt runs on; Info.plist requires the result.
get_target_property(qt_library Qt${INSTALLER_QT}::Core LOCATION)
execute_process(COMMAND otool -arch all -l "${qt_library}" OUTPUT_VARIABLE load_commands COMMAND_ERROR_IS_FATAL ANY)

# Each architecture has its own minimum, in LC_BUILD_VERSION or in the older LC_VERSION_MIN_MACOSX. The lowest counts:
# Apple silicon starts with 11, and the Intel half may run on older systems.
string(REGEX MATCHALL "minos +[0-9.]+|LC_VERSION_MIN_MACOSX[ \n]+cmdsize +[0-9]+[ \n]+version +[0-9.]+" versions
    "${load_commands}")
list(TRANSFORM versions REPLACE "^.* " "")
list(SORT versions COMPARE NATURAL)
if(NOT versions)
    message(FATAL_ERROR "otool doesn't tell which macOS ${qt_library} needs")
endif()
list(GET versions 0 qt_minimum)
if(qt_minimum VERSION_GREATER CMAKE_OSX_DEPLOYMENT_TARGET)
    message(STATUS "Qt needs macOS ${qt_minimum}, so the installer does, too")
    set(CMAKE_OSX_DEPLOYMENT_TARGET ${qt_minimum})
endif()
