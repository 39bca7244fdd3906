// The shipped wizard with a user who walks through it, and at the state named on the command line stops it by
// the means named there: driver STATE MEANS [DELAY]. Says at the end what the page shows and what was
// measured.

#include "MacXUtils/TerminationSignals.h"
#include "Orvo_Installer.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <csignal>

#include <unistd.h>

/// Of the library of failing calls, when it is loaded.
extern "C" void armFailingCalls() __attribute__((weak));

namespace {

class User : public QObject {
public:
    User(Orvo_Installer &installer, const QStringList &arguments)
        : wizard(installer)
        , state(arguments.value(1))
        , means(arguments.value(2))
        , delay(arguments.value(3).toInt())
    {
        lastLook.start();
        QTimer::singleShot(0, this, &User::look);
    }

    QElapsedTimer sinceStop;
    qint64 answer = -1;
    qint64 longestGap = 0;

    /// The number, title and text of the page that shows, or showed last: a wizard that was left has none.
    QStringList seen() const
    {
        const QWizardPage *page = wizard.page(lastPage);
        if (!page)
            return {QString(), QString(), QString()};
        const auto *label = page->findChild<QLabel *>();
        const QString text = page->subTitle().isEmpty() && label ? label->text() : page->subTitle();
        return {QString::number(lastPage), page->title(), text};
    }

private:
    // Every look is a timer of its own, so that the boxes that it opens are looked at too.
    void look()
    {
        longestGap = qMax(longestGap, lastLook.elapsed() - (waitForProcessor() - waitedBefore));
        if (wizard.currentPage())
            lastPage = wizard.currentId();
        QTimer::singleShot(5, this, &User::look);
        if (!sinceStop.isValid() && reached())
            stop();
        else if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            accept(box);
        else if (!QApplication::activeModalWidget() && wizard.isVisible())
            walk();
        if (sinceStop.isValid() && answer < 0 && (!wizard.isVisible() || ended()))
            answer = sinceStop.elapsed();
        lastLook.restart();
        waitedBefore = waitForProcessor();
    }

    /// How long this thread could have run and others did instead, in milliseconds.
    static qint64 waitForProcessor()
    {
        QFile statistics(QStringLiteral("/proc/thread-self/schedstat"));
        return statistics.open(QFile::ReadOnly)
            ? statistics.readAll().split(' ').value(1).toLongLong() / 1000000
            : 0;
    }

    bool ended() const { return wizard.currentId() == 3 && wizard.currentPage()->isComplete(); }

    bool reached()
    {
        const QString modal = QApplication::activeModalWidget()
            ? QApplication::activeModalWidget()->metaObject()->className()
            : "";
        const int page = wizard.currentId();
        if (state == "preparing" || state == "recording")
            return modal == "QMessageBox" && ended() == (state == "recording");
        if (state == "choosing")
            return modal == "QFileDialog";
        if (state == "random" && page == 3 && !timing.isValid())
            timing.start();
        return (state == "agreement" && page == 1) || (state == "before" && page == 3)
            || (state == "scanning" && !wizard.page(0)->isComplete())
            || (state == "found" && page == 0 && wizard.currentPage()->isComplete())
            || (state == "destination" && page == 2) || (state == "done" && ended() && modal.isEmpty())
            || (state == "running" && QFile::exists("/tmp/tool-runs"))
            || (state == "random" && timing.isValid() && timing.hasExpired(delay));
    }

    void stop()
    {
        sinceStop.start();
        if (means == "button")
            wizard.button(ended() ? QWizard::FinishButton : QWizard::CancelButton)->click();
        else if (means == "escape")
            QTest::keyClick(&wizard, Qt::Key_Escape);
        else if (means == "close")
            wizard.close();
        else
            kill(getpid(), means == "term" ? SIGTERM : means == "int" ? SIGINT : SIGHUP);
    }

    static void accept(QMessageBox *box)
    {
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::AcceptRole)
                return button->click();
        }
    }

    void walk()
    {
        QWizardPage *page = wizard.currentPage();
        auto *find = page->findChild<QPushButton *>();
        if (wizard.currentId() == 1 && !page->isComplete())
            page->findChild<QCheckBox *>()->click();
        if (wizard.currentId() == 3 && !page->isComplete())
            begin(page);
        else if (ended())
            wizard.button(QWizard::FinishButton)->click();
        else if (wizard.currentId() == 0 && find->isVisible() && state == "choosing")
            find->click();
        else if ((wizard.currentId() == 0 && find->isVisible() && find->isEnabled()) || turnedDown)
            wizard.close();
        else if (wizard.button(QWizard::NextButton)->isEnabled()) {
            const int before = wizard.currentId();
            wizard.next();
            turnedDown = wizard.currentId() == before;
        }
    }

    /// Spares the second before the installation.
    void begin(QWizardPage *page)
    {
        if (!begun && state != "before")
            QMetaObject::invokeMethod(page, "doCopy", Qt::QueuedConnection);
        begun = true;
    }

    Orvo_Installer &wizard;
    const QString state;
    const QString means;
    const int delay;
    int lastPage = -1;
    QElapsedTimer lastLook;
    QElapsedTimer timing;
    qint64 waitedBefore = 0;
    bool begun = false;
    bool turnedDown = false;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (armFailingCalls)
        armFailingCalls();
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, &QApplication::closeAllWindows);
    QStringList report;
    QElapsedTimer stopped;
    int status = 0;
    {
        Orvo_Installer wizard;
        install_wizard = &wizard;
        wizard.show();
        User user(wizard, application.arguments());
        status = QApplication::exec();
        report = user.seen() << QString::number(user.answer) << QString::number(user.longestGap);
        stopped = user.sinceStop;
    }
    report << QString::number(stopped.isValid() ? stopped.elapsed() : -1);
    QTextStream(stdout) << report.join(QChar(0x1f));
    return status;
}
