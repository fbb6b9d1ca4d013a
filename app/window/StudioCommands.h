#pragma once
#include <QObject>
#include <QPoint>
#include <QUuid>

class AccountSession;
class Appearance;
class BatchBinding;
class Diagnostics;
class ExportBinding;
class FileIntake;
class KeptLook;
class PanelBinding;
class PublishBinding;
class StageBinding;
class StatusBinding;
class StudioFocus;
class StudioMenu;
class StudioSession;
class StudioShell;
class TemplatesBinding;
class UpdateController;
enum class ShapeKind;
struct MenuCommand;

// The objects that the commands use. Each outlives StudioCommands.
struct CommandParts {
    StudioSession& session;
    AccountSession& account;
    StudioShell* shell;
    BatchBinding& batch;
    StageBinding& stage;
    PanelBinding& panel;
    TemplatesBinding& templates;
    ExportBinding& exports;
    PublishBinding& publish;
    StatusBinding& status;
    UpdateController& updates;
    FileIntake* files;
    StudioFocus* focus;
    KeptLook* look;
    Appearance& appearance;
    QWidget* window;
};

// The commands of the window, which its menu, keys and buttons run.
class StudioCommands : public QObject {
    Q_OBJECT
public:
    explicit StudioCommands(const CommandParts& parts);

    StudioMenu* menu() const { return m_menu; }
    // In the batch or, while a sheet, a dialog or the sign-in gate covers the studio, in the
    // focused text field.
    void undo();
    void redo();
    void removeLayer();
    void editSelected();

Q_SIGNALS:
    void keysRequested();    // to show the list of keys

private:
    void connectButtons();
    void choose(const MenuCommand& command);
    void connectDiagnostics();
    void run(const MenuCommand& command);
    void runForBatch(QStringView text, const char* slotOfField);
    // Opens the context menu of the tile at `index`. Selects the tile first unless it is already
    // selected.
    void showTileMenu(int index, QPoint globalPosition);
    QList<MenuCommand> table();
    QList<MenuCommand> importCommands();
    QList<MenuCommand> recentCommands();
    QList<MenuCommand> fileCommands();
    QList<MenuCommand> editCommands();
    QList<MenuCommand> layerCommands();
    QList<MenuCommand> viewCommands();
    QList<MenuCommand> helpCommands();
    QList<MenuCommand> otherKeys();

    bool canGenerate() const;
    bool hasImage() const;
    bool isTextSelected() const;
    bool isShapeSelected() const;
    void importTexts();
    void step(int images);
    void selectAll();
    void discardCurrent();
    void addShape(ShapeKind kind);

    const CommandParts m_parts;
    StudioSession& m_session;
    StudioMenu* m_menu;
    Diagnostics* m_diagnostics;
};
