#pragma once
#include <QList>
#include <QWidget>

#include <optional>

class IconButton;
class ProgressBar;
class PushButton;
class Spinner;

// `idle`: nothing is known about the engine yet.
enum class EngineLook { idle, absent, ready, installing, failed, cloud };

// What the row shows, in words.
struct EngineShown {
    EngineLook look = EngineLook::idle;
    QString name = {};
    QString sentence = {};    // the engine's status
    QString aside = {};       // beside the name, such as how long the last image took
    QString about = {};       // of an absent engine: what would be installed
    bool hasLicence = false;
    bool canCancel = false;                 // the installation
    std::optional<double> progress = {};    // of the installation, 0 to 1
    bool operator==(const EngineShown&) const = default;
};

// The engine that writes the texts: whether it is ready, how its installation goes, and the buttons
// for that.
class EngineRow : public QWidget {
    Q_OBJECT
public:
    explicit EngineRow(QWidget* parent = nullptr);
    void setShown(const EngineShown& shown);
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {280, height()}; }
    QSize minimumSizeHint() const override { return {200, height()}; }

Q_SIGNALS:
    void installRequested();
    void cancelRequested();
    void licenceRequested();
    void settingsRequested();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // A text of the row and where it stands.
    struct Line {
        QRectF box;
        QString text;
    };
    QRectF iconBox() const;
    QRectF nameBox() const;
    QRectF asideBox() const;
    QRectF sentenceBox() const;
    bool isNarrow() const;
    QString shownAside() const;
    double textEnd() const;    // where the buttons begin
    QStringList sentenceRows() const;
    QList<Line> lines() const;
    void showButtons();
    void place();

    EngineShown m_shown;
    PushButton* m_licence;
    PushButton* m_install;
    PushButton* m_again;    // installs after a failure
    IconButton* m_cancel;
    IconButton* m_settings;
    Spinner* m_spinner;
    ProgressBar* m_bar;
};
