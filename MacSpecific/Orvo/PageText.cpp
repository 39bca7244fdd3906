#include "PageText.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QLabel>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <QToolTip>
#include <QWizardPage>

#include <algorithm>

namespace {

/// Lines of text for which every page has room in the smallest window.
constexpr int mostLines = 10;
/// Fills a screen of 768 points in a doubled font.
constexpr int mostLinesOfToolTip = 16;
constexpr int narrowestColumn = 300;
/// Characters of a text to lay out, since finding line breaks is slow: two paths of the greatest length and
/// what a tool says of them.
constexpr int longestShown = 2 * 4096 + 512;
/// Characters for a screen reader: more than any tool has to say, and far less than would block the
/// accessibility bus.
constexpr int longestSpoken = 65536;

/// Pixels that a line of the page's text has in the smallest window.
int columnOf(const QWizardPage *page)
{
    return std::max(page->window()->minimumWidth() - besidePageText, narrowestColumn);
}

/// `text` in lines of at most `width` pixels. Those that it breaks itself end in its line breaks.
QStringList linesOf(const QString &text, const QFont &font, int width)
{
    QTextLayout layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines << text.mid(line.textStart(), line.textLength());
    }
    layout.endLayout();
    return lines;
}

/// `text` with an invisible character after "<" and "&", so that a tool tip doesn't take it for markup.
QString plain(QString text)
{
    constexpr QChar zeroWidthSpace(0x200B);
    for (const char start : {'<', '&'})
        text.replace(QLatin1Char(start), QLatin1Char(start) + QString(zeroWidthSpace));
    return text;
}

/// The lines, or the first and last of them when they are more than `most`.
QString withoutMiddle(const QStringList &lines, int most, const QString &separator)
{
    if (lines.size() <= most)
        return lines.join(separator);
    return lines.mid(0, most / 2).join(separator) + separator + QChar(0x2026) + separator
        + lines.mid(lines.size() - most / 2).join(separator);
}

/// `text` as a tool tip, which doesn't break words: in a large font it would reach beyond the screen.
QString toolTip(const QString &text, int width)
{
    QStringList lines = linesOf(text, QToolTip::font(), width);
    lines.replaceInStrings(QStringLiteral("\n"), QString());
    return plain(withoutMiddle(lines, mostLinesOfToolTip, QStringLiteral("\n")));
}

/// `text` shortened to fit so many lines of the page's text. The mark of what is left out may take one more.
QString shortened(const QString &text, const QWizardPage *page, int most)
{
    const QFontMetrics metrics = page->fontMetrics();
    const int column = columnOf(page);
    QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text);
    QString fitted;
    int word = 0;
    for (int i = 0; i < text.size(); ++i) {
        breaks.setPosition(i + 1);
        // No line ends after every slash: not before a digit, for one.
        if (!text[i].isSpace() && !(text[i] == QLatin1Char('/') && breaks.isAtBoundary()))
            continue;
        fitted += metrics.elidedText(text.mid(word, i - word), Qt::ElideMiddle, column) + text[i];
        word = i + 1;
    }
    fitted += metrics.elidedText(text.mid(word), Qt::ElideMiddle, column);
    return withoutMiddle(linesOf(fitted, page->font(), column), most, QString());
}

/// The text to show. The page keeps the whole text as its accessible description, and a shortened name as its
/// tool tip.
QString fitted(QWizardPage *page, const QString &text, const QString &name)
{
    QString laidOut = name.left(longestShown);
    // A label breaks lines at more characters than the one that is counted here.
    std::replace_if(
        laidOut.begin(), laidOut.end(),
        [](QChar each) { return each.isSpace() && each != QLatin1Char('\n'); }, QLatin1Char(' '));
    const auto others = linesOf(QString(text).remove(QLatin1String("%1")), page->font(), columnOf(page));
    const QString shown = shortened(laidOut, page, std::max(mostLines - int(others.size()), 2));
    page->setToolTip(shown == laidOut && shown.size() == name.size()
            ? QString()
            : toolTip(laidOut, page->window()->minimumWidth()));
    const bool takesName = text.contains(QLatin1String("%1"));
    page->setAccessibleDescription(takesName ? text.arg(name.left(longestSpoken)) : text);
    return takesName ? text.arg(shown) : text;
}

/// QWizard's own label beside the widget, with the title or the subtitle; null until QWizard needs one.
QLabel *labelBeside(const QWidget *widget)
{
    return widget->parentWidget()->findChild<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
}

} // namespace

void showSubTitle(QWizardPage *page, const QString &text, const QString &name)
{
    page->setSubTitle(fitted(page, text, name));
    announce(page);
}

void showInLabel(QWizardPage *page, QLabel *label, const QString &text, const QString &name)
{
    label->setText(fitted(page, text, name));
    label->setAccessibleName(page->accessibleDescription());
    announce(page);
}

void announce(QWizardPage *page)
{
    auto *wizard = qobject_cast<QWizard *>(page->window());
    if (!wizard || wizard->currentPage() != page)
        return;
    // All pages share the wizard's labels.
    QLabel *subTitle = labelBeside(page);
    for (QLabel *label : {subTitle, labelBeside(page->parentWidget())}) {
        if (label)
            makeSelectable(label);
    }
    if (subTitle)
        subTitle->setAccessibleName(page->accessibleDescription());
    wizard->setToolTip(page->toolTip());
    if (!page->hasFocus())
        return page->setFocus();
    QAccessibleEvent event(page, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void makeSelectable(QLabel *label)
{
    if (label->textInteractionFlags() == Qt::TextSelectableByMouse)
        return;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->updateGeometry(); // selectable text is a little higher
}
