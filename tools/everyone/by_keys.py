#!/usr/bin/python3
"""A user with a keyboard alone: signs in, imports, edits, generates, exports and publishes.

    tools/everyone/desktop tools/everyone/by_keys.py PROGRAM PHOTOS OUT

Sends keys only. At every stop of Tab it takes a picture of the screen and looks, around what has the
focus, for the ring that was not there before. Writes the stops and what their ring was found to be
into OUT/rings.txt, and the pictures of stops without one beside it.
"""

import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from by_ear import Listener  # noqa: E402
from heard import NotFound, attempt, box_of, line_of, name_of, role_of  # noqa: E402

WIDTH, HEIGHT = 1440, 900
RINGS = ((0x5B, 0x78, 0xFF), (0x47, 0x65, 0xF0))    # accentLine of the two themes
LEAST = 24    # pixels of the ring's colour that appear around a stop


def picture():
    return subprocess.run(["import", "-silent", "-window", "root", "-depth", "8", "rgb:-"], stdout=subprocess.PIPE, check=True).stdout


def near(data, at):
    return any(all(abs(data[at + i] - ring[i]) < 40 for i in range(3)) for ring in RINGS)


def ringed(node):
    """What the ring goes around: for a layer, the canvas that it is part of."""
    parent = attempt(node.get_parent, None)
    return parent if parent and role_of(parent) == "canvas" else node


def ring_around(before, after, box):
    """How many pixels around the box have got the colour of the ring."""
    room, count = 7, 0
    left, right = max(0, box.x - room), min(WIDTH, box.x + box.width + room)
    for y in range(max(0, box.y - room), min(HEIGHT, box.y + box.height + room)):
        row = (y * WIDTH + left) * 3
        end = (y * WIDTH + right) * 3
        if before[row:end] == after[row:end]:
            continue
        for at in range(row, end, 3):
            if before[at:at + 3] != after[at:at + 3] and near(after, at):
                count += 1
    return count


class Typist(Listener):
    def key(self, *names, pause=0.25):
        subprocess.run(["xdotool", "key", "--delay", "40", *names], check=True)
        self.program.pump(pause)

    def type(self, text):
        subprocess.run(["xdotool", "type", "--delay", "8", text], check=True)
        self.program.pump(0.3)

    def settled(self):
        """The picture of the screen, once two in a row are equal."""
        last = picture()
        for _ in range(20):
            self.program.pump(0.06)
            now = picture()
            if now == last:
                break
            last = now
        return last

    def walk(self, title, most=90):
        """Goes round with Tab, and looks for the ring at each stop."""
        self.stops.append(f"\n## {title}")
        first, seen = None, 0
        before = self.settled()
        while seen < most:
            self.key("Tab", pause=0.1)
            after = self.settled()
            node = self.program.focused()
            if not node:
                self.failures.append(f"{title}: nothing has the focus after {seen} stops")
                break
            box = box_of(node)
            place = (role_of(node), name_of(node), box.x, box.y)
            if place == first:
                break
            first = first or place
            count = ring_around(before, after, box_of(ringed(node)))
            # A text in a card of its own is outlined with its card.
            self.stops.append(f"{count:5} {line_of(node)}")
            if count < LEAST:
                self.problems.append(f"{title}: no ring: {line_of(node)}")
                path = self.out / f"no-ring-{len(self.problems)}.png"
                self.out.mkdir(parents=True, exist_ok=True)
                subprocess.run(["import", "-silent", "-window", "root", str(path)], check=True)
            before, seen = after, seen + 1

    def until(self, key, role, name, most=90):
        """Presses `key` until what has this role and name has the focus."""
        for _ in range(most):
            node = self.program.focused()
            if node and re.fullmatch(role, role_of(node)) and re.fullmatch(name, name_of(node)):
                return
            self.key(key, pause=0.1)
        raise NotFound(f"{role} «{name}» by {key}")

    def sign_in(self):
        self.program.find("text", "Email")
        self.program.pump(1.5)
        self.walk("Acceso")
        self.until("shift+Tab", "radio button", "Acceder")
        self.key("Right")
        self.walk("Crear cuenta")
        self.until("Tab", "text", "Email")
        self.type("teclas@ejemplo.es")
        self.until("Tab", "password text", "Contraseña")
        self.type("secreto123")
        self.until("Tab", "password text", "Repetir contraseña")
        self.type("secreto123")
        self.key("Return")
        self.status("Cuenta creada|Importa una imagen")
        self.program.pump(1)
        self.walk("Estudio vacío")

    def choose(self, path):
        self.program.pump(1)
        self.key("ctrl+a")
        self.type(str(path))
        self.key("Return", pause=1)

    def import_photos(self):
        self.key("ctrl+shift+o")
        self.choose(self.photos)
        self.status("importada")
        self.program.pump(2)
        node = self.program.focused()
        if not node or role_of(node) not in ("canvas", "image"):
            self.problems.append(f"after an import the focus is at {line_of(node) if node else 'nothing'}")
        self.key("ctrl+1")
        self.walk("Texto")
        self.key("F6", "F6", "F6", pause=0.3)

    def edit(self):
        self.until("F6", "canvas|image", ".*", 12)
        self.key("F2")
        self.key("ctrl+a")
        self.type("Escrito con el teclado")
        self.key("Escape")
        self.key("alt+Right", "alt+shift+Down", "ctrl+shift+Right")
        self.status("posición y tamaño")
        self.key("ctrl+2")
        self.walk("Formas")
        self.key("ctrl+3")
        self.walk("Plantillas")
        self.key("ctrl+1", "ctrl+a")

    def generate(self):
        self.key("ctrl+Return")
        self.status("(?i)textos generados")

    def export(self):
        target = self.folder / "exported"
        target.mkdir()
        self.key("ctrl+shift+e")
        self.choose(target)
        self.status("(?i)exportad", 60)
        if not list(target.glob("*.png")):
            self.failures.append("export: no file was written")

    def publish(self):
        self.key("ctrl+p", pause=1)
        self.walk("Publicar")
        self.until("Tab", "push button", "Conectar Instagram")
        self.key("space", pause=1)
        self.program.wait(self.opened.exists, "the page that connects a network")
        self.browse()
        self.program.pump(3)
        for _ in range(3):
            self.until("Tab", "push button", "Publicar (en|Story|otra).*")
            self.key("space", pause=1)
            try:
                self.status("Publicación enviada", 15)
                break
            except NotFound:
                continue
        self.status("Publicación enviada", 15)
        self.key("Escape", pause=0.6)
        node = self.program.focused()
        if not node:
            self.problems.append("after the sheet nothing has the focus")

    def settings(self):
        self.key("ctrl+comma", pause=0.8)
        self.walk("Ajustes de Moltiva")
        self.key("Escape", pause=0.6)

    def report(self):
        self.out.mkdir(parents=True, exist_ok=True)
        (self.out / "rings.txt").write_text("\n".join(self.stops) + "\n")
        (self.out / "problems.txt").write_text("\n".join(self.problems + self.failures) + "\n")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(Typist(sys.argv[1], Path(sys.argv[2]).resolve(), Path(sys.argv[3])).run())
