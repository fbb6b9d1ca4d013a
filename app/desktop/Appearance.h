#pragma once
#include "model/Vocabulary.h"

#include <QObject>

class Desktop;
class PreferencesStore;
enum class ColorScheme;

enum class ThemeChoice { system, light, dark };

struct ThemeChoiceRow {
    ThemeChoice value;
    QStringView rawValue, title;
};

template <>
struct Vocabulary<ThemeChoice> {
    static constexpr std::array rows{
        ThemeChoiceRow{ThemeChoice::system, u"system", u"Sistema"},
        ThemeChoiceRow{ThemeChoice::light, u"light", u"Claro"},
        ThemeChoiceRow{ThemeChoice::dark, u"dark", u"Oscuro"},
    };
};
static_assert(rowsAreInOrder<ThemeChoice>());

// Dresses the whole program in the theme that the user chose, which the preferences store keeps,
// and moves as much as the desktop wishes. Dark until the user chooses. ThemeChoice::system is dark
// too where the desktop has no preference; until the desktop has told its scheme, it follows the
// one that was told last.
class Appearance : public QObject {
    Q_OBJECT
public:
    // `preferences` outlives this object.
    explicit Appearance(PreferencesStore& preferences, QObject* parent = nullptr);

    // From now on follows the wishes of `desktop`, which outlives this object.
    void follow(const Desktop& desktop);
    ThemeChoice choice() const { return m_choice; }
    void choose(ThemeChoice choice);
    // Whether ThemeChoice::system has something to follow.
    bool isSchemeKnown() const;

Q_SIGNALS:
    void changed();    // choice() or isSchemeKnown()

private:
    void apply();
    void keepScheme();

    PreferencesStore& m_preferences;
    const Desktop* m_desktop = nullptr;
    ColorScheme m_scheme;    // told last, maybe to an earlier run of the program; never `unknown`
    ThemeChoice m_choice;
};
