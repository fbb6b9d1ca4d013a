#pragma once

class MainWindow;
class StudioSession;
class WindowPictures;

// What the states of the publish sheet are shown over: a window with a batch of photos.
struct PublishStage {
    StudioSession& session;
    MainWindow& window;
    WindowPictures& pictures;
};

// Takes the states of the publish sheet and its history. False when a state was not reached.
bool takePublishScreens(const PublishStage& stage);
