#pragma once

#include <QtGlobal>

// Which changes of the batch one undo takes back together. Whoever changes the batch says it.
class Step {
public:
    // With the changes just before, if those were joined too and came a moment ago: typing, a
    // slider, several quick removals.
    static Step joined() { return Step(Kind::joined); }
    // Alone.
    static Step own() { return Step(Kind::own); }
    // Everything between the begin and the end of a gesture on the canvas, and nothing else.
    static Step gesture() { return Step(Kind::gesture); }
    // Everything that one operation brings back, even minutes apart, until something else changes
    // the batch. Each call makes the step of another operation.
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
