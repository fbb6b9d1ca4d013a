#pragma once

#include <QString>

// Whether `c` is a control character other than tab and line feed. No text of a batch contains one.
inline bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t' && c != u'\n';
}

// Whether `c` changes the writing direction of the text around it. A file name with such a
// character would also turn the text of a message that quotes the name.
inline bool turnsDirection(QChar c)
{
    return (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

// A number with its noun: "1 imagen", "3 imágenes".
inline QString counted(qsizetype count, QStringView one, QStringView several)
{
    QString text = QString::number(count) + u' ';
    return text.append(count == 1 ? one : several);
}

// Returns the text with \n for every kind of line end and without control characters other than the
// tab. All texts of a batch have this form.
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
