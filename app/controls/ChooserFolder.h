#pragma once
#include <QStandardPaths>

class PreferencesStore;

// The user's folder of this kind; the home folder if there is none.
QString usualFolder(QStandardPaths::StandardLocation kind);

// Where file choosers begin: in the folder of the last choice, stored in the preferences by `key`.
class ChooserFolder {
public:
    // `preferences` must outlive it.
    ChooserFolder(PreferencesStore& preferences, const QString& key);
    QString begin() const;    // a folder that exists
    void remember(const QString& folder);

private:
    PreferencesStore& m_preferences;
    QString m_key, m_last;
};
