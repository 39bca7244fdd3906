#pragma once

#include <QProcess>

/// The space available on the file system that holds a folder, as the system's `df` reports it. One object
/// serves one probe: Run, then TotalAvailable once, on the same thread.
class CDfProcess : public QProcess {
    Q_OBJECT

public:
    explicit CDfProcess(QObject *parent = nullptr);
    ~CDfProcess() override;

    /// Starts "df -k folder" and returns at once.
    void Run(const QString &folder);

    /// Waits for `df`, at most 50 seconds, and returns the available space in megabytes of 1,048,576 bytes; 0
    /// on every failure. Kills a `df` that takes longer, or that still runs when the process is asked to end.
    qint64 TotalAvailable();

    /// The megabytes in the output of "df -k": the fourth field of the second line, divided by 1024; 0 when
    /// it isn't there or isn't a number.
    static qint64 availableMegabytes(const QByteArray &output);
};
