#include "app/desktop/Appearance.h"

#include "app/theme/StudioStyle.h"
#include "platform/Desktop.h"
#include "platform/PreferencesStore.h"

using namespace Qt::StringLiterals;

namespace {

const QString themeKey = u"moltiva.theme"_s;

ThemeChoice storedChoice(const PreferencesStore& preferences)
{
    const QByteArray stored = preferences.value(themeKey).value_or(QByteArray());
    return fromRawValue<ThemeChoice>(QString::fromUtf8(stored)).value_or(ThemeChoice::dark);
}

}    // namespace

Appearance::Appearance(PreferencesStore& preferences, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_choice(storedChoice(preferences))
{
    apply();
}

void Appearance::follow(const Desktop& desktop)
{
    m_desktop = &desktop;
    connect(&desktop, &Desktop::preferencesChanged, this, &Appearance::apply);
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
    return m_desktop && m_desktop->preferences().scheme != ColorScheme::unknown;
}

void Appearance::apply()
{
    const DesktopPreferences wishes = m_desktop ? m_desktop->preferences() : DesktopPreferences();
    const bool isLight = m_choice == ThemeChoice::light ||
                         (m_choice == ThemeChoice::system && wishes.scheme == ColorScheme::light);
    applyTheme(isLight ? lightTheme() : darkTheme());
    if (m_desktop)
        setMotion(wishes.reducesMotion ? Motion::reduced : Motion::full);
    Q_EMIT changed();
}
