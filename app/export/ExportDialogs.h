#pragma once
#include "app/controls/ChooserFolder.h"

#include <QList>
#include <QObject>
#include <QUuid>

class StudioSession;

// Asks for the file or the folder of an export. Dialogs begin in the folder of the last export.
class ExportDialogs : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object. `window` is the parent of the file dialogs.
    ExportDialogs(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    // Ask where to export the given items, even if the selection changes while the dialog is open.
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
