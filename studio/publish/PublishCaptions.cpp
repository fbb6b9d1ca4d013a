#include "studio/publish/PublishCaptions.h"

#include "model/GuardedJson.h"
#include "platform/PreferencesStore.h"

#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// `account`: empty for nobody's caption.
QString captionKey(const QString& account, SocialPublishNetwork network)
{
    const QString owner = QString::fromLatin1(QUrl::toPercentEncoding(account));
    return u"moltiva.publishCaption."_s + (owner.isEmpty() ? owner : owner + u' ') +
           rawValue(network);
}

struct StoredCaption {
    QString text;
    QString item, name;    // of its origin; empty: typed from nothing
};

}    // namespace

template <>
struct json::JsonFields<StoredCaption> {
    static constexpr auto fields =
        std::tuple{required("text", &StoredCaption::text), optional("item", &StoredCaption::item),
                   optional("name", &StoredCaption::name)};
};

PublishCaptions::PublishCaptions(PreferencesStore& preferences) : m_preferences(preferences)
{
    for (const auto network : allCases<SocialPublishNetwork>())
        load(network);
}

void PublishCaptions::setAccount(const QString& account)
{
    if (account == m_account)
        return;
    const auto before = std::exchange(m_drafts, {});
    const bool wereNobodys = m_account.isEmpty();
    m_account = account;
    for (const auto network : allCases<SocialPublishNetwork>()) {
        load(network);
        if (!wereNobodys || !draft(network).text.isEmpty())
            continue;
        draft(network) = before[std::size_t(network)];
        store(network);
        const QString nobodys = captionKey({}, network);
        if (m_preferences.contains(nobodys))
            m_preferences.remove(nobodys);
    }
}

void PublishCaptions::load(SocialPublishNetwork network)
{
    const auto bytes = m_preferences.value(captionKey(m_account, network));
    StoredCaption stored;
    if (!bytes || !json::read(json::parsedWithCare(*bytes), stored) || stored.text.isEmpty())
        return;
    draft(network).text = stored.text;
    draft(network).origin = {QUuid::fromString(stored.item), stored.name};
    draft(network).isEdited = true;
}

void PublishCaptions::fill(SocialPublishNetwork network, const PublicationItem& item)
{
    if (draft(network).text.isEmpty())
        take(network, item);
}

void PublishCaptions::take(SocialPublishNetwork network, const PublicationItem& item)
{
    const Draft before = draft(network);
    draft(network) = {item.analysis.publicationCaption,
                      {item.id, item.filename()},
                      before.isEdited && !before.text.isEmpty(),
                      before.text,
                      before.origin};
    store(network);
}

void PublishCaptions::edit(SocialPublishNetwork network, const QString& text)
{
    Draft& edited = draft(network);
    if (!text.isEmpty() && text == edited.replaced)
        edited.origin = edited.replacedOrigin;
    edited.text = text;
    edited.isEdited = true;
    if (text.isEmpty())
        edited.origin = {};
    store(network);
}

void PublishCaptions::clear(SocialPublishNetwork network, const QString& published)
{
    if (draft(network).text != published)
        return;
    draft(network) = {};
    store(network);
}

void PublishCaptions::dropUnedited()
{
    for (Draft& each : m_drafts) {
        if (!each.isEdited)
            each = {};
    }
}

void PublishCaptions::store(SocialPublishNetwork network)
{
    const Draft& kept = draft(network);
    const QString key = captionKey(m_account, network);
    if (kept.isEdited && !kept.text.isEmpty()) {
        const StoredCaption stored{
            kept.text, kept.origin.item.isNull() ? QString() : kept.origin.item.toString(),
            kept.origin.name};
        m_preferences.setValue(key, json::written(stored));
    } else if (m_preferences.contains(key)) {
        m_preferences.remove(key);
    }
}
