#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <QWizard>

#include <cstdio>

// Shows what Qt alone takes, to compare the installer with. bench_bare opens a wizard with an empty page;
// bench_bare PICTURE DOCUMENT one with a background picture and a page that shows the document. bench_bare
// SOURCE DESTINATION COUNT TOOL... runs the tool for one file after another.

namespace {

int wizard(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QWizard wizard;
    auto *page = new QWizardPage;
    if (argc == 3) {
        wizard.setWizardStyle(QWizard::MacStyle);
        wizard.setPixmap(QWizard::BackgroundPixmap, QPixmap(QFile::decodeName(argv[1])));
        auto *browser = new QTextBrowser;
        browser->setSource(QUrl::fromLocalFile(QFile::decodeName(argv[2])));
        (new QVBoxLayout(page))->addWidget(browser);
    }
    wizard.addPage(page);
    wizard.show();
    return QApplication::exec();
}

/// Runs the tool for the source's first `count` files and, like the installer, keeps a record of each file.
/// Returns the exit status.
int startTools(const QStringList &arguments)
{
    QFileInfoList files;
    for (QDirIterator entries(arguments[1], QDir::Files, QDirIterator::Subdirectories); entries.hasNext();)
        files += QFileInfo(entries.next());
    const int count = arguments[3].toInt();
    QProcess tool;
    QElapsedTimer sinceStart;
    sinceStart.start();
    QElapsedTimer sinceFirst;
    for (int i = 0; i < count; ++i) {
        tool.start(arguments[4], arguments.mid(5) << files.at(i).filePath() << arguments[2]);
        if (!tool.waitForFinished(-1) || tool.exitCode() != 0)
            return 1;
        if (i == 0)
            sinceFirst.start();
    }
    std::printf("{\"seconds\": %.6f, \"further\": %.6f}\n",
        static_cast<double>(sinceStart.nsecsElapsed()) / 1e9,
        static_cast<double>(sinceFirst.nsecsElapsed()) / 1e9);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc <= 3)
        return wizard(argc, argv);
    QCoreApplication application(argc, argv);
    return startTools(QCoreApplication::arguments());
}
