#include "app/TemplatesBinding.h"

#include "app/PresetGrid.h"
#include "app/PresetPictures.h"
#include "app/SidePanel.h"
#include "app/StyleShelf.h"
#include "app/TemplatesPanel.h"
#include "app/TextPanel.h"
#include "canvas/ItemPainter.h"
#include "platform/AtomicFile.h"
#include "platform/PhotoCache.h"
#include "platform/Workers.h"
#include "studio/StudioSession.h"

#include <QBuffer>
#include <QCoroFuture>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

constexpr int restBeforeRedrawing = 120;    // ms
// More than a preview takes; a file may hold anything.
constexpr qsizetype largestPreview = 1 << 20;
constexpr int largestPreviewSide = 4096;

QImage decodedPreview(QByteArray bytes, QSize pixels)
{
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > largestPreviewSide || size.height() > largestPreviewSide)
        return {};
    return reader.read().scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels, PhotoCache& photos)
{
    return paintedItem(layOut(item, exportSize(format), designSize(format)), pixels,
                       photos.thumbnail({item.image.path, item.image.digest}));
}

// Two letters in the style, over the middle of the photo.
QImage drawnStyle(const PhotoHandle& image, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos)
{
    // The tile in design units, and how large the letters come out there, whatever the size of the
    // style's own text.
    constexpr double tileWidth = 150, letterScale = 3;
    const QSizeF tile(tileWidth, tileWidth * pixels.height() / pixels.width());
    PublicationItem item;
    item.image = image;
    TextLayer letters(QUuid(), CopySlot::title, u"Aa"_s, true, {0.19, 0.16, 0.62, 0.68});
    style.apply(letters);
    letters.fontScale = letterScale;
    item.layers = {letters};
    return paintedItem(layOut(item, QSizeF(pixels), tile), pixels,
                       photos.thumbnail({image.path, image.digest}));
}

SocialFormat formatOf(const VisualTemplate& of, SocialFormat otherwise)
{
    for (const SocialFormat format : allCases<SocialFormat>()) {
        if (of.aspectRatio && of.suits(format))
            return format;
    }
    return otherwise;
}

}    // namespace

TemplatesBinding::TemplatesBinding(StudioSession& session, SidePanel* panel,
                                   const std::shared_ptr<PhotoCache>& photos,
                                   PreferencesStore& preferences)
    : m_session(session), m_panel(panel), m_photos(photos), m_saved(preferences, photos),
      m_pictures(new PresetPictures(this))
{
    connectTemplates();
    connectStyles();
    m_redrawLater.setSingleShot(true);
    m_redrawLater.setInterval(restBeforeRedrawing);
    connect(&m_redrawLater, &QTimer::timeout, this, [this] {
        m_panel->templatesPanel()->packaged()->outdatePictures();
        m_panel->templatesPanel()->own()->outdatePictures();
        m_panel->textPanel()->styles()->grid()->outdatePictures();
    });
    connect(&m_saved, &SavedTemplates::storingFailed, this, [this] {
        Q_EMIT told(u"No se pudieron guardar tus plantillas. ¿Queda espacio en el disco? Se vuelve "
                    "a intentar con el próximo cambio."_s,
                    StatusTone::problem);
    });
}

// The panels may outlive it for a moment.
TemplatesBinding::~TemplatesBinding() = default;

void TemplatesBinding::connectTemplates()
{
    TemplatesPanel* panel = m_panel->templatesPanel();
    connect(panel, &TemplatesPanel::shown, this, &TemplatesBinding::show);
    connect(panel, &TemplatesPanel::saveRequested, this, &TemplatesBinding::saveTemplate);
    connect(panel, &TemplatesPanel::importRequested, this, &TemplatesBinding::chooseDefinition);
    connect(panel, &TemplatesPanel::callBackRequested, this, [this] {
        const QString name = m_saved.templates().lastRemoved();
        m_saved.callBackTemplate();
        Q_EMIT told(u"Plantilla «%1» recuperada."_s.arg(name), StatusTone::done);
    });
    connect(&m_saved, &SavedTemplates::templatesChanged, this, &TemplatesBinding::show);
    connect(panel->own(), &PresetGrid::renamed, &m_saved, &SavedTemplates::renameTemplate);
    connect(panel->own(), &PresetGrid::removeRequested, this, &TemplatesBinding::remove);
    for (const auto& [grid, owner] : {std::pair(panel->own(), PresetOwner::user),
                                      std::pair(panel->packaged(), PresetOwner::program)}) {
        connect(grid, &PresetGrid::chosen, this, &TemplatesBinding::apply);
        connect(grid, &PresetGrid::previewWanted, this, &TemplatesBinding::preview);
        connect(grid, &PresetGrid::previewEnded, this, [this] { preview({}); });
        connect(grid, &PresetGrid::pictureWanted, this,
                [this, grid = grid](QUuid id) { drawTemplate(grid, id); });
        connect(grid, &PresetGrid::menuRequested, this,
                [this, owner = owner](QUuid id, QPoint position) {
                    showTemplateMenu(owner, id, position);
                });
        connect(m_pictures, &PresetPictures::ready, grid, &PresetGrid::setPicture);
    }
}

