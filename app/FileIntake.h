#pragma once
#include "app/DropVeil.h"

#include <QFileDialog>
#include <QList>
#include <QTimer>
#include <QUrl>

class PreferencesStore;
class QMimeData;
class StudioSession;

// How files reach the session, chosen, dropped or given from outside, and the folder that the
// choosers open in.
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
    void rememberFolder(const QString& folder);

    StudioSession& m_session;
    PreferencesStore& m_preferences;
    QWidget* m_window;
    QString m_lastFolder;
    QList<QUrl> m_given;    // from outside, of which more may come
    QTimer m_givenLately;
};
