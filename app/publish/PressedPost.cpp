#include "app/publish/PressedPost.h"

#include "studio/StudioPublish.h"

using namespace Qt::StringLiterals;

PressedPost::PressedPost(const StudioPublish& shown)
    : m_post(postOf(shown)), m_seen(shown.checks().found)
{
}

PressedPost::Post PressedPost::postOf(const StudioPublish& publish)
{
    return {.network = publish.network(),
            .placement = publish.placement(),
            .caption = publish.publishCaption(),
            .items = publish.sentItems(),
            .format = publish.format()};
}

QString PressedPost::refusal(const StudioPublish& now) const
{
    // StudioPublish itself asks for a second press before the same is published again.
    const auto isSeen = [this](const PublishCheck& check) {
        return check.kind == PublishCheckKind::published || m_seen.contains(check);
    };
    if (m_post != postOf(now))
        return u"La publicación ha cambiado. Pulsa otra vez para publicar."_s;
    return std::ranges::all_of(now.checks().found, isSeen)
               ? QString()
               : u"Hay avisos nuevos. Pulsa otra vez para publicar."_s;
}