void TemplatesBinding::connectStyles()
{
    StyleShelf* shelf = m_panel->textPanel()->styles();
    connect(shelf, &StyleShelf::shown, this, &TemplatesBinding::show);
    connect(&m_saved, &SavedTemplates::stylesChanged, this, &TemplatesBinding::show);
    connect(shelf, &StyleShelf::saveRequested, this, [this, shelf] {
        if (!selectedText())
            return;
        const QUuid id = m_saved.saveStyle(*selectedText());
        Q_EMIT told(u"Estilo guardado. Ponle nombre."_s, StatusTone::done);
        shelf->rename(id);
    });
    connect(shelf, &StyleShelf::updateRequested, this, [this](QUuid id) {
        if (!selectedText() || !m_saved.styles().find(id))
            return;
        const QString name = m_saved.styles().find(id)->name;
        m_saved.updateStyle(id, *selectedText());
        m_panel->textPanel()->styles()->grid()->outdatePicture(id);
        Q_EMIT told(u"Estilo «%1» actualizado."_s.arg(name), StatusTone::done);
    });
    connect(shelf, &StyleShelf::removeRequested, this, [this](QUuid id) {
        if (!m_saved.styles().find(id))
            return;
        const QString name = m_saved.styles().find(id)->name;
        m_saved.removeStyle(id);
        Q_EMIT told(u"Estilo «%1» eliminado."_s.arg(name), StatusTone::done);
    });
    connect(shelf, &StyleShelf::callBackRequested, this, [this] {
        const QString name = m_saved.styles().lastRemoved();
        m_saved.callBackStyle();
        Q_EMIT told(u"Estilo «%1» recuperado."_s.arg(name), StatusTone::done);
    });
    connect(shelf->grid(), &PresetGrid::renamed, &m_saved, &SavedTemplates::renameStyle);
    connect(shelf->grid(), &PresetGrid::chosen, this, [this](QUuid id) {
        if (const DesignTemplate* style = m_saved.styles().find(id))
            m_session.applyStyle(*style);
    });
    connect(shelf->grid(), &PresetGrid::pictureWanted, this, &TemplatesBinding::drawStyle);
    connect(m_pictures, &PresetPictures::ready, shelf->grid(), &PresetGrid::setPicture);
}

bool TemplatesBinding::isIdle() const
{
    return m_pictures->isIdle() && !m_redrawLater.isActive();
}

const BuiltInTemplateLibrary& TemplatesBinding::library()
{
    if (!m_library)
        m_library.emplace();
    return *m_library;
}

void TemplatesBinding::show()
{
    preview({});    // of what was there before
    showTemplates();
    showStyles();
    const PublicationItem* item = m_session.batch().currentItem();
    const bool isSeen =
        m_panel->templatesPanel()->isVisible() || m_panel->textPanel()->styles()->isVisible();
    if (!item || !isSeen || (m_drawn == *item && m_drawnFormat == m_session.batch().format))
        return;
    // Another image is shown at once; one that is being changed when it has come to rest.
    const bool isOther = !m_drawn || m_drawn->id != item->id;
    m_drawn = *item;
    m_drawnFormat = m_session.batch().format;
    m_redrawLater.start(isOther ? 0 : restBeforeRedrawing);
}

void TemplatesBinding::showTemplates()
{
    TemplatesPanel* panel = m_panel->templatesPanel();
    if (!panel->isVisible())
        return;
    const PublicationItem* item = m_session.batch().currentItem();
    const SocialFormat format = m_session.batch().format;
    TemplatesPanelState state{.hasImage = item != nullptr,
                              .format = format,
                              .own = {},
                              .packaged = {},
                              .recoverable = m_saved.templates().lastRemoved()};
    if (item) {
        for (const VisualTemplate& own : m_saved.templates().entries()) {
            const auto apply = [&own](PublicationItem& changed) { own.apply(changed); };
            if (own.suits(format))
                state.own.append({own.id, own.name, isApplied(apply, *item)});
        }
        for (const JSONVisualTemplateDefinition& design : library().definitions(format)) {
            state.packaged.append({design.id, design.name, isApplied(design.application(), *item)});
        }
    }
    panel->setState(state);
}

