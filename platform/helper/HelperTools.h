#pragma once

#include "HelperRequest.h"
#include "platform/Descriptor.h"

/// A tool and what it is started with.
struct HelperCommand {
    HelperRequest words;
    /// The working folder. Without one the tool isn't started.
    Descriptor folder;
    mode_t mask = 022;
};

/// A tool that runs, or why it couldn't be started.
struct HelperTool {
    std::string refusal;
    pid_t process = -1;
    /// The other end of its standard input, output and error.
    Descriptor connection;
};

/// Starts the command as this process's user, with nothing of this process but its own end of a new
/// connection; it dies with this process.
HelperTool startTool(const HelperCommand &command);
