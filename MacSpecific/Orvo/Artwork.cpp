#include "Artwork.h"

#include <QPainter>
#include <QPixmap>

void layIntoWindow(QPixmap &drawing, const QColor &window)
{
    if (drawing.isNull())
        return;
    QPainter painter(&drawing);
    const bool dark = window.lightness() < 128;
    if (dark) {
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        painter.fillRect(drawing.rect(), Qt::white);
    }
    painter.setCompositionMode(dark ? QPainter::CompositionMode_Screen : QPainter::CompositionMode_Multiply);
    painter.fillRect(drawing.rect(), window);
}
