#pragma once
#include <QList>
#include <QString>
#include <QStringList>

struct MenuCommand;

// Stands between two keys of which either will do.
inline constexpr QStringView keyOr = u"o";

// One line of the list of keys.
struct KeyRow {
    QString text;
    QStringList caps;          // names of keys; may contain keyOr
    QStringList found = {};    // each key as the search finds it, such as "Ctrl+2"
    bool operator==(const KeyRow&) const = default;
};

struct KeyGroup {
    QString title;
    QList<KeyRow> rows;
    bool operator==(const KeyGroup&) const = default;
};

// The keys of the commands. Commands with the same keyText share a line: Ctrl+1 to Ctrl+3 are shown
// as "Ctrl", "1 a 3".
QList<KeyGroup> keyGroups(const QList<MenuCommand>& commands);
// The lines whose text or keys, also those not shown, contain `search`; groups without such a line
// are left out.
QList<KeyGroup> matchingKeys(const QList<KeyGroup>& groups, const QString& search);
