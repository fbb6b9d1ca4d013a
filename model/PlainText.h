#pragma once

#include <QString>

// The control characters that no text holds: all but the tab and the line end.
inline bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t' && c != u'\n';
}

// What turns the direction of the text around it; in a name from elsewhere it would turn ours.
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

// A text from elsewhere as ours are: whatever ends a line is \n, other control characters go.
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
