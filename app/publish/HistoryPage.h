#pragma once
#include "app/publish/PublishShown.h"

#include <QHash>
#include <QImage>
#include <QWidget>

class EmptyNote;
class LineField;
class MenuButton;
class PushButton;
class QScrollArea;
class QVBoxLayout;

// The published posts of the account, newest first. Lists some of them at a time.
class HistoryPage : public QWidget {
    Q_OBJECT
public:
    explicit HistoryPage(QWidget* parent = nullptr);
    void setEntries(const QList<PublishHistoryEntry>& entries);
    void tellCopied(QUuid entry);    // its link is on the clipboard
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void pageRequested(QUuid entry);
    void linkCopyRequested(QUuid entry);

private:
    QList<PublishHistoryEntry> found() const;
    // Decodes them when the entry is first listed.
    const QList<QImage>& picturesOf(const PublishHistoryEntry& entry);
    void list();
    void choose(std::optional<SocialPublishNetwork> network);

    QList<PublishHistoryEntry> m_entries;
    QHash<QUuid, QList<QImage>> m_pictures;           // by entry
    std::optional<SocialPublishNetwork> m_network;    // empty: all
    qsizetype m_most;                                 // entries that are listed
    LineField* m_search;
    MenuButton* m_networks;
    QScrollArea* m_area;
    QVBoxLayout* m_list;
    QList<class HistoryRow*> m_rows;
    PushButton* m_more;
    EmptyNote* m_empty;
    EmptyNote* m_nothing;    // no entry matches the search
};
