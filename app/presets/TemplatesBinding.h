#pragma once
#include "app/presets/Gallery.h"
#include "model/PublicationItem.h"
#include "templates/SavedTemplates.h"

#include <optional>

class GalleryPictures;
class PresetPictures;
class StyleShelf;
class StudioSession;
class TemplateFiles;
class TemplatesPanel;
enum class StatusKind;

// Shows templates and saved styles in the side panel, and applies, saves, renames or removes them
// when the user asks for it there.
class TemplatesBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    TemplatesBinding(StudioSession& session, TemplatesPanel* panel, StyleShelf* shelf,
                     const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences);

    // Shows the current state of the session. Costs next to nothing while neither the panel nor the
    // shelf is visible.
    void show();
    bool isIdle() const;
    SavedTemplates& saved() { return m_saved; }

    void endPreview() { preview({}); }

    // Saves the current item's composition as a template; the user then types its name in the grid.
    void saveTemplate();
    // Tries another design of those that the panel shows.
    void tryAnother();
    void chooseDefinition();
    void importDefinition(const QString& path);
    void exportDefinition(QUuid id, const QString& path);

Q_SIGNALS:
    // `item`: the current item with the previewed template applied; none when no preview is shown.
    void previewChanged(const std::optional<PublicationItem>& item);
    void told(const QString& sentence, StatusKind kind);
    void panelRequested();    // the window should open the templates tab

private:
    void connectTemplates();
    void connectStyles();
    void showTemplates();
    void showStyles();
    const BuiltInTemplateLibrary& library();
    std::optional<JSONVisualTemplateDefinition> packaged(QUuid id);
    QString nameOf(QUuid id);
    TemplateApplication application(QUuid id);    // empty for an unknown id
    bool wasNew(QUuid id);
    bool refusesWhileImporting();    // tells the user why if it returns true
    void apply(QUuid id);
    void preview(QUuid id);
    void drawStyle(QUuid id);
    QList<GallerySection> sections();
    void showMenu(QUuid id, QPoint globalPosition);
    void rename(QUuid id);
    void chooseExport(QUuid id);
    void update(QUuid id);
    void remove(QUuid id);
    const TextLayer* selectedText() const;

    StudioSession& m_session;
    TemplatesPanel* m_panel;
    StyleShelf* m_shelf;
    std::shared_ptr<PhotoCache> m_photos;
    SavedTemplates m_saved;
    std::optional<BuiltInTemplateLibrary> m_library;    // made at its first use
    TemplateFiles* m_files;
    GalleryPictures* m_gallery;
    PresetPictures* m_stylePictures;
    PhotoHandle m_drawnPhoto;    // under the styles in the pictures of the shelf
    QSet<QString> m_folded;      // keys of sections
    bool m_isPreviewing = false;
    QUuid m_tried;    // the design tried last by tryAnother()
    QUuid m_new;      // the template or style saved last, until the user has named it
};
