#include "app/presets/TemplatesBinding.h"

#include "app/controls/ChooserFolder.h"
#include "app/presets/DesignMenu.h"
#include "app/presets/GalleryPictures.h"
#include "app/presets/GallerySections.h"
#include "app/presets/PresetDrawing.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/PresetPictures.h"
#include "app/presets/StyleShelf.h"
#include "app/presets/TeamDesigns.h"
#include "app/presets/TemplateFiles.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesPanel.h"
#include "app/theme/Icons.h"
#include "studio/StudioSession.h"
#include "studio/templates/SharedTemplates.h"
#include "studio/templates/TemplateLibrary.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

constexpr int besideTile = 6;    // pixels between a tile and its menu

QString beginning()
{
    return usualFolder(QStandardPaths::DocumentsLocation);
}

}    // namespace

TemplatesBinding::TemplatesBinding(StudioSession& session, TemplatesPanel* panel, StyleShelf* shelf,
                                   const std::shared_ptr<PhotoCache>& photos,
                                   PreferencesStore& preferences, const QString& dataFolder)
    : m_session(session), m_panel(panel), m_shelf(shelf), m_photos(photos),
      m_preferences(preferences), m_dataFolder(dataFolder), m_saved(preferences, photos),
      m_files(new TemplateFiles(m_saved, this)),
      m_gallery(new GalleryPictures(
          session, panel->gallery(), photos, [this](QUuid id) { return library().application(id); },
          this)),
      m_stylePictures(new PresetPictures(this))
{
    connectPanel();
    connectGallery();
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

// The gallery asks for pictures and for what is applied: no longer, once the library is gone.
TemplatesBinding::~TemplatesBinding()
{
    disconnect(m_panel->gallery(), nullptr, this, nullptr);
    disconnect(m_panel->gallery(), nullptr, m_gallery, nullptr);
    m_panel->gallery()->setAppliedTest({});
}

void TemplatesBinding::setSharedTemplates(SharedTemplates& shared)
{
    Q_ASSERT(!m_library);
    m_shared = &shared;
    m_team = new TeamDesigns(shared, this);
    connect(m_team, &TeamDesigns::told, this, &TemplatesBinding::told);
    connect(m_team, &TeamDesigns::changed, this, &TemplatesBinding::showTemplates);
    connect(m_shared, &SharedTemplates::changed, this, &TemplatesBinding::showChanged);
}

TemplateLibrary& TemplatesBinding::library()
{
    if (m_library)
        return *m_library;
    m_library = std::make_unique<TemplateLibrary>(m_saved, m_shared, m_preferences, m_dataFolder);
    connect(m_library.get(), &TemplateLibrary::marksChanged, this, &TemplatesBinding::showChanged);
    connect(m_library.get(), &TemplateLibrary::changed, this, [this] {
        m_panel->gallery()->outdatePictures();    // a design may have another look now
        showChanged();
        if (m_library->isLoaded() && std::exchange(m_triesWhenLoaded, false))
            tryAnother();
    });
    connect(m_library.get(), &TemplateLibrary::told, this,
            [this](const QString& sentence, bool isWarning) {
                Q_EMIT told(sentence, isWarning ? StatusKind::warning : StatusKind::done);
            });
    m_library->load();
    return *m_library;
}

void TemplatesBinding::connectPanel()
{
    connect(m_panel, &TemplatesPanel::shown, this, [this] {
        show();
        if (m_shared)
            m_shared->setWatched(true);
    });
    connect(m_panel, &TemplatesPanel::hidden, this, [this] {
        if (m_shared)
            m_shared->setWatched(false);
    });
    connect(m_panel, &TemplatesPanel::filterChanged, this, [this] {
        m_foldedFound.clear();
        showChanged();
    });
    connect(m_panel, &TemplatesPanel::saveRequested, this, &TemplatesBinding::saveTemplate);
    connect(m_panel, &TemplatesPanel::importRequested, this, &TemplatesBinding::chooseDefinition);
    connect(m_panel, &TemplatesPanel::installRequested, this, &TemplatesBinding::choosePack);
    connect(m_panel, &TemplatesPanel::exportOwnRequested, this, &TemplatesBinding::chooseOwnExport);
    connect(m_panel, &TemplatesPanel::callBackRequested, this, [this] {
        const QString name = m_saved.templates().lastRemoved();
        Q_EMIT told(u"Plantilla «%1» recuperada."_s.arg(name), StatusKind::done);
        m_saved.callBackTemplate();
    });
    connect(m_panel, &TemplatesPanel::callBackPackRequested, this,
            [this] { library().callBackPack(); });
    connect(m_panel, &TemplatesPanel::callBackSharedRequested, this, [this] {
        if (m_team)
            m_team->callBack();
    });
}

void TemplatesBinding::connectGallery()
{
    TemplateGallery* gallery = m_panel->gallery();
    connect(gallery, &TemplateGallery::renamed, this, [this](QUuid id, const QString& name) {
        const QString shared = fileNameOf(id);
        if (shared.isEmpty())
            m_saved.renameTemplate(id, name);
        else if (m_team)
            m_team->rename(shared, name);
    });
    connect(gallery, &TemplateGallery::renameEnded, this, &TemplatesBinding::finishRename);
    connect(gallery, &TemplateGallery::removeRequested, this, &TemplatesBinding::remove);
    connect(gallery, &TemplateGallery::chosen, this, &TemplatesBinding::apply);
    connect(gallery, &TemplateGallery::previewWanted, this, &TemplatesBinding::preview);
    connect(gallery, &TemplateGallery::previewEnded, this, &TemplatesBinding::endPreview);
    connect(gallery, &TemplateGallery::largePreviewWanted, this,
            [this](QUuid id) { m_gallery->openLarge(id, nameOf(id)); });
    connect(gallery, &TemplateGallery::largePreviewToggled, this, &TemplatesBinding::toggleLarge);
    connect(gallery, &TemplateGallery::favouriteToggled, this,
            [this](QUuid id) { library().setFavourite(id, !library().isFavourite(id)); });
    connect(gallery, &TemplateGallery::randomRequested, this, &TemplatesBinding::tryAnother);
    connect(gallery, &TemplateGallery::refreshRequested, this, [this] {
        if (m_shared)
            m_shared->refresh();
    });
    connect(gallery, &TemplateGallery::menuRequested, this, &TemplatesBinding::showMenu);
    connect(gallery, &TemplateGallery::sectionMenuRequested, this, &TemplatesBinding::showPackMenu);
    connect(gallery, &TemplateGallery::foldRequested, this, &TemplatesBinding::fold);
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
    const bool isReading = m_library && !m_library->isLoaded();
    return !isReading && m_gallery->isIdle() && m_stylePictures->isIdle();
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

void TemplatesBinding::showChanged()
{
    m_shownFormat.reset();
    m_panel->gallery()->forgetApplied();
    showTemplates();
}

void TemplatesBinding::showTemplates()
{
    if (!m_panel->isVisible())
        return;
    const bool hasImage = m_session.batch().currentItem();
    const SocialFormat format = m_session.batch().format;
    if (hasImage && m_shownFormat != format) {
        m_shownFormat = format;
        m_sections = gallerySections(library(), m_shared, format, m_panel->filter(), m_foldedFound);
        m_tags = library().tags(format);
    }
    m_panel->setState({.hasImage = hasImage,
                       .format = format,
                       .sections = m_sections,
                       .tags = m_tags,
                       .hasOwn = !m_saved.templates().entries().isEmpty(),
                       .recoverable = m_saved.templates().lastRemoved(),
                       .recoverablePack = m_library ? m_library->lastRemovedPack() : QString(),
                       .recoverableShared = m_team ? m_team->lastWithdrawn() : QString()});
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

QString TemplatesBinding::nameOf(QUuid id)
{
    const LibraryDesign* design = library().find(id);
    return design ? design->name : QString();
}

QString TemplatesBinding::fileNameOf(QUuid id)
{
    const LibraryDesign* design = library().find(id);
    return design ? design->fileName : QString();
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
    const TemplateApplication design = library().application(id);
    if (!design || refusesWhileImporting())
        return;
    m_session.applyTemplate(nameOf(id), design);
    library().noteUsed(id);
}

void TemplatesBinding::tryAnother()
{
    if (!m_session.batch().currentItem() || refusesWhileImporting())
        return;
    if (!library().isLoaded()) {
        m_triesWhenLoaded = true;
        return;
    }
    const SocialFormat format = m_session.batch().format;
    const GalleryFilter filter = m_panel->isVisible() ? m_panel->filter() : GalleryFilter();
    const QList<QUuid> shown =
        library().found(filter.search, filter.tag, filter.favourites, format);
    const std::optional<QUuid> other =
        shown.isEmpty() ? std::nullopt : library().anyOther(m_tried, format, shown);
    if (!other) {
        Q_EMIT told(u"No hay otra plantilla que probar."_s, StatusKind::note);
        return;
    }
    m_tried = *other;
    m_session.tryTemplate(nameOf(m_tried), library().application(m_tried));
}

void TemplatesBinding::preview(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    // During an import the canvas does not show the current item, so there is no preview.
    const TemplateApplication design =
        id.isNull() || m_session.isImporting() ? TemplateApplication() : library().application(id);
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

void TemplatesBinding::toggleLarge(QUuid id)
{
    if (m_gallery->largeDesign() == id)
        m_gallery->closeLarge();
    else
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

void TemplatesBinding::showMenu(QUuid id, const QRect& at)
{
    const LibraryDesign* design = library().find(id);
    if (!design)
        return;
    const QString name = design->name, file = design->fileName;
    const bool isAdministrator = m_team && m_team->isAdministrator();
    const bool isFavourite = library().isFavourite(id);
    auto* menu = new DesignMenu(m_panel);
    menu->add(Icon::fitFill, u"Vista previa grande"_s, u"Espacio"_s,
              [this, id, name] { m_gallery->openLarge(id, name); });
    menu->add(isFavourite ? Icon::starFilled : Icon::star,
              isFavourite ? u"Quitar de favoritas"_s : u"Añadir a favoritas"_s, {},
              [this, id, isFavourite] { library().setFavourite(id, !isFavourite); });
    switch (design->origin) {
    case DesignOrigin::user:
        menu->addSeparator();
        menu->add(Icon::slotTitle, u"Renombrar"_s, u"F2"_s, [this, id] { rename(id); });
        menu->add(Icon::refresh, u"Actualizar con esta composición"_s, {},
                  [this, id] { update(id); });
        menu->add(Icon::exportCurrent, u"Exportar plantilla…"_s, {},
                  [this, id] { chooseExport(id); });
        if (isAdministrator)
            menu->add(Icon::publish, u"Compartir con el equipo"_s, {}, [this, id] {
                if (const auto shared = library().definition(id, m_session.batch().format))
                    m_team->share(*shared);
            });
        menu->addSeparator();
        menu->add(Icon::discard, u"Eliminar"_s, u"Supr"_s, [this, id] { remove(id); });
        break;
    case DesignOrigin::team: {
        if (!isAdministrator)
            break;
        const int kept = m_team->keptVersions(file);
        menu->addSeparator();
        menu->addHeading(u"Administrar la plantilla del equipo"_s);
        menu->add(Icon::slotTitle, u"Renombrar"_s, u"F2"_s, [this, id] { rename(id); });
        menu->add(Icon::refresh, u"Sustituir por la composición actual"_s, {},
                  [this, id] { replaceInTeam(id); });
        if (kept > 0)
            menu->add(Icon::history, u"Recuperar versión anterior"_s,
                      kept == 1 ? u"1 guardada"_s : u"%1 guardadas"_s.arg(kept),
                      [this, file, name] { m_team->restore(file, name); });
        menu->addConfirmed(Icon::discard, u"Retirar"_s, u"¿Retirar para todos?"_s,
                           [this, file, name] { m_team->withdraw(file, name); });
        break;
    }
    case DesignOrigin::program:
    case DesignOrigin::pack:
        menu->addSeparator();
        menu->add(Icon::exportCurrent, u"Exportar plantilla…"_s, {},
                  [this, id] { chooseExport(id); });
        break;
    }
    const int across = std::max(menu->minimumWidth(), menu->sizeHint().width());
    const int left = at.isEmpty() ? 0 : across + besideTile;
    menu->popup(at.topLeft() - QPoint(left, 0));
}

void TemplatesBinding::showPackMenu(const QString& key, QPoint globalPosition)
{
    auto* menu = new DesignMenu(m_panel);
    menu->add(Icon::discard, u"Quitar paquete"_s, {}, [this, key] { library().removePack(key); });
    menu->popup(globalPosition);
}

void TemplatesBinding::fold(const QString& key, bool folded)
{
    if (m_panel->filter().isEmpty())
        library().setFolded(key, folded);
    else if (folded)
        m_foldedFound.insert(key);
    else
        m_foldedFound.remove(key);
    showChanged();
}

// Lets the user type a name on the tile, which neither a filter nor a folded section may hide.
void TemplatesBinding::rename(QUuid id)
{
    m_panel->clearFilter();
    library().setFolded((isOwn(id) ? ownSection : teamSection).toString(), false);
    showChanged();
    m_panel->rename(id);
}

void TemplatesBinding::finishRename(QUuid id, RenameEnd end)
{
    if (!isOwn(id))
        return;    // m_team tells how it went
    const bool isNew = wasNew(id);
    if (isNew && end == RenameEnd::abandoned) {
        Q_EMIT told(u"Plantilla descartada."_s, StatusKind::note);
        m_saved.removeTemplate(id);
    } else if ((isNew || end == RenameEnd::kept) && m_saved.isStored()) {
        Q_EMIT told(u"Plantilla «%1» guardada."_s.arg(m_saved.templates().find(id)->name),
                    StatusKind::done);
    }
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
    if (!item || !isOwn(id))
        return;
    Q_EMIT told(u"Plantilla «%1» actualizada con esta composición."_s.arg(nameOf(id)),
                StatusKind::done);
    m_saved.updateTemplate(id, *item, m_session.batch().format);
}

void TemplatesBinding::replaceInTeam(QUuid id)
{
    const PublicationItem* item = m_session.batch().currentItem();
    const LibraryDesign* design = library().find(id);
    if (!item || !design || !m_team)
        return;
    const SocialFormat format = m_session.batch().format;
    const VisualTemplate composed = VisualTemplate::of(*item, design->name, format);
    m_team->replaceWith(design->fileName, design->name, library().definitionOf(composed, format));
}

void TemplatesBinding::remove(QUuid id)
{
    if (!isOwn(id))
        return;
    Q_EMIT told(u"Plantilla «%1» eliminada. Puedes recuperarla en el menú de las plantillas."_s.arg(
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
    if (const auto definition = library().definition(id, m_session.batch().format))
        m_files->write(path, *definition);
}

void TemplatesBinding::choosePack()
{
    auto* dialog =
        new QFileDialog(m_panel->window(), u"Instalar paquete o la carpeta de un archivo"_s,
                        beginning(), u"Paquetes (*.zip *.json);;Todos los archivos (*)"_s);
    disposeOf(dialog);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] {
        const QString path = dialog->selectedFiles().value(0);
        const bool isInFolder = path.endsWith(u".json"_s, Qt::CaseInsensitive);
        library().installPack(isInFolder ? QFileInfo(path).path() : path);
    });
    dialog->open();
}

void TemplatesBinding::chooseOwnExport()
{
    auto* dialog =
        new QFileDialog(m_panel->window(), u"Exportar mis plantillas"_s,
                        QDir(beginning()).filePath(u"Mis plantillas.zip"_s), u"Paquetes (*.zip)"_s);
    disposeOf(dialog);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"zip"_s);
    connect(dialog, &QFileDialog::accepted, this,
            [this, dialog] { library().exportOwn(dialog->selectedFiles().value(0)); });
    dialog->open();
}
