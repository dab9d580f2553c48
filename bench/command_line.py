#!/usr/bin/env python3
"""Times busquill-trace and the field's own tools on the same samples, in turn, and prints the ratio of
the medians.

    command_line.py BUSQUILL-TRACE BOARDSIM [SAMPLES]

Needs sigrok-cli, vcd2fst, wc and rg.
"""

import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROUNDS = 7


def seconds(command, folder):
    begun = time.perf_counter()
    done = subprocess.run(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    if done.returncode not in (0, 1):  # 1: nothing found
        sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}")
    return time.perf_counter() - begun


def compare(title, ours, theirs, folder):
    """Runs both in turn, so that other load on the machine affects both."""
    pairs = [(seconds(ours, folder), seconds(theirs, folder)) for _ in range(ROUNDS)]
    mine, other = (statistics.median(times) for times in zip(*pairs))
    print(f"{title:<42} {mine * 1e3:9.1f} ms {other * 1e3:9.1f} ms {mine / other:8.3f}")


def main():
    trace, boardsim = (Path(name).resolve() for name in sys.argv[1:3])
    samples = sys.argv[3] if len(sys.argv) > 3 else "200000"
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([boardsim, "record", "--seed", "3", "--samples", samples, "-o", "a.tra"],
                       cwd=folder, check=True, stdout=subprocess.DEVNULL)
        subprocess.run([trace, "convert", "a.tra", "-o", "a.sr"], cwd=folder, check=True,
                       stderr=subprocess.DEVNULL)
        print(f"{samples} samples{'':<28} busquill-trace        other    ratio")
        compare("convert to CSV / sigrok-cli", [trace, "convert", "a.tra", "-o", "a.csv"],
                ["sigrok-cli", "-i", "a.sr", "-O", "csv", "-o", "b.csv"], folder)
        compare("convert to a session / sigrok-cli", [trace, "convert", "a.tra", "-o", "b.sr"],
                ["sigrok-cli", "-i", "a.sr", "-O", "srzip", "-o", "c.sr"], folder)
        subprocess.run([trace, "convert", "a.tra", "-o", "a.vcd"], cwd=folder, check=True,
                       stderr=subprocess.DEVNULL)
        for form in ("csv", "json", "text"):
            compare(f"transactions as {form} / vcd2fst",
                    [trace, "transactions", "a.tra", "--format", form, "-o", "transactions"],
                    ["vcd2fst", "a.vcd", "a.fst"], folder)
        captures = Path(folder, "captures")
        captures.mkdir()
        for number in range(8):
            shutil.copy(Path(folder, "a.tra"), captures / f"{number}.tra")
        many = [trace, "transactions", "captures", "--format", "csv"]
        compare("transactions of 8 captures, -j 2 / -j 1", [*many, "-j", "2"], [*many, "-j", "1"], folder)
        # A command in the low nibble of the record's ninth byte.
        search = [trace, "search", "a.tra", "--all", "-p", "C/BE[3:0]=7"]
        compare("search a capture / wc -l", search, ["wc", "-l", "a.tra"], folder)
        compare("search a capture / rg", search,
                ["rg", "-c", r"^-?\d+(,\d+){8},(7|23|39|55|71|87|103|119|135|151|167|183|199|215|231|247),",
                 "a.tra"], folder)


main()
