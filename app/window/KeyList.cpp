#include "app/window/KeyList.h"

#include "app/window/StudioMenu.h"
#include "model/SearchText.h"

#include <QKeySequence>

using namespace Qt::StringLiterals;

namespace {

struct TopicRow {
    KeyTopic topic;
    QStringView title;
};
constexpr std::array topics{
    TopicRow{KeyTopic::images, u"Lote e imágenes"},
    TopicRow{KeyTopic::output, u"Generar, exportar, publicar"},
    TopicRow{KeyTopic::layers, u"Textos y formas"},
    TopicRow{KeyTopic::photo, u"Foto"},
    TopicRow{KeyTopic::edit, u"Edición"},
    TopicRow{KeyTopic::places, u"Formato y panel"},
    TopicRow{KeyTopic::window, u"Ventana"},
};

// The keys that do the same for several commands, such as the digits of the formats.
struct SharedKeys {
    QString text;
    QStringList held;       // the same for each
    QStringList pressed;    // one for each
    QStringList found;      // as in KeyRow
};

QString capOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return u"←"_s;
    case Qt::Key_Right:
        return u"→"_s;
    case Qt::Key_Up:
        return u"↑"_s;
    case Qt::Key_Down:
        return u"↓"_s;
    default:
        return QKeySequence(key).toString(QKeySequence::NativeText);
    }
}

QStringList capsOf(const QKeySequence& sequence)
{
    const QKeyCombination keys = sequence[0];
    QStringList caps;
    // The native name of a modifier comes with the plus sign that joins it to a key.
    for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier}) {
        if (keys.keyboardModifiers() & modifier) {
            const QString name = QKeySequence(QKeyCombination(modifier, Qt::Key_A))
                                     .toString(QKeySequence::NativeText);
            caps.append(name.chopped(2));
        }
    }
    return caps << capOf(keys.key());
}

QStringList shownCaps(const SharedKeys& keys)
{
    const QStringList& pressed = keys.pressed;
    const bool areArrows = pressed == QStringList{u"←"_s, u"→"_s, u"↑"_s, u"↓"_s};
    const bool areDigits =
        pressed.size() > 2 && std::ranges::all_of(pressed, [](const QString& key) {
            return key.size() == 1 && key.front().isDigit();
        });
    if (areArrows)
        return keys.held + QStringList{u"flechas"_s};
    if (areDigits)
        return keys.held + QStringList{u"%1 a %2"_s.arg(pressed.first(), pressed.last())};
    return keys.held + pressed;
}

void append(QList<SharedKeys>& rows, const MenuCommand& command)
{
    QStringList caps = command.shownKey.toString().split(u' ', Qt::SkipEmptyParts);
    QStringList found = caps;
    for (const QStringView key : command.keys.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList keyCaps =
            capsOf(QKeySequence(key.toString(), QKeySequence::PortableText));
        if (caps.isEmpty())
            caps = keyCaps;
        found.append(keyCaps.join(u'+'));
    }
    QString text = command.keyText.isEmpty() ? command.text : command.keyText.toString();
    if (text.endsWith(u'…'))
        text.chop(1);
    const QStringList held = command.keys.isEmpty() ? QStringList() : caps.first(caps.size() - 1);
    const QStringList pressed = caps.sliced(held.size());
    const auto same = std::ranges::find_if(
        rows, [&](const SharedKeys& row) { return row.text == text && row.held == held; });
    if (same == rows.end())
        return rows.append({text, held, pressed, found});
    same->pressed += pressed;
    same->found += found;
}

}    // namespace

QList<KeyGroup> keyGroups(const QList<MenuCommand>& commands)
{
    QList<KeyGroup> groups;
    for (const TopicRow& topic : topics) {
        QList<SharedKeys> rows;
        for (const bool leads : {true, false}) {
            for (const MenuCommand& command : commands) {
                const bool hasKey = !command.keys.isEmpty() || !command.shownKey.isEmpty();
                if (hasKey && command.topic == topic.topic && command.leadsTopic == leads)
                    append(rows, command);
            }
        }
        KeyGroup group{topic.title.toString(), {}};
        for (const SharedKeys& keys : rows)
            group.rows.append({keys.text, shownCaps(keys), keys.found});
        if (!group.rows.isEmpty())
            groups.append(group);
    }
    return groups;
}

QList<KeyGroup> matchingKeys(const QList<KeyGroup>& groups, const QString& search)
{
    const QString wanted = foldedForSearch(search.simplified());
    QList<KeyGroup> found;
    for (KeyGroup group : groups) {
        group.rows.removeIf([&](const KeyRow& row) {
            const QStringList places =
                QStringList{row.text, row.caps.join(u'+'), row.caps.join(u' ')} + row.found;
            return std::ranges::none_of(places, [&](const QString& place) {
                return foldedForSearch(place).contains(wanted);
            });
        });
        if (!group.rows.isEmpty())
            found.append(group);
    }
    return found;
}
