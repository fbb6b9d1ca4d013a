#pragma once

#include <QtGlobal>

// Decides which changes of the batch one undo takes back together. Each change is made with a step.
class Step {
public:
    // Joins the changes just before, if those were joined() too and came a moment ago: typing, a
    // slider, several quick removals.
    static Step joined() { return Step(Kind::joined); }
    // A step of this change alone.
    static Step own() { return Step(Kind::own); }
    // All changes between the begin and the end of one gesture on the canvas.
    static Step gesture() { return Step(Kind::gesture); }
    // All results of one operation, even minutes apart, until another change comes between them.
    // Each call makes the step of another operation.
    static Step run();

    bool isJoined() const { return m_kind == Kind::joined; }
    bool isRun() const { return m_kind == Kind::run; }
    bool operator==(const Step&) const = default;

private:
    enum class Kind { joined, own, gesture, run };
    explicit Step(Kind kind, quint64 number = 0) : m_kind(kind), m_number(number) {}

    Kind m_kind;
    quint64 m_number;    // of the run; 0 for the others
};
