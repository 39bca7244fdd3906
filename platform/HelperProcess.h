#pragma once

#include "Descriptor.h"
#include "helper/HelperProtocol.h"

#include <string>

class EndSignals;

/// The helper that runs tools as root; it ends with this object, or with this process. Starting it asks for
/// an administrator's password, unless this process is root already. Not thread-safe.
class HelperProcess {
public:
    HelperProcess() = default;
    ~HelperProcess() { stop(); }
    HelperProcess(const HelperProcess &) = delete;
    HelperProcess &operator=(const HelperProcess &) = delete;

    /// Starts it and waits until it is ready, so also for the password. Returns a status of
    /// AuthorizationCopyRights. `prompt` begins the line on standard error that says that nothing here can
    /// ask.
    OSStatus start(const std::string &prompt);
    /// Waits for its end 5 seconds at most.
    void stop();

    /// Whether start() succeeded; the helper may have ended since.
    bool wasStarted() const { return bool(socket); }
    bool isRunning() const;

    /// Has the tool started and gets a connection to it, within 30 seconds. Returns a status of
    /// AuthorizationExecuteWithPrivileges.
    OSStatus runTool(const char *tool, char *const *arguments, Descriptor &connection);

private:
    OSStatus awaitReady(const EndSignals &endSignals, const Descriptor &messages, const std::string &prompt);
    OSStatus statusOfFailedStart(const Descriptor &messages, const std::string &prompt);
    bool receive(HelperReply &reply, Descriptor &connection);

    Descriptor socket;
    pid_t process = -1;
};
