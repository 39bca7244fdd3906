#pragma once

class QHBoxLayout;
class QPushButton;

/// A row that holds `button`, as wide as its text needs, between two spaces of 72 pixels, which grow. The
/// caller's layout or widget takes it.
QHBoxLayout *buttonRow(QPushButton *button);
