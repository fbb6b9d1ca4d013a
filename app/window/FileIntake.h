#pragma once
#include "app/controls/ChooserFolder.h"
#include "app/window/DropVeil.h"

#include <QCoroTask>
#include <QFileDialog>
#include <QList>
#include <QPointer>
#include <QTimer>
#include <QUrl>

class PreferencesStore;
class QMimeData;
class RecentPlaces;
class StudioSession;

// Imports files into the session: chosen in a dialog, dropped on the window or opened by another
// program. Also asks for the file to which texts are exported.
class FileIntake : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object. `window` is the parent of the file dialogs.
    FileIntake(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    void choosePhotos();
    void chooseFolder();
    void chooseTexts(QFileDialog::AcceptMode mode);

    RecentPlaces& recent() const { return *m_recent; }
    // Imports a recent place once it has been found, which may take long on a network.
    void openRecent(const QString& path);

    // The local files and folders in `data`.
    static QList<QUrl> localFiles(const QMimeData* data);
    DropOffer offerOf(const QList<QUrl>& files) const;
    // Emits received() with the files of a drop, at once or when the desktop's portal has made them
    // readable.
    void receive(const QMimeData& data);
    void drop(const QList<QUrl>& files);

    // Imports files that another program opens. Calls in quick succession make one batch, because
    // file managers start a program once for each file.
    void open(const QList<QUrl>& files);

Q_SIGNALS:
    void received(const QList<QUrl>& files);

private:
    QCoro::Task<> receiveThroughPortal(QByteArray key);
    void tellNothingCame();
    static QCoro::Task<> openWhenFound(QPointer<FileIntake> self, QString path);
    void choose(const QString& title, QFileDialog::FileMode mode);
    void load(const QList<QUrl>& filesAndFolders);

    StudioSession& m_session;
    QWidget* m_window;
    ChooserFolder m_folder;
    RecentPlaces* m_recent;
    QString m_soughtPlace;    // what openRecent() looks for; empty: nothing
    // Files of recent open() calls, imported again together with the files of the next call.
    QList<QUrl> m_recentlyOpened;
    QTimer m_forgetOpened;    // clears m_recentlyOpened after a pause in the calls of open()
};
