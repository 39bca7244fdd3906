// Shows each state of each page in a light and a dark palette, with the plain and with the doubled font size,
// and measures it. With LOOKS_PICTURES naming a folder pictures are kept there.

#include "Fixture.h"

#include "MacSpecific/Orvo/Orvo_Installer.h"

#include <QLabel>
#include <QProgressBar>
#include <QStyle>
#include <QTextBrowser>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

const QString longName = "<b>R&D &lt;" + QString(230, QLatin1Char('W'));

struct State {
    const char *name;
    int page;
    /// Whether it holds a name that is too long to be shown whole.
    bool isLong;
    void (*enter)(QWizardPage *page);
};

/// Whether a widget is smaller than its text.
bool isCut(const QWidget &widget)
{
    if (qobject_cast<const QLabel *>(&widget))
        return widget.heightForWidth(widget.width()) > widget.height()
            || widget.minimumSizeHint().width() > widget.width();
    return widget.minimumSizeHint() != widget.minimumSizeHint().boundedTo(widget.size());
}

/// Has the source page measure a folder of this name with `size` bytes in it.
void scanned(QWizardPage *page, const QString &name, qint64 size)
{
    const Tree tree;
    QVERIFY(QFile::resize(tree.file(name + "/a.zqimage"), size));
    pickFolder(page, tree.path(name));
    QVERIFY(!page->findChild<QPushButton *>()->isEnabled());
    const auto *status = page->findChild<QLabel *>();
    QTRY_VERIFY(!status->text().startsWith("Scanning") && !isCut(*status));
}

void running(QWizardPage *page, int done)
{
    auto *bar = page->findChild<QProgressBar *>();
    bar->setRange(0, 1200);
    bar->setFormat("%v of %m");
    bar->setValue(done);
}

void failed(QWizardPage *page, int code, const QString &text)
{
    QMetaObject::invokeMethod(page, "resultSet", Q_ARG(int, code), Q_ARG(QString, text));
    QMetaObject::invokeMethod(page, "handleResult");
}

const State states[] = {
    {"1-agreement", 1, false, [](QWizardPage *) {}},
    {"2-source-missing", 0, false, [](QWizardPage *) {}},
    {"2-source-found", 0, false, [](QWizardPage *page) { scanned(page, "Lumetra", 42123456789); }},
    {"2-source-long-name", 0, true,
        [](QWizardPage *page) {
            scanned(page, longName, 42123456789);
            auto *wizard = qobject_cast<QWizard *>(page->window());
            wizard->next();
            wizard->back();
        }},
    {"2-source-empty", 0, true, [](QWizardPage *page) { scanned(page, longName, 0); }},
    {"3-destination", 2, false, [](QWizardPage *) {}},
    {"3-destination-long-path", 2, true,
        [](QWizardPage *page) {
            // A carriage return breaks a line in a label, too.
            const QString deep = QString("/deep").repeated(60) + '/' + QString("a\r").repeated(60);
            pickFolder(page, Tree().folder(longName + deep));
        }},
    {"4-install-begun", 3, false, [](QWizardPage *page) { running(page, 12); }},
    {"4-install-full", 3, false, [](QWizardPage *page) { running(page, 1200); }},
    {"5-cancelled", 3, false, [](QWizardPage *page) { failed(page, -60006, {}); }},
    {"5-failed", 3, true,
        [](QWizardPage *page) {
            failed(page, -100,
                "cp: cannot create regular file '/Volumes/Backup/" + longName
                    + "/Lumetra/a.zqimage': No space left on device");
        }},
    {"5-failed-deep", 3, false,
        [](QWizardPage *page) {
            const QString deep = ('/' + QString(13, 'W')).repeated(60);
            failed(
                page, -100, "Error message is:\ncp: cannot read '" + deep + "': No such file or directory");
        }},
};

/// One accent wants dark letters and the other light ones.
QPalette palette(bool dark)
{
    QPalette palette = dark ? QPalette(QColor(53, 53, 53)) : QApplication::style()->standardPalette();
    palette.setColor(QPalette::Highlight, dark ? QColor(28, 63, 143) : QColor(10, 132, 255));
    if (dark)
        palette.setColor(QPalette::Base, QColor(35, 35, 35));
    return palette;
}

double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double part = channel / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

/// The contrast of two colours as the Web Content Accessibility Guidelines count it, 1 to 21.
double contrast(QRgb first, QRgb second)
{
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The visible, enabled widgets of the window that show text.
QList<QWidget *> textWidgets(const QWidget &window)
{
    QList<QWidget *> found;
    for (auto *widget : window.findChildren<QWidget *>()) {
        const bool showsText = qobject_cast<QLabel *>(widget) || qobject_cast<QAbstractButton *>(widget)
            || qobject_cast<QProgressBar *>(widget) || qobject_cast<QTextBrowser *>(widget);
        if (showsText && widget->isVisible() && widget->isEnabled())
            found.append(widget);
    }
    return found;
}

QRect inWindow(const QWidget &widget)
{
    return {widget.mapTo(widget.window(), QPoint()), widget.size()};
}

void makeTextInvisible(QWidget &widget)
{
    QPalette palette = widget.palette();
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(role, Qt::transparent);
    widget.setPalette(palette);
}

/// The lowest contrast between a widget's ink and what lies behind it, pixel by pixel: the ink is where the
/// two pictures differ, its colour the strongest found there.
double lowestContrast(const QImage &written, const QImage &blank)
{
    QVector<QRgb> behind;
    QRgb colour = 0;
    double strongest = 0;
    for (int y = 0; y < written.height(); ++y)
        for (int x = 0; x < written.width(); ++x) {
            if (written.pixel(x, y) == blank.pixel(x, y))
                continue;
            behind.append(blank.pixel(x, y));
            if (const double here = contrast(written.pixel(x, y), behind.last()); here > strongest) {
                strongest = here;
                colour = written.pixel(x, y);
            }
        }
    double lowest = strongest;
    for (const QRgb pixel : behind)
        lowest = std::min(lowest, contrast(colour, pixel));
    return lowest;
}

/// The strongest contrast of a check box without its text to the window around it.
double squareContrast(const QImage &blank)
{
    double strongest = 0;
    for (int x = 0; x < blank.width(); ++x)
        strongest = std::max(strongest, contrast(blank.pixel(x, blank.height() / 2), blank.pixel(0, 0)));
    return strongest;
}

} // namespace

