#include "app/presets/TemplatesPanel.h"

#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/EmptyNote.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/LineField.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplateGalleryAccessible.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace {

constexpr int roomForSaveLabel = 336, aboveChips = 12, aboveGallery = 8, panelMoreSide = 28;

QString nothingFound(const GalleryFilter& filter)
{
    if (!filter.search.trimmed().isEmpty())
        return filter.tag.isEmpty() && !filter.favourites ? u"Ninguna plantilla se llama así."_s
                                                          : u"Ninguna plantilla coincide."_s;
    return filter.favourites ? u"Marca plantillas con la estrella."_s
                             : u"Ninguna plantilla coincide."_s;
}

// Qt asks for the role of a gallery as soon as it has a name.
TemplateGallery* newGallery()
{
    makeTemplateGalleriesAccessible();
    return new TemplateGallery;
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
      m_more(new IconButton(Icon::more, u"Paquetes y archivos de plantillas"_s, panelMoreSide)),
      m_chips(new TagChips), m_nothingFound(new Caption(Type::small, &Theme::text3)),
      m_gallery(newGallery())
{
    auto* fixed = new QWidget;
    auto* fixedLayout = new PanelLayout(fixed, PanelLayout::Beside::nothing);
    QMargins margins = fixedLayout->contentsMargins();
    margins.setBottom(0);
    fixedLayout->setContentsMargins(margins);
    fixedLayout->addRow({m_search, m_save, m_more}, 4);
    fixedLayout->addRow(m_chips, aboveChips);
    fixedLayout->addRow(m_nothingFound, aboveGallery);
    auto* content = new QVBoxLayout(m_content);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(aboveGallery);
    content->addWidget(fixed);
    content->addWidget(m_gallery, 1);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(m_empty, 1);
    rows->addWidget(m_content, 1);

    connect(m_save, &PushButton::clicked, this, &TemplatesPanel::saveRequested);
    connect(m_more, &IconButton::clicked, this, &TemplatesPanel::showMenu);
    connect(m_search, &LineField::textChanged, this, [this](const QString& text) {
        GalleryFilter filter = m_filter;
        filter.search = text;
        setFilter(filter);
    });
    connect(m_chips, &TagChips::chosen, this, [this](const QString& tag, bool favourites) {
        setFilter({.search = m_filter.search, .tag = tag, .favourites = favourites});
    });
    show(m_state);
}

void TemplatesPanel::setClass(WindowClass windowClass)
{
    m_gallery->setClass(windowClass);
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
    m_chips->setTags(state.tags);
    m_gallery->setRatio(row(state.format).aspectRatio);
    m_gallery->setSections(state.sections);
    m_nothingFound->setText(nothingFound(m_filter));
    m_nothingFound->setVisible(state.sections.isEmpty());
}

void TemplatesPanel::setFilter(const GalleryFilter& filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    m_gallery->scrollToTop();
    Q_EMIT filterChanged();
    m_nothingFound->setText(nothingFound(m_filter));
}

void TemplatesPanel::clearFilter()
{
    m_filter = {};
    const QSignalBlocker quiet(m_search);
    m_search->clear();
    m_chips->setFilter({});
}

void TemplatesPanel::rename(QUuid id)
{
    m_gallery->rename(id);
}

void TemplatesPanel::showMenu()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](Icon icon, const QString& text, void (TemplatesPanel::*act)()) {
        connect(menu->addAction(menuIcon(icon), text), &QAction::triggered, this, act);
    };
    add(Icon::pack, u"Instalar paquete…"_s, &TemplatesPanel::installRequested);
    add(Icon::templates, u"Importar plantilla…"_s, &TemplatesPanel::importRequested);
    if (m_state.hasOwn)
        add(Icon::exportAll, u"Exportar mis plantillas"_s, &TemplatesPanel::exportOwnRequested);
    menu->addSeparator();
    if (!m_state.recoverable.isEmpty())
        add(Icon::undo, u"Recuperar «%1»"_s.arg(inMenu(m_state.recoverable)),
            &TemplatesPanel::callBackRequested);
    if (!m_state.recoverablePack.isEmpty())
        add(Icon::undo, u"Recuperar el paquete «%1»"_s.arg(inMenu(m_state.recoverablePack)),
            &TemplatesPanel::callBackPackRequested);
    if (!m_state.recoverableShared.isEmpty())
        add(Icon::undo, u"Recuperar «%1» del equipo"_s.arg(inMenu(m_state.recoverableShared)),
            &TemplatesPanel::callBackSharedRequested);
    connect(menu, &QObject::destroyed, m_more, &Control::lookForPointer);
    menu->popup(m_more->mapToGlobal(m_more->rect().bottomLeft()));
}

QList<QWidget*> TemplatesPanel::focusOrder() const
{
    return {m_search, m_save, m_more, m_chips, m_gallery};
}

void TemplatesPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}

void TemplatesPanel::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    Q_EMIT hidden();
}

void TemplatesPanel::resizeEvent(QResizeEvent*)
{
    m_save->setLabels(width() < roomForSaveLabel ? Labels::hidden : Labels::shown);
}
