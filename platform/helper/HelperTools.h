#pragma once

#include "HelperRequest.h"

/// Starts the tool that the request asks for, as this process's user, with nothing of this process but the
/// one descriptor; it dies with this process. Returns an empty string when it was started, else why not: only
/// five tools are run, and each only from its own place.
std::string startTool(const HelperRequest &request, int connection);
