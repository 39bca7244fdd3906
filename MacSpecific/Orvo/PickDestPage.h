#pragma once

#include <QLineEdit>
#include <QWizardPage>

class QPushButton;

/// Proposes the destination folder and lets the user pick another parent for it. On Next it decides between
/// moving and copying, sets sCopyFiles, and refuses a copy that doesn't fit. The destination is the wizard's
/// field "path".
class PickDestPage : public QWizardPage {
    Q_OBJECT

public:
    explicit PickDestPage(QWidget *parent = nullptr);

    void setVisible(bool visible) override;
    void initializePage() override;
    /// Blocks while it looks at both disks and, for a copy, while `df` runs: a minute at most.
    bool validatePage() override;
    int nextId() const override;

private slots:
    void chooseDestination();

private:
    bool choiceIsOpen() const;
    void showDestination(const QString &path);
    bool roomForCopy(const QString &probeFolder, quint64 size);

    QPushButton *chooseButton;
    /// Never shown: it backs the field "path".
    QLineEdit pathEdit;
};
