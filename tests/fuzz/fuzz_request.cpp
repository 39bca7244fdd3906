#include "platform/helper/HelperProtocol.h"
#include "platform/helper/HelperRequest.h"

#include <cstdint>
#include <cstdlib>

// What is accepted must be what was sent, and within the bounds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const char *bytes = reinterpret_cast<const char *>(data);
    const HelperRequest request = parseRequest({bytes, size});
    if (request.empty())
        return 0;
    std::vector<char *> arguments;
    for (const std::string &argument : request)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const bool isWhole = packRequest(arguments[0], &arguments[1]) == std::string(bytes, size);
    if (!isWhole || size > largestRequest)
        std::abort();
    return 0;
}
