#pragma once
#include "app/controls/ChooserFolder.h"

#include <QList>
#include <QObject>
#include <QUuid>

class StudioSession;

// Where exports go: asked for each time, beginning in the folder of the last one.
class ExportDialogs : public QObject {
    Q_OBJECT
public:
    // All outlive it; the choosers belong to the window.
    ExportDialogs(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    // What is exported is settled now, whatever is selected by the time a place was chosen.
    void chooseFile(QUuid item);
    void chooseFolder(const QList<QUuid>& items);

Q_SIGNALS:
    void fileChosen(QUuid item, const QString& path);
    void folderChosen(const QList<QUuid>& items, const QString& folder);

private:
    void askForFile(QUuid item, const QString& name);
    void takeFile(QUuid item, const QString& path);

    StudioSession& m_session;
    QWidget* m_window;
    ChooserFolder m_folder;
};
