#pragma once
#include "app/TopBar.h"

#include <optional>

class BatchColumn;
class ComposeBar;
class DropVeil;
class EmptyState;
class QSplitter;
class QStackedWidget;
class StagePanel;
class StatusLine;
class ViewBar;

// Places the panels of the main window. What they show and what they ask for is the window's
// business.
class StudioShell : public QWidget {
    Q_OBJECT
public:
    explicit StudioShell(const QList<FormatChoice>& formats, QWidget* parent = nullptr);

    TopBar* topBar() const { return m_topBar; }
    ComposeBar* composeBar() const { return m_composeBar; }
    BatchColumn* batchColumn() const { return m_batch; }
    StagePanel* stage() const { return m_stage; }
    ViewBar* viewBar() const { return m_viewBar; }
    EmptyState* emptyState() const { return m_empty; }
    StatusLine* statusLine() const { return m_status; }
    DropVeil* dropVeil() const { return m_veil; }

    enum class Stage { empty, picture };
    void setStage(Stage stage);

    // The width the user gave the column; nothing follows the size of the window.
    void setBatchWidth(std::optional<int> width);

Q_SIGNALS:
    void batchWidthDragged(int width);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitColumns();
    void orderFocus();

    TopBar* m_topBar;
    ComposeBar* m_composeBar;
    BatchColumn* m_batch;
    StagePanel* m_stage;
    ViewBar* m_viewBar;
    EmptyState* m_empty;
    StatusLine* m_status;
    DropVeil* m_veil;
    QSplitter* m_splitter;
    QStackedWidget* m_stages;
    std::optional<int> m_batchWidth;
};
