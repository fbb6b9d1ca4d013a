#pragma once
#include <QList>
#include <QObject>

class StudioShell;
struct Batch;
struct KeyHint;

// Where the keyboard is in the window, and what it can do there.
class StudioFocus : public QObject {
    Q_OBJECT
public:
    StudioFocus(StudioShell* shell, QWidget* window);

    // To the canvas or, without images, to what invites to import them: a hidden canvas would keep
    // the focus out of sight.
    void goToCanvas();
    void goToRegion(int step);    // 1: the next one, -1: the one before
    // A drag, a number being typed or held, or a colour being chosen ends: it belongs to the layer
    // that it was begun on.
    void endEdits();
    QList<KeyHint> hints(const Batch& batch) const;

private:
    StudioShell* m_shell;
    QWidget* m_window;
};
