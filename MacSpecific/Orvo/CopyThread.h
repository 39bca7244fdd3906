#pragma once

#include <QString>
#include <QThread>

class QProcess;

/// Puts the files of sResultList into the destination folder on a thread of its own, running the copy or move
/// tool once per file, until the list is done, a file fails or the thread is interrupted. An interruption
/// ends a running copy at once but gives a running move 30 seconds to finish. Marks the folder as unfinished;
/// whoever knows the outcome takes the mark away.
class CopyThread : public QThread {
    Q_OBJECT

public:
    /// `path` is the destination folder; it must exist, and the user must be able to write to it.
    CopyThread(QObject *parent, QString path);

    /// The thread's work, done on the caller's thread.
    void unpriviledgedCopy();
    QString getPath();

signals:
    /// The number of files done so far.
    void copiedFile(int index);
    /// The result so far, replacing the one before: 0 after each file; -100, with the text to show, before
    /// the first file and after a failure. An interruption itself emits none.
    void copyResult(int errCode, QString errMsg);

protected:
    void run() override;

private:
    bool copyFile(QProcess &tool, const QString &program, const QString &file);
    bool waitForTool(QProcess &tool);

    const QString path;
};
