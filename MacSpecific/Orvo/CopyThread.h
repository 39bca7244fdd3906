#pragma once

#include <QString>
#include <QThread>

class QProcess;

/// Puts the files of sResultList into the destination folder on a thread of its own, running the copy or move
/// tool once per file, until the list is done, a file fails or the thread is interrupted. An interruption
/// ends a running copy at once but lets a running move finish.
class CopyThread : public QThread {
    Q_OBJECT

public:
    /// `path` is the destination folder, which exists and can be written.
    CopyThread(QObject *parent, QString path);

    void unpriviledgedCopy();
    QString getPath();

signals:
    /// The number of files done so far.
    void copiedFile(int index);
    /// The result as it stands, replacing the one before: 0 a file done, -100 a failure or nothing done with
    /// a readable text. An interruption has none of its own.
    void copyResult(int errCode, QString errMsg);

protected:
    void run() override;

private:
    bool copyFile(QProcess &tool, const QString &program, const QString &file);
    bool waitForTool(QProcess &tool);

    const QString path;
};
