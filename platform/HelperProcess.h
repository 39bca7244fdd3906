#pragma once

#include "Descriptor.h"
#include "helper/HelperProtocol.h"

#include <string>

class EndSignals;

/// The helper that runs tools as root, from its start to its end with this object. Its user is authenticated
/// when it starts, unless this process is root already.
class HelperProcess {
public:
    HelperProcess() = default;
    ~HelperProcess() { stop(); }
    HelperProcess(const HelperProcess &) = delete;
    HelperProcess &operator=(const HelperProcess &) = delete;

    /// Starts it and waits for its word that it is ready; it ends with this process. The result is a
    /// status of AuthorizationCopyRights; `prompt` opens the line on standard error that says that nothing
    /// here can ask.
    OSStatus start(const std::string &prompt);
    void stop();

    bool wasStarted() const { return bool(socket); }
    bool isRunning() const;

    /// Has the tool started and gets a connection to it; a status of AuthorizationExecuteWithPrivileges.
    OSStatus runTool(const char *tool, char *const *arguments, Descriptor &connection);

private:
    OSStatus awaitReady(const EndSignals &endSignals, const Descriptor &messages, const std::string &prompt);
    OSStatus statusOfFailedStart(const Descriptor &messages, const std::string &prompt);
    bool receive(HelperReply &reply, Descriptor &connection);

    Descriptor socket;
    pid_t process = -1;
};
