#pragma once
#include "app/forms/SettingsPanel.h"

#include <QUrl>

#include <optional>

class Caption;
class InfoCard;
class PushButton;

class UpdatesDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit UpdatesDetailPanel(QWidget* parent = nullptr);
    // Shows the latest version that the service knows of, and offers `download`.
    void setLatest(const std::optional<QString>& version, const std::optional<QUrl>& download);
    // Shows that the service is being asked.
    void setChecking(bool isChecking);
    void tellProblem(const QString& sentence);

Q_SIGNALS:
    void checkRequested();
    void downloadRequested(const QUrl& address);

private:
    QUrl m_download;
    Caption* m_latest;
    InfoCard* m_state;
    PushButton* m_install;
    PushButton* m_check;
    PushButton* m_direct;
};
