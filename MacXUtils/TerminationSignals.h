#pragma once

#include <QObject>

class QSocketNotifier;

/// Turns SIGTERM, SIGINT and SIGHUP, which end a session, into the signal requested(), and ignores SIGPIPE
/// and SIGXFSZ. One object, made on the main thread after the application object; a signal that the process
/// was started to ignore stays ignored.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

    /// Whether the process was asked to end. Any thread.
    static bool received();

signals:
    /// The process was asked to end. Repeated every tenth of a second until it does, to reach windows that
    /// open meanwhile.
    void requested();

private:
    void announce();

    QSocketNotifier *notifier = nullptr;
};
