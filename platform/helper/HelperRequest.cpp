#include "HelperRequest.h"

#include "HelperProtocol.h"

HelperRequest parseRequest(std::string_view packet)
{
    if (packet.size() > largestRequest)
        return {};
    HelperRequest request;
    for (size_t end = 0; (end = packet.find('\0')) != packet.npos; packet.remove_prefix(end + 1))
        request.emplace_back(packet.substr(0, end));
    return packet.empty() ? request : HelperRequest();
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
