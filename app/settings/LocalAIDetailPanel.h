#pragma once
#include "app/forms/SettingsPanel.h"

#include <optional>

class Badge;
class Caption;
class InfoCard;
class InstallStages;
class Paragraph;
class ProgressBar;
class PushButton;

// `foreign`: an engine that the user runs himself.
enum class LocalAIPresence { absent, installing, installed, uninstalling, foreign };

// What the panel shows of the local engine, in words.
struct LocalAIShown {
    LocalAIPresence presence = LocalAIPresence::absent;
    QString name = {};
    QString about = {};      // what the engine is
    QString status = {};     // its state as a sentence
    QString failure = {};    // why the last installation failed; empty: it did not
    // Of an installation.
    QString message = {};
    std::optional<double> progress = {};    // 0 to 1
    QStringList stages = {};
    QString stage = {};     // one of them
    QString amount = {};    // what is downloaded of how much
    bool operator==(const LocalAIShown&) const = default;
};

// The page of the local engine: its state, the progress of its installation, and uninstalling it,
// which the panel asks about once, in place of the button.
class LocalAIDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit LocalAIDetailPanel(QWidget* parent = nullptr);
    void setShown(const LocalAIShown& shown);
    // Asks whether to uninstall. `freed`: the space that this gives back, such as "3,6 GB".
    void askUninstall(const QString& freed);

Q_SIGNALS:
    void textPanelRequested();
    void uninstallPressed();    // the panel should ask; see askUninstall()
    void uninstallConfirmed();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* engineCard();
    void buildFoot();
    void showQuestion(bool isAsked);
    void showFoot();

    LocalAIShown m_shown;
    bool m_isAsked = false;
    Caption* m_name;
    Badge* m_badge;
    Paragraph* m_about;
    Caption* m_message;
    Caption* m_percent;
    QWidget* m_work;    // message, percentage and bar
    ProgressBar* m_bar;
    InstallStages* m_stages;
    InfoCard* m_state;
    Paragraph* m_failure;
    PushButton* m_open;
    Paragraph* m_note;    // at the left of the foot
    PushButton* m_uninstall;
    PushButton* m_confirm;
    PushButton* m_keep;
};
