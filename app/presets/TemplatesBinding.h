#pragma once
#include "app/presets/PresetTile.h"
#include "model/PublicationItem.h"
#include "templates/SavedTemplates.h"

#include <QTimer>

#include <optional>

class PresetGrid;
class PresetPictures;
class StyleShelf;
class StudioSession;
class TemplateFiles;
class TemplatesPanel;
enum class StatusKind;

// The templates and the saved styles as the user sees and uses them: what the side panel shows of
// them, and what happens when they are used.
class TemplatesBinding : public QObject {
    Q_OBJECT
public:
    // All outlive it.
    TemplatesBinding(StudioSession& session, TemplatesPanel* panel, StyleShelf* shelf,
                     const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences);

    // Costs next to nothing while neither is seen.
    void show();
    bool isIdle() const;
    SavedTemplates& saved() { return m_saved; }

    void endPreview() { preview({}); }

    // The composition of the current item; its name is asked for in place.
    void saveTemplate();
    void chooseDefinition();
    void importDefinition(const QString& path);
    void exportDefinition(QUuid id, const QString& path);

Q_SIGNALS:
    // The current item as a template would make it; none: as it is.
    void previewChanged(const std::optional<PublicationItem>& item);
    void told(const QString& sentence, StatusKind tone);
    void panelRequested();    // the templates are to be seen

private:
    void connectTemplates();
    void connectStyles();
    void showTemplates();
    void showStyles();
    void redraw();
    const BuiltInTemplateLibrary& library();
    std::optional<JSONVisualTemplateDefinition> packaged(QUuid id);
    QString nameOf(QUuid id);
    TemplateApplication application(QUuid id);    // none for an unknown id
    bool wasNew(QUuid id);
    bool refusesWhileImporting();    // and says so
    void apply(QUuid id);
    void preview(QUuid id);
    void drawTemplate(PresetGrid* grid, QUuid id);
    void drawStyle(QUuid id);
    void showTemplateMenu(PresetOwner owner, QUuid id, QPoint globalPosition);
    void chooseExport(QUuid id);
    void update(QUuid id);
    void remove(QUuid id);
    const TextLayer* selectedText() const;

    StudioSession& m_session;
    TemplatesPanel* m_panel;
    StyleShelf* m_shelf;
    std::shared_ptr<PhotoCache> m_photos;
    SavedTemplates m_saved;
    std::optional<BuiltInTemplateLibrary> m_library;    // once it was looked at
    TemplateFiles* m_files;
    PresetPictures* m_pictures;
    // What the pictures were drawn from; those of templates are drawn anew when it has rested a
    // moment.
    PhotoHandle m_drawnPhoto;
    std::optional<PublicationItem> m_drawn;
    SocialFormat m_drawnFormat{};
    QTimer m_redrawLater;
    bool m_isPreviewing = false;
    QUuid m_new;    // until it has a name
};
