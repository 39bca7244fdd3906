#include "UnfinishedMark.h"

#include "core/LimitedCalls.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

QString unfinishedMark(const QString &folder)
{
    return folder + QStringLiteral("/.unfinished-installation");
}

void markUnfinished(const QString &folder)
{
    QFile mark(unfinishedMark(folder));
    // NewOnly follows no link in the mark's place.
    if (mark.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        mark.write("The Lumetra database in this folder is not complete. Run the installer again.\n");
}

bool belongsToStranger(const QString &folder)
{
    struct stat status;
    return limited::lstat(folder.toStdString(), status) == 0 && status.st_uid != getuid()
        && status.st_uid != 0;
}
