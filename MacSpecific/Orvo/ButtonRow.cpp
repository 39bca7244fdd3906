#include "ButtonRow.h"

#include <QHBoxLayout>
#include <QPushButton>

QHBoxLayout *buttonRow(QPushButton *button)
{
    const auto space = [] { return new QSpacerItem(72, 0, QSizePolicy::Minimum, QSizePolicy::Minimum); };
    auto *row = new QHBoxLayout;
    row->addItem(space());
    row->addWidget(button);
    row->addItem(space());
    return row;
}
