#pragma once
#include <QList>
#include <QObject>

class StudioShell;
struct Batch;
struct KeyHint;

// Moves the keyboard focus between the parts of the window, and gives the key hints for the focused
// part.
class StudioFocus : public QObject {
    Q_OBJECT
public:
    StudioFocus(StudioShell* shell, QWidget* window);

    // Focuses the canvas, or the view shown in its place while the canvas is hidden.
    void goToCanvas();
    void goToRegion(int step);    // 1: the next part of the window, -1: the previous one
    // Ends what the user is in the middle of: a drag on the canvas, typing in a field, a held
    // slider, the choice of a colour or a font. Call it before another layer is selected: an edit
    // belongs to the layer on which it began.
    void endEdits();
    QList<KeyHint> hints(const Batch& batch) const;

private:
    StudioShell* m_shell;
    QWidget* m_window;
};
