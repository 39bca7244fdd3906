#include "Orvo_Installer.h"

#include "Announcement.h"
#include "Artwork.h"
#include "ConclusionPage.h"
#include "EulaPage.h"
#include "InstallState.h"
#include "MacXUtils/Logging.h"
#include "PickDestPage.h"
#include "SourcePage.h"
#include "computecontrol/CorvaneInstallUtils.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

QList<QFileInfo> sResultList;
bool sCopyFiles = false;
Orvo_Installer *install_wizard = nullptr;

QWidget *GetMainWindow()
{
    return install_wizard;
}

Orvo_Installer::Orvo_Installer(QWidget *parent)
    : QWizard(parent)
{
    ShouldStartMacLogging();
    gAdminGid = getGroupId("admin");

    const QPixmap artwork(QStringLiteral(":/images/Orvo_DVD_Artwork.png"));
    const auto layArtwork = [this, artwork](const QPalette &colours) {
        QPixmap laid = artwork;
        layIntoWindow(laid, colours.color(QPalette::Window));
        setPixmap(QWizard::BackgroundPixmap, laid);
    };
    layArtwork(palette());
    connect(qApp, &QGuiApplication::paletteChanged, this, layArtwork);
    // The style that shows the artwork and calls its buttons as the pages' texts do; macOS picks it itself.
    setWizardStyle(QWizard::MacStyle);
    setOption(QWizard::NoCancelButton, false);
    setOption(QWizard::DisabledBackButtonOnLastPage);
    fitToType();
    // Folder names and the tools' messages stand in these texts and must not be taken for markup.
    setTitleFormat(Qt::PlainText);
    setSubTitleFormat(Qt::PlainText);

    setPage(1, new EulaPage);
    setPage(0, new SourcePage);
    setPage(2, new PickDestPage);
    installPage = new ConclusionPage;
    setPage(3, installPage);
    setStartId(1);
    // What the titles say can be marked and copied: the destination, and the tools' messages.
    connect(this, &QWizard::currentIdChanged, this, [this] {
        for (auto *label : findChildren<QLabel *>()) {
            label->setTextInteractionFlags(Qt::TextSelectableByMouse);
            label->updateGeometry(); // a text that can be marked is a little higher
        }
        // The toolkit leaves the focus on a control of the page before, which Space would still press.
        if (currentPage())
            announce(currentPage());
    });
    setWindowTitle(tr("Welcome to the Corvane Lumetra Database Installer"));
}

void Orvo_Installer::SetWindowTitle(const std::string &title)
{
    setWindowTitle(title.empty() ? tr("Welcome to the Corvane Lumetra Database Installer")
                                 : QString::fromStdString(title));
}

void Orvo_Installer::changeEvent(QEvent *event)
{
    QWizard::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    // Only with a new layout does the wizard choose the title's type anew.
    setWizardStyle(QWizard::ClassicStyle);
    setWizardStyle(QWizard::MacStyle);
    fitToType();
}

/// Makes room for the artwork and, in the type that the user has chosen, for the widest and the highest page.
void Orvo_Installer::fitToType()
{
    const QFontMetrics type = fontMetrics();
    const QSize pages(235 + 45 * type.averageCharWidth(), 160 + 14 * type.lineSpacing());
    const QSize artwork = pixmap(QWizard::BackgroundPixmap).size();
    setMinimumSize(artwork.expandedTo(pages).boundedTo(screen()->availableSize()));
}

void Orvo_Installer::paintEvent(QPaintEvent *)
{
    const QPixmap artwork = pixmap(QWizard::BackgroundPixmap);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(0, (height() - artwork.height()) / 2, artwork);
}

void Orvo_Installer::reject()
{
    if (!installPage->stopInstallation())
        QWizard::reject();
}
