#include "cli/shared/PaidRenders.h"

#include "platform/PreferencesStore.h"

using namespace Qt::StringLiterals;

namespace {

// The preferences key of an account's paid renders. The value lists one fingerprint or pixel digest
// per line; lines too long for one are ignored, but stay in the value.
QString keyOf(const QString& account)
{
    return u"moltiva.paidRenders."_s + account;
}

QSet<QString> namesIn(const QByteArray& lines)
{
    constexpr qsizetype longestName = 200;
    QSet<QString> names;
    for (const auto line : QLatin1StringView(lines).tokenize(u'\n', Qt::SkipEmptyParts)) {
        if (line.size() <= longestName)
            names.insert(QString(line));
    }
    return names;
}

}    // namespace

QSet<QString> paidRenders(const PreferencesStore& preferences, const QString& account)
{
    return namesIn(preferences.value(keyOf(account)).value_or(QByteArray()));
}

Payments paymentsOf(const PublicationItems& items, const QSet<QString>& paid)
{
    Payments payments;
    for (const PublicationItem& item : items)
        payments.add(item.id, paid);
    return payments;
}

bool addPaidRenders(PreferencesStore& preferences, const QString& account,
                    const QList<RenderedOutput>& outputs, const Strike& strike)
{
    const QString key = keyOf(account);
    return preferences.transaction([&] {
        // Reads the value inside the transaction, because another command may have paid meanwhile.
        QByteArray lines = preferences.value(key).value_or(QByteArray());
        if (!lines.isEmpty() && !lines.endsWith('\n'))
            lines.append('\n');
        QSet<QString> known = namesIn(lines);
        const qsizetype before = lines.size();
        for (const RenderedOutput& output : outputs) {
            for (const QString& name : {output.fingerprint, output.pixels}) {
                if (!known.contains(name))
                    lines.append(name.toLatin1()).append('\n');
                known.insert(name);
            }
        }
        const bool isStored = lines.size() == before || preferences.setValue(key, lines);
        return isStored && strike();
    });
}
