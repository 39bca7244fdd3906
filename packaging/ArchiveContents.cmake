# cpack reads this once for each kind of package; it leaves Debian's files out of the tar.gz.
if(CPACK_GENERATOR STREQUAL TGZ)
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build_folder)
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 1 project_name)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${build_folder};${project_name};bundle;/")
endif()
