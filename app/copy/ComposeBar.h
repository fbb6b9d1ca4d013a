#pragma once
#include "app/copy/GenerateButton.h"
#include "app/theme/WindowClass.h"
#include "model/CopyGenerationMode.h"

#include <array>

class RunPill;
struct Segment;
class SegmentedControl;
class TextField;

// A run of generation, counted in images.
struct ComposeRun {
    qsizetype position = 0;    // of the image in course, counted from 1
    qsizetype finished = 0, total = 0;
    bool isStopping = false;
    bool operator==(const ComposeRun&) const = default;
};

struct ComposeState {
    CopyGenerationMode mode = CopyGenerationMode::local;
    std::array<qint64, Vocabulary<CopyGenerationMode>::rows.size()> credits{};    // for one image
    QString cloudRefusal = {};    // why the cloud cannot be chosen; empty: it can
    GenerateOffer offer = {};
    std::optional<ComposeRun> run = {};
    bool operator==(const ComposeState&) const = default;
};

// The bar for editing the campaign's objective, choosing the mode of generation and starting it.
// During a run it shows the progress and a button that stops the run. It lies below the top bar,
// centred on the stage.
class ComposeBar : public QWidget {
    Q_OBJECT
public:
    explicit ComposeBar(QWidget* parent = nullptr);
    void setObjective(const QString& objective);                     // emits nothing
    void setState(const ComposeState& state);                        // emits nothing
    void setKeys(const QString& generate, const QString& cancel);    // shown in the tooltips
    void setClass(WindowClass windowClass);
    QWidget* objectiveEdit() const;
    void finishEdit();    // ends the edit under way, which may emit objectiveEdited()
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {1120, 52}; }

Q_SIGNALS:
    void objectiveEdited(const QString& objective);    // an edit has ended with another text
    void modeChosen(CopyGenerationMode mode);
    void generateRequested();
    void cancelRequested();
    void leaveRequested();    // the focused button was hidden

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Room { full, withoutCredits, iconsAlone };
    QList<Segment> modes(Room room) const;
    int roomOfObjective() const;
    void showRun();
    void place();

    ComposeState m_state;
    TextField* m_objective;
    SegmentedControl* m_modes;
    GenerateButton* m_generate;
    RunPill* m_pill;
    PushButton* m_cancel;
};
