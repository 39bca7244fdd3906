get_filename_component(qt_bin_folder "${Qt5_DIR}/../../../bin" ABSOLUTE)
find_program(MACDEPLOYQT macdeployqt HINTS "${qt_bin_folder}" REQUIRED)

set(SIGNING_IDENTITY "" CACHE STRING "Identity that codesign signs the bundle in the disk image with; none: unsigned")

set(staged_bundle "\"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${BUNDLE_NAME}.app\"")
install(TARGETS installer BUNDLE DESTINATION .)
install(CODE "execute_process(COMMAND \"${MACDEPLOYQT}\" ${staged_bundle} COMMAND_ERROR_IS_FATAL ANY)")
if(SIGNING_IDENTITY)
    install(CODE "execute_process(
        COMMAND codesign --deep --force --timestamp --options runtime --sign \"${SIGNING_IDENTITY}\" ${staged_bundle}
        COMMAND_ERROR_IS_FATAL ANY)")
endif()

set(CPACK_GENERATOR DragNDrop)
set(CPACK_DMG_VOLUME_NAME "${BUNDLE_NAME}")
set(CPACK_DMG_DISABLE_APPLICATIONS_SYMLINK ON)
set(CPACK_DMG_BACKGROUND_IMAGE "${CMAKE_SOURCE_DIR}/resources/images/Orvo_DVD_Artwork.png")
set(CPACK_DMG_DS_STORE_SETUP_SCRIPT "${CMAKE_CURRENT_SOURCE_DIR}/disk-image.applescript")
