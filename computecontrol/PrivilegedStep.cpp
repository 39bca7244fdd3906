#include "PrivilegedStep.h"

#include "CorvaneInstallUtils.h"
#include "MacXUtils/Logging.h"
#include "macos/MacDoAuthorizedCommand.h"

namespace {

int answersInUse = 0;
bool declined = false;

} // namespace

OneAnswer::OneAnswer()
{
    ++answersInUse;
}

OneAnswer::~OneAnswer()
{
    if (--answersInUse == 0)
        declined = false;
}

bool haveAuthority()
{
    if (gMacAuthorizationRef)
        return true;
    if (declined || establishPrivsForSetup() != 0) {
        declined = answersInUse > 0;
        return false;
    }
    return true;
}

bool runPrivileged(const char *tool, const std::vector<std::string> &arguments)
{
    return runCommandWithAuthority(gMacAuthorizationRef, tool, arguments);
}

bool runOrLog(const char *tool, const std::vector<std::string> &arguments, const char *failure)
{
    if (runPrivileged(tool, arguments))
        return true;
    log_msg("%s", filled(failure, arguments).c_str());
    return false;
}

std::string filled(std::string text, const std::vector<std::string> &words)
{
    size_t place = 0;
    for (const std::string &word : words) {
        place = text.find("%s", place);
        text.replace(place, 2, word);
        place += word.size();
    }
    return text;
}
