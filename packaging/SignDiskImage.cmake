# Signs the finished image: a program on an unsigned one that was downloaded is started from a random place, where it
# doesn't find the folder beside it. An image without its signature is removed, since cpack would lay it out all the same.
foreach(image IN LISTS CPACK_PACKAGE_FILES)
    execute_process(COMMAND codesign --timestamp --sign "${CPACK_SIGNING_IDENTITY}" "${image}" RESULT_VARIABLE failed)
    if(NOT failed)
        execute_process(COMMAND codesign --verify --strict "${image}" RESULT_VARIABLE failed)
    endif()
    if(failed)
        file(REMOVE "${image}")
        message(FATAL_ERROR "${image} could not be signed: ${failed}")
    endif()
endforeach()
