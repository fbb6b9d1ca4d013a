#pragma once

#include <QString>

// In lower case and without accents, so that "Título" is found as "titulo".
inline QString foldedForSearch(const QString& text)
{
    QString folded = text.normalized(QString::NormalizationForm_D).toCaseFolded();
    folded.removeIf([](QChar c) { return c.isMark(); });
    return folded;
}
