# SPDX-License-Identifier: Apache-2.0
#
# Builds and runs programs of the language with the tools that were built. Each ToolFolder has links to them and private
# settings, so that several work beside each other. A setting names how programs are compiled: debug level and C compiler.
import os
import subprocess

# Name of a setting: options of the compiler, and the C compiler behind it (empty: what the tools choose).
SETTINGS = {
    "d2": ("/p2 /d2", ""),
    "d1": ("/p2 /d1", ""),
    "d0": ("/p2 /d0", ""),
    "d2-tcc": ("/p2 /d2", "tcc"),
    "d2-gcc-O0": ("/p2 /d2", "gcc-O0"),
    "d2-gcc-O2": ("/p2 /d2", "gcc-O2"),
    "d0-tcc": ("/p2 /d0", "tcc"),
}
BUILD_SECONDS = 60
RUN_SECONDS = 60


class Run:
    """What a program left: its exit code (negative: the signal), its output, and whether it had to be stopped."""

    def __init__(self, arguments, folder, environment, seconds):
        try:
            done = subprocess.run(arguments, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=seconds)
            self.code, self.output, self.hung = done.returncode, done.stdout.decode("latin-1"), False
        except subprocess.TimeoutExpired as expired:
            self.code, self.output, self.hung = -9, (expired.output or b"").decode("latin-1"), True


class ToolFolder:
    def __init__(self, binaries, folder, setting="d2"):
        self.folder = folder
        self.options, self.compiler = SETTINGS[setting]
        for part in ("tools", "config"):
            os.makedirs(os.path.join(folder, part))
        for tool in ("quarn.exe", "ordo.exe"):
            os.symlink(os.path.join(binaries, tool), self._path("tools", tool))
        self.use_options(self.options)
        self.environment = dict(os.environ, XDG_CONFIG_HOME=self._path("config"), XDG_STATE_HOME=self._path("state"),
                                XDG_RUNTIME_DIR=folder)
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(name, None)
        self.environment.pop("TARNWICK_CC", None)
        if self.compiler:
            self.environment["TARNWICK_CC"] = self.compiler

    def _path(self, *parts):
        return os.path.join(self.folder, *parts)

    def _write(self, name, text):
        with open(self._path(name), "w", encoding="latin-1") as file:
            file.write(text)

    def use_options(self, options):
        line = '"%s" %s /q ^.cls' % (self._path("tools", "quarn.exe"), options)
        self._write("tools/ide.ini", "[ordo]\nCLS=%s\n" % line)

    def messages(self):
        try:
            with open(self._path("tools", "sarn.err"), encoding="latin-1") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def build(self, class_file):
        """Builds a program: its result, and the messages."""
        folder, name = os.path.split(class_file)
        done = Run([self._path("tools", "ordo.exe"), "-fm", class_file, "-o" + self._path("made")], folder,
                   self.environment, BUILD_SECONDS)
        return done, self.messages()

    def compile(self, class_file, seconds=BUILD_SECONDS):
        """Compiles one class: its result, and the messages."""
        error_file = self._path("tools", "sarn.err")
        if os.path.exists(error_file):
            os.remove(error_file)
        done = Run([self._path("tools", "quarn.exe")] + self.options.split() + ["/q", class_file],
                   os.path.dirname(class_file), self.environment, seconds)
        return done, self.messages()

    def run(self, program, arguments=()):
        return Run([program] + list(arguments), os.path.dirname(program), self.environment, RUN_SECONDS)
