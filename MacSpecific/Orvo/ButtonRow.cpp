#include "ButtonRow.h"

#include <QHBoxLayout>
#include <QPushButton>

QHBoxLayout *buttonRow(QPushButton *button)
{
    const auto space = [] { return new QSpacerItem(72, 0, QSizePolicy::Minimum, QSizePolicy::Minimum); };
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto *row = new QHBoxLayout;
    row->addItem(space());
    row->addWidget(button);
    row->addItem(space());
    return row;
}
