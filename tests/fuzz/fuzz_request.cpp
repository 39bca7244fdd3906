#include "platform/helper/HelperProtocol.h"
#include "platform/helper/HelperRequest.h"

#include <cstdint>
#include <cstdlib>

// What is accepted must be what was sent, and within the bounds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const char *bytes = reinterpret_cast<const char *>(data);
    const HelperRequest request = parseRequest(bytes, size);
    if (!request.refusal.empty())
        return 0;
    std::vector<char *> arguments;
    for (const std::string &argument : request.arguments)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const bool isWhole = packRequest(request.tool.c_str(), arguments.data()) == std::string(bytes, size);
    if (!isWhole || request.tool[0] != '/' || request.arguments.empty()
        || request.arguments.size() > mostArguments || size > largestRequest)
        std::abort();
    return 0;
}
