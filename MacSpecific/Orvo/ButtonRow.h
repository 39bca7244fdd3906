#pragma once

class QHBoxLayout;
class QPushButton;

/// A row that holds `button` between two spaces of 72 pixels, which may grow. The caller's layout or widget
/// takes it.
QHBoxLayout *buttonRow(QPushButton *button);
