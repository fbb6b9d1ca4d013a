#include "templates/TemplateStores.h"

#include "model/RecordJson.h"
#include "platform/PreferencesStore.h"

using namespace Qt::StringLiterals;

namespace json {

template <>
struct JsonFields<TextLayerTemplate> {
    using Text = TextLayerTemplate;
    static constexpr auto fields =
        std::tuple{required("slot", &Text::slot), required("isVisible", &Text::isVisible),
                   required("frame", &Text::frame),
                   required("alignment", &Text::alignment, LayerTextAlignment::center),
                   required("design", &Text::design)};
};

template <>
struct JsonFields<VisualTemplate> {
    using Template = VisualTemplate;
    static constexpr auto fields = std::tuple{required("id", &Template::id),
                                              required("name", &Template::name),
                                              required("textLayers", &Template::textLayers),
                                              required("shapeLayers", &Template::shapeLayers),
                                              lenient("previewPNG", &Template::previewPNG),
                                              lenient("aspectRatio", &Template::aspectRatio),
                                              lenient("order", &Template::order),
                                              lenient("sourceFile", &Template::sourceFile)};
    // Gives a shape with a repeated id a new one, because editing finds a shape by its id.
    static void repair(Template& made)
    {
        QSet<QUuid> ids;
        for (ShapeLayerSnapshot& shape : made.shapeLayers) {
            if (ids.contains(shape.id))
                shape.id = QUuid::createUuid();
            ids.insert(shape.id);
        }
    }
};

template <>
struct JsonFields<DesignTemplate> {
    static constexpr auto fields =
        std::tuple{required("id", &DesignTemplate::id), required("name", &DesignTemplate::name),
                   required("style", &DesignTemplate::style)};
};

}    // namespace json

namespace {

const QString stylesKey = u"moltiva.designTemplates"_s;
const QString templatesKey = u"moltiva.visualTemplates"_s;

template <typename Entry>
QList<Entry> loaded(const PreferencesStore& preferences, const QString& key)
{
    const QByteArray bytes = preferences.value(key).value_or(QByteArray());
    const json::Value value = json::Value::parse(bytes.begin(), bytes.end(), nullptr, false);
    QList<Entry> entries;
    return json::read(value, entries) ? entries : QList<Entry>();
}

}    // namespace

QList<DesignTemplate> DesignTemplateStore::load(const PreferencesStore& preferences)
{
    return loaded<DesignTemplate>(preferences, stylesKey);
}

bool DesignTemplateStore::save(PreferencesStore& preferences, const QList<DesignTemplate>& styles)
{
    return preferences.setValue(stylesKey, json::written(styles));
}

QList<VisualTemplate> VisualTemplateStore::load(const PreferencesStore& preferences)
{
    return loaded<VisualTemplate>(preferences, templatesKey);
}

bool VisualTemplateStore::save(PreferencesStore& preferences,
                               const QList<VisualTemplate>& templates)
{
    return preferences.setValue(templatesKey, json::written(templates));
}
