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

/// From here on this thread has mounts of its own, which nobody else sees. Only root can have them.
inline bool enterOwnMounts()
{
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
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
