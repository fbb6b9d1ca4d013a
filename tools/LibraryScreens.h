#pragma once

class MainWindow;
class StudioSession;
class WindowPictures;

// What the states of the template library are shown in: a window with a batch
// of photos.
struct LibraryStage {
    StudioSession& session;
    MainWindow& window;
    WindowPictures& pictures;
};

// Takes the states of the template library. False when a state was not reached.
bool takeLibraryScreens(const LibraryStage& stage);
