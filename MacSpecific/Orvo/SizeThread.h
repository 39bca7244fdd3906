#pragma once

#include <QFileInfo>
#include <QList>
#include <QString>
#include <QThread>

/// Measures a folder's data files on a thread of its own and lists them in sResultList. Ends early when its
/// interruption is requested, without a result.
class SizeThread : public QThread {
    Q_OBJECT

public:
    SizeThread(QObject *parent, QString path);

    /// Scans the folder `path` in depth and appends its data files to `list`, every folder's entries in the
    /// order of their names in lower case. Returns the files' total size in bytes; folders that may not be
    /// read, or vanish meanwhile, count 0. When the disk fails or is gone, returns 0 with the list as it was;
    /// after an interruption, what it has found so far.
    quint64 dirSize(const QString &path, QList<QFileInfo> &list);

signals:
    /// The scan's last act: the folder and its total in bytes.
    void pathSize(QString path, quint64 totalSize);

protected:
    void run() override;

private:
    quint64 scanTotal = 0;
    const QString scanPath;
};
