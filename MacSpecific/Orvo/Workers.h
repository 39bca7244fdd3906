#pragma once

class QThread;

/// Starts a page's worker. Returns false if the system has no thread left for it; then it never ends either.
bool startWorker(QThread *worker);

/// Interrupts a page's worker and waits for it for at most `limit` milliseconds. A worker that takes longer
/// is stuck in the kernel; it loses its parent and ends with the process. Main thread only, in the page's
/// destructor.
void endWorker(QThread *worker, int limit);
