# The files by which desktops and terminals find the installer. Qt names its windows after the command, and a desktop
# recognises them by the desktop entry of the same name.
set(command ${CPACK_PACKAGE_NAME})

file(CREATE_LINK "../${bundle_folder}/MacOS/${BUNDLE_NAME}" "${CMAKE_CURRENT_BINARY_DIR}/${command}" SYMBOLIC)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${command}" DESTINATION bin COMPONENT bundle)

configure_file(desktop-entry.in ${command}.desktop @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${command}.desktop" DESTINATION share/applications COMPONENT bundle)

set(icons share/icons/hicolor)
foreach(size IN ITEMS 48 128 256)
    install(FILES icons/${size}.png DESTINATION ${icons}/${size}x${size}/apps RENAME ${command}.png COMPONENT bundle)
endforeach()
install(FILES "${CMAKE_SOURCE_DIR}/resources/images/app.svg"
    DESTINATION ${icons}/scalable/apps RENAME ${command}.svg COMPONENT bundle)

include(${CMAKE_CURRENT_SOURCE_DIR}/ReleaseNotes.cmake)
string(TIMESTAMP RELEASE_DAY "%Y-%m-%d" UTC)
set(metainfo com.brindle.LumetraDatabaseInstaller.metainfo.xml)
configure_file(metainfo.xml.in ${metainfo} @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${metainfo}" DESTINATION share/metainfo COMPONENT bundle)

configure_file(manual-page.in ${command}.1 @ONLY)
execute_process(COMMAND gzip -9nf ${command}.1 WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
    COMMAND_ERROR_IS_FATAL ANY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${command}.1.gz" DESTINATION share/man/man1 COMPONENT bundle)
