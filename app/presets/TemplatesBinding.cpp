#include "app/presets/TemplatesBinding.h"

#include "app/controls/ChooserFolder.h"
#include "app/presets/DesignMenu.h"
#include "app/presets/GalleryPictures.h"
#include "app/presets/PresetDrawing.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/PresetPictures.h"
#include "app/presets/StyleShelf.h"
#include "app/presets/TemplateFiles.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesPanel.h"
#include "model/SearchText.h"
#include "studio/StudioSession.h"

#include <QDir>
#include <QFileDialog>
#include <QRandomGenerator>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

QString beginning()
{
    return usualFolder(QStandardPaths::DocumentsLocation);
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

TemplatesBinding::TemplatesBinding(StudioSession& session, TemplatesPanel* panel, StyleShelf* shelf,
                                   const std::shared_ptr<PhotoCache>& photos,
                                   PreferencesStore& preferences)
    : m_session(session), m_panel(panel), m_shelf(shelf), m_photos(photos),
      m_saved(preferences, photos), m_files(new TemplateFiles(m_saved, this)),
      m_gallery(new GalleryPictures(
          session, panel->gallery(), photos, [this](QUuid id) { return application(id); }, this)),
      m_stylePictures(new PresetPictures(this))
{
    connectTemplates();
    connectStyles();
    connect(&m_saved, &SavedTemplates::storingFailed, this, [this] {
        Q_EMIT told(u"No se pudieron guardar tus plantillas. ¿Queda espacio en el disco? Se vuelve "
                    "a intentar con el próximo cambio."_s,
                    StatusKind::warning);
    });
    connect(m_files, &TemplateFiles::told, this, &TemplatesBinding::told);
    connect(m_files, &TemplateFiles::imported, this,
            [this](const QString& name, SocialFormat format) {
                Q_EMIT panelRequested();
                if (!m_saved.isStored())
                    return;    // the handler of storingFailed() has told the user
                const QString where = format == m_session.batch().format
                                          ? QString()
                                          : u" La verás en el formato %1."_s.arg(rawValue(format));
                Q_EMIT told(u"Plantilla «%1» importada.%2"_s.arg(name, where), StatusKind::done);
            });
}

void TemplatesBinding::connectTemplates()
{
    connect(m_panel, &TemplatesPanel::shown, this, &TemplatesBinding::show);
    connect(m_panel, &TemplatesPanel::saveRequested, this, &TemplatesBinding::saveTemplate);
    connect(m_panel, &TemplatesPanel::importRequested, this, &TemplatesBinding::chooseDefinition);
    connect(m_panel, &TemplatesPanel::callBackRequested, this, [this] {
        const QString name = m_saved.templates().lastRemoved();
        Q_EMIT told(u"Plantilla «%1» recuperada."_s.arg(name), StatusKind::done);
        m_saved.callBackTemplate();
    });
    connect(&m_saved, &SavedTemplates::templatesChanged, this, [this] {
        m_panel->gallery()->forgetApplied();
        show();
    });
    connect(m_panel, &TemplatesPanel::filterChanged, this, &TemplatesBinding::showTemplates);
    TemplateGallery* gallery = m_panel->gallery();
    connect(gallery, &TemplateGallery::renamed, this,
            [this](QUuid id, const QString& name) { m_saved.renameTemplate(id, name); });
    connect(gallery, &TemplateGallery::renameEnded, this, [this](QUuid id, RenameEnd end) {
        const bool isNew = wasNew(id);
        if (isNew && end == RenameEnd::abandoned) {
            Q_EMIT told(u"Plantilla descartada."_s, StatusKind::note);
            m_saved.removeTemplate(id);
        } else if ((isNew || end == RenameEnd::kept) && m_saved.isStored()) {
            Q_EMIT told(u"Plantilla «%1» guardada."_s.arg(nameOf(id)), StatusKind::done);
        }
    });
    connect(gallery, &TemplateGallery::removeRequested, this, &TemplatesBinding::remove);
    connect(gallery, &TemplateGallery::chosen, this, &TemplatesBinding::apply);
    connect(gallery, &TemplateGallery::previewWanted, this, &TemplatesBinding::preview);
    connect(gallery, &TemplateGallery::previewEnded, this, &TemplatesBinding::endPreview);
    connect(gallery, &TemplateGallery::largePreviewWanted, this,
            [this](QUuid id) { m_gallery->openLarge(id, nameOf(id)); });
    connect(gallery, &TemplateGallery::largePreviewToggled, this, [this](QUuid id) {
        if (m_gallery->largeDesign() == id)
            m_gallery->closeLarge();
        else
            m_gallery->openLarge(id, nameOf(id));
    });
    connect(gallery, &TemplateGallery::randomRequested, this, &TemplatesBinding::tryAnother);
    connect(gallery, &TemplateGallery::menuRequested, this, &TemplatesBinding::showMenu);
    connect(gallery, &TemplateGallery::foldRequested, this,
            [this](const QString& key, bool folded) {
                if (folded)
                    m_folded.insert(key);
                else
                    m_folded.remove(key);
                showTemplates();
            });
}

void TemplatesBinding::connectStyles()
{
    connect(m_shelf, &StyleShelf::shown, this, &TemplatesBinding::show);
    connect(&m_saved, &SavedTemplates::stylesChanged, this, &TemplatesBinding::show);
    connect(m_shelf, &StyleShelf::saveRequested, this, [this] {
        if (!selectedText())
            return;
        Q_EMIT told(u"Estilo guardado. Ponle nombre."_s, StatusKind::done);
        m_new = m_saved.saveStyle(*selectedText());
        m_shelf->rename(m_new);
    });
    connect(m_shelf, &StyleShelf::updateRequested, this, [this](QUuid id) {
        if (!selectedText() || !m_saved.styles().find(id))
            return;
        const QString name = m_saved.styles().find(id)->name;
        Q_EMIT told(u"Estilo «%1» actualizado."_s.arg(name), StatusKind::done);
        m_saved.updateStyle(id, *selectedText());
        m_shelf->grid()->outdatePicture(id);
    });
    connect(m_shelf, &StyleShelf::removeRequested, this, [this](QUuid id) {
        if (!m_saved.styles().find(id))
            return;
        Q_EMIT told(
            u"Estilo «%1» eliminado. Puedes recuperarlo."_s.arg(m_saved.styles().find(id)->name),
            StatusKind::done);
        m_saved.removeStyle(id);
    });
    connect(m_shelf, &StyleShelf::callBackRequested, this, [this] {
        const QString name = m_saved.styles().lastRemoved();
        Q_EMIT told(u"Estilo «%1» recuperado."_s.arg(name), StatusKind::done);
        m_saved.callBackStyle();
    });
    connect(m_shelf->grid(), &PresetGrid::renamed, &m_saved, &SavedTemplates::renameStyle);
    connect(m_shelf->grid(), &PresetGrid::renameEnded, this, [this](QUuid id, RenameEnd end) {
        const bool isNew = wasNew(id);
        const DesignTemplate* style = m_saved.styles().find(id);
        if (!style)
            return;
        if (isNew && end == RenameEnd::abandoned) {
            Q_EMIT told(u"Estilo descartado."_s, StatusKind::note);
            m_saved.removeStyle(id);
        } else if ((isNew || end == RenameEnd::kept) && m_saved.isStored()) {
            Q_EMIT told(u"Estilo «%1» guardado."_s.arg(style->name), StatusKind::done);
        }
    });
    connect(m_shelf->grid(), &PresetGrid::chosen, this, [this](QUuid id) {
        const DesignTemplate* style = m_saved.styles().find(id);
        if (style && !refusesWhileImporting())
            m_session.applyStyle(*style);
    });
    connect(m_shelf->grid(), &PresetGrid::pictureWanted, this, &TemplatesBinding::drawStyle);
    connect(m_stylePictures, &PresetPictures::ready, m_shelf->grid(), &PresetGrid::setPicture);
}

bool TemplatesBinding::isIdle() const
{
    return m_gallery->isIdle() && m_stylePictures->isIdle();
}

const BuiltInTemplateLibrary& TemplatesBinding::library()
{
    if (!m_library)
        m_library.emplace();
    return *m_library;
}

void TemplatesBinding::show()
{
    preview({});    // ends the preview, which shows the item's former state
    showTemplates();
    showStyles();
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return;
    // Pictures of styles depend only on the photo of the item.
    if (m_shelf->isVisible() && m_drawnPhoto != item->image) {
        m_drawnPhoto = item->image;
        m_stylePictures->dropWishes();    // the wanted pictures show the former photo
        m_shelf->grid()->outdatePictures();
    }
    if (m_panel->isVisible())
        m_gallery->show();
}

void TemplatesBinding::showTemplates()
{
    if (!m_panel->isVisible())
        return;
    const PublicationItem* item = m_session.batch().currentItem();
    m_panel->setState({.hasImage = item != nullptr,
                       .format = m_session.batch().format,
                       .sections = item ? sections() : QList<GallerySection>(),
                       .recoverable = m_saved.templates().lastRemoved()});
}

QList<GallerySection> TemplatesBinding::sections()
{
    const SocialFormat format = m_session.batch().format;
    const QString search = foldedForSearch(m_panel->filter().search.trimmed());
    const auto isFound = [&](const QString& name) {
        return foldedForSearch(name).contains(search);
    };
    GallerySection own{.key = u"own"_s, .title = u"Mis plantillas"_s};
    for (const VisualTemplate& saved : m_saved.templates().entries()) {
        if (saved.suits(format) && isFound(saved.name))
            own.tiles.append(
                {.id = saved.id, .name = saved.name, .canRename = true, .canRemove = true});
    }
    if (m_saved.templates().entries().isEmpty() && search.isEmpty())
        own.note = u"Guarda esta composición para reutilizarla en otras fotos."_s;
    GallerySection packaged{
        .key = u"moltiva"_s, .title = u"De Moltiva"_s, .badge = rawValue(format)};
    for (const JSONVisualTemplateDefinition& design : library().definitions(format)) {
        if (isFound(design.name))
            packaged.tiles.append({.id = design.id, .name = design.name});
    }
    QList<GallerySection> shown;
    for (GallerySection& section : QList{own, packaged}) {
        section.isFolded = m_folded.contains(section.key);
        if (!section.tiles.isEmpty() || !section.note.isEmpty())
            shown.append(section);
    }
    if (!shown.isEmpty())
        shown.first().offersRandom = true;
    return shown;
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
    if (!m_shelf->isVisible())
        return;
    const TextLayer* text = selectedText();
    QList<Preset> styles;
    for (const DesignTemplate& style : m_saved.styles().entries()) {
        styles.append({style.id, style.name,
                       text && static_cast<const TextLayerDesign&>(*text) == style.style});
    }
    m_shelf->setStyles(styles, text ? QString() : u"Selecciona un texto para cambiar su estilo."_s,
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
    return design ? design->application() : TemplateApplication();
}

QString TemplatesBinding::nameOf(QUuid id)
{
    if (const VisualTemplate* own = m_saved.templates().find(id))
        return own->name;
    const auto design = packaged(id);
    return design ? design->name : QString();
}

bool TemplatesBinding::wasNew(QUuid id)
{
    if (m_new != id)
        return false;
    m_new = {};
    return true;
}

// Refuses templates and styles during an import, because its images will replace the batch.
bool TemplatesBinding::refusesWhileImporting()
{
    if (m_session.isImporting())
        m_session.setStatus(u"Espera a que termine la importación de imágenes."_s,
                            StatusKind::warning);
    return m_session.isImporting();
}

void TemplatesBinding::apply(QUuid id)
{
    if (const TemplateApplication design = application(id); design && !refusesWhileImporting())
        m_session.applyTemplate(nameOf(id), design);
}

void TemplatesBinding::tryAnother()
{
    if (!m_session.batch().currentItem() || refusesWhileImporting())
        return;
    QList<QUuid> designs;
    for (const GallerySection& section : sections()) {
        for (const GalleryTile& tile : section.tiles) {
            if (tile.id != m_tried)
                designs.append(tile.id);
        }
    }
    if (designs.isEmpty()) {
        Q_EMIT told(u"No hay otra plantilla que probar."_s, StatusKind::note);
        return;
    }
    m_tried = designs[QRandomGenerator::global()->bounded(designs.size())];
    m_session.tryTemplate(nameOf(m_tried), application(m_tried));
}

void TemplatesBinding::preview(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    // During an import the canvas does not show the current item, so there is no preview.
    const TemplateApplication design =
        id.isNull() || m_session.isImporting() ? TemplateApplication() : application(id);
    m_panel->gallery()->setPreviewed(item && design ? id : QUuid());
    if (!item || !design) {
        m_gallery->closeLarge();
        if (std::exchange(m_isPreviewing, false))
            Q_EMIT previewChanged(std::nullopt);
        return;
    }
    PublicationItem previewed = *item;
    design(previewed);
    m_isPreviewing = true;
    Q_EMIT previewChanged(previewed);
    if (m_gallery->isLargeOpen() && m_gallery->largeDesign() != id)
        m_gallery->openLarge(id, nameOf(id));
}

void TemplatesBinding::drawStyle(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    const DesignTemplate* style = m_saved.styles().find(id);
    if (!item || !style)
        return;
    const QSize pixels = m_shelf->grid()->picturePixels();
    m_stylePictures->want(id,
                          [image = item->image, design = style->style, pixels, photos = m_photos] {
                              return drawnStyle(image, design, pixels, *photos);
                          });
}

void TemplatesBinding::showMenu(QUuid id, QPoint globalPosition)
{
    auto* menu = new DesignMenu(m_panel);
    menu->add(Icon::fitFill, u"Vista previa grande"_s, u"Espacio"_s,
              [this, id] { m_gallery->openLarge(id, nameOf(id)); });
    menu->addSeparator();
    const bool isOwn = m_saved.templates().find(id);
    if (isOwn) {
        menu->add(Icon::slotTitle, u"Renombrar"_s, u"F2"_s, [this, id] { rename(id); });
        menu->add(Icon::refresh, u"Actualizar con esta composición"_s, {},
                  [this, id] { update(id); });
    }
    menu->add(Icon::exportCurrent, u"Exportar plantilla…"_s, {}, [this, id] { chooseExport(id); });
    if (isOwn) {
        menu->addSeparator();
        menu->add(Icon::discard, u"Eliminar"_s, u"Supr"_s, [this, id] { remove(id); });
    }
    menu->popup(globalPosition);
}

// Lets the user type a name on the tile, which neither a filter nor a folded section may hide.
void TemplatesBinding::rename(QUuid id)
{
    m_panel->clearFilter();
    m_folded.remove(u"own"_s);
    showTemplates();
    m_panel->rename(id);
}

void TemplatesBinding::saveTemplate()
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return;
    Q_EMIT panelRequested();
    // Told before saving, so that the message of a failed save replaces this one.
    Q_EMIT told(u"Plantilla guardada. Ponle nombre."_s, StatusKind::done);
    m_new = m_saved.saveTemplate(*item, m_session.batch().format);
    rename(m_new);
}

void TemplatesBinding::update(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item || !m_saved.templates().find(id))
        return;
    const QString name = nameOf(id);
    Q_EMIT told(u"Plantilla «%1» actualizada con esta composición."_s.arg(name), StatusKind::done);
    m_saved.updateTemplate(id, *item, m_session.batch().format);
    m_panel->gallery()->outdatePicture(id);
}

