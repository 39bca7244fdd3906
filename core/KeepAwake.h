#pragma once

#include <memory>

class QProcess;

/// Keeps the computer from going to sleep by itself, using the system's own tool. The tool ends with this
/// object, and within a second of the process's end. Ignores failures. Main thread only.
class KeepAwake {
public:
    KeepAwake();
    KeepAwake(const KeepAwake &) = delete;
    ~KeepAwake();

private:
    std::unique_ptr<QProcess> tool;
};
