#include "PrivilegeBoxes.h"

#include <QMessageBox>
#include <QPushButton>

namespace {

QMessageBox &prepared(QMessageBox &box, const QString &text)
{
    box.setIconPixmap(QPixmap(QStringLiteral(":/images/app_64.png")));
    box.setWindowTitle(QStringLiteral("%1 Install").arg(QStringLiteral("Lumetra Database Installer")));
    box.setText(text);
    return box;
}

} // namespace

void installInfoDialog(const char *text, const char *informativeText)
{
    QMessageBox box;
    prepared(box, QString::fromLatin1(text));
    if (informativeText)
        box.setInformativeText(QString::fromLatin1(informativeText));
    box.exec();
}

bool acceptsOtherAdministrator()
{
    QMessageBox box;
    prepared(box,
        QStringLiteral("Lumetra Database Installer"
                       " must be installed by a user who is allowed "
                       "to administer this computer (your account does not have this capability)."
                       "\n\n"
                       "For the Name/password prompts that follow, you will need to supply the "
                       "name and and password of ANOTHER user with admistrator privileges. "));
    QPushButton *cancel = box.addButton(QStringLiteral("Cancel Installation"), QMessageBox::RejectRole);
    const QPushButton *proceed = box.addButton(QStringLiteral("Continue"), QMessageBox::AcceptRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == proceed;
}
