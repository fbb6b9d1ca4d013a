#pragma once
#include "app/presets/Gallery.h"
#include "app/presets/TagChips.h"
#include "model/PublicationItem.h"
#include "templates/SavedTemplates.h"

#include <QSet>

#include <optional>

class GalleryPictures;
class PresetPictures;
class SharedTemplates;
class StudioSession;
class StyleShelf;
class TeamDesigns;
class TemplateFiles;
class TemplateLibrary;
class TemplatesPanel;
enum class RenameEnd;
enum class StatusKind;

// Shows templates and saved styles in the side panel, and applies, saves, renames, shares or
// removes them when the user asks for it there.
class TemplatesBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding. Packs of templates are kept in `dataFolder`.
    TemplatesBinding(StudioSession& session, TemplatesPanel* panel, StyleShelf* shelf,
                     const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences,
                     const QString& dataFolder);
    ~TemplatesBinding() override;

    // Shows the templates of the team too. `shared` outlives the binding. Call it before show().
    void setSharedTemplates(SharedTemplates& shared);

    // Shows the current state of the session. Costs next to nothing while neither the panel nor the
    // shelf is visible.
    void show();
    bool isIdle() const;
    SavedTemplates& saved() { return m_saved; }
    TemplateLibrary& library();    // made and loaded at its first use

    void endPreview() { preview({}); }

    // Saves the current item's composition as a template; the user then types its name in the
    // gallery.
    void saveTemplate();
    // Tries another design of those that the panel shows, or of all while it is hidden.
    void tryAnother();
    void chooseDefinition();
    void importDefinition(const QString& path);
    void exportDefinition(QUuid id, const QString& path);
    void choosePack();

Q_SIGNALS:
    // `item`: the current item with the previewed template applied; none when no preview is shown.
    void previewChanged(const std::optional<PublicationItem>& item);
    void told(const QString& sentence, StatusKind kind);
    void panelRequested();    // the window should open the templates tab

private:
    void connectPanel();
    void connectGallery();
    void connectStyles();
    void showTemplates();
    void showChanged();
    void showStyles();
    QString nameOf(QUuid id);
    QString fileNameOf(QUuid id);    // of a design of the team
    bool isOwn(QUuid id) const { return m_saved.templates().find(id); }
    bool wasNew(QUuid id);
    bool refusesWhileImporting();    // tells the user why if it returns true
    void apply(QUuid id);
    void preview(QUuid id);
    void toggleLarge(QUuid id);
    void drawStyle(QUuid id);
    void showMenu(QUuid id, const QRect& at);
    void showPackMenu(const QString& key, QPoint globalPosition);
    void fold(const QString& key, bool folded);
    void rename(QUuid id);
    void finishRename(QUuid id, RenameEnd end);
    void chooseExport(QUuid id);
    void chooseOwnExport();
    void update(QUuid id);
    void replaceInTeam(QUuid id);
    void remove(QUuid id);
    const TextLayer* selectedText() const;

    StudioSession& m_session;
    TemplatesPanel* m_panel;
    StyleShelf* m_shelf;
    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    const QString m_dataFolder;
    SavedTemplates m_saved;
    SharedTemplates* m_shared = nullptr;    // null without a service that has a catalogue
    TeamDesigns* m_team = nullptr;          // null without m_shared
    std::unique_ptr<TemplateLibrary> m_library;
    TemplateFiles* m_files;
    GalleryPictures* m_gallery;
    PresetPictures* m_stylePictures;
    PhotoHandle m_drawnPhoto;    // under the styles in the pictures of the shelf
    // What the sections of the gallery were made for; none when they must be made anew.
    std::optional<SocialFormat> m_shownFormat;
    QList<GallerySection> m_sections;
    QStringList m_tags;
    QSet<QString> m_foldedFound;    // keys of the sections folded while a filter is set
    bool m_isPreviewing = false;
    bool m_triesWhenLoaded = false;    // tryAnother() waits for the library
    QUuid m_tried;                     // the design tried last by tryAnother()
    QUuid m_new;    // the template or style saved last, until the user has named it
};
