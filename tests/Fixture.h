#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QtTest>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

/// For everything that waits for a tool or a thread: far more than a slow machine takes.
constexpr int patience = 60000;

/// A temporary folder and what a test puts into it. Names are relative to it, and given back as whole paths.
class Tree {
public:
    QString path(const QString &name = QString()) const { return root.filePath(name); }
    QString folder(const QString &name) const
    {
        QDir().mkpath(path(name));
        return path(name);
    }
    QString file(const QString &name, const QByteArray &contents = "data") const
    {
        QFile created(folder(QFileInfo(name).path()) + "/" + QFileInfo(name).fileName());
        if (!created.open(QIODevice::WriteOnly) || created.write(contents) != contents.size())
            qFatal("no file %s", qPrintable(created.fileName()));
        return path(name);
    }
    QString script(const QString &name, const QByteArray &commands) const
    {
        const QString created = file(name, "#!/bin/sh\n" + commands);
        QFile::setPermissions(created, QFile::Permissions(0x7755));
        return created;
    }

private:
    QTemporaryDir root;
};

inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Goes on in the message box that is open; false when none is.
inline bool acceptBox()
{
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    for (QAbstractButton *button : box ? box->buttons() : QList<QAbstractButton *>()) {
        if (box->buttonRole(button) == QMessageBox::AcceptRole)
            button->click();
    }
    return box;
}

/// Answers the modal windows as they come: a box with the name of the button to press, a folder dialog with
/// the folder to pick. An empty answer, or none left, dismisses the window.
class ModalAnswers : public QObject {
public:
    explicit ModalAnswers(const QStringList &answers)
        : left(answers)
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        startTimer(20);
    }

    /// The texts of the boxes and the captions of the dialogs that came.
    QStringList seen;

protected:
    void timerEvent(QTimerEvent *) override
    {
        auto *window = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!window || !window->isVisible())
            return;
        const QString answer = left.isEmpty() ? QString() : left.takeFirst();
        const auto *box = qobject_cast<QMessageBox *>(window);
        seen << (box ? box->text() : window->windowTitle());
        if (answer.isEmpty())
            return window->reject();
        if (!box) {
            window->findChild<QLineEdit *>("fileNameEdit")->setText(answer);
            return window->accept();
        }
        for (QAbstractButton *button : box->buttons()) {
            if (button->text().remove('&') == answer)
                return button->click();
        }
        qFatal("no button %s", qPrintable(answer));
    }

private:
    QStringList left;
};

/// Starts the program anew in mounts of its own, which nobody else sees: "/" is a tmpfs that holds the
/// machine's folders, so that a test can mount what it likes and make /Library. Only for root; otherwise the
/// program goes on as it is.
inline void enterOwnWorld(char **arguments)
{
    const QByteArray program = QFile::symLinkTarget("/proc/self/exe").toUtf8();
    const QByteArray workingFolder = QDir::currentPath().toUtf8();
    const QByteArray root = "/mnt";
    const QByteArrayList ownFolders{root, "/Library", "/Volumes"};
    if (geteuid() != 0 || qEnvironmentVariableIsSet("OWN_WORLD") || unshare(CLONE_NEWNS) != 0
        || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
        || mount("tmpfs", root.constData(), "tmpfs", 0, "mode=755") != 0)
        return;
    for (const QFileInfo &entry : QDir("/").entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
        const QByteArray name = entry.absoluteFilePath().toUtf8();
        if (entry.isSymLink())
            QFile::link(entry.symLinkTarget(), root + name);
        else if (!ownFolders.contains(name) && QDir().mkdir(root + name))
            mount(name.constData(), (root + name).constData(), nullptr, MS_BIND | MS_REC, nullptr);
    }
    qputenv("OWN_WORLD", "1");
    if (chroot(root.constData()) != 0 || chdir(workingFolder.constData()) != 0)
        qFatal("no world of its own");
    execv(program.constData(), arguments);
}

#define SKIP_OUTSIDE_OWN_WORLD()                                                                             \
    if (!qEnvironmentVariableIsSet("OWN_WORLD"))                                                             \
    QSKIP("needs mounts of its own, which only root has")

#define TEST_IN_OWN_WORLD(Class)                                                                             \
    int main(int count, char **arguments)                                                                    \
    {                                                                                                        \
        enterOwnWorld(arguments);                                                                            \
        QApplication application(count, arguments);                                                          \
        Class test;                                                                                          \
        return QTest::qExec(&test, count, arguments);                                                        \
    }

/// Puts a file or folder, or a new file system, over a place until the end of its life.
class Mount {
public:
    Mount(const QString &source, const QString &place, const char *type = nullptr,
        unsigned long flags = MS_BIND, const QString &options = QString())
        : target(QFile::encodeName(place))
    {
        if (mount(QFile::encodeName(source).constData(), target.constData(), type, flags,
                options.toUtf8().constData())
            != 0)
            qFatal("no mount on %s", target.constData());
    }
    Mount(const Mount &) = delete;
    ~Mount() { umount2(target.constData(), MNT_DETACH); }

private:
    QByteArray target;
};
