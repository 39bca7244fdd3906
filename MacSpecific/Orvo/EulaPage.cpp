#include "EulaPage.h"

#include "PageIds.h"
#include "PageText.h"
#include "core/GetPathName.h"

#include <QCheckBox>
#include <QLabel>
#include <QPalette>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace {

QUrl agreementUrl()
{
    const std::string path = GetInstallPath() + "/Contents/Resources/LicenseAgreement.html";
    // Encoded because "#", "?" and "%" in a folder's name mean something else in a URL.
    const QByteArray encoded = QUrl::toPercentEncoding(QString::fromStdString(path), "/");
    return QUrl(QString::fromLatin1(encoded), QUrl::TolerantMode);
}

} // namespace

EulaPage::EulaPage(QWidget *parent)
    : QWizardPage(parent)
{
    setTitle(tr("Welcome to the Corvane Lumetra Database Installer"));

    auto *browser = new QTextBrowser;
    browser->setAccessibleName(QStringLiteral("License Agreement"));
    browser->setSource(agreementUrl());

    auto *label = new QLabel;
    label->setWordWrap(true);
    makeSelectable(label);
    showInLabel(this, label,
        QStringLiteral(
            "If you accept the terms of the agreement, click the check box below.  You must accept the agreement to install the Corvane Lumetra Database."));

    acceptBox = new QCheckBox(QStringLiteral("I accept the terms in the License Agreement"));
    acceptBox->setChecked(false);
    // Not clicked(): a screen reader toggles the box without a click.
    connect(acceptBox, &QCheckBox::toggled, this, &EulaPage::OnLicenseAccepted);
    label->setBuddy(acceptBox);
    // Some styles outline the empty box in a shade of the window's colour, and with the focus in one of the
    // accent colour, which may be hard to see. Shades of these greys stand out in light and dark windows
    // alike.
    QPalette colours = acceptBox->palette();
    colours.setColor(QPalette::Window, QColor(0xae, 0xae, 0xae));
    colours.setColor(QPalette::Highlight, QColor(0xa4, 0xa4, 0xa4));
    acceptBox->setPalette(colours);

    auto *layout = new QVBoxLayout;
    layout->addWidget(browser);
    layout->addWidget(label);
    layout->addWidget(acceptBox);
    setLayout(layout);
}

bool EulaPage::isComplete() const
{
    return acceptBox->isChecked();
}

int EulaPage::nextId() const
{
    return SourcePageId;
}

void EulaPage::OnLicenseAccepted(bool)
{
    emit completeChanged();
}
