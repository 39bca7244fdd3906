#include "FittedText.h"

#include <QFontMetrics>
#include <QTextDocument>
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
    // Escaped only where the tip would take a folder's name for markup.
    const QString tip = Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
    window->setToolTip(fitted == whole ? QString() : tip);
    return fitted;
}
