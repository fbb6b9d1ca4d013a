#pragma once
#include "app/presets/Gallery.h"
#include "app/presets/TagChips.h"
#include "app/theme/WindowClass.h"
#include "model/SocialFormat.h"

class Caption;
class EmptyNote;
class IconButton;
class LineField;
class PushButton;
class TemplateGallery;

struct TemplatesPanelState {
    bool hasImage = false;
    SocialFormat format = SocialFormat::carouselPortrait;
    QList<GallerySection> sections = {};    // those that pass the filter
    QStringList tags = {};                  // in use, most used first
    bool hasOwn = false;                    // whether the user has templates to export
    QString recoverable = {};          // name of the template that was removed last; empty: none
    QString recoverablePack = {};      // the same of a pack
    QString recoverableShared = {};    // the same of a template of the team
    bool operator==(const TemplatesPanelState&) const = default;
};

// Templates to apply to the selected images, with a search field and filters.
class TemplatesPanel : public QWidget {
    Q_OBJECT
public:
    explicit TemplatesPanel(QWidget* parent = nullptr);

    void setClass(WindowClass windowClass);
    void setState(const TemplatesPanelState& state);
    TemplateGallery* gallery() const { return m_gallery; }
    const GalleryFilter& filter() const { return m_filter; }
    // Without a signal.
    void clearFilter();
    // Lets the user type the template's name on its tile.
    void rename(QUuid id);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void shown();
    void hidden();
    void filterChanged();
    void saveRequested();
    void importRequested();
    void installRequested();
    void exportOwnRequested();
    void callBackRequested();
    void callBackPackRequested();
    void callBackSharedRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void show(const TemplatesPanelState& state);
    void setFilter(const GalleryFilter& filter);
    void showMenu();

    TemplatesPanelState m_state;
    GalleryFilter m_filter;
    EmptyNote* m_empty;
    QWidget* m_content;
    LineField* m_search;
    PushButton* m_save;
    IconButton* m_more;
    TagChips* m_chips;
    Caption* m_nothingFound;
    TemplateGallery* m_gallery;
};
