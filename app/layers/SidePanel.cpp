#include "app/layers/SidePanel.h"

#include "app/controls/EmptyNote.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/fields/TabStrip.h"
#include "app/controls/popovers/FontField.h"
#include "app/controls/popovers/Swatch.h"
#include "app/layers/FrameFields.h"
#include "app/layers/ShapesPanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/StyleShelf.h"
#include "app/presets/TemplatesPanel.h"
#include "app/theme/Painting.h"

#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Widths in pixels, without the hairline at the left.
constexpr int narrowestPanel = 319, widestPanel = 439, compactPanel = 279;
constexpr int lowPanel = 816;    // in a lower panel the caption shows fewer lines
constexpr int tabsTop = 4, tabsSide = 8;

}    // namespace

SidePanel::SidePanel(QWidget* parent)
    : QWidget(parent), m_tabs(new TabStrip({{Icon::slotTitle, u"Texto"_s},
                                            {Icon::shapes, u"Formas"_s},
                                            {Icon::templates, u"Plantillas"_s}},
                                           this)),
      m_pages(new QStackedWidget(this)), m_textPages(new QStackedWidget), m_text(new TextPanel),
      m_shapes(new ShapesPanel), m_templates(new TemplatesPanel)
{
    setMinimumWidth(narrowestPanel);
    setMaximumWidth(widestPanel);
    QScrollArea* texts = scrolled(m_text);
    auto* empty = new QWidget;
    m_emptyRows = new PanelLayout(empty, PanelLayout::Beside::nothing);
    m_emptyRows->addWidget(
        new EmptyNote(
            Icon::slotTitle, u"Aquí editarás los textos"_s,
            u"Cada imagen lleva título, subtítulo, párrafo y CTA. Aparecerán en cuanto importes la primera."_s),
        1);
    m_textPages->addWidget(empty);
    m_textPages->addWidget(texts);
    m_pages->addWidget(m_textPages);
    m_pages->addWidget(scrolled(m_shapes));
    m_pages->addWidget(m_templates);    // has a scroll area of its own

    auto* tabs = new QHBoxLayout;
    tabs->setContentsMargins(tabsSide, tabsTop, tabsSide, 0);
    tabs->addWidget(m_tabs);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addLayout(tabs);
    rows->addWidget(m_pages, 1);
    connect(m_tabs, &TabStrip::chosen, this, [this](int index) {
        showPage(index);
        Q_EMIT tabChosen(SideTab(index));
    });
    const auto follow = [texts](QWidget* wanted) { showIn(texts, wanted); };
    connect(m_text, &TextPanel::scrollToRequested, texts, follow, Qt::QueuedConnection);
    connect(m_text->styles(), &StyleShelf::scrollToRequested, texts, follow);
    setContent(Content::none);
}

void SidePanel::setClass(WindowClass windowClass)
{
    const bool isCompact = windowClass == WindowClass::compact;
    setMinimumWidth(isCompact ? compactPanel : narrowestPanel);
    setMaximumWidth(isCompact ? compactPanel : widestPanel);
    m_tabs->setClass(windowClass);
    for (PanelLayout* page : findChildren<PanelLayout*>())
        page->setClass(windowClass);
    for (FrameFields* fields : findChildren<FrameFields*>())
        fields->setClass(windowClass);
    m_text->setClass(windowClass);
    m_templates->setClass(windowClass);
}

void SidePanel::setTab(SideTab tab)
{
    m_tabs->setCurrent(int(tab));
    showPage(int(tab));
}

void SidePanel::showPage(int index)
{
    QWidget* const focused = window()->focusWidget();
    const bool hadFocus =
        focused && index != m_pages->currentIndex() && m_pages->isAncestorOf(focused);
    // Qt would give the focus of the hidden page to any other control.
    if (hadFocus)
        focused->clearFocus();
    m_pages->setCurrentIndex(index);
    if (hadFocus)
        Q_EMIT m_text->leaveRequested();
}

void SidePanel::endEdits()
{
    for (auto* field : findChildren<SliderField*>())
        field->endGesture();
    for (auto* swatch : findChildren<Swatch*>())
        swatch->closePopover();
    for (auto* font : findChildren<FontField*>())
        font->closePopover();
}

SideTab SidePanel::tab() const
{
    return SideTab(m_tabs->current());
}

void SidePanel::setContent(Content content)
{
    const int page = content == Content::none ? 0 : 1;
    if (page == m_textPages->currentIndex())
        return;
    m_textPages->setCurrentIndex(page);
    placeTextHeader();
}

void SidePanel::setTextHeader(QWidget* row, const QList<QWidget*>& stops)
{
    m_textHeader = row;
    m_headerStops = stops;
    placeTextHeader();
}

void SidePanel::placeTextHeader()
{
    if (!m_textHeader)
        return;
    if (m_textPages->currentIndex() == 0)
        m_emptyRows->insertWidget(0, m_textHeader);
    else
        m_text->showHeader(m_textHeader);
    m_textHeader->show();
    m_textHeader->lower();    // the first for screen readers as well
}

QList<QWidget*> SidePanel::focusOrder() const
{
    return QList<QWidget*>{m_tabs} + m_headerStops + m_text->focusOrder() + m_shapes->focusOrder() +
           m_templates->focusOrder();
}

void SidePanel::resizeEvent(QResizeEvent*)
{
    m_text->setCaptionLines(height() < lowPanel ? 2 : 3);
}

void SidePanel::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, m_tabs->geometry().bottom(), width(), 1, theme.line);
}
