#pragma once
#include "app/theme/WindowClass.h"
#include "app/window/TopBar.h"

#include <optional>

class BatchColumn;
class ComposeBar;
class DropVeil;
class EngineRow;
class EmptyState;
class QHBoxLayout;
class QSplitter;
class QStackedWidget;
class QVBoxLayout;
class SidePanel;
class StagePanel;
class StatusLine;
class ViewBar;

// Lays out the panels of MainWindow, which fills and connects them.
class StudioShell : public QWidget {
    Q_OBJECT
public:
    explicit StudioShell(const QList<FormatChoice>& formats, QWidget* parent = nullptr);

    TopBar* topBar() const { return m_topBar; }
    ComposeBar* composeBar() const { return m_composeBar; }
    BatchColumn* batchColumn() const { return m_batchColumn; }
    StagePanel* stage() const { return m_stage; }
    ViewBar* viewBar() const { return m_viewBar; }
    EmptyState* emptyState() const { return m_empty; }
    EngineRow* engineRow() const { return m_engineRow; }    // in the side panel
    SidePanel* sidePanel() const { return m_panel; }
    StatusLine* statusLine() const { return m_status; }
    DropVeil* dropVeil() const { return m_veil; }

    enum class Stage { empty, picture };
    void setStage(Stage stage);
    bool isStage(Stage stage) const;

    // Set the width that the user chose for a column, in pixels. None: a width that suits the
    // window.
    void setBatchWidth(std::optional<int> width);
    void setPanelWidth(std::optional<int> width);
    void setBatchVisible(bool visible);
    void setPanelVisible(bool visible);

    // Hides the panels from screen readers while a sheet or the sign-in gate covers the shell.
    void setCovered(bool covered);
    bool isCovered() const { return m_isCovered; }

Q_SIGNALS:
    void batchWidthDragged(int width);
    void panelWidthDragged(int width);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setClass(WindowClass windowClass);
    void fitColumns();
    void tellDragged(int divider);
    void orderFocus();

    TopBar* m_topBar;
    ComposeBar* m_composeBar;
    BatchColumn* m_batchColumn;
    StagePanel* m_stage;
    ViewBar* m_viewBar;
    EmptyState* m_empty;
    EngineRow* m_engineRow;
    SidePanel* m_panel;
    StatusLine* m_status;
    DropVeil* m_veil;
    QSplitter* m_splitter;
    QStackedWidget* m_stages;
    std::optional<int> m_batchWidth, m_panelWidth;
    QVBoxLayout* m_stageRows;
    QHBoxLayout* m_composeRow;
    WindowClass m_class = WindowClass::roomy;
    bool m_isCovered = false;
};
