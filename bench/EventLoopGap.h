#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

/// The longest time in which the event loop of the thread it was made in did not get round, in milliseconds.
class EventLoopGap : public QObject {
public:
    EventLoopGap()
    {
        ticker.setTimerType(Qt::PreciseTimer);
        connect(&ticker, &QTimer::timeout, this,
            [this] { longest = std::max(longest, sinceLast.nsecsElapsed()), sinceLast.start(); });
        sinceLast.start();
        ticker.start(1);
    }

    /// The longest gap since the last call or the start.
    double take()
    {
        const qint64 gap = std::max(longest, sinceLast.nsecsElapsed());
        longest = 0;
        sinceLast.start();
        return static_cast<double>(gap) / 1e6;
    }

private:
    QTimer ticker;
    QElapsedTimer sinceLast;
    qint64 longest = 0;
};
