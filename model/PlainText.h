#pragma once

#include <QString>

// Whether `c` is a control character other than the tab and the line end; no text holds one.
inline bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t' && c != u'\n';
}

// Whether `c` changes the writing direction of text around it. In a name from a file it would also
// turn the program's sentence around the name.
inline bool turnsDirection(QChar c)
{
    return (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

// "1 imagen", "3 imágenes".
inline QString counted(qsizetype count, QStringView one, QStringView several)
{
    QString text = QString::number(count) + u' ';
    return text.append(count == 1 ? one : several);
}

// The text with \n for every kind of line end and without other control characters, as all texts
// of a batch are.
inline QString plainText(QString text)
{
    using namespace Qt::StringLiterals;
    text.replace(u"\r\n"_s, u"\n"_s);
    for (QChar& c : text) {
        if (QStringView(u"\r\v\f\u2028\u2029").contains(c))
            c = u'\n';
    }
    text.removeIf(isControl);
    return text;
}
