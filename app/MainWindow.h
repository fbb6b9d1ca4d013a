#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <QFileDialog>
#include <QList>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <memory>
#include <optional>

class PhotoCache;
class PreferencesStore;
class QMenu;
class StagePhoto;
class StudioSession;
class StudioShell;
class TilePictures;
struct TileRequest;

// Shows the session in the panels and turns what the user asks for into its commands.
class MainWindow : public QWidget {
    Q_OBJECT
public:
    // The session and the preferences outlive the window.
    MainWindow(StudioSession& session, const std::shared_ptr<PhotoCache>& photos,
               PreferencesStore& preferences);
    ~MainWindow() override;

    StudioShell* shell() const { return m_shell; }
    // No picture is being drawn and no photo looked at.
    bool isSettled() const;

    // Files, folders and links from outside. Several calls in a row bring one batch: file managers
    // start a program once for each file.
    void open(const QList<QUrl>& addresses);
    void comeForward();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void connectPanels();
    void connectSession();
    void buildMenu();
    void restorePreferences();
    void choose(const QString& title, QFileDialog::FileMode mode);
    void importImages();
    void importFolder();
    void load(const QList<QUrl>& filesAndFolders);
    void selectAll();
    void discardCurrent();
    void showTileMenu(int index, QPoint globalPosition);

    void showBatch();
    void showTiles();
    void showTile(const TileRequest& request, const QImage& picture);
    void showStage();
    void showStatus();
    bool showsIncoming() const;
    const PublicationItems& shownItems() const;

    StudioSession& m_session;
    PreferencesStore& m_preferences;
    StudioShell* m_shell;
    TilePictures* m_tiles;
    StagePhoto* m_stage;
    QMenu* m_menu;
    // What the panels show now, to tell what has changed.
    PublicationItems m_known;
    std::optional<SocialFormat> m_knownFormat;
    QString m_lastFolder;
    QList<QUrl> m_given;    // from outside, of which more may come
    QTimer m_givenLately;
};