class tst_Looks : public QObject {
    Q_OBJECT

    std::unique_ptr<Orvo_Installer> window;

    static void addRows(bool onlyLong)
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("dark");
        QTest::addColumn<int>("fontSize");
        for (const bool dark : {false, true})
            for (const int fontSize : {100, 200})
                for (size_t state = 0; state < std::size(states); ++state)
                    if (states[state].isLong || !onlyLong)
                        QTest::addRow("%s-%s-%d", states[state].name, dark ? "dark" : "light", fontSize)
                            << int(state) << dark << fontSize;
    }

private slots:
    void init()
    {
        QFETCH(int, state);
        QFETCH(bool, dark);
        QFETCH(int, fontSize);
        // Begun in the other palette, and half of them in a smaller font: the desktop may change both at any
        // time.
        QApplication::setPalette(palette(!dark));
        QFont font = QApplication::font();
        font.setPointSize(dark ? 9 : 11 * fontSize / 100);
        QApplication::setFont(font);

        window = std::make_unique<Orvo_Installer>();
        // To the last page by a jump: going on to it would measure the disk.
        window->setStartId(states[state].page == 3 ? 3 : 1);
        window->show();
        while (window->currentId() != states[state].page)
            window->next();
        QApplication::setPalette(palette(dark));
        font.setPointSize(11 * fontSize / 100);
        QApplication::setFont(font);
        QCoreApplication::sendPostedEvents(); // Qt 6 hands the font out only with these
        states[state].enter(window->currentPage());
        // Lays out, but starts no installation: timers wait for the event loop.
        QCoreApplication::sendPostedEvents();
    }

    void cleanup() { window.reset(); }

    void nothingIsCutOrCovered_data() { addRows(false); }

    void nothingIsCutOrCovered()
    {
        QVERIFY2(window->width() <= 1024 && window->height() <= 768, "larger than a small screen");
        const QList<QWidget *> widgets = textWidgets(*window);
        for (const QWidget *widget : widgets) {
            const char *name = widget->metaObject()->className();
            QVERIFY2(!isCut(*widget), name);
            QVERIFY2(window->rect().contains(inWindow(*widget)), name);
            for (const QWidget *other : widgets)
                QVERIFY2(other == widget || !inWindow(*other).intersects(inWindow(*widget)), name);
        }
    }

    void shortenedTextIsWholeInTheToolTip_data() { addRows(true); }

    void shortenedTextIsWholeInTheToolTip()
    {
        const QList<QLabel *> labels = window->findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(),
            [](const QLabel *label) { return label->isVisible() && label->text().contains(QChar(0x2026)); }));
        const QString tip = window->toolTip();
        QVERIFY(!Qt::mightBeRichText(tip));
        QVERIFY(QString(tip).remove('\n').remove(QChar(0x200B)).contains(longName));
        QToolTip::showText({}, tip);
        for (const QWidget *shown : QApplication::topLevelWidgets())
            QVERIFY2(shown->width() <= 1024 && shown->height() <= 768, "larger than a small screen");
        QToolTip::hideText();
    }

    void textIsLegible_data() { addRows(false); }

    void textIsLegible()
    {
        const QImage written = window->grab().toImage();
        if (const QString folder = qEnvironmentVariable("LOOKS_PICTURES"); !folder.isEmpty())
            QVERIFY(written.save(QString("%1/%2.png").arg(folder, QTest::currentDataTag())));
        const QList<QWidget *> widgets = textWidgets(*window);
        for (QWidget *widget : widgets)
            makeTextInvisible(*widget);
        const QImage blank = window->grab().toImage();
        for (QWidget *widget : widgets) {
            const qreal scale = written.devicePixelRatio();
            const QRect area(inWindow(*widget).topLeft() * scale, widget->size() * scale);
            const double found = lowestContrast(written.copy(area), blank.copy(area));
            QVERIFY2(found > 1, "no text found");
            QVERIFY2(found >= 4.5, qPrintable(widget->metaObject()->className() + QString(" %1").arg(found)));
            if (widget->inherits("QCheckBox")) {
                QVERIFY(squareContrast(blank.copy(area)) >= 3);
                QApplication::setActiveWindow(window.get());
                widget->setFocus();
                window->setAttribute(Qt::WA_KeyboardFocusChange);
                QVERIFY(squareContrast(window->grab(inWindow(*widget)).toImage()) >= 3);
            }
        }
    }
};

QTEST_MAIN(tst_Looks)
#include "tst_Looks.moc"
