#include "SourcePage.h"

#include "ButtonRow.h"
#include "DecimalUnits.h"
#include "PageIds.h"
#include "PageText.h"
#include "SizeThread.h"
#include "Workers.h"
#include "core/GetPathName.h"
#include "core/LimitedCalls.h"

#include <QBoxLayout>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QWizard>

#include <unistd.h>

namespace {

/// Milliseconds that an interrupted scan may take to end. It looks between two entries, so only a disk that
/// no longer answers holds it up.
constexpr int scanLimit = 5000;

QString gigabytes(quint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / gigabyte, 'f', 2);
}

} // namespace

SourcePage::SourcePage(QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(tr("Welcome to the Corvane Lumetra Database Installer"));

    findButton = new QPushButton(tr("Find data files.."));
    findButton->setAccessibleDescription(QStringLiteral("Picks the folder that holds the database"));
    connect(findButton, &QPushButton::clicked, this, &SourcePage::chooseSource);
    statusLabel = new QLabel;
    statusLabel->setWordWrap(true);
    statusLabel->setTextFormat(Qt::PlainText);
    makeSelectable(statusLabel);

    auto *layout = new QVBoxLayout;
    layout->addWidget(statusLabel);
    layout->addLayout(buttonRow(findButton));
    setLayout(layout);
    findButton->hide();

    std::string location = GetInstallPath() + "/../Lumetra";
    if (limited::access(location, F_OK) != 0)
        location = "/Volumes/USB DISK/Lumetra";
    if (limited::access(location, F_OK) != 0) {
        showStatus(QStringLiteral(
            "The Lumetra database source folder was not found.\nPlease press \"Find data files\" to locate the \"Lumetra\" database source files folder."));
        offerChoice();
        return;
    }
    startScan(QString::fromStdString(location), &SourcePage::updateDBSize);
}

SourcePage::~SourcePage()
{
    if (sizeThread)
        endWorker(sizeThread, scanLimit);
}

bool SourcePage::isComplete() const
{
    return !sourceMissing;
}

int SourcePage::nextId() const
{
    return DestinationPageId;
}

void SourcePage::updateDBSize(QString, quint64 finishedSize)
{
    showStatus(
        QStringLiteral(
            "This Installer will copy or move the Corvane Lumetra Database from the source folders to your hard disk.\n\nThe databases will occupy approximately %1 GB  of additional disk space."),
        gigabytes(finishedSize));
    setButtonText(QWizard::NextButton, QStringLiteral("Continue"));
    finishScan(finishedSize);
}

void SourcePage::customDBSourceLocation(QString path, quint64 finishedSize)
{
    const QDir folder(path);
    // The root has no name, which would leave a gap in the text.
    const QString name = folder.isRoot() ? folder.path() : folder.dirName();
    if (finishedSize > 0) {
        showStatus(
            QStringLiteral(
                "This Installer will copy or move the Corvane Lumetra Database from \"%1\" to your hard disk.\n\nThe databases will occupy approximately %2 GB  of additional disk space.")
                .replace(QLatin1String("%2"), gigabytes(finishedSize)),
            name);
        setButtonText(QWizard::NextButton, QStringLiteral("Continue"));
    } else {
        showStatus(
            QStringLiteral(
                "No Lumetra database files were found in %1.\nPlease press \"Find data files\" to locate the \"Lumetra\" database source files folder."),
            name);
    }
    finishScan(finishedSize);
}

void SourcePage::chooseSource()
{
    // A screen reader can press the button beneath its dialog, and its click comes with a delay: by now the
    // button may be disabled or hidden.
    if (sizeThread || !sourceMissing || findChild<QFileDialog *>())
        return;
    const QString folder = QFileDialog::getExistingDirectory(this,
        QStringLiteral("Select Database directory"), qEnvironmentVariable("HOME"), QFileDialog::ShowDirsOnly);
    showStatus(QStringLiteral("Scanning..."));
    if (!folder.isEmpty())
        startScan(folder, &SourcePage::customDBSourceLocation);
}

void SourcePage::startScan(const QString &folder, ResultSlot resultSlot)
{
    findButton->setEnabled(false);
    // Nothing else on the page shows that a default location is being measured.
    setCursor(Qt::BusyCursor);
    sizeThread = new SizeThread(this, folder);
    connect(sizeThread, &SizeThread::pathSize, this, resultSlot);
    if (!startWorker(sizeThread))
        (this->*resultSlot)(folder, 0);
}

void SourcePage::showStatus(const QString &text, const QString &name)
{
    showInLabel(this, statusLabel, text, name);
}

/// Takes the size and deletes the scanner; without data it offers the choice again.
void SourcePage::finishScan(quint64 finishedSize)
{
    dbSize = finishedSize;
    if (sizeThread) {
        // The result is the thread's last act, but the thread itself ends a moment later.
        sizeThread->wait();
        delete sizeThread;
        sizeThread = nullptr;
    }
    unsetCursor();
    if (finishedSize == 0)
        return offerChoice();
    sourceMissing = false;
    findButton->hide();
    findButton->setDefault(false);
    emit completeChanged();
}

void SourcePage::offerChoice()
{
    findButton->setEnabled(true);
    findButton->show();
}
