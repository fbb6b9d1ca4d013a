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

// How files reach the session: chosen, dropped or given from outside.
class FileIntake : public QObject {
    Q_OBJECT
public:
    // All outlive it; the choosers belong to the window.
    FileIntake(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    void choosePhotos();
    void chooseFolder();
    void chooseTexts(QFileDialog::AcceptMode mode);

    // Of what is dragged over the window.
    static QList<QUrl> localFiles(const QMimeData* data);
    DropOffer offerOf(const QList<QUrl>& files) const;
    void drop(const QList<QUrl>& files);

    // Several calls in a row bring one batch: file managers start a program once for each file.
    void open(const QList<QUrl>& files);

private:
    void choose(const QString& title, QFileDialog::FileMode mode);
    void load(const QList<QUrl>& filesAndFolders);

    StudioSession& m_session;
    QWidget* m_window;
    ChooserFolder m_folder;
    QList<QUrl> m_given;    // from outside, of which more may come
    QTimer m_givenLately;
};
