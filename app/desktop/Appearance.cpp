#include "app/desktop/Appearance.h"

#include "app/theme/StudioStyle.h"
#include "platform/Desktop.h"
#include "platform/PreferencesStore.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString themeKey = u"moltiva.theme"_s;
const QString schemeKey = u"moltiva.desktopScheme"_s;

ThemeChoice storedChoice(const PreferencesStore& preferences)
{
    const QByteArray stored = preferences.value(themeKey).value_or(QByteArray());
    return fromRawValue<ThemeChoice>(QString::fromUtf8(stored)).value_or(ThemeChoice::dark);
}

// What the desktop preferred when the program last ran.
ColorScheme storedScheme(const PreferencesStore& preferences)
{
    const QByteArray stored = preferences.value(schemeKey).value_or(QByteArray());
    return stored == "light"  ? ColorScheme::light
           : stored == "dark" ? ColorScheme::dark
                              : ColorScheme::noPreference;
}

}    // namespace

Appearance::Appearance(PreferencesStore& preferences, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_scheme(storedScheme(preferences)),
      m_choice(storedChoice(preferences))
{
    apply();
}

void Appearance::follow(const Desktop& desktop)
{
    m_desktop = &desktop;
    connect(&desktop, &Desktop::preferencesChanged, this, [this] {
        keepScheme();
        apply();
    });
    keepScheme();
    apply();
}

void Appearance::choose(ThemeChoice choice)
{
    m_choice = choice;
    m_preferences.setValue(themeKey, rawValue(choice).toUtf8());
    apply();
}

bool Appearance::isSchemeKnown() const
{
    return m_scheme != ColorScheme::noPreference;
}

void Appearance::keepScheme()
{
    const ColorScheme scheme = m_desktop->preferences().scheme;
    if (scheme == ColorScheme::unknown || std::exchange(m_scheme, scheme) == scheme)
        return;
    const QByteArray name = scheme == ColorScheme::light  ? "light"
                            : scheme == ColorScheme::dark ? "dark"
                                                          : "none";
    m_preferences.setValue(schemeKey, name);
}

void Appearance::apply()
{
    const DesktopPreferences wishes = m_desktop ? m_desktop->preferences() : DesktopPreferences();
    const bool isLight = m_choice == ThemeChoice::light ||
                         (m_choice == ThemeChoice::system && m_scheme == ColorScheme::light);
    applyTheme(isLight ? lightTheme() : darkTheme());
    if (m_desktop)
        setMotion(wishes.reducesMotion ? Motion::reduced : Motion::full);
    Q_EMIT changed();
}
