"""What a screen reader is told by a program, and what it can do there: over the accessibility bus alone."""

import os
import re
import signal
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

STATE = Atspi.StateType
# Roles that tell a screen reader nothing about what can be done.
EMPTY_ROLES = {"filler", "unknown", "invalid", "panel", "layered pane", ""}
EVENTS = [
    "object:state-changed:focused",
    "object:property-change:accessible-name",
    "object:property-change:accessible-description",
    "object:property-change:accessible-value",
    "object:announcement",
]


class NotFound(Exception):
    pass


def attempt(ask, fallback):
    """The answer of the program, or `fallback` when the object is gone meanwhile."""
    try:
        return ask()
    except GLib.Error:
        return fallback


def name_of(node):
    return attempt(node.get_name, "") or ""


def role_of(node):
    return attempt(node.get_role_name, "") or ""


def words_of(node):
    return attempt(node.get_description, "") or ""


def has(node, state):
    return attempt(lambda: node.get_state_set().contains(state), False)


def children_of(node):
    count = attempt(node.get_child_count, 0)
    return [child for i in range(count) if (child := attempt(lambda: node.get_child_at_index(i), None))]


def value_of(node):
    value = attempt(node.get_value_iface, None)
    return attempt(value.get_current_value, None) if value else None


def box_of(node):
    part = attempt(node.get_component_iface, None)
    return attempt(lambda: part.get_extents(Atspi.CoordType.SCREEN), None) if part else None


class Program:
    """A program under test. `heard` keeps a line for each event."""

    def __init__(self, command, environment=None):
        self.heard = []
        self.started = time.monotonic()
        self.listener = Atspi.EventListener.new(self.note)
        for event in EVENTS:
            self.listener.register(event)
        self.process = subprocess.Popen(command, env={**os.environ, **(environment or {})})

    def note(self, event):
        if event.type.endswith("focused") and not event.detail1:
            return
        kind = event.type.removeprefix("object:").removeprefix("state-changed:").removeprefix("property-change:accessible-")
        source = event.source
        words = name_of(source) if kind != "description" else words_of(source)
        if kind == "value":
            words = f"{name_of(source)} {value_of(source)}"
        self.heard.append((time.monotonic() - self.started, kind, role_of(source), words))

    def pump(self, seconds=0.0):
        end = time.monotonic() + seconds
        context = GLib.MainContext.default()
        while True:
            while context.iteration(False):
                pass
            if time.monotonic() >= end:
                return
            time.sleep(0.01)

    def application(self):
        desktop = Atspi.get_desktop(0)
        for child in children_of(desktop):
            if name_of(child) == "moltiva":
                return child
        return None

    def nodes(self, below=None):
        """All nodes that show, in reading order, each with its depth."""
        start = below or self.application()
        found = []

        def walk(node, depth):
            for child in children_of(node):
                if depth > 0 and not has(child, STATE.SHOWING):
                    continue
                found.append((depth, child))
                walk(child, depth + 1)

        if start:
            walk(start, 0)
        return found

    def look(self, role, name, below=None):
        for _, node in self.nodes(below):
            if (not role or role_of(node) == role) and re.fullmatch(name, name_of(node)):
                return node
        return None

    def find(self, role, name, seconds=20.0, below=None):
        return self.wait(lambda: self.look(role, name, below), f"{role} «{name}»", seconds)

    def wait(self, ask, what, seconds=20.0):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.pump(0.05)
            if self.process.poll() is not None:
                raise NotFound(f"the program has ended while waiting for {what}")
            if found := ask():
                return found
        raise NotFound(what)

    def hear(self, pattern, since=0, seconds=30.0):
        def said():
            return next((line for line in self.heard[since:] if re.search(pattern, line[3])), None)

        return self.wait(said, f"the words «{pattern}»", seconds)

    def press(self, role, name, seconds=20.0):
        """Presses what has this role and name, once it can be pressed."""
        def usable():
            node = self.look(role, name)
            return node if node and has(node, STATE.SENSITIVE) else None

        node = self.wait(usable, f"{role} «{name}»", seconds)
        action = node.get_action_iface()
        names = [Atspi.Action.get_action_name(action, i) for i in range(Atspi.Action.get_n_actions(action))]
        wanted = next((i for i, each in enumerate(names) if each in ("Press", "Toggle", "ShowMenu")), 0)
        Atspi.Action.do_action(action, wanted)
        self.pump(0.3)
        return node

    def write(self, role, name, text):
        node = self.find(role, name)
        node.get_component_iface().grab_focus()
        self.pump(0.2)
        node.get_editable_text_iface().set_text_contents(text)
        self.pump(0.2)
        return node

    def key(self, name):
        """A key of the keyboard, as a screen reader passes it on; such as "Escape"."""
        symbols = {"Escape": 0xFF1B, "Return": 0xFF0D, "Tab": 0xFF09, "F2": 0xFFBF}
        Atspi.generate_keyboard_event(symbols[name], None, Atspi.KeySynthType.SYM)
        self.pump(0.3)

    def focused(self):
        for _, node in self.nodes():
            if has(node, STATE.FOCUSED) and not any(
                has(inner, STATE.FOCUSED) for _, inner in self.nodes(node)
            ):
                return node
        return None

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()


def stops_of(program):
    """What the keyboard can reach on the screen that shows, in reading order."""
    return [node for _, node in program.nodes() if has(node, STATE.FOCUSABLE) or "menu" in role_of(node)]


def line_of(node):
    states = [word for state, word in (
        (STATE.CHECKED, "marcado"), (STATE.SELECTED, "elegido"), (STATE.EXPANDED, "abierto"))
        if has(node, state)]
    if not has(node, STATE.SENSITIVE):
        states.append("desactivado")
    value = value_of(node)
    parts = [role_of(node), f"«{name_of(node)}»", words_of(node)]
    if value is not None:
        parts.append(f"[{value:g}]")
    if states:
        parts.append("(" + ", ".join(states) + ")")
    return " ".join(part for part in parts if part)


def problems_of(program):
    """What a screen reader could not tell on the screen that shows."""
    problems, seen = [], {}
    for node in stops_of(program):
        role, name = role_of(node), name_of(node)
        if role == "table cell":    # of the toolkit's own dialog for files
            continue
        # A choice is named within its group, an item within its list.
        parent = attempt(node.get_parent, None)
        key = (role, name, name_of(parent) if parent and role in ("radio button", "list item") else "")
        if role in EMPTY_ROLES and not (role == "panel" and name):
            problems.append(f"no role: {role} «{name}»")
        if not name:
            problems.append(f"no name: {role}")
        elif key in seen:
            problems.append(f"twice: {role} «{name}»")
        seen[key] = node
        if role in ("slider", "spin button") and has(node, STATE.SENSITIVE):
            if not re.search(r"\d", name + words_of(node)):
                problems.append(f"no value in words: {role} «{name}»")
    for _, node in program.nodes():
        if role_of(node) in EMPTY_ROLES - {"panel"} and name_of(node):
            problems.append(f"words without a role: {role_of(node)} «{name_of(node)}»")
    return problems
