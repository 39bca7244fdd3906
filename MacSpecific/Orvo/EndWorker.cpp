#include "EndWorker.h"

#include <QThread>

void endWorker(QThread *worker, int limit)
{
    worker->requestInterruption();
    if (!worker->wait(static_cast<unsigned long>(limit)))
        worker->setParent(nullptr);
}
