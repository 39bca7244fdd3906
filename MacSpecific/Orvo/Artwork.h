#pragma once

class QColor;
class QPixmap;

/// Lays a drawing of ink on white into a window of the given colour, in place: the white becomes exactly that
/// colour. On a dark window the drawing's lightness is inverted first, in its own hues, so that the ink stays
/// visible. A null drawing stays as it is.
void layIntoWindow(QPixmap &drawing, const QColor &window);
