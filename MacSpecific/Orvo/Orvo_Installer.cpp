#include "Orvo_Installer.h"

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

#include <QAbstractButton>
#include <QEvent>
#include <QFontMetrics>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

#include <algorithm>

QList<QFileInfo> sResultList;
bool sCopyFiles = false;
Orvo_Installer *install_wizard = nullptr;

namespace {

/// Light becomes dark and dark becomes light, each in its own hue.
QImage withInvertedLightness(const QPixmap &drawing)
{
    QImage image = drawing.toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        std::transform(line, line + image.width(), line, [](QRgb ink) {
            const auto [darkest, brightest] = std::minmax({qRed(ink), qGreen(ink), qBlue(ink)});
            const int shift = 255 - darkest - brightest;
            return qRgb(qRed(ink) + shift, qGreen(ink) + shift, qBlue(ink) + shift);
        });
    }
    return image;
}

} // namespace

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
    // Shows the artwork and names the buttons as the pages' texts do. On macOS it is the default.
    setWizardStyle(QWizard::MacStyle);
    setOption(QWizard::NoCancelButton, false);
    // On macOS QWizard sets this option, and Return would press no button.
    setOption(QWizard::NoDefaultButton, false);
    setOption(QWizard::DisabledBackButtonOnLastPage);
    fitToFont();
    // The texts contain folder names and tools' messages, which may look like markup.
    setTitleFormat(Qt::PlainText);
    setSubTitleFormat(Qt::PlainText);

    installPageAccessibility();
    setPage(AgreementPageId, new EulaPage);
    setPage(SourcePageId, new SourcePage);
    setPage(DestinationPageId, new PickDestPage);
    setPage(InstallPageId, new ConclusionPage);
    setStartId(AgreementPageId);
    // Qt leaves the focus on a control of the previous page, which Space would still press.
    connect(this, &QWizard::currentIdChanged, this, [this] {
        if (currentPage())
            announce(currentPage());
    });
    installEventFilter(this);
    button(NextButton)->installEventFilter(this);
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
    // QWizard picks the title's font only when it makes a new layout.
    setWizardStyle(QWizard::ClassicStyle);
    setWizardStyle(QWizard::MacStyle);
    fitToFont();
}

/// Makes room for the artwork and, in the user's font, for the pages: 45 characters a line, which is easy to
/// read, and 14 lines, which is what the destination page needs for the longest path that it shows. The 160
/// pixels are its title, its button and the wizard's buttons with their margins.
void Orvo_Installer::fitToFont()
{
    const QFontMetrics metrics = fontMetrics();
    const QSize pages(besidePageText + 45 * metrics.averageCharWidth(), 160 + 14 * metrics.lineSpacing());
    const QSize artwork = pixmap(QWizard::BackgroundPixmap).size();
    setMinimumSize(artwork.expandedTo(pages).boundedTo(screen()->availableSize()));
}

/// The artwork is ink on white. Its white takes the window's colour.
void Orvo_Installer::paintEvent(QPaintEvent *)
{
    const QPixmap artwork = pixmap(QWizard::BackgroundPixmap);
    const QPoint place(0, (height() - artwork.height()) / 2);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (palette().color(QPalette::Window).lightness() >= 128) {
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        painter.drawPixmap(place, artwork);
    } else {
        painter.setCompositionMode(QPainter::CompositionMode_Screen);
        painter.drawImage(place, withInvertedLightness(artwork));
    }
}

bool Orvo_Installer::eventFilter(QObject *watched, QEvent *event)
{
    const bool held = event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->isAutoRepeat();
    return held || event->type() == QEvent::MouseButtonDblClick || QWizard::eventFilter(watched, event);
}

void Orvo_Installer::reject()
{
    auto *installPage = qobject_cast<ConclusionPage *>(page(InstallPageId));
    if (!installPage || !installPage->stopInstallation())
        QWizard::reject();
}
