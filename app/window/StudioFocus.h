#pragma once
#include <QList>
#include <QObject>

class StudioShell;
struct Batch;
struct KeyHint;

// Moves the keyboard's focus in the window, and knows the keys that can be used where it is.
class StudioFocus : public QObject {
    Q_OBJECT
public:
    StudioFocus(StudioShell* shell, QWidget* window);

    // Focuses the canvas or, without images, the buttons to import some: a hidden canvas would keep
    // the focus out of sight.
    void goToCanvas();
    void goToRegion(int step);    // 1: the next part of the window, -1: the previous one
    // Ends a drag, a number being typed or held and a colour being chosen, before another layer is
    // selected: the edit belongs to the layer that it was begun on.
    void endEdits();
    QList<KeyHint> hints(const Batch& batch) const;

private:
    StudioShell* m_shell;
    QWidget* m_window;
};
