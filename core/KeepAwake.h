#pragma once

#include <QProcess>

/// Keeps the computer from going to sleep by itself, with the system's own tool, which ends with this object
/// and within a second of the process. That it can't isn't told. Main thread only.
class KeepAwake {
public:
    KeepAwake();
    KeepAwake(const KeepAwake &) = delete;
    ~KeepAwake();

private:
    QProcess tool;
};
