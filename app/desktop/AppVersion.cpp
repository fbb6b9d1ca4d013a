#include "app/desktop/AppVersion.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

// ASCII digits alone, whatever the locale.
bool isVersionDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

QStringView withoutZeros(QStringView digits)
{
    while (digits.size() > 1 && digits.front() == u'0')
        digits = digits.mid(1);
    return digits;
}

// Removes the first part of a version from `text` and returns it: a run of digits, or of other
// characters.
QStringView takePart(QStringView& text)
{
    qsizetype length = 0;
    while (length < text.size() && isVersionDigit(text[length]) == isVersionDigit(text.front()))
        ++length;
    const QStringView part = text.left(length);
    text = text.mid(length);
    return part;
}

// What follows a whole version: positive if it makes that version newer, negative if it marks one
// that comes before it, as in "1.0-rc1".
int orderOfRest(QStringView rest)
{
    if (rest.isEmpty())
        return 0;
    const QChar first = rest.front();
    return first == u'-' || first == u'~' || first.isLetter() ? -1 : 1;
}

// Negative if `left` is older than `right`, 0 if equal, positive if newer. Numbers may have any
// length.
int compareVersions(QStringView left, QStringView right)
{
    while (!left.isEmpty() && !right.isEmpty()) {
        const QStringView a = withoutZeros(takePart(left)), b = withoutZeros(takePart(right));
        const bool areNumbers = isVersionDigit(a.front()) && isVersionDigit(b.front());
        if (areNumbers && a.size() != b.size())
            return a.size() < b.size() ? -1 : 1;
        if (const int order = a.compare(b, Qt::CaseInsensitive); order != 0)
            return order;
    }
    return orderOfRest(left) - orderOfRest(right);
}

}    // namespace

QString AppVersion::current()
{
    const QString version = QCoreApplication::applicationVersion();
    return version.isEmpty() ? u"1.0.1"_s : version;
}

QString AppVersion::build()
{
    return QStringLiteral(MOLTIVA_BUILD);
}

QString AppVersion::display()
{
    return u"%1 (%2)"_s.arg(current(), build());
}

bool AppVersion::isRemoteVersionNewer(const std::optional<QString>& remote)
{
    QString version = remote.value_or(QString()).trimmed();
    if (version.startsWith(u'v'))
        version.remove(0, 1);
    return !version.isEmpty() && isVersionDigit(version.front()) &&
           compareVersions(version, current()) > 0;
}
