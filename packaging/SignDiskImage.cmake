# Signs the finished image: macOS starts a program on an unsigned, downloaded image from a random place, where it finds
# no folder beside it. Removes an image that can't be signed, since cpack would deliver it all the same.
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
