#include "PickDestPage.h"

#include "ButtonRow.h"
#include "DecimalUnits.h"
#include "InstallState.h"
#include "PageIds.h"
#include "PageText.h"
#include "SourcePage.h"
#include "UnfinishedMark.h"
#include "computecontrol/CorvaneInstallUtils.h"
#include "computecontrol/DfProcess.h"
#include "core/LimitedCalls.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVariant>
#include <QWizard>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <unistd.h>

namespace {

constexpr char systemFolder[] = "/Library/Application Support";

/// Shows that the window is busy, for as long as it lives.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    WaitCursor(const WaitCursor &) = delete;
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
};

/// 0 when the user can access the path like that, or the error.
int accessError(const QString &path, int mode)
{
    const std::string name = path.toStdString();
    return limited::access(name, mode) == 0 ? 0 : errno;
}

/// Whether the folder holds an unfinished installation that this user can go on with.
bool canBeFinished(const QString &folder)
{
    return accessError(unfinishedMark(folder), F_OK) == 0 && accessError(folder, W_OK) == 0
        && !belongsToStranger(folder.toStdString().c_str());
}

/// The database's folder in `parent`: the first that doesn't exist or isn't finished. Empty when the disk
/// doesn't answer, because then a finished one may lie there.
QString destinationIn(const QString &parent)
{
    const WaitCursor cursor;
    const QString base = parent + QLatin1Char('/');
    const QString name = QStringLiteral("Lumetra");
    QString candidate = base + name;
    int error = 0;
    for (int n = 0; (error = accessError(candidate, F_OK)) == 0 && !canBeFinished(candidate); ++n)
        candidate = QStringLiteral("%1%2_%3").arg(base, name, QString::number(n));
    return error == ETIMEDOUT ? QString() : candidate;
}

/// A folder that exists already, on the file system that the destination will be on.
QString probeFolderOf(const QString &path)
{
    if (path.startsWith(QLatin1String(systemFolder)))
        return QLatin1String(systemFolder);
    const auto slash = path.lastIndexOf(QLatin1Char('/'));
    return slash == 0 ? path : path.left(slash);
}

/// Whether the first data file and the folder are on the same mounted device. One whose name can't be found
/// counts as another.
bool onSourceDevice(const QString &folder)
{
    if (sResultList.isEmpty())
        return false;
    char source[MountedDeviceNameSize];
    char destination[MountedDeviceNameSize];
    return limited::mountedDevice(sResultList.first().absoluteFilePath().toStdString(), source)
        && limited::mountedDevice(folder.toStdString(), destination)
        && std::strncmp(source, destination, MountedDeviceNameSize) == 0;
}

/// The bytes by which `size` exceeds the available megabytes; negative when it fits. Counts the megabytes of
/// 2^20 bytes as decimal ones, which leaves a little room.
qint64 shortfall(quint64 size, qint64 availableMegabytes)
{
    constexpr qint64 limit = std::numeric_limits<qint64>::max() / megabyte;
    const qint64 available = std::clamp(availableMegabytes, -limit, limit) * megabyte;
    const double missing = static_cast<double>(size) - static_cast<double>(available);
    // The largest double below 2^63: a source of sparse files can claim more.
    return static_cast<qint64>(std::min(missing, 9223372036854774784.0));
}

QString amountText(qint64 bytes)
{
    struct Unit {
        qint64 bytes;
        const char *format;
    };
    constexpr Unit units[] = {{gigabyte, "%1 GB"}, {megabyte, "%1 MB"}, {kilobyte, "%1 KB"}};
    const Unit *unit = std::find_if(
        std::begin(units), std::end(units) - 1, [bytes](const Unit &each) { return bytes > each.bytes; });
    return QString::fromLatin1(unit->format).arg(static_cast<double>(bytes / unit->bytes), 0, 'f', 2);
}

} // namespace

PickDestPage::PickDestPage(QWidget *parent)
    : QWizardPage(parent)
{
    chooseButton = new QPushButton(tr("Choose..."));
    chooseButton->setAccessibleDescription(QStringLiteral("Picks another location for the database"));
    connect(chooseButton, &QPushButton::clicked, this, &PickDestPage::chooseDestination);

    registerField(QStringLiteral("path*"), &pathEdit);
    pathEdit.setVisible(false);

    setLayout(buttonRow(chooseButton));
}

void PickDestPage::setVisible(bool visible)
{
    QWizardPage::setVisible(visible);
    if (!visible)
        return;
    setTitle(tr("Select Database location"));
    showDestination(QLatin1String(defaultDestination));
    chooseButton->setVisible(true);
    chooseButton->setDefault(false);
}

void PickDestPage::initializePage() { }

bool PickDestPage::validatePage()
{
    const WaitCursor cursor;
    const auto *sourcePage = qobject_cast<const SourcePage *>(wizard()->page(SourcePageId));
    if (choiceIsOpen() || !sourcePage)
        return false;
    const QString probeFolder = probeFolderOf(field(QStringLiteral("path")).toString());
    sCopyFiles = onSourceDevice(probeFolder);
    if (!sCopyFiles)
        return roomForCopy(probeFolder, sourcePage->dbSize);
    showSubTitle(this, QStringLiteral("The files will be moved to the selected location."));
    return true;
}

int PickDestPage::nextId() const
{
    return InstallPageId;
}

void PickDestPage::chooseDestination()
{
    // A screen reader's click comes with a delay: by now the page may be another.
    if (wizard()->currentPage() != this || choiceIsOpen())
        return;
    const QString folder =
        QFileDialog::getExistingDirectory(this, QStringLiteral("Select Database destination"),
            qEnvironmentVariable("HOME"), QFileDialog::ShowDirsOnly);
    if (folder.isEmpty() || wizard()->currentPage() != this)
        return;
    const QString path = destinationIn(folder);
    if (path.isEmpty())
        return;
    showDestination(path);
    if (auto *next = qobject_cast<QPushButton *>(wizard()->button(QWizard::NextButton)))
        next->setDefault(true);
}

/// A screen reader can press the page's and the wizard's buttons beneath the dialog.
bool PickDestPage::choiceIsOpen() const
{
    return findChild<QFileDialog *>();
}

void PickDestPage::showDestination(const QString &path)
{
    pathEdit.setText(path);
    showSubTitle(this,
        QStringLiteral(
            "The database will be stored in\n\n%1\n\nClick \"Continue\" to install here, or \"Choose\" to select another location."),
        path);
}

bool PickDestPage::roomForCopy(const QString &probeFolder, quint64 size)
{
    CDfProcess probe;
    probe.Run(probeFolder);
    const qint64 missing = shortfall(size, probe.TotalAvailable());
    if (missing < 0)
        return true;
    showSubTitle(this,
        QStringLiteral(
            "The selected disk does not have enough free space to store the database (%1 additional needed). Please select another location."),
        amountText(missing));
    return false;
}
