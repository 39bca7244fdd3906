# Read by cpack once per kind of package: the tar.gz goes without Debian's files.
if(CPACK_GENERATOR STREQUAL TGZ)
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 0 build_folder)
    list(GET CPACK_INSTALL_CMAKE_PROJECTS 1 project_name)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${build_folder};${project_name};bundle;/")
endif()
