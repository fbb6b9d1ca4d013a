#include "app/window/StudioShell.h"

#include "app/batch/BatchColumn.h"
#include "app/copy/ComposeBar.h"
#include "app/copy/EngineRow.h"
#include "app/layers/SidePanel.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StagePanel.h"
#include "app/stage/ViewBar.h"
#include "app/theme/Painting.h"
#include "app/window/DropVeil.h"
#include "app/window/StatusLine.h"
#include "canvas/interaction/CanvasInteractionView.h"

#include <QAccessibleWidget>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

struct WidthClass {
    int from;            // smallest width of the window, in pixels
    int batch, panel;    // widths of the columns in pixels, each with the hairline beside it
};
constexpr std::array widthClasses{
    WidthClass{0, 124, 320},
    WidthClass{1400, 208, 344},
    WidthClass{1800, 304, 376},
    WidthClass{2560, 400, 376},
};
constexpr WidthClass compactWidths{0, 88, 280};

const WidthClass& widthClassOf(int window)
{
    const auto next =
        std::ranges::find_if(widthClasses, [window](const auto& c) { return window < c.from; });
    return *std::prev(next);
}

// Least width of the stage in pixels, even if the columns were dragged wider in a larger window.
constexpr int narrowestStage = 520;

// The background of the stage and of the compose bar above it.
class Ground : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), themeOf(this).bg); }
};

class ShellAccessible : public QAccessibleWidget {
public:
    explicit ShellAccessible(StudioShell* shell) : QAccessibleWidget(shell, QAccessible::Client) {}
    int childCount() const override { return isCovered() ? 0 : QAccessibleWidget::childCount(); }
    QAccessibleInterface* child(int index) const override
    {
        return isCovered() ? nullptr : QAccessibleWidget::child(index);
    }
    QAccessibleInterface* focusChild() const override
    {
        return isCovered() ? nullptr : QAccessibleWidget::focusChild();
    }

private:
    bool isCovered() const { return static_cast<StudioShell*>(object())->isCovered(); }
};

QAccessibleInterface* accessibleShellOf(const QString&, QObject* object)
{
    auto* shell = qobject_cast<StudioShell*>(object);
    return shell ? new ShellAccessible(shell) : nullptr;
}

}    // namespace

StudioShell::StudioShell(const QList<FormatChoice>& formats, QWidget* parent)
    : QWidget(parent), m_topBar(new TopBar(formats, this)), m_composeBar(new ComposeBar),
      m_batchColumn(new BatchColumn), m_stage(new StagePanel), m_viewBar(new ViewBar),
      m_empty(new EmptyState), m_engineRow(new EngineRow), m_panel(new SidePanel),
      m_status(new StatusLine(this)), m_veil(new DropVeil(this)),
      m_splitter(new QSplitter(Qt::Horizontal, this)), m_stages(new QStackedWidget),
      m_stageRows(new QVBoxLayout), m_composeRow(new QHBoxLayout)
{
    QAccessible::installFactory(accessibleShellOf);
    setMinimumSize(smallestWindow);
    m_panel->setTextHeader(m_engineRow, m_engineRow->focusOrder());
    auto* picture = new QWidget;
    auto* pictureRows = new QVBoxLayout(picture);
    pictureRows->setContentsMargins(0, 0, 0, 0);
    pictureRows->setSpacing(0);
    pictureRows->addWidget(m_stage, 1);
    pictureRows->addWidget(m_viewBar);
    m_stages->addWidget(m_empty);
    m_stages->addWidget(picture);

    auto* ground = new Ground;
    ground->setLayout(m_stageRows);
    m_stageRows->setContentsMargins(0, Space::medium, 0, 0);
    m_stageRows->setSpacing(0);
    m_composeRow->setContentsMargins(Space::column, 0, Space::column, 0);
    m_composeRow->addWidget(m_composeBar);
    m_stageRows->addLayout(m_composeRow);
    m_stageRows->addWidget(m_stages, 1);

    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_batchColumn);
    m_splitter->addWidget(ground);
    m_splitter->addWidget(m_panel);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setStretchFactor(2, 0);
    connect(m_splitter, &QSplitter::splitterMoved, this,
            [this](int, int divider) { tellDragged(divider); });

    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(m_topBar);
    rows->addWidget(m_splitter, 1);
    rows->addWidget(m_status);
    orderFocus();
}

