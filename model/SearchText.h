#pragma once

#include <QString>

// The text in lower case and without accents, so that "titulo" finds "Título".
inline QString foldedForSearch(const QString& text)
{
    QString folded = text.normalized(QString::NormalizationForm_D).toCaseFolded();
    folded.removeIf([](QChar c) { return c.isMark(); });
    return folded;
}
