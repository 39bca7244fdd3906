#pragma once

class QThread;

/// Interrupts a page's worker and waits for its end, at most `limit` milliseconds. A worker that takes longer
/// is held up in the system and is left behind without its parent, to end with the process. Main thread only,
/// in the destructor of the page.
void endWorker(QThread *worker, int limit);
