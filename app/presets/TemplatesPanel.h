#pragma once
#include "app/presets/PresetTile.h"
#include "app/theme/WindowClass.h"
#include "model/SocialFormat.h"

class Badge;
class Caption;
class EmptyNote;
class LineField;
class PresetGrid;
class PushButton;
class QScrollArea;

struct TemplatesPanelState {
    bool hasImage = false;
    SocialFormat format = SocialFormat::carouselPortrait;
    QList<Preset> own, packaged;    // those that suit `format`: from the user, from the program
    QString recoverable;            // name of the template that was removed last; empty: none
    bool operator==(const TemplatesPanelState&) const = default;
};

// Templates to apply to the selected images: the user's own, and those that come with the program.
class TemplatesPanel : public QWidget {
    Q_OBJECT
public:
    explicit TemplatesPanel(QWidget* parent = nullptr);

    void setClass(WindowClass windowClass);
    void setState(const TemplatesPanelState& state);
    PresetGrid* own() const { return m_own; }
    PresetGrid* packaged() const { return m_packaged; }
    // Lets the user type the template's name on its tile. Clears the search, which may hide the
    // tile.
    void rename(QUuid id);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void shown();
    void saveRequested();
    void importRequested();
    void callBackRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void show(const TemplatesPanelState& state);
    void showMenu();

    TemplatesPanelState m_state;
    EmptyNote* m_empty;
    QWidget* m_content;
    QScrollArea* m_area;    // scrolls all that is below the search field
    LineField* m_search;
    PushButton* m_save;
    Badge* m_count;
    IconButton* m_more;
    PresetGrid* m_own;
    QWidget* m_note;
    Badge* m_format;
    PresetGrid* m_packaged;
    Caption* m_nothingFound;
};
