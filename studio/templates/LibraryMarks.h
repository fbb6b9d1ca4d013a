#pragma once

#include <QSet>
#include <QTimer>
#include <QUuid>

class PreferencesStore;

// What the user has marked in the template library: favourites, the designs used last, folded
// sections. Kept in one value of the preferences, which is stored shortly after a change, at the
// latest by the destructor.
class LibraryMarks {
public:
    explicit LibraryMarks(PreferencesStore& preferences);    // which outlives this object
    ~LibraryMarks();
    LibraryMarks(const LibraryMarks&) = delete;
    LibraryMarks& operator=(const LibraryMarks&) = delete;

    bool isFavourite(QUuid id) const { return m_favourites.contains(id); }
    void setFavourite(QUuid id, bool favourite);
    const QList<QUuid>& used() const { return m_used; }    // newest first, of all formats
    void noteUsed(QUuid id);
    bool isFolded(const QString& section) const { return m_folded.contains(section); }
    void setFolded(const QString& section, bool folded);

private:
    void store();

    PreferencesStore& m_preferences;
    QSet<QUuid> m_favourites;
    QList<QUuid> m_used;
    QSet<QString> m_folded;
    QTimer m_storeLater;
};
