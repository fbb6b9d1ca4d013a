#pragma once

class MainWindow;
class ScriptedAccount;
class StudioSession;
class WindowPictures;

// What the states of generated copy are shown with: a window with a batch of photos.
struct CopyStage {
    StudioSession& session;
    ScriptedAccount& account;
    MainWindow& window;
    WindowPictures& pictures;
};

// Takes the states of the engine, of a run and of its outcomes. False when a state was not reached.
bool takeCopyScreens(const CopyStage& stage);
