#include <QApplication>
#include <QWizard>

/// What the toolkit itself needs for a wizard, to compare the installer's start with.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QWizard wizard;
    wizard.addPage(new QWizardPage);
    wizard.show();
    return QApplication::exec();
}
