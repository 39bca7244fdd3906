#pragma once

#include <QWizardPage>

class QLabel;
class QPushButton;
class SizeThread;

/// Finds the folder that holds the database, has it measured on a worker thread and shows its size; complete
/// once a measurement has found data. Scans never overlap, since sResultList has no lock.
class SourcePage : public QWizardPage {
    Q_OBJECT

public:
    /// Starts to measure the first default location that exists.
    explicit SourcePage(QWidget *parent = nullptr);
    /// Interrupts a running scan and waits for it, unless the disk holds it up.
    ~SourcePage() override;

    bool isComplete() const override;
    int nextId() const override;

    /// The measured size of the database in bytes; 0 until a scan has found data.
    quint64 dbSize = 0;

private slots:
    void updateDBSize(QString path, quint64 finishedSize);
    void customDBSourceLocation(QString path, quint64 finishedSize);
    void chooseSource();

private:
    using ResultSlot = void (SourcePage::*)(QString, quint64);

    void startScan(const QString &folder, ResultSlot resultSlot);
    void showStatus(const QString &text, const QString &name = QString());
    void finishScan(quint64 finishedSize);
    void offerChoice();

    QLabel *statusLabel = nullptr;
    QPushButton *findButton = nullptr;
    SizeThread *sizeThread = nullptr;
    bool sourceMissing = true;
};
