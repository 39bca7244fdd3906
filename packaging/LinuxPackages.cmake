set(package_folder lib/${CPACK_PACKAGE_NAME})
set(bundle_folder "${package_folder}/${BUNDLE_NAME}.app/Contents")

# The programs as targets, so that cpack strips them.
install(DIRECTORY "${BUNDLE_CONTENTS}/" DESTINATION "${bundle_folder}" COMPONENT bundle
    PATTERN MacOS EXCLUDE
    PATTERN Helpers EXCLUDE)
install(TARGETS installer RUNTIME DESTINATION "${bundle_folder}/MacOS" COMPONENT bundle)
install(TARGETS authorization-helper defaults RUNTIME DESTINATION "${bundle_folder}/Helpers" COMPONENT bundle)

set(AUTHORIZATION_HELPER "/usr/${bundle_folder}/Helpers/authorization-helper")
configure_file(com.brindle.lumetra-installer.policy.in com.brindle.lumetra-installer.policy @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/com.brindle.lumetra-installer.policy"
    DESTINATION share/polkit-1/actions COMPONENT bundle)

include(${CMAKE_CURRENT_SOURCE_DIR}/DesktopFiles.cmake)

# Debian requires a changelog and a copyright file in every package.
set(SHORT_NAME ${CPACK_PACKAGE_NAME})
set(doc_folder share/doc/${CPACK_PACKAGE_NAME})
string(TIMESTAMP RELEASE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(TIMESTAMP RELEASE_YEAR "%Y" UTC)
configure_file(debian-changelog.in changelog @ONLY)
configure_file(debian-copyright.in copyright @ONLY)
configure_file(debian-postinst.in postinst @ONLY)
configure_file(debian-postrm.in postrm @ONLY)
execute_process(COMMAND gzip -9nf changelog WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" COMMAND_ERROR_IS_FATAL ANY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/changelog.gz" "${CMAKE_CURRENT_BINARY_DIR}/copyright"
    DESTINATION ${doc_folder} COMPONENT debian)

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_SOURCE_DIR}/ArchiveContents.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/ReproducibleArchive.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_BINARY_DIR}/postinst" "${CMAKE_CURRENT_BINARY_DIR}/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# pkexec, because an installation can be recorded only with an administrator's rights.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, pkexec")