const TextLayer* TemplatesBinding::selectedText() const
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return nullptr;
    const auto text =
        std::ranges::find(item->layers, m_session.batch().selectedLayerID, &TextLayer::id);
    return text == item->layers.end() ? nullptr : &*text;
}

void TemplatesBinding::showStyles()
{
    StyleShelf* shelf = m_panel->textPanel()->styles();
    if (!shelf->isVisible())
        return;
    const TextLayer* text = selectedText();
    QList<Preset> styles;
    for (const DesignTemplate& style : m_saved.styles().entries()) {
        styles.append({style.id, style.name,
                       text && static_cast<const TextLayerDesign&>(*text) == style.style});
    }
    shelf->setStyles(styles, text ? QString() : u"Selecciona un texto para cambiar su estilo."_s,
                     m_saved.styles().lastRemoved());
}

std::optional<JSONVisualTemplateDefinition> TemplatesBinding::packaged(QUuid id)
{
    for (const JSONVisualTemplateDefinition& design :
         library().definitions(m_session.batch().format)) {
        if (design.id == id)
            return design;
    }
    return std::nullopt;
}

TemplateApplication TemplatesBinding::application(QUuid id)
{
    if (const VisualTemplate* own = m_saved.templates().find(id))
        return [own = *own](PublicationItem& item) { own.apply(item); };
    const auto design = packaged(id);
    return design ? design->application() : [](PublicationItem&) {};
}

QString TemplatesBinding::nameOf(QUuid id)
{
    if (const VisualTemplate* own = m_saved.templates().find(id))
        return own->name;
    const auto design = packaged(id);
    return design ? design->name : QString();
}

void TemplatesBinding::apply(QUuid id)
{
    m_session.applyTemplate(nameOf(id), application(id));
}

void TemplatesBinding::preview(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (id.isNull() || !item) {
        if (std::exchange(m_isPreviewing, false))
            Q_EMIT previewChanged(std::nullopt);
        return;
    }
    PublicationItem previewed = *item;
    application(id)(previewed);
    m_isPreviewing = true;
    Q_EMIT previewChanged(previewed);
}

void TemplatesBinding::drawTemplate(PresetGrid* grid, QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return;
    PublicationItem changed = *item;
    application(id)(changed);
    const auto live = [changed, format = m_session.batch().format, pixels = grid->picturePixels(),
                       photos = m_photos] { return drawnItem(changed, format, pixels, *photos); };
    const VisualTemplate* own = m_saved.templates().find(id);
    if (!own || !own->previewPNG)
        return m_pictures->want(id, live);
    m_pictures->want(id, [bytes = *own->previewPNG, pixels = grid->picturePixels(), live] {
        const QImage stored = decodedPreview(bytes, pixels);
        return stored.isNull() ? live() : stored;
    });
}

void TemplatesBinding::drawStyle(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    const DesignTemplate* style = m_saved.styles().find(id);
    if (!item || !style)
        return;
    const QSize pixels = m_panel->textPanel()->styles()->grid()->picturePixels();
    m_pictures->want(id, [image = item->image, design = style->style, pixels, photos = m_photos] {
        return drawnStyle(image, design, pixels, *photos);
    });
}

void TemplatesBinding::showTemplateMenu(PresetOwner owner, QUuid id, QPoint globalPosition)
{
    auto* menu = new QMenu(m_panel);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& text, auto act) {
        connect(menu->addAction(text), &QAction::triggered, this, act);
    };
    if (owner == PresetOwner::user) {
        add(u"Renombrar"_s, [this, id] { m_panel->templatesPanel()->rename(id); });
        add(u"Actualizar con esta composición"_s, [this, id] { update(id); });
    }
    add(u"Exportar plantilla…"_s, [this, id] { chooseExport(id); });
    if (owner == PresetOwner::user) {
        menu->addSeparator();
        add(u"Eliminar"_s, [this, id] { remove(id); });
    }
    menu->popup(globalPosition);
}

void TemplatesBinding::saveTemplate()
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return;
    m_panel->setTab(SideTab::templates);
    const QUuid id = m_saved.saveTemplate(*item, m_session.batch().format);
    Q_EMIT told(u"Plantilla guardada. Ponle nombre."_s, StatusTone::done);
    m_panel->templatesPanel()->rename(id);
}

