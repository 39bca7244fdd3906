#pragma once

#include <QString>
#include <QWizardPage>

#include <memory>
#include <string>

class CopyThread;
class KeepAwake;
class QProgressBar;

/// Prepares the destination, has the files copied or moved, records the destination in the computer-wide
/// preference and shows the outcome.
class ConclusionPage : public QWizardPage {
    Q_OBJECT

public:
    explicit ConclusionPage(QWidget *parent = nullptr);
    /// Stops a running installation and waits for it, unless it is stuck on a disk.
    ~ConclusionPage() override;

    void setVisible(bool visible) override;
    bool isComplete() const override;
    int nextId() const override;

    /// Asks a running installation to stop and shows no more prompts; the page then shows the outcome, even
    /// if the worker doesn't answer. Returns false if there is nothing to stop: the installation hasn't
    /// begun, and won't once the page is hidden, or it has ended.
    bool stopInstallation();

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void doCopy();
    void handleResult();
    void moveBar(int barValue);
    void resultSet(int errCode, QString errMsg);

private:
    bool prepareDestination();
    bool makePickedFolder(const std::string &folder);
    bool startCopying();
    void giveUpWorker();
    void recordDestination();
    bool fixupPrivileges();

    QString errMsg;
    bool complete = false;
    bool privileged = false;
    int errCode = 0;
    QString path;
    QProgressBar *progressBar;
    CopyThread *copyThread = nullptr;
    std::unique_ptr<KeepAwake> keepAwake;
    /// Running also while the outcome is recorded, when `complete` is true already.
    enum { Waiting, Running, Stopped, Done } stage = Waiting;
};
