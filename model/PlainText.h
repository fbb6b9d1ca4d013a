#pragma once

#include <QString>

// The control characters that no text holds: all but the tab and the line end.
inline bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t' && c != u'\n';
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