void TemplatesBinding::update(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item || !m_saved.templates().find(id))
        return;
    const QString name = nameOf(id);
    m_saved.updateTemplate(id, *item, m_session.batch().format);
    Q_EMIT told(u"Plantilla «%1» actualizada con esta composición."_s.arg(name), StatusTone::done);
}

void TemplatesBinding::remove(QUuid id)
{
    if (!m_saved.templates().find(id))
        return;
    const QString name = nameOf(id);
    m_saved.removeTemplate(id);
    Q_EMIT told(
        u"Plantilla «%1» eliminada. Puedes recuperarla en el menú de Mis plantillas."_s.arg(name),
        StatusTone::done);
}

void TemplatesBinding::chooseDefinition()
{
    auto* dialog = new QFileDialog(m_panel->window(), u"Importar plantilla"_s, {},
                                   u"Plantillas (*.json);;Todos los archivos (*)"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] {
        for (const QString& path : dialog->selectedFiles())
            importDefinition(path);
    });
    dialog->open();
}

void TemplatesBinding::importDefinition(const QString& path)
{
    readDefinition(this, path);
}

QCoro::Task<> TemplatesBinding::readDefinition(QPointer<TemplatesBinding> self, QString path)
{
    QFuture<DefinitionFile> reading = runOnWorker([path]() -> DefinitionFile {
        try {
            return readDefinitionFile(path);
        } catch (const std::exception&) {
            return {std::nullopt, u"no hay memoria para leerla"_s};
        }
    });
    const DefinitionFile read = co_await reading;
    if (self)
        self->finishImport(read, path);
}

void TemplatesBinding::finishImport(const DefinitionFile& read, const QString& path)
{
    if (!read.definition) {
        Q_EMIT told(u"No se puede importar «%1»: %2."_s.arg(QFileInfo(path).fileName(), read.error),
                    StatusTone::problem);
        return;
    }
    const SocialFormat format = read.definition->socialFormat();
    // What the file leaves out is taken from the image it is imported over.
    const PublicationItem* current = m_session.batch().currentItem();
    const PublicationItem item = current ? *current : PublicationItem::make({}, {});
    VisualTemplate made = read.definition->visualTemplate(item, format);
    made.order.reset();
    if (made.previewPNG && made.previewPNG->size() > largestPreview)
        made.previewPNG.reset();
    if (m_saved.addTemplate(made).isNull()) {
        Q_EMIT told(u"La plantilla «%1» ya está en Mis plantillas."_s.arg(made.name),
                    StatusTone::info);
        return;
    }
    m_panel->setTab(SideTab::templates);
    const QString where = format == m_session.batch().format
                              ? QString()
                              : u" Es para el formato %1."_s.arg(rawValue(format));
    Q_EMIT told(u"Plantilla «%1» importada.%2"_s.arg(made.name, where), StatusTone::done);
}

void TemplatesBinding::chooseExport(QUuid id)
{
    QString name = nameOf(id);
    name.replace(u'/', u'-');
    auto* dialog = new QFileDialog(m_panel->window(), u"Exportar plantilla"_s, name + u".json"_s,
                                   u"Plantillas (*.json)"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"json"_s);
    connect(dialog, &QFileDialog::accepted, this,
            [this, dialog, id] { exportDefinition(id, dialog->selectedFiles().value(0)); });
    dialog->open();
}

void TemplatesBinding::exportDefinition(QUuid id, const QString& path)
{
    std::optional<JSONVisualTemplateDefinition> definition = packaged(id);
    if (const VisualTemplate* own = m_saved.templates().find(id)) {
        definition =
            library().templateDefinition(*own, own->name, formatOf(*own, m_session.batch().format));
    }
    if (definition)
        writeDefinition(this, path, definition->name, definitionBytes(*definition));
}

QCoro::Task<> TemplatesBinding::writeDefinition(QPointer<TemplatesBinding> self, QString path,
                                                QString name, QByteArray bytes)
{
    QFuture<QString> writing = runOnWorker([path, bytes] { return writeAtomically(path, bytes); });
    const QString failure = co_await writing;
    if (!self)
        co_return;
    if (failure.isEmpty()) {
        Q_EMIT self->told(
            u"Plantilla «%1» exportada como %2."_s.arg(name, QFileInfo(path).fileName()),
            StatusTone::done);
    } else {
        Q_EMIT self->told(u"No se pudo exportar la plantilla «%1»: %2."_s.arg(name, failure),
                          StatusTone::problem);
    }
}
