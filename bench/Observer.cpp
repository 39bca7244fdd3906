#include "Observer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QChildEvent>
#include <QFile>
#include <QGenericPlugin>
#include <QMessageBox>
#include <QPointer>
#include <QThread>
#include <QWizard>

#include <cstdio>
#include <ctime>

namespace {

/// Nanoseconds on the clock that the starter of the program read as well.
qint64 now()
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * qint64(1000000000) + time.tv_nsec;
}

double secondsSince(qint64 begin)
{
    return static_cast<double>(now() - begin) / 1e9;
}

/// A figure of the process's memory in kilobytes, by its name in the system's summary.
long long memory(const QByteArray &name)
{
    QFile summary(QStringLiteral("/proc/self/smaps_rollup"));
    if (!summary.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : summary.readAll().split('\n')) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').first().toLongLong();
    }
    return 0;
}

} // namespace

Observer::Observer(const QString &what)
    : task(what)
{
    QCoreApplication::instance()->installEventFilter(this);
    connect(&step, &QTimer::timeout, this, &Observer::walkOn);
}

bool Observer::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() == QEvent::Paint && !shown && qobject_cast<QWizard *>(receiver)) {
        shown = true;
        wizard = static_cast<QWizard *>(receiver);
        QTimer::singleShot(0, this, &Observer::painted);
    }
    if (event->type() == QEvent::ChildAdded) {
        // What kind of object it is shows only once it has been made.
        const QPointer<QObject> child = static_cast<QChildEvent *>(event)->child();
        QMetaObject::invokeMethod(
            this,
            [this, child, begin = now()] {
                if (auto *thread = qobject_cast<QThread *>(child))
                    watch(thread, begin);
            },
            Qt::QueuedConnection);
    }
    return false;
}

void Observer::painted()
{
    if (task == QLatin1String("walk"))
        step.start(20);
    if (task != QLatin1String("start"))
        return;
    const double seconds = secondsSince(qEnvironmentVariable("BENCH_STARTED").toLongLong());
    finish(QStringLiteral("\"seconds\": %1, \"resident\": %2, \"private\": %3")
               .arg(seconds, 0, 'f', 6)
               .arg(memory("Rss"))
               .arg(memory("Private_Dirty")));
}

void Observer::walkOn()
{
    if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
        box->buttons().last()->click();
        return;
    }
    const QWizardPage *page = wizard->currentPage();
    if (wizard->nextId() >= 0) {
        if (auto *box = page->findChild<QCheckBox *>(); box && !box->isChecked())
            box->click();
        else if (page->isComplete())
            wizard->next();
    } else if (page->isComplete()) {
        workers += QStringLiteral("\"outcome\": \"%1\"").arg(page->title());
        finish(workers.join(QLatin1String(", ")));
    }
}

void Observer::watch(QThread *thread, qint64 begin)
{
    const QString name = QLatin1String(thread->metaObject()->className());
    gap.take();
    if (thread->isFinished())
        ended(name, begin);
    else
        connect(thread, &QThread::finished, this, [this, name, begin] { ended(name, begin); });
}

void Observer::ended(const QString &name, qint64 begin)
{
    workers += QStringLiteral("\"%1\": {\"seconds\": %2, \"gap\": %3}")
                   .arg(name)
                   .arg(secondsSince(begin), 0, 'f', 6)
                   .arg(gap.take(), 0, 'f', 3);
    if (task == QLatin1String("scan"))
        finish(workers.first());
}

void Observer::finish(const QString &line)
{
    std::printf("{%s}\n", line.toUtf8().constData());
    std::fflush(stdout);
    std::_Exit(0);
}

class ObserverPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "observer.json")

public:
    QObject *create(const QString &, const QString &what) override { return new Observer(what); }
};

#include "Observer.moc"
