#pragma once

class QColor;
class QPixmap;

/// Lays a drawing of ink on white into a window of the given colour, in place: the white becomes exactly that
/// colour. On a dark window the ink is inverted first, so that it stays visible. A null drawing stays as it
/// is.
void layIntoWindow(QPixmap &drawing, const QColor &window);
