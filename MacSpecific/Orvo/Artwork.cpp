#include "Artwork.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace {

/// Light becomes dark and dark becomes light, each in its own hue.
void invertLightness(QPixmap &drawing)
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
    drawing = QPixmap::fromImage(image);
}

} // namespace

void layIntoWindow(QPixmap &drawing, const QColor &window)
{
    if (drawing.isNull())
        return;
    const bool dark = window.lightness() < 128;
    if (dark)
        invertLightness(drawing);
    QPainter painter(&drawing);
    painter.setCompositionMode(dark ? QPainter::CompositionMode_Screen : QPainter::CompositionMode_Multiply);
    painter.fillRect(drawing.rect(), window);
}
