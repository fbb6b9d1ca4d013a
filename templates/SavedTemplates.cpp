#include "templates/SavedTemplates.h"

#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "templates/TemplatePreviewRenderer.h"
#include "templates/TemplateStores.h"

#include <QCoroFuture>

using namespace Qt::StringLiterals;

namespace {

// Whether two templates have the same name, texts, shapes and aspect ratio. Ids of shapes are not
// compared, because template files contain none.
bool areAlike(const VisualTemplate& one, const VisualTemplate& other)
{
    const auto isSameShape = [](const ShapeLayer& a, const ShapeLayer& b) {
        return ShapeLayer::preservingID(b.id, a) == b;
    };
    return one.name == other.name && one.textLayers == other.textLayers &&
           std::ranges::equal(one.shapeLayers, other.shapeLayers, isSameShape) &&
           one.aspectRatio == other.aspectRatio;
}

}    // namespace

SavedTemplates::SavedTemplates(PreferencesStore& preferences, std::shared_ptr<PhotoCache> photos,
                               QObject* parent)
    : QObject(parent), m_preferences(preferences), m_photos(std::move(photos)),
      m_templates(VisualTemplateStore::load(preferences)),
      m_styles(DesignTemplateStore::load(preferences))
{
}

QUuid SavedTemplates::saveTemplate(const PublicationItem& item, SocialFormat format)
{
    const VisualTemplate made =
        VisualTemplate::of(item, m_templates.freeName(u"Plantilla"_s), format);
    m_templates.add(made);
    storeTemplates();
    drawPreview(this, made.id, item, format, m_photos);
    return made.id;
}

void SavedTemplates::updateTemplate(QUuid id, const PublicationItem& item, SocialFormat format)
{
    const bool changed = m_templates.replace(id, [&](VisualTemplate& entry) {
        VisualTemplate made = VisualTemplate::of(item, entry.name, format);
        made.id = entry.id;
        made.order = entry.order;
        entry = made;
    });
    if (changed)
        storeTemplates();
    drawPreview(this, id, item, format, m_photos);
}

// If the same template was added before and has been renamed or changed since, both exist
// afterwards.
QUuid SavedTemplates::addTemplate(VisualTemplate added)
{
    const auto& known = m_templates.entries();
    if (std::ranges::any_of(known, [&](const auto& entry) { return areAlike(entry, added); }))
        return {};
    if (m_templates.find(added.id))
        added.id = QUuid::createUuid();
    m_templates.add(added);
    storeTemplates();
    return added.id;
}

void SavedTemplates::renameTemplate(QUuid id, const QString& name)
{
    if (m_templates.rename(id, name))
        storeTemplates();
}

void SavedTemplates::removeTemplate(QUuid id)
{
    if (m_templates.remove(id))
        storeTemplates();
}

void SavedTemplates::callBackTemplate()
{
    if (m_templates.callBack())
        storeTemplates();
}

QUuid SavedTemplates::saveStyle(const TextLayerDesign& style)
{
    const DesignTemplate made{QUuid::createUuid(), m_styles.freeName(u"Estilo"_s), style};
    m_styles.add(made);
    storeStyles();
    return made.id;
}

void SavedTemplates::updateStyle(QUuid id, const TextLayerDesign& style)
{
    if (m_styles.replace(id, [&](DesignTemplate& entry) { entry.style = style; }))
        storeStyles();
}

void SavedTemplates::renameStyle(QUuid id, const QString& name)
{
    if (m_styles.rename(id, name))
        storeStyles();
}

void SavedTemplates::removeStyle(QUuid id)
{
    if (m_styles.remove(id))
        storeStyles();
}

void SavedTemplates::callBackStyle()
{
    if (m_styles.callBack())
        storeStyles();
}

void SavedTemplates::storeTemplates()
{
    m_isStored = VisualTemplateStore::save(m_preferences, m_templates.entries());
    Q_EMIT templatesChanged();
    if (!m_isStored)
        Q_EMIT storingFailed();
}

void SavedTemplates::storeStyles()
{
    m_isStored = DesignTemplateStore::save(m_preferences, m_styles.entries());
    Q_EMIT stylesChanged();
    if (!m_isStored)
        Q_EMIT storingFailed();
}

QCoro::Task<> SavedTemplates::drawPreview(QPointer<SavedTemplates> self, QUuid id,
                                          PublicationItem item, SocialFormat format,
                                          std::shared_ptr<PhotoCache> photos)
{
    QFuture<std::optional<QByteArray>> drawing =
        runOnWorker([item, format, photos]() -> std::optional<QByteArray> {
            try {
                const auto source = [&](const PhotoHandle& photo, PhotoLevel level) {
                    return photos->proxy({photo.path, photo.digest}, level);
                };
                const auto preview = TemplatePreviewRenderer::compactData(item, format, source);
                return preview ? std::optional(preview->data) : std::nullopt;
            } catch (const std::exception&) {
                return std::nullopt;    // out of memory: the template gets no preview
            }
        });
    const std::optional<QByteArray> preview = co_await drawing;
    if (!self || !preview)
        co_return;
    const auto keep = [&](VisualTemplate& entry) {
        // The template may have been given another arrangement while this preview was drawn.
        if (areAlike(entry, VisualTemplate::of(item, entry.name, format)))
            entry.previewPNG = preview;
    };
    if (self->m_templates.change(id, keep))
        self->storeTemplates();
}
