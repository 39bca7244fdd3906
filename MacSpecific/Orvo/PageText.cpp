#include "PageText.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QLabel>
#include <QTextLayout>
#include <QToolTip>
#include <QWizardPage>

#include <algorithm>

namespace {

constexpr int mostLines = 4;
/// For a message that has the page to itself.
constexpr int mostLinesAlone = 10;
constexpr int narrowestColumn = 300;
/// Characters of a text to lay out, since finding line breaks is slow: two paths of the greatest length and
/// what a tool says of them.
constexpr int longestShown = 2 * 4096 + 512;
/// Characters for a screen reader: more than any tool has to say, and far less than would block the
/// accessibility bus.
constexpr int longestSpoken = 65536;

bool mayBreakAfter(QChar character)
{
    return character == QLatin1Char('/') || character.isSpace();
}

/// `text` in lines of at most `width` pixels. A tool tip doesn't break words, so in a large font it would
/// reach beyond the screen.
QString inLines(const QString &text, int width)
{
    QTextLayout layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), QToolTip::font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines << layout.text().mid(line.textStart(), line.textLength()).remove(QChar::LineSeparator);
    }
    layout.endLayout();
    return lines.join(QLatin1Char('\n'));
}

/// `text` with an invisible character after "<" and "&", so that a tool tip doesn't take it for markup.
QString plain(QString text)
{
    constexpr QChar zeroWidthSpace(0x200B);
    for (const char start : {'<', '&'})
        text.replace(QLatin1Char(start), QLatin1Char(start) + QString(zeroWidthSpace));
    return text;
}

/// `text` shortened to fit so many lines of the page's text column. As many line breaks as half of them stay,
/// further ones become blanks.
QString shortened(const QString &text, const QWizardPage *page, int lines)
{
    const QFontMetrics metrics = page->fontMetrics();
    const int column = std::max(page->window()->minimumWidth() - besidePageText, narrowestColumn);
    QString fitted;
    int breaks = 0;
    for (auto word = text.begin(); word != text.end();) {
        const auto end = std::find_if(word, text.end(), mayBreakAfter);
        fitted += metrics.elidedText(QString(word, int(end - word)), Qt::ElideMiddle, column);
        word = end;
        if (word == text.end())
            break;
        QChar separator = *word++;
        if (separator == QLatin1Char('\n') && ++breaks > lines / 2)
            separator = QLatin1Char(' ');
        fitted += separator;
    }
    // Line breaks have no width in the metrics.
    return metrics.elidedText(fitted, Qt::ElideMiddle, (lines - std::min(breaks, lines / 2)) * column);
}

/// The text to show. The page keeps the whole text as its accessible description, and a shortened name as its
/// tool tip.
QString fitted(QWizardPage *page, const QString &text, const QString &name)
{
    const QString laidOut = name.left(longestShown);
    const int lines = text == QLatin1String("%1") ? mostLinesAlone : mostLines;
    const QString shown = shortened(laidOut, page, lines);
    page->setToolTip(shown == name ? QString() : plain(inLines(laidOut, page->window()->minimumWidth())));
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
