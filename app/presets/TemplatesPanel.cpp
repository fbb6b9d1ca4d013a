#include "app/presets/TemplatesPanel.h"

#include "app/controls/Badge.h"
#include "app/controls/Caption.h"
#include "app/controls/EmptyNote.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/LineField.h"
#include "app/presets/PresetGrid.h"
#include "model/SearchText.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QScrollArea>

using namespace Qt::StringLiterals;

namespace {

constexpr int noteHeight = 84;

QWidget* heading(const QString& title, const QList<QWidget*>& beside, QWidget* end)
{
    auto* line = new QWidget;
    line->setFixedHeight(32);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(new Caption(Type::heading, &Theme::text, title, line));
    for (QWidget* widget : beside)
        row->addWidget(widget);
    row->addStretch(1);
    row->addWidget(end);
    return line;
}

QList<Preset> named(const QList<Preset>& presets, const QString& search)
{
    QList<Preset> found;
    for (const Preset& preset : presets) {
        if (foldedForSearch(preset.name).contains(foldedForSearch(search.trimmed())))
            found.append(preset);
    }
    return found;
}

}    // namespace

TemplatesPanel::TemplatesPanel(QWidget* parent)
    : QWidget(parent),
      m_empty(new EmptyNote(Icon::templates, u"Aquí elegirás el diseño"_s,
                            u"Importa una imagen y verás cada plantilla sobre ella."_s, this)),
      m_content(new QWidget(this)),
      m_search(new LineField(u"Buscar plantilla"_s, u"Buscar plantilla"_s, Icon::search)),
      m_save(new PushButton(Icon::saveTemplate, u"Guardar plantilla"_s, ButtonKind::neutral,
                            ButtonSize::small)),
      m_count(new Badge),
      m_more(new IconButton(Icon::more, u"Importar o recuperar plantillas"_s, 28)),
      m_own(new PresetGrid(u"Mis plantillas"_s, PresetOwner::user)),
      m_note(new EmptyNote(Icon::none, {},
                           u"Guarda esta composición para reutilizarla en otras fotos."_s)),
      m_format(new Badge), m_packaged(new PresetGrid(u"De Moltiva"_s, PresetOwner::program)),
      m_nothingFound(new Caption(Type::small, &Theme::text3, u"Ninguna plantilla se llama así."_s))
{
    m_note->setFixedHeight(noteHeight);
    auto* page = new QWidget;
    auto* layout = new PanelLayout(page);
    QMargins margins = layout->contentsMargins();
    margins.setTop(0);
    layout->setContentsMargins(margins);
    layout->addRow(heading(u"Mis plantillas"_s, {m_count}, m_more), 8);
    layout->addRow(m_own, 4);
    layout->addRow(m_note, 0);
    layout->addRow(heading(u"De Moltiva"_s, {}, m_format), 16);
    layout->addRow(m_packaged, 4);
    layout->addRow(m_nothingFound, 8);
    layout->addStretch(1);
    m_area = scrolled(page);
    auto* fixed = new QWidget;
    auto* fixedLayout = new PanelLayout(fixed, PanelLayout::Beside::nothing);
    QMargins fixedMargins = fixedLayout->contentsMargins();
    fixedMargins.setBottom(0);
    fixedLayout->setContentsMargins(fixedMargins);
    fixedLayout->addRow({m_search, m_save}, 4);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(0);
    content->addWidget(fixed);
    content->addWidget(m_area, 1);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(m_empty, 1);
    rows->addWidget(m_content, 1);

    for (const PresetGrid* grid : {m_own, m_packaged}) {
        connect(grid, &PresetGrid::scrollToRequested, m_area,
                [this](QWidget* tile) { showIn(m_area, tile); });
    }
    connect(m_save, &PushButton::clicked, this, &TemplatesPanel::saveRequested);
    connect(m_more, &IconButton::clicked, this, &TemplatesPanel::showMenu);
    connect(m_search, &LineField::textChanged, this, [this] { show(m_state); });
    show(m_state);
}

void TemplatesPanel::setState(const TemplatesPanelState& state)
{
    if (state == m_state)
        return;
    m_state = state;
    show(state);
}

void TemplatesPanel::show(const TemplatesPanelState& state)
{
    m_empty->setVisible(!state.hasImage);
    m_content->setVisible(state.hasImage);
    const QList<Preset> own = named(state.own, m_search->text());
    const QList<Preset> packaged = named(state.packaged, m_search->text());
    const double ratio = row(state.format).aspectRatio;
    // Pictures in the story format are narrow: three fit in a row.
    const int columns = ratio < 0.7 ? 3 : 2;
    for (PresetGrid* grid : {m_own, m_packaged})
        grid->setShape(columns, ratio);
    m_own->setPresets(own);
    m_packaged->setPresets(packaged);
    m_count->setText(state.own.isEmpty() ? QString() : QString::number(own.size()));
    m_format->setText(rawValue(state.format));
    m_note->setVisible(state.own.isEmpty());
    m_nothingFound->setVisible(own.isEmpty() && packaged.isEmpty() &&
                               !m_search->text().trimmed().isEmpty());
}

void TemplatesPanel::rename(QUuid id)
{
    m_search->clear();
    m_own->rename(id);
}

void TemplatesPanel::showMenu()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(u"Importar plantilla…"_s), &QAction::triggered, this,
            &TemplatesPanel::importRequested);
    if (!m_state.recoverable.isEmpty()) {
        connect(menu->addAction(u"Recuperar «%1»"_s.arg(inMenu(m_state.recoverable))),
                &QAction::triggered, this, &TemplatesPanel::callBackRequested);
    }
    connect(menu, &QObject::destroyed, m_more, &Control::lookForPointer);
    menu->popup(m_more->mapToGlobal(m_more->rect().bottomLeft()));
}

QList<QWidget*> TemplatesPanel::focusOrder() const
{
    return {m_search, m_save, m_more, m_own, m_packaged};
}

void TemplatesPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}
