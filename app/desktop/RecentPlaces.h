#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class PreferencesStore;

struct RecentPlace {
    QString path;
    bool isFolder = false;
    bool isLost = false;    // not found when it was looked for
    QString name() const;
    bool operator==(const RecentPlace&) const = default;
};

// The folders and files imported last, stored in the preferences; the latest is first.
class RecentPlaces : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype most = 5;

    // `preferences` outlives this object.
    explicit RecentPlaces(PreferencesStore& preferences, QObject* parent = nullptr);
    ~RecentPlaces() override;
    const QList<RecentPlace>& places() const { return m_places; }
    // Several files count as the folder that they are in.
    void remember(const QList<QUrl>& imported);
    // Looks, on a thread of its own, which places are lost.
    void look();

Q_SIGNALS:
    void changed();

private:
    struct Receiver;

    void take(const QList<RecentPlace>& looked);
    void show(const QList<RecentPlace>& places);

    PreferencesStore& m_preferences;
    QList<RecentPlace> m_places;
    const std::shared_ptr<Receiver> m_receiver;
    bool m_isLooking = false;
    bool m_looksAgain = false;    // look() was called while m_isLooking
};
