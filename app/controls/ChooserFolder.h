#pragma once
#include <QStandardPaths>

class PreferencesStore;

// The user's folder of that kind, or the home of a user who has none.
QString usualFolder(QStandardPaths::StandardLocation kind);

// Where file choosers begin: in the folder of the last choice, kept among the preferences.
class ChooserFolder {
public:
    // The preferences outlive it.
    ChooserFolder(PreferencesStore& preferences, const QString& key);
    QString begin() const;    // one that is there
    void remember(const QString& folder);

private:
    PreferencesStore& m_preferences;
    QString m_key, m_last;
};
