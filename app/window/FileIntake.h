#pragma once
#include "app/controls/ChooserFolder.h"
#include "app/window/DropVeil.h"

#include <QFileDialog>
#include <QList>
#include <QTimer>
#include <QUrl>

class PreferencesStore;
class QMimeData;
class StudioSession;

// Brings files to the session: those chosen, dropped or given from outside the program.
class FileIntake : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object; the window owns the choosers.
    FileIntake(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    void choosePhotos();
    void chooseFolder();
    void chooseTexts(QFileDialog::AcceptMode mode);

    // For a drag over the window: its files, and what their drop would import.
    static QList<QUrl> localFiles(const QMimeData* data);
    DropOffer offerOf(const QList<QUrl>& files) const;
    void drop(const QList<QUrl>& files);

    // Opens files from outside. Calls in quick succession add to one batch: file managers start a
    // program once for each file.
    void open(const QList<QUrl>& files);

private:
    void choose(const QString& title, QFileDialog::FileMode mode);
    void load(const QList<QUrl>& filesAndFolders);

    StudioSession& m_session;
    QWidget* m_window;
    ChooserFolder m_folder;
    QList<QUrl> m_given;     // files of the last calls of open(), to which the next may add
    QTimer m_givenLately;    // runs while another open() still adds to m_given
};
