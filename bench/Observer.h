#pragma once

#include "EventLoopGap.h"

#include <QObject>
#include <QStringList>

class QThread;
class QWizard;

/// Watches a wizard program from inside, and prints what it saw as one line of JSON before it ends the
/// program.
class Observer : public QObject {
    Q_OBJECT

public:
    /// As "start" it ends with the first painted window: the seconds since the program was started and the
    /// memory then. As "scan" it ends with the scan, as "walk" it goes through the wizard to its end; for
    /// every worker thread that ran: its seconds and the longest gap of the event loop meanwhile, in
    /// milliseconds.
    explicit Observer(const QString &what);

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void painted();
    void walkOn();
    void watch(QThread *thread, qint64 begin);
    void ended(const QString &name, qint64 begin);

    void finish(const QString &line);

    const QString task;
    bool shown = false;
    QWizard *wizard = nullptr;
    QTimer step;
    EventLoopGap gap;
    QStringList workers;
};
