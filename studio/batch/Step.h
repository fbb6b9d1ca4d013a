#pragma once

#include <QtGlobal>

// Tells the undo history which changes of the batch a single undo reverts together.
class Step {
public:
    // For rapid changes, as when typing or dragging a slider. A change joins the previous one if
    // both are joined() and only a short pause lies between them.
    static Step joined() { return Step(Kind::joined); }
    // A single undo reverts this change alone.
    static Step own() { return Step(Kind::own); }
    // For all changes between the beginning and the end of one gesture on the canvas.
    static Step gesture() { return Step(Kind::gesture); }
    // For the results of one long operation. A single undo reverts all of them, even if they arrive
    // minutes apart, unless another change came between them. Each call returns the step of a new
    // operation.
    static Step run();

    bool isJoined() const { return m_kind == Kind::joined; }
    bool isRun() const { return m_kind == Kind::run; }
    bool operator==(const Step&) const = default;

private:
    enum class Kind { joined, own, gesture, run };
    explicit Step(Kind kind, quint64 number = 0) : m_kind(kind), m_number(number) {}

    Kind m_kind;
    quint64 m_number;    // identifies the operation of a run(); 0 for the other kinds
};
