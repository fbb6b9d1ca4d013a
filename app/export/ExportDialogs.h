#pragma once
#include "app/controls/ChooserFolder.h"

#include <QList>
#include <QObject>
#include <QUuid>

class StudioSession;

// Asks where each export goes, beginning in the folder of the last one.
class ExportDialogs : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object; the window owns the choosers.
    ExportDialogs(StudioSession& session, PreferencesStore& preferences, QWidget* window);

    // The items given here are exported, even if the selection changes while the chooser is open.
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
