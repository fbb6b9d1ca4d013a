#pragma once
#include <QStandardPaths>

class PreferencesStore;
class QFileDialog;

// Deletes the dialog when it closes, and closes the list of names under its field with it: while
// such a popup is open, Qt ignores that the window behind the dialog becomes active again, and the
// window stays without the keyboard focus.
void disposeOf(QFileDialog* dialog);

// The user's folder of `kind`, such as Pictures; the home folder if that folder does not exist.
QString usualFolder(QStandardPaths::StandardLocation kind);

// The folder in which a file dialog opens: that of the last choice, stored in the preferences under
// `key`.
class ChooserFolder {
public:
    // `preferences` must outlive this object.
    ChooserFolder(PreferencesStore& preferences, const QString& key);
    QString begin() const;    // an existing folder
    void remember(const QString& folder);

private:
    PreferencesStore& m_preferences;
    QString m_key, m_last;
};
