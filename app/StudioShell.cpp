#include "app/StudioShell.h"

#include "app/BatchColumn.h"
#include "app/ComposeBar.h"
#include "app/DropVeil.h"
#include "app/EmptyState.h"
#include "app/StagePanel.h"
#include "app/ViewBar.h"
#include "app/controls/Painting.h"
#include "app/controls/StatusLine.h"

#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

struct WidthClass {
    int from;     // width of the window
    int batch;    // width of the column
};
constexpr std::array widthClasses{
    WidthClass{0, 124},
    WidthClass{1400, 208},
    WidthClass{1800, 304},
    WidthClass{2560, 400},
};
int usualBatchWidth(int window)
{
    int width = widthClasses.front().batch;
    for (const WidthClass& c : widthClasses) {
        if (window >= c.from)
            width = c.batch;
    }
    return width;
}

// The ground of the stage, behind the compose bar as well.
class Ground : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), themeOf(this).bg); }
};

}    // namespace

StudioShell::StudioShell(const QList<FormatChoice>& formats, QWidget* parent)
    : QWidget(parent), m_topBar(new TopBar(formats, this)), m_composeBar(new ComposeBar),
      m_batch(new BatchColumn), m_stage(new StagePanel), m_viewBar(new ViewBar),
      m_empty(new EmptyState), m_status(new StatusLine(this)), m_veil(new DropVeil(this)),
      m_splitter(new QSplitter(Qt::Horizontal, this)), m_stages(new QStackedWidget)
{
    setMinimumSize(1200, 720);
    auto* picture = new QWidget;
    auto* pictureRows = new QVBoxLayout(picture);
    pictureRows->setContentsMargins(0, 0, 0, 0);
    pictureRows->setSpacing(0);
    pictureRows->addWidget(m_stage, 1);
    pictureRows->addWidget(m_viewBar);
    m_stages->addWidget(m_empty);
    m_stages->addWidget(picture);

    auto* ground = new Ground;
    auto* stageRows = new QVBoxLayout(ground);
    stageRows->setContentsMargins(0, Space::medium, 0, 0);
    stageRows->setSpacing(0);
    auto* compose = new QHBoxLayout;
    compose->setContentsMargins(Space::column, 0, Space::column, 0);
    compose->addWidget(m_composeBar);
    stageRows->addLayout(compose);
    stageRows->addWidget(m_stages, 1);

    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_batch);
    m_splitter->addWidget(ground);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    connect(m_splitter, &QSplitter::splitterMoved, this, [this](int width) {
        m_batchWidth = width + m_splitter->handleWidth();
        Q_EMIT batchWidthDragged(*m_batchWidth);
    });

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
    m_stages->setCurrentIndex(stage == Stage::empty ? 0 : 1);
}

void StudioShell::setBatchWidth(std::optional<int> width)
{
    m_batchWidth = width;
    fitColumns();
}

void StudioShell::resizeEvent(QResizeEvent*)
{
    fitColumns();
}

void StudioShell::fitColumns()
{
    // The hairline between column and stage counts as part of the column.
    const int batch = m_batchWidth.value_or(usualBatchWidth(width()));
    const int line = m_splitter->handleWidth();
    m_splitter->setSizes({batch - line, std::max(1, width() - batch)});
}

void StudioShell::orderFocus()
{
    QList<QWidget*> order = m_topBar->focusOrder();
    order += m_batch->focusOrder();
    order.append(m_composeBar->objectiveEdit());
    order += m_empty->focusOrder();
    order += m_viewBar->focusOrder();
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}
