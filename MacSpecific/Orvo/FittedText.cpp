#include "FittedText.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <QToolTip>
#include <QWidget>

#include <algorithm>

namespace {

constexpr int columnLines = 4;
constexpr int besideColumn = 250; // the artwork and the margins in the smallest window
constexpr int narrowestColumn = 300;
/// Two of the longest paths and what a tool says of them. Line breaks take long to lay out.
constexpr int longestText = 2 * 4096 + 512;

bool mayBreakAfter(QChar character)
{
    return character == QLatin1Char('/') || character.isSpace();
}

/// `text` in lines of at most `width`: left to itself a tool tip breaks no word, and in large type reaches
/// beyond the screen.
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

/// `text` with something invisible behind what would make a tool tip take a folder's name for markup.
QString plain(QString text)
{
    constexpr QChar zeroWidthSpace(0x200B);
    for (const char start : {'<', '&'})
        text.replace(QLatin1Char(start), QLatin1Char(start) + QString(zeroWidthSpace));
    return text;
}

} // namespace

QString fittedText(const QString &whole, QWidget *page)
{
    const QString text = whole.left(longestText);
    QWidget *window = page->window();
    const QFontMetrics type = page->fontMetrics();
    const int column = std::max(window->minimumWidth() - besideColumn, narrowestColumn);

    QString fitted;
    for (auto word = text.begin(); word != text.end();) {
        const auto end = std::find_if(word, text.end(), mayBreakAfter);
        fitted += type.elidedText(QString(word, int(end - word)), Qt::ElideMiddle, column);
        word = end;
        if (word != text.end())
            fitted += *word++;
    }
    // A line break counts as no width in the type's eyes.
    fitted = type.elidedText(fitted, Qt::ElideMiddle, columnLines * column);
    page->setToolTip(fitted == whole ? QString() : plain(inLines(text, window->minimumWidth())));
    return fitted;
}
