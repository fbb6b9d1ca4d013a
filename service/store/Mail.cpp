#include "service/store/Mail.h"

#include "service/store/Secrets.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostShown = 50;
constexpr qint64 largestMail = 64 * 1024;

// Encodes the value of a header (RFC 2047), because headers may contain only ASCII.
QByteArray headerText(const QString& text)
{
    return "=?UTF-8?B?" + text.toUtf8().toBase64() + "?=";
}

QString headerValue(const QByteArray& head, const QByteArray& name)
{
    for (const QByteArray& line : head.split('\n')) {
        if (!line.startsWith(name + ": "))
            continue;
        const QByteArray value = line.mid(name.size() + 2).trimmed();
        if (value.startsWith("=?UTF-8?B?") && value.endsWith("?="))
            return QString::fromUtf8(QByteArray::fromBase64(value.mid(10).chopped(2)));
        return QString::fromUtf8(value);
    }
    return {};
}

QString shownDate(const QString& written)
{
    const QDateTime time = QDateTime::fromString(written, Qt::RFC2822Date);
    return QLocale(u"es_ES"_s).toString(time.toLocalTime(), u"d 'de' MMMM 'de' yyyy, H:mm"_s);
}

}    // namespace

bool storeMail(const QDir& folder, const QString& to, const QString& subject, const QString& text,
               qint64 now)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(now, Qt::UTC);
    const QByteArray head = "From: Moltiva <servicio@localhost>\r\nTo: " + to.toUtf8() +
                            "\r\nSubject: " + headerText(subject) + "\r\nDate: " +
                            QLocale::c().toString(time, u"ddd, dd MMM yyyy HH:mm:ss"_s).toLatin1() +
                            " +0000\r\nMIME-Version: 1.0\r\n"
                            "Content-Type: text/plain; charset=utf-8\r\n"
                            "Content-Transfer-Encoding: 8bit\r\n\r\n";
    const QString name = time.toString(u"yyyyMMdd-HHmmsszzz-"_s) +
                         QString::fromLatin1(newToken().first(6).replace('_', 'x')) + u".eml"_s;
    QFile file(folder.filePath(name));
    const QByteArray all = head + QString(text).replace(u"\n"_s, u"\r\n"_s).toUtf8();
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly,
                     QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(all) == all.size() && file.flush();
}

QList<MailEntry> storedMails(const QDir& folder)
{
    QList<MailEntry> mails;
    const QStringList names =
        folder.entryList({u"*.eml"_s}, QDir::Files | QDir::NoSymLinks, QDir::Name | QDir::Reversed);
    for (const QString& name : names.mid(0, mostShown)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        QByteArray all = file.read(largestMail);
        all.replace("\r\n", "\n");
        const qsizetype end = all.indexOf("\n\n");
        const QByteArray head = all.left(end);
        mails.append({name, headerValue(head, "To"), headerValue(head, "Subject"),
                      shownDate(headerValue(head, "Date")), QString::fromUtf8(all.mid(end + 2))});
    }
    return mails;
}
