# Packs the finished tar.gz again, sorted and owned by root, because cpack adds the files in the order in which the disk
# lists them and under the account that packs.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "\\.tar\\.gz$")
        continue()
    endif()
    set(tree "${package}.tree")
    file(ARCHIVE_EXTRACT INPUT "${package}" DESTINATION "${tree}")
    execute_process(
        COMMAND tar --create --sort=name --owner=root:0 --group=root:0 --format=gnu --directory "${tree}" usr
        COMMAND gzip --no-name --best
        OUTPUT_FILE "${package}"
        COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE "${tree}")
endforeach()
