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

    /// Asks a running installation to stop; the page then shows the outcome, even if the worker doesn't
    /// answer. Returns false if none is running: either it hasn't begun, and won't once the page is hidden,
    /// or its outcome is shown. From here on no prompt is shown.
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
    void startCopying();
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
    /// `complete` tells whether the outcome is shown.
    enum { Waiting, Running, Stopped, Done } stage = Waiting;
};