void StudioShell::setStage(Stage stage)
{
    QWidget* const focused = window()->focusWidget();
    const bool hadFocus = focused && m_stages->isAncestorOf(focused);
    if (isStage(stage))
        return;
    // Qt would give the focus of the hidden page to the next control of the window, which a screen
    // reader would tell.
    if (hadFocus)
        focused->clearFocus();
    m_stages->setCurrentIndex(stage == Stage::empty ? 0 : 1);
}

bool StudioShell::isStage(Stage stage) const
{
    return m_stages->currentIndex() == (stage == Stage::empty ? 0 : 1);
}

void StudioShell::setCovered(bool covered)
{
    if (covered == m_isCovered)
        return;
    m_isCovered = covered;
    QAccessibleEvent event(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void StudioShell::setBatchWidth(std::optional<int> width)
{
    m_batchWidth = width;
    fitColumns();
}

void StudioShell::setPanelWidth(std::optional<int> width)
{
    m_panelWidth = width;
    fitColumns();
}

void StudioShell::setBatchVisible(bool visible)
{
    m_batchColumn->setVisible(visible);
    fitColumns();
}

void StudioShell::setPanelVisible(bool visible)
{
    m_panel->setVisible(visible);
    fitColumns();
}

void StudioShell::resizeEvent(QResizeEvent*)
{
    setClass(windowClassOf(size()));
    fitColumns();
}

void StudioShell::setClass(WindowClass windowClass)
{
    if (std::exchange(m_class, windowClass) == windowClass)
        return;
    m_topBar->setClass(windowClass);
    m_composeBar->setClass(windowClass);
    m_batchColumn->setClass(windowClass);
    m_stage->setClass(windowClass);
    m_viewBar->setClass(windowClass);
    m_panel->setClass(windowClass);
    m_status->setClass(windowClass);
    const bool isCompact = windowClass == WindowClass::compact;
    const int side = isCompact ? Space::medium : Space::column;
    m_composeRow->setContentsMargins(side, 0, side, 0);
    m_stageRows->setContentsMargins(0, isCompact ? Space::small : Space::medium, 0, 0);
    layout()->activate();    // the new heights of the bars, before the window is painted
}

void StudioShell::fitColumns()
{
    const WidthClass& usual =
        m_class == WindowClass::compact ? compactWidths : widthClassOf(width());
    const int line = m_splitter->handleWidth();
    const auto wanted = [line](const QWidget* column, int width) {
        if (column->isHidden())
            return 0;
        return std::clamp(width, column->minimumWidth() + line, column->maximumWidth() + line);
    };
    const int panel = wanted(m_panel, m_panelWidth.value_or(usual.panel));
    const int room = width() - panel - narrowestStage;
    const int batch = wanted(m_batchColumn, std::min(m_batchWidth.value_or(usual.batch), room));
    // Subtracts the hairlines: a column's width includes the one beside it, the sizes of a
    // QSplitter do not.
    m_splitter->setSizes({std::max(0, batch - line), std::max(1, width() - batch - panel),
                          std::max(0, panel - line)});
}

void StudioShell::tellDragged(int divider)
{
    const int line = m_splitter->handleWidth();
    if (divider == 1) {
        m_batchWidth = m_batchColumn->width() + line;
        Q_EMIT batchWidthDragged(*m_batchWidth);
    } else {
        m_panelWidth = m_panel->width() + line;
        Q_EMIT panelWidthDragged(*m_panelWidth);
    }
}

void StudioShell::orderFocus()
{
    QList<QWidget*> order = m_topBar->focusOrder();
    order += m_batchColumn->focusOrder();
    order += m_composeBar->focusOrder();
    order += m_empty->focusOrder();
    order.append(m_stage->canvas());
    order += m_viewBar->focusOrder();
    order += m_panel->focusOrder();
    order += m_status->focusOrder();
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}