void TemplatesBinding::remove(QUuid id)
{
    if (!m_saved.templates().find(id))
        return;
    Q_EMIT told(u"Plantilla «%1» eliminada. Puedes recuperarla en el menú de Mis plantillas."_s.arg(
                    nameOf(id)),
                StatusKind::done);
    m_saved.removeTemplate(id);
}

void TemplatesBinding::chooseDefinition()
{
    auto* dialog = new QFileDialog(m_panel->window(), u"Importar plantilla"_s, beginning(),
                                   u"Plantillas (*.json);;Todos los archivos (*)"_s);
    disposeOf(dialog);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] {
        for (const QString& path : dialog->selectedFiles())
            importDefinition(path);
    });
    dialog->open();
}

void TemplatesBinding::importDefinition(const QString& path)
{
    // Properties that the file leaves out come from the current item, or from an empty one.
    const PublicationItem* current = m_session.batch().currentItem();
    m_files->read(path, current ? *current : PublicationItem::make({}, {}));
}

void TemplatesBinding::chooseExport(QUuid id)
{
    QString name = nameOf(id);
    name.replace(u'/', u'-');
    auto* dialog =
        new QFileDialog(m_panel->window(), u"Exportar plantilla"_s,
                        QDir(beginning()).filePath(name + u".json"_s), u"Plantillas (*.json)"_s);
    disposeOf(dialog);
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
        m_files->write(path, *definition);
}
