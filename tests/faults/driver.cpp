// The shipped wizard with a user who walks through it, and at the state named on the command line stops it by
// the means named there: driver STATE MEANS [DELAY]. Says at the end what the page shows and what was
// measured.

#include "MacXUtils/TerminationSignals.h"
#include "Orvo_Installer.h"
#include "tests/Fixture.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>

#include <csignal>
#include <sys/mount.h>

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

    /// What the page shows, or showed last: a wizard that was left has none.
    QJsonObject seen() const
    {
        QJsonObject report{{"answer", answer}, {"gap", longestGap}};
        if (const QWizardPage *page = wizard.page(lastPage)) {
            const auto *label = page->findChild<QLabel *>();
            const QString text = page->subTitle().isEmpty() && label ? label->text() : page->subTitle();
            report["outcome"] = page->title() + '|' + text;
        }
        return report;
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
        else if (!acceptBox() && !QApplication::activeModalWidget() && wizard.isVisible())
            walk();
        if (sinceStop.isValid() && answer < 0 && (!wizard.isVisible() || ended()))
            answer = sinceStop.elapsed();
        lastLook.restart();
        waitedBefore = waitForProcessor();
    }

    /// How long this thread could have run and others did instead, in milliseconds.
    static qint64 waitForProcessor()
    {
        return contentsOf("/proc/thread-self/schedstat").split(' ').value(1).toLongLong() / 1000000;
    }

    bool ended() const { return wizard.currentId() == 3 && wizard.currentPage()->isComplete(); }

    bool reached() const { return state == "scanning" ? !wizard.page(0)->isComplete() : state == place(); }

    /// Where the user is, in the words of the command line.
    QString place() const
    {
        if (qobject_cast<QFileDialog *>(QApplication::activeModalWidget()))
            return "choosing";
        if (QApplication::activeModalWidget())
            return ended() ? "recording" : "preparing";
        if (wizard.currentId() == 0)
            return wizard.currentPage()->isComplete() ? "found" : "searching";
        // Looks only when it is asked for: the calls that it takes count among those that fail.
        const bool toolRuns = state == "running" && QFile::exists("/tmp/tool-runs");
        if (wizard.currentId() == 3)
            return ended() ? "done" : toolRuns ? "running" : "before";
        return wizard.currentId() == 1 ? "agreement" : "destination";
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
        else if (means == "unmount")
            umount2("/opt/Lumetra", MNT_DETACH);
        else
            kill(getpid(), means == "term" ? SIGTERM : means == "int" ? SIGINT : SIGHUP);
    }

    void walk()
    {
        QWizardPage *page = wizard.currentPage();
        auto *button = page->findChild<QPushButton *>();
        if (ended())
            wizard.button(QWizard::FinishButton)->click();
        else if (wizard.currentId() == 3)
            begin(page);
        else if (page->isComplete() && std::exchange(passed, wizard.currentId()) != wizard.currentId())
            wizard.next();
        else if (wizard.currentId() == 1)
            page->findChild<QCheckBox *>()->click();
        else if (button->isEnabled() && button->isVisible() && state == "choosing")
            button->click();
        else if (button->isEnabled() && button->isVisible())
            wizard.close();
    }

    /// Spares the second before the installation.
    void begin(QWizardPage *page)
    {
        if (std::exchange(begun, true) || state == "before")
            return;
        QMetaObject::invokeMethod(page, "doCopy", Qt::QueuedConnection);
        if (state == "random")
            QTimer::singleShot(delay, this, &User::stop);
    }

    Orvo_Installer &wizard;
    const QString state;
    const QString means;
    const int delay;
    int lastPage = -1;
    qint64 answer = -1;
    qint64 longestGap = 0;
    QElapsedTimer lastLook;
    qint64 waitedBefore = 0;
    bool begun = false;
    /// The page that was last left, or has refused to be.
    int passed = -1;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    // From here on the calls are counted that may fail.
    if (QFile count("/opt/count"); count.open(QIODevice::ReadWrite))
        count.write(QByteArray(sizeof(int), '\0'));
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, &QApplication::closeAllWindows);
    auto wizard = std::make_unique<Orvo_Installer>();
    install_wizard = wizard.get();
    wizard->show();
    User user(*wizard, application.arguments());
    const int status = QApplication::exec();
    QJsonObject report = user.seen();
    wizard.reset();
    report["left"] = user.sinceStop.isValid() ? user.sinceStop.elapsed() : -1;
    QTextStream(stdout) << QJsonDocument(report).toJson();
    return status;
}
