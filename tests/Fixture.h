#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

/// For everything that waits for a tool or a thread: far more than a slow machine takes.
constexpr int patience = 60000;

/// A temporary folder and what a test puts into it. Names are relative to it, and given back as whole paths,
/// free of symbolic links.
class Tree {
public:
    QString path(const QString &name = QString()) const { return QDir(place).filePath(name); }
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
    /// A shell script that can be started.
    QString program(const QString &name, const QByteArray &script) const
    {
        QFile::setPermissions(file(name, "#!/bin/sh\n" + script), QFile::Permissions(0x7755));
        return path(name);
    }

private:
    const QTemporaryDir root;
    const QString place = QFileInfo(root.path()).canonicalFilePath();
};

/// A row of a test's table.
template <typename... Values> void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Goes on in the message box that is open; false when none is.
inline bool acceptBox()
{
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box)
        return false;
    for (QAbstractButton *button : box->buttons()) {
        if (box->buttonRole(button) == QMessageBox::AcceptRole)
            button->click();
    }
    return true;
}

/// Presses the page's button and picks the folder in the dialog that it opens.
inline void pickFolder(const QWidget *page, const QString &folder)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&folder] {
        QDialog *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        dialog->findChild<QLineEdit *>("fileNameEdit")->setText(folder);
        dialog->accept();
    });
    timer.start(20);
    page->findChild<QPushButton *>()->click();
}
