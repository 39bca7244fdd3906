#include "HelperRequest.h"

#include "HelperProtocol.h"

namespace {

HelperRequest refused(const char *why)
{
    HelperRequest request;
    request.refusal = why;
    return request;
}

} // namespace

HelperRequest parseRequest(const char *bytes, size_t length)
{
    if (length == 0)
        return refused("the request is empty");
    if (length > largestRequest)
        return refused("the request is too large");
    if (bytes[length - 1] != '\0')
        return refused("the request is cut off");

    HelperRequest request;
    const char *end = bytes + length;
    request.tool = bytes;
    for (bytes += request.tool.size() + 1; bytes < end; bytes += request.arguments.back().size() + 1) {
        if (request.arguments.size() == mostArguments)
            return refused("the request has too many arguments");
        request.arguments.emplace_back(bytes);
    }
    if (request.tool.empty() || request.tool[0] != '/')
        return refused("the tool isn't named by an absolute path");
    if (request.arguments.empty())
        return refused("the tool is given no arguments");
    return request;
}

std::string packRequest(const char *tool, char *const *arguments)
{
    std::string packet(tool);
    packet += '\0';
    for (; arguments && *arguments; ++arguments) {
        packet += *arguments;
        packet += '\0';
    }
    return packet;
}
