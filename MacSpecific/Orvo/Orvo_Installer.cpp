#include "Orvo_Installer.h"

#include "Artwork.h"
#include "ConclusionPage.h"
#include "EulaPage.h"
#include "InstallState.h"
#include "MacXUtils/Logging.h"
#include "PageAccessibility.h"
#include "PageIds.h"
#include "PageText.h"
#include "PickDestPage.h"
#include "SourcePage.h"
#include "computecontrol/CorvaneInstallUtils.h"

#include <QEvent>
#include <QFontMetrics>
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

    setPixmap(QWizard::BackgroundPixmap, QPixmap(QStringLiteral(":/images/Orvo_DVD_Artwork.png")));
    // The style that shows the artwork and calls its buttons as the pages' texts do; macOS picks it itself.
    setWizardStyle(QWizard::MacStyle);
    setOption(QWizard::NoCancelButton, false);
    // On macOS QWizard starts with this option, and Return would press no button.
    setOption(QWizard::NoDefaultButton, false);
    setOption(QWizard::DisabledBackButtonOnLastPage);
    fitToFont();
    // Folder names and the tools' messages stand in these texts and must not be taken for markup.
    setTitleFormat(Qt::PlainText);
    setSubTitleFormat(Qt::PlainText);

    installPageAccessibility();
    setPage(AgreementPageId, new EulaPage);
    setPage(SourcePageId, new SourcePage);
    setPage(DestinationPageId, new PickDestPage);
    setPage(InstallPageId, new ConclusionPage);
    setStartId(AgreementPageId);
    // Qt leaves the focus on a control of the page before, which Space would still press.
    connect(this, &QWizard::currentIdChanged, this, [this] {
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
    // Only with a new layout does the wizard choose the title's font anew.
    setWizardStyle(QWizard::ClassicStyle);
    setWizardStyle(QWizard::MacStyle);
    fitToFont();
}

/// Makes room for the artwork and, in the user's font, for the pages: a column of 45 characters, which is
/// easy to read, and as many lines as the destination page takes with the longest path that it shows, its
/// title, its button and the wizard's row of buttons.
void Orvo_Installer::fitToFont()
{
    const QFontMetrics metrics = fontMetrics();
    const QSize pages(besidePageText + 45 * metrics.averageCharWidth(), 160 + 14 * metrics.lineSpacing());
    const QSize artwork = pixmap(QWizard::BackgroundPixmap).size();
    setMinimumSize(artwork.expandedTo(pages).boundedTo(screen()->availableSize()));
}

void Orvo_Installer::paintEvent(QPaintEvent *)
{
    const QPixmap artwork =
        laidIntoWindow(pixmap(QWizard::BackgroundPixmap), palette().color(QPalette::Window));
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(0, (height() - artwork.height()) / 2, artwork);
}

void Orvo_Installer::reject()
{
    auto *installPage = qobject_cast<ConclusionPage *>(page(InstallPageId));
    if (!installPage || !installPage->stopInstallation())
        QWizard::reject();
}
