#!/usr/bin/python3
"""A user who neither looks nor points: signs in, imports, generates, edits, exports and publishes.

    tools/everyone/desktop tools/everyone/by_ear.py PROGRAM PHOTOS OUT

PROGRAM is build/release/moltiva, beside moltiva-service. Writes into the folder OUT what was
announced (heard.txt), what the keyboard can reach on every screen (stops.txt) and what a screen
reader could not tell there (problems.txt). The texts come from a stand-in for a server of models.
"""

import http.server
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import urllib.parse
import urllib.request
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from heard import STATE, NotFound, Program, has, line_of, name_of, problems_of, role_of, stops_of  # noqa: E402

COPY = {
    "title": "Respira otoño", "subtitle": "Casas rurales con chimenea", "tagline": "A un paso del sendero",
    "callToAction": "Reserva ahora", "publicationCaption": "Hay fines de semana que se recuerdan.",
    "imageNotes": "Un sendero de montaña.",
}


class Model(http.server.BaseHTTPRequestHandler):
    """Answers every question of the chat protocol with the same texts."""

    def do_GET(self):
        self.reply({"data": [{"id": "stand-in"}]})

    def do_POST(self):
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self.reply({"choices": [{"message": {"role": "assistant", "content": json.dumps(COPY)}, "finish_reason": "stop"}]})

    def reply(self, answer):
        body = json.dumps(answer).encode()
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Listener:
    def __init__(self, program, photos, out):
        self.out = out
        self.photos = photos
        self.folder = Path(tempfile.mkdtemp())
        model = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Model)
        threading.Thread(target=model.serve_forever, daemon=True).start()
        # What the program opens in the browser is written down instead.
        self.opened = self.folder / "opened"
        browser = self.folder / "xdg-open"
        browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >> "{self.opened}"\n')
        browser.chmod(0o755)
        self.command = program
        self.environment = {
            "PATH": f"{self.folder}:{os.environ['PATH']}",
            "MOLTIVA_LOCAL_COPY_URL": f"http://127.0.0.1:{model.server_port}/v1",
        }
        self.stops, self.problems, self.failures = [], [], []
        self.program = Program([program], self.environment)

    def screen(self, title):
        """Writes down what stands on the screen that shows."""
        self.program.pump(0.6)
        self.stops.append(f"\n## {title}")
        self.stops += [line_of(node) for node in stops_of(self.program)]
        self.problems += [f"{title}: {problem}" for problem in problems_of(self.program)]

    def step(self, what, act):
        """One part of the work. What fails is told at the end, and the rest is tried."""
        self.program.heard.append((0, "step", "", what))
        try:
            act()
        except NotFound as missing:
            self.failures.append(f"{what}: not found: {missing}")

    def status(self, pattern, seconds=30.0):
        """Waits until a status line says this."""
        self.program.wait(
            lambda: any(re.search(pattern, name_of(node)) for _, node in self.program.nodes()
                        if role_of(node) == "status bar"), f"status «{pattern}»", seconds)

    def sign_in(self):
        program = self.program
        self.screen("Acceso: acceder")
        program.press("radio button", "Recuperar")
        self.screen("Acceso: recuperar")
        program.press("radio button", "Crear cuenta")
        self.screen("Acceso: crear cuenta")
        program.write("text", "Email", "oyente@ejemplo.es")
        program.write("password text", "Contraseña", "secreto123")
        program.write("password text", "Repetir contraseña", "secreto123")
        program.press("push button", "Crear cuenta")
        self.status("Cuenta creada|Importa una imagen", 30)
        self.screen("Estudio vacío")

    def choose(self, path):
        """Types into the dialog for files and accepts it."""
        program = self.program
        dialog = program.wait(
            lambda: next((node for _, node in program.nodes() if role_of(node) in ("file chooser", "dialog")), None),
            "the dialog for files")
        edit = program.find("text", ".*", below=dialog)
        edit.get_component_iface().grab_focus()
        edit.get_editable_text_iface().set_text_contents(str(path))
        program.pump(0.5)
        program.key("Return")
        program.pump(0.5)

    def import_photos(self):
        self.program.press("push button", "Importar carpeta")
        self.screen("Elegir una carpeta")
        self.choose(self.photos)
        self.status("importada")
        self.program.pump(2)
        self.program.press("page tab", "Texto")
        self.screen("Texto")

    def edit(self):
        program = self.program
        program.write("text", "Título", "Un fin de semana distinto")
        for name, title in (("Color del texto.*", "Colores"), ("(Fuente|Tipo de letra).*", "Fuentes")):
            try:
                program.press("", name, 3)
                self.screen(title)
                program.key("Escape")
            except NotFound as missing:
                self.failures.append(f"{title}: {missing}")
        program.press("page tab", "Formas")
        program.press("push button", ".*Rectángulo")
        self.screen("Formas")
        program.press("page tab", "Plantillas")
        self.screen("Plantillas")
        program.press("page tab", "Texto")
        program.press("push button", "Seleccionar todas las imágenes")

    def generate(self):
        self.program.press("push button", "Generar.*")
        self.status("(?i)textos generados")

    def export(self):
        target = self.folder / "exported"
        target.mkdir()
        self.program.press("push button", "Exportar (todo|\\d+).*")
        self.choose(target)
        self.status("(?i)exportad", 60)
        if not list(target.glob("*.png")):
            self.failures.append("export: no file was written")

    def browse(self):
        """What the user does in the browser: agrees, and goes back to the program."""
        page = self.opened.read_text().split()[-1]
        browser = urllib.request.build_opener(urllib.request.HTTPCookieProcessor())
        html = browser.open(page).read().decode()
        form = {re.search(r'name="([^"]*)"', field)[1]: re.search(r'value="([^"]*)"', field)[1]
                for field in re.findall(r"<input[^>]*>", html) if "value=" in field and "name=" in field}
        form |= {"nombre": "Cuenta de prueba", "accion": "conectar"}
        action = re.search(r'<form[^>]*action="([^"]*)"', html)
        target = urllib.parse.urljoin(page, action[1] if action else page)
        answer = browser.open(target, urllib.parse.urlencode(form).encode()).read().decode()
        link = re.search(r"moltiva:[^\"'<\s]+", answer)
        if link:
            subprocess.run([self.command, link[0].replace("&amp;", "&")], check=False)

    def publish(self):
        program = self.program
        program.press("push button", "Publicar")
        self.screen("Publicar")
        program.press("radio button", "Página: Historial")
        self.screen("Publicar: historial")
        program.press("radio button", "Página: Publicar")
        program.press("push button", "Conectar Instagram")
        program.wait(self.opened.exists, "the page that connects a network")
        self.browse()
        program.press("push button", "Publicar (en|Story).*", 30)
        for _ in range(2):    # warnings are told once before it is published
            try:
                self.status("Publicación enviada", 15)
                break
            except NotFound:
                program.press("push button", "Publicar (en|Story|otra).*")
        self.status("Publicación enviada", 15)
        self.screen("Publicado")
        program.key("Escape")

    def settings(self):
        program = self.program
        program.press("", "Menú.*")
        self.screen("Menú")
        program.key("Escape")
        account = next(node for node in stops_of(program) if "créditos" in name_of(node) and role_of(node) == "push button"
                       and "Exportar" not in name_of(node) and "cuesta" not in name_of(node))
        program.press(role_of(account), re.escape(name_of(account)))
        self.screen("Cuenta")
        for title in ("Cuenta", "Créditos", "Almacenamiento", "Historial de compras", "Ajustes de Moltiva"):
            try:
                if not program.look("", title):
                    program.press(role_of(account), re.escape(name_of(account)))
                program.press("push button", title, 5)
                self.screen(f"Hoja: {title}")
                if title == "Ajustes de Moltiva":
                    for panel in ("IA local", "Apariencia", "Actualizaciones"):
                        if program.look("", panel):
                            program.press("", panel, 3)
                            self.screen(f"Ajustes de Moltiva: {panel}")
                program.key("Escape")
            except NotFound as missing:
                self.failures.append(f"{title}: {missing}")
                program.key("Escape")

    def report(self):
        self.out.mkdir(parents=True, exist_ok=True)
        heard = [f"\n# {words}" if kind == "step" else f"{at:7.2f} {kind:<12} {role}: {words}"
                 for at, kind, role, words in self.program.heard]
        (self.out / "heard.txt").write_text("\n".join(heard) + "\n")
        (self.out / "stops.txt").write_text("\n".join(self.stops) + "\n")
        (self.out / "problems.txt").write_text("\n".join(self.problems + self.failures) + "\n")

    def run(self):
        try:
            self.step("signing in", self.sign_in)
            self.step("importing", self.import_photos)
            self.step("editing", self.edit)
            self.step("generating", self.generate)
            self.step("exporting", self.export)
            self.step("publishing", self.publish)
            self.step("settings", self.settings)
        finally:
            self.program.end()
            shutil.rmtree(self.folder, ignore_errors=True)
            self.report()
        for failure in self.failures:
            print(failure)
        print(f"{len(self.stops)} lines of stops, {len(self.program.heard)} events, {len(self.problems)} problems")
        return 1 if self.failures or self.problems else 0


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(Listener(sys.argv[1], Path(sys.argv[2]).resolve(), Path(sys.argv[3])).run())
