#include "account/AccountTexts.h"

#include "model/PlainText.h"

#include <QStringList>
#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestShownLine = 300;
constexpr int longestShownText = 4000;    // characters; a message may contain a long URL

QString harmless(const QString& text)
{
    QString plain = plainText(text);
    plain.removeIf(turnsDirection);
    return plain;
}

QString shortened(const QString& text, int longest)
{
    return text.size() > longest ? text.left(longest).trimmed() + u'…' : text;
}

// The first grapheme: a letter with its accents, or a whole emoji.
QString firstLetter(const QString& word)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, word);
    const auto end = finder.toNextBoundary();
    return end > 0 ? word.left(end).toUpper() : QString();
}

}    // namespace

QString shownLine(const QString& text)
{
    return shortened(harmless(text.left(10 * longestShownLine)).simplified(), longestShownLine);
}

QString shownText(const QString& text)
{
    return shortened(harmless(text.left(2 * longestShownText)).trimmed(), longestShownText);
}

QString initialsOf(const QString& name)
{
    const QString shown = shownLine(name);
    const QStringList words = shown.split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return {};
    if (words.size() == 1 || shown.contains(u'@'))
        return firstLetter(words.first());
    return firstLetter(words.first()) + firstLetter(words.last());
}

QString firstNameOf(const QString& name)
{
    return shownLine(name).section(u' ', 0, 0);
}

QString creditsText(qint64 balance)
{
    return u"%1 créditos"_s.arg(balance);
}
