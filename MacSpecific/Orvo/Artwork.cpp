#include "Artwork.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>

#include <algorithm>

namespace {

/// Light becomes dark and dark becomes light, each in its own hue.
QPixmap withInvertedLightness(const QPixmap &drawing)
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
    return QPixmap::fromImage(image);
}

} // namespace

QPixmap laidIntoWindow(const QPixmap &drawing, const QColor &window)
{
    if (drawing.isNull())
        return drawing;
    const QString key = QStringLiteral("%1 in %2").arg(drawing.cacheKey()).arg(window.name());
    QPixmap laid;
    if (QPixmapCache::find(key, &laid))
        return laid;
    const bool dark = window.lightness() < 128;
    laid = dark ? withInvertedLightness(drawing) : drawing;
    QPainter painter(&laid);
    painter.setCompositionMode(dark ? QPainter::CompositionMode_Screen : QPainter::CompositionMode_Multiply);
    painter.fillRect(laid.rect(), window);
    painter.end();
    QPixmapCache::insert(key, laid);
    return laid;
}
