#include "UnfinishedMark.h"

#include <QFile>

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
