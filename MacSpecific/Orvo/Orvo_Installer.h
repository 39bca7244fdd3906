#pragma once

#include <QWizard>

#include <string>

/// The installer's window: agreement, source, destination and install page, in this order.
class Orvo_Installer : public QWizard {
    Q_OBJECT

public:
    /// Opens the log if a preference asks for one, looks up the group "admin" and builds the pages; the
    /// source page starts to measure the database at once.
    explicit Orvo_Installer(QWidget *parent = nullptr);

    /// Sets the window title to `title` in UTF-8, or to the default title when it is empty.
    void SetWindowTitle(const std::string &title);

    /// Cancel, Escape and the window's close button. Closes the window, or stops a running installation,
    /// whose outcome the window then shows.
    void reject() override;

protected:
    /// Follows a change of the desktop's font size.
    void changeEvent(QEvent *event) override;
    /// Draws the artwork where the style would, but in the window's colour, and smoothly: on a scaled screen
    /// the style draws blocks.
    void paintEvent(QPaintEvent *event) override;
    /// Keeps a double click or a held key from turning two pages.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitToFont();
};

/// The application's main window; null until main has made it.
extern Orvo_Installer *install_wizard;

/// Returns install_wizard, for code that needs a parent window.
QWidget *GetMainWindow();
