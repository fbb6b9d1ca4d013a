#pragma once

#include "model/PublicationItem.h"
#include "model/SocialPublishNetwork.h"

#include <array>

class PreferencesStore;

// The longest caption of a post, in UTF-16 units; more than any network takes.
inline constexpr qsizetype longestPostCaption = 100'000;

// Where the caption of a post came from.
struct CaptionOrigin {
    QUuid item = {};      // the image whose caption it was; null: typed from nothing
    QString name = {};    // of the image
    bool operator==(const CaptionOrigin&) const = default;
};

// The captions of the next posts of one account, one for each network. Those that the user edited
// are stored in the preferences until they are published.
class PublishCaptions {
public:
    // Has the captions that were written while nobody was signed in. `preferences` outlive it.
    explicit PublishCaptions(PreferencesStore& preferences);
    // Has those of the account (CreditAccount::accountKey()) from now on. Each of nobody's goes to
    // the account unless that has one of its own.
    void setAccount(const QString& account);

    const QString& text(SocialPublishNetwork network) const { return draft(network).text; }
    const CaptionOrigin& origin(SocialPublishNetwork network) const
    {
        return draft(network).origin;
    }
    // Takes the caption of the image if the network's own is empty.
    void fill(SocialPublishNetwork network, const PublicationItem& item);
    // Replaces the caption by that of the image. What stands in the place of an edited caption
    // counts as edited too, so that it is kept.
    void take(SocialPublishNetwork network, const PublicationItem& item);
    // If the text is the one that take() replaced, it has its origin again.
    void edit(SocialPublishNetwork network, const QString& text);
    // Empties the caption unless it was changed after it was sent as `published`.
    void clear(SocialPublishNetwork network, const QString& published);
    // Empties the captions that the user did not edit.
    void dropUnedited();

private:
    struct Draft {
        QString text;
        CaptionOrigin origin;
        bool isEdited = false;
        QString replaced = {};    // by take(), and its origin
        CaptionOrigin replacedOrigin = {};
    };
    const Draft& draft(SocialPublishNetwork network) const
    {
        return m_drafts[std::size_t(network)];
    }
    Draft& draft(SocialPublishNetwork network) { return m_drafts[std::size_t(network)]; }
    void load(SocialPublishNetwork network);
    void store(SocialPublishNetwork network);

    PreferencesStore& m_preferences;
    QString m_account;    // empty: nobody's captions
    std::array<Draft, Vocabulary<SocialPublishNetwork>::rows.size()> m_drafts;
};
