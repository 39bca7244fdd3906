#pragma once

#include <QPixmap>

class QColor;

/// A drawing of ink on white as it lies in a window of the given colour: the white becomes exactly that
/// colour. On a dark window the drawing's lightness is inverted first, in its own hues, so that the ink stays
/// visible. A null drawing stays as it is. Kept for the next call.
QPixmap laidIntoWindow(const QPixmap &drawing, const QColor &window);
