#pragma once

#include <QObject>
#include <QString>

// `unknown`: the desktop has not told yet whether it has a preference.
enum class ColorScheme { unknown, noPreference, dark, light };

// What the user prefers in all programs.
struct DesktopPreferences {
    ColorScheme scheme = ColorScheme::noPreference;
    bool reducesMotion = false;
    bool operator==(const DesktopPreferences&) const = default;
};

struct DesktopNotice {
    QString title, sentence;    // plain text
};

// The desktop that the program runs on. This class is a desktop that has no preferences and shows
// no notices.
class Desktop : public QObject {
    Q_OBJECT
public:
    const DesktopPreferences& preferences() const { return m_preferences; }
    // Shows the notice in place of the program's previous one, without waiting.
    virtual void notify(const DesktopNotice&) {}

Q_SIGNALS:
    void preferencesChanged();
    // The user pressed the notice. `activationToken`: lets the program raise a window; may be
    // empty.
    void noticePressed(const QByteArray& activationToken);

protected:
    void setPreferences(const DesktopPreferences& preferences);

private:
    DesktopPreferences m_preferences;
};
