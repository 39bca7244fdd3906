#include "ConclusionPage.h"

#include "CopyThread.h"
#include "InstallState.h"
#include "MacXUtils/TerminationSignals.h"
#include "PageIds.h"
#include "PageText.h"
#include "UnfinishedMark.h"
#include "Workers.h"
#include "computecontrol/CorvaneInstallUtils.h"
#include "core/KeepAwake.h"
#include "core/LimitedCalls.h"
#include "macos/MacDoAuthorizedCommand.h"
#include "macos/MacWriteGlobalDefaultSetting.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPalette>
#include <QProgressBar>
#include <QTimer>
#include <QVariant>
#include <QWizard>

#include <cerrno>
#include <cmath>
#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Milliseconds to wait for a worker that was asked to stop: a little longer than it waits for a hanging
/// tool. A worker that takes longer is itself stuck on a disk that no longer answers.
constexpr int stopLimit = 35000;

/// The text shown before the password dialog.
QString privilegeReason(const char *purpose)
{
    return QStringLiteral("Lumetra Database Installer"
                          " needs to enable privileges to "
                          "%1"
                          "\n\n"
                          "You will be asked to provide the name and password "
                          "of a user that has administrative capabilities for this computer.")
        .arg(QLatin1String(purpose));
}

/// Black or white, whichever stands out more from `colour`.
QColor textOver(const QColor &colour)
{
    const auto linear = [](qreal part) { return std::pow(part, 2.2); };
    const qreal luminance =
        0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    return luminance > 0.18 ? Qt::black : Qt::white; // 0.18: equal contrast with both
}

/// Makes the bar's text legible: many themes pick a text colour too close to the bar's.
void colourText(QProgressBar *bar, const QPalette &theme)
{
    QPalette colours;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        colours.setColor(group, QPalette::HighlightedText, textOver(theme.color(group, QPalette::Highlight)));
    bar->setPalette(colours);
}

} // namespace

ConclusionPage::ConclusionPage(QWidget *parent)
    : QWizardPage(parent)
{
    progressBar = new QProgressBar;
    progressBar->setRange(0, 100);
    progressBar->setFormat(QString()); // a percentage says nothing before the files are counted
    progressBar->setValue(0);
    progressBar->setAccessibleName(QStringLiteral("Files installed"));
    colourText(progressBar, palette());
    auto *layout = new QHBoxLayout;
    layout->addWidget(progressBar);
    setLayout(layout);
}

ConclusionPage::~ConclusionPage()
{
    // Once the page is complete, the worker has ended or been given up.
    if (copyThread)
        endWorker(copyThread, complete ? 1000 : stopLimit);
}

void ConclusionPage::setVisible(bool visible)
{
    QWizardPage::setVisible(visible);
    if (!visible)
        return;
    setTitle(tr("Installing Database"));
    if (sCopyFiles)
        showSubTitle(this, QStringLiteral("Moving database files."));
    else
        showSubTitle(
            this, QStringLiteral("Installing database. (This will take %1.)"), QStringLiteral("2-3 minutes"));
    path = field(QStringLiteral("path")).toString();
    if (path.isEmpty())
        path = QLatin1String(defaultDestination);
    // Emptying the mandatory field makes QWizard update its buttons, which keeps Finish disabled.
    setField(QStringLiteral("path"), QString());
    QTimer::singleShot(1000, this, &ConclusionPage::doCopy);
}

void ConclusionPage::changeEvent(QEvent *event)
{
    QWizardPage::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        colourText(progressBar, palette());
}

bool ConclusionPage::isComplete() const
{
    return complete;
}

int ConclusionPage::nextId() const
{
    return NoPage;
}

bool ConclusionPage::stopInstallation()
{
    if (stage == Waiting || stage == Done)
        return false;
    gPromptsDeclined = true;
    if (complete)
        return false;
    if (stage == Running && copyThread) {
        copyThread->requestInterruption();
        QTimer::singleShot(stopLimit, this, &ConclusionPage::giveUpWorker);
    }
    stage = Stopped;
    return true;
}

/// Shows the outcome without a worker that is stuck.
void ConclusionPage::giveUpWorker()
{
    if (complete)
        return;
    copyThread->disconnect(this);
    handleResult();
}

void ConclusionPage::doCopy()
{
    // The window may have been closed in the second before this.
    const bool wasClosed = window()->testAttribute(Qt::WA_WState_ExplicitShowHide) && window()->isHidden();
    if (stage != Waiting || isHidden() || wasClosed)
        return;
    stage = Running;
    gSystemScope = true;
    const bool isPrepared = prepareDestination();
    // A request to end that came during a tool's run waits for the event loop.
    if (TerminationSignals::received())
        stopInstallation();
    if (!isPrepared || stage != Running || !startCopying())
        handleResult();
}

