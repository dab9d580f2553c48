#!/usr/bin/env python3
"""Starts the installed program as a desktop does, by the commands of its entries, without a screen.

    check_desktop_start.py ROOT [TEST...]    the program is installed in ROOT/usr

What a program has opened is seen from its list of recent files.
"""

import os
import re
import shlex
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

ID = "com.tarnlightlabs.Busquill"
USR = Path(sys.argv.pop(1)).resolve() / "usr"
DATA = sorted(path.name for path in (USR / "share/busquill").iterdir())
PATIENCE = 60  # seconds; the machine may be busy with other tests


def entry_command(entry, files):
    """The command of a desktop entry, for files."""
    text = (USR / f"share/applications/{entry}.desktop").read_text()
    words = shlex.split(re.search(r"^Exec=(.*)$", text, re.M).group(1))
    return [part for word in words for part in (map(str, files) if word == "%F" else [word])]


def wait_for(done):
    end = time.monotonic() + PATIENCE
    while not done():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


class TheDesktop(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name)
        self.elsewhere = self.home / "elsewhere"  # where the desktop starts programs
        for name in ("elsewhere", "data", "config", "state", "cache", "runtime", "files"):
            (self.home / name).mkdir()
        (self.home / "runtime").chmod(0o700)
        self.surroundings = {
            **{name: os.environ[name] for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "LANG")
               if name in os.environ},
            "PATH": f"{USR / 'bin'}:/usr/bin:/bin", "HOME": str(self.home), "QT_QPA_PLATFORM": "offscreen",
            **{f"XDG_{name.upper()}_HOME": str(self.home / name) for name in ("data", "config", "state", "cache")},
            "XDG_RUNTIME_DIR": str(self.home / "runtime")}
        # Without a port, no box asks for an answer at the start.
        self.settings = self.home / "config/Tarnlight Labs/Busquill!.conf"
        self.settings.parent.mkdir()
        self.settings.write_text("[Setup]\nComPort=<None>\n")
        self.data = self.home / "data/busquill"
        self.started = []
        self.addCleanup(self.end_all)

    def start(self, command, folder=None):
        program = subprocess.Popen(command, cwd=folder or self.elsewhere, env=self.surroundings)
        self.started.append(program)
        return program

    def start_entry(self, entry, *files):
        return self.start(entry_command(entry, files))

    def end_all(self):
        for program in self.started:
            if program.poll() is None:
                program.terminate()
            program.wait()
        self.started.clear()

    def recent(self):
        return re.findall(r"^File\d+=(.+)$", self.settings.read_text(), re.M)

    def listens(self):
        return (self.home / "runtime/busquill-open").exists()

    def copy_of_capture(self, name):
        path = self.home / "files" / name
        path.write_bytes((USR / "share/busquill/Trigger2.tra").read_bytes())
        return path

    def assertOpens(self, path):
        self.assertTrue(wait_for(lambda: any(str(path) in line for line in self.recent())),
                        f"{path} is not opened, but {self.recent()}")

    def files_in(self, folder):
        return sorted(path.name for path in folder.iterdir())

    def test_the_first_start_fills_the_data_folder(self):
        program = self.start_entry(ID)
        self.assertTrue(wait_for(lambda: (self.home / "state/busquill/copied-files").exists()))
        self.assertEqual(self.files_in(self.data), DATA)
        self.assertEqual(os.readlink(f"/proc/{program.pid}/cwd"), str(self.data))
        self.assertTrue(wait_for(self.listens))
        self.assertEqual(self.files_in(self.elsewhere), [])

    def test_a_second_start_changes_nothing(self):
        self.start_entry(ID)
        self.assertTrue(wait_for(self.listens))
        self.end_all()
        (self.data / "MemoryWrite.tsp").write_text("mine")
        (self.data / "TargetRetry.tsp").unlink()
        (self.data / "run.tra").write_text("mine too")
        before = {path.name: (path.read_bytes(), path.stat().st_mtime_ns) for path in self.data.iterdir()}
        (self.home / "runtime/busquill-open").unlink(missing_ok=True)
        self.start_entry(ID)
        self.assertTrue(wait_for(self.listens))
        after = {path.name: (path.read_bytes(), path.stat().st_mtime_ns) for path in self.data.iterdir()}
        self.assertEqual(after, before)
        self.assertEqual(self.files_in(self.elsewhere), [])

    def test_nothing_is_written_outside_the_base_directories(self):
        self.start_entry(ID)
        self.assertTrue(wait_for(self.listens))
        self.end_all()
        self.assertEqual(self.files_in(self.home), ["cache", "config", "data", "elsewhere", "files", "runtime", "state"])

    def test_a_double_click_starts_the_program_with_the_file(self):
        capture = self.copy_of_capture("a run & more.tra")
        program = self.start_entry(f"{ID}.Open", capture)
        self.assertOpens(capture)
        self.assertIsNone(program.poll())
        self.assertEqual(os.readlink(f"/proc/{program.pid}/cwd"), str(self.data))

    def test_a_double_click_opens_the_file_in_the_running_program(self):
        running = self.start(["busquill"], self.home / "files")
        self.assertTrue(wait_for(self.listens))
        first, second = self.copy_of_capture("one.tra"), self.copy_of_capture("two.tra")
        clicked = self.start_entry(f"{ID}.Open", first, second)
        self.assertEqual(clicked.wait(PATIENCE), 0)
        self.assertOpens(first)
        self.assertOpens(second)
        self.assertIsNone(running.poll())
        self.assertFalse(self.data.exists(), "the second program went on")

    def test_relative_names_are_of_the_callers_folder(self):
        capture = self.copy_of_capture("here.tra")
        self.start(["busquill-open", "here.tra"], self.home / "files")
        self.assertOpens(capture)

    def test_a_file_name_on_the_command_line_opens_nothing(self):
        ignored, opened = self.copy_of_capture("ignored.tra"), self.copy_of_capture("opened.tra")
        program = self.start(["busquill", str(ignored)])
        self.assertTrue(wait_for(self.listens))
        self.start_entry(f"{ID}.Open", opened)
        self.assertOpens(opened)
        self.assertEqual(len(self.recent()), 1)
        self.assertEqual(os.readlink(f"/proc/{program.pid}/cwd"), str(self.elsewhere))
        self.assertEqual(self.files_in(self.elsewhere), [])

    def test_a_switch_of_the_windows_library_is_not_the_programs(self):
        capture = self.copy_of_capture("a.tra")
        del self.surroundings["QT_QPA_PLATFORM"]
        self.surroundings["BUSQUILL_OPEN"] = str(capture)
        self.start(["busquill", "-platform", "offscreen"])
        self.assertOpens(capture)
        self.assertFalse(list(self.settings.parent.glob("Busquill!-*.conf")), "settings of a switch")

    def test_a_program_with_a_switch_has_its_own_settings_and_gets_no_files(self):
        bench = self.settings.with_name("Busquill!-bench2.conf")
        bench.write_text("[Setup]\nComPort=<None>\n")
        first, second = self.copy_of_capture("one.tra"), self.copy_of_capture("two.tra")
        self.surroundings["BUSQUILL_OPEN"] = str(first)
        self.start(["busquill", "-bench2"])
        self.assertTrue(wait_for(lambda: str(first) in bench.read_text()))
        del self.surroundings["BUSQUILL_OPEN"]
        self.start_entry(f"{ID}.Open", second)
        self.assertOpens(second)
        self.assertNotIn(str(second), bench.read_text())


if __name__ == "__main__":
    unittest.main(verbosity=2)
