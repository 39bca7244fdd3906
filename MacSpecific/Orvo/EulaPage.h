#pragma once

#include <QWizardPage>

class QCheckBox;

/// The licence agreement; complete while its box is ticked.
class EulaPage : public QWizardPage {
    Q_OBJECT

public:
    explicit EulaPage(QWidget *parent = nullptr);

    bool isComplete() const override;
    int nextId() const override;

private slots:
    void OnLicenseAccepted(bool checked);

private:
    QCheckBox *acceptBox;
};