/// Makes sure that the destination exists and can be written. On failure returns false and sets errCode and
/// errMsg.
bool ConclusionPage::prepareDestination()
{
    const auto failed = [this](const QString &text) {
        resultSet(installationFailed, text);
        return false;
    };
    const QString noAccess =
        QStringLiteral("Lumetra Database Installer was not able to access the selected location.");
    const std::string folder = path.toStdString();
    const bool isShared = path.startsWith(QLatin1String(productFolder), Qt::CaseInsensitive);
    if (limited::access(folder, W_OK) != 0 || (!isShared && belongsToStranger(folder.c_str()))) {
        gPrivilegeReason = privilegeReason("install the database in the selected location.");
        if (isShared) {
            privileged = true;
            if (verifyResourceDirectory(productFolder, "Lumetra") != 0)
                return failed(noAccess);
        } else if (!makePickedFolder(folder)) {
            return failed(QStringLiteral(
                "Lumetra Database Installer was not able to write the database to the selected location."));
        }
        // Don't hold administrator rights during a long copy. A move is over at once.
        if (gMacAuthorizationRef && !sCopyFiles)
            freeAuthority(&gMacAuthorizationRef);
    }
    return canBeFilled(folder.c_str()) || failed(noAccess);
}

/// Asks for administrator rights only if they would help.
bool ConclusionPage::makePickedFolder(const std::string &folder)
{
    umask(022); // as for the files: all users must be able to read them
    if (limited::mkdir(folder, 0755) == 0)
        return true;
    if (errno == EEXIST)
        return !belongsToStranger(folder.c_str());
    if (errno != EACCES && errno != EPERM)
        return false;
    privileged = createPickedDirectory(folder.c_str());
    return privileged;
}

bool ConclusionPage::startCopying()
{
    copyThread = new CopyThread(this, path);
    connect(copyThread, &CopyThread::finished, this, &ConclusionPage::handleResult);
    connect(copyThread, &CopyThread::copiedFile, this, &ConclusionPage::moveBar);
    connect(copyThread, &CopyThread::copyResult, this, &ConclusionPage::resultSet);
    progressBar->setMaximum(static_cast<int>(sResultList.size()));
    progressBar->setFormat(QStringLiteral("%v of %m"));
    moveBar(0); // shows "0 of ..." while the first file, perhaps a large one, is under way
    keepAwake = std::make_unique<KeepAwake>();
    if (startWorker(copyThread))
        return true;
    resultSet(installationFailed, QStringLiteral("The installation failed to start."));
    return false;
}

void ConclusionPage::handleResult()
{
    // A screen reader can press the wizard's buttons even while the prompt below is open, so Cancel goes
    // first. Done stays disabled until the field "path" is set.
    if (wizard())
        wizard()->setOption(QWizard::NoCancelButton);
    complete = true;
    keepAwake.reset();
    if (stage == Stopped)
        resultSet(errAuthorizationCanceled, QString());
    if (errCode == 0) {
        // Here and not in the worker, as a stop could still come after its end.
        limited::unlink(unfinishedMark(path).toStdString());
        recordDestination();
    } else {
        setTitle(tr("Database was not installed"));
        if (errCode == errAuthorizationCanceled)
            showSubTitle(this, tr("Cancel was pressed."));
        else if (errCode == errAuthorizationDenied)
            showSubTitle(this, tr("The username entered does not have admin privileges."));
        else if (errCode == installationFailed)
            showSubTitle(this, QStringLiteral("%1"), errMsg);
        else
            showSubTitle(this, QStringLiteral("A MacOS error occured (%1)"), QString::number(errCode));
    }
    setField(QStringLiteral("path"), path);
    progressBar->setRange(0, 100);
    progressBar->hide();
    if (gMacAuthorizationRef)
        freeAuthority(&gMacAuthorizationRef);
    gPromptsDeclined = false;
    if (stage != Waiting)
        stage = Done;
}

void ConclusionPage::recordDestination()
{
    gPrivilegeReason = privilegeReason("make the database readable for all users.");
    if (!gMacAuthorizationRef && establishPrivsForSetup() != 0) {
        setTitle(tr("Database was installed, but is not available"));
        showSubTitle(this, QStringLiteral("System-wide preferences could not be set"));
        return;
    }
    MacWriteGlobalDefaultSetting(
        CFSTR("com.brindle.CorvaneLumetra"), "LumetraFullDatabasePath", path.toUtf8(), gMacAuthorizationRef);
    if (privileged)
        fixupPrivileges();
    setTitle(tr("Database Installed"));
    showSubTitle(this, tr("The Corvane Lumetra Database is now ready for use."));
}

bool ConclusionPage::fixupPrivileges()
{
    const QByteArray folder = path.toUtf8().left(4095);
    if (runCommandWithAuthority(gMacAuthorizationRef, "/bin/chmod", {"0775", folder.toStdString()}))
        return true;
    std::fprintf(
        stderr, "fixupPrivileges: Unable to revert permission on directory %s\n", folder.constData());
    std::fflush(stderr);
    return false;
}

void ConclusionPage::moveBar(int barValue)
{
    progressBar->setValue(barValue);
}

void ConclusionPage::resultSet(int code, QString text)
{
    errCode = code;
    errMsg = text;
}
