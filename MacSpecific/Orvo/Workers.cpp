#include "Workers.h"

#include <QThread>

bool startWorker(QThread *worker)
{
    worker->start(QThread::InheritPriority);
    return worker->isRunning() || worker->isFinished();
}

void endWorker(QThread *worker, int limit)
{
    worker->requestInterruption();
    if (!worker->wait(static_cast<unsigned long>(limit)))
        worker->setParent(nullptr);
}
