#!/usr/bin/env python3
"""Saves files while the system fails: each must be there as it was or as it is to be, never in between.

    filesUnderFire.py TOOL [--whole]

TOOL is the program hubn-tool; it works on the simulated unit. Each of its commands that write a file is run with the
process killed, or the call refused, at each of the calls that make the file, and on disks of too little room. Whatever
it says in the end has to fit what is there. With --whole the logs are written as well, the process is also killed at
calls of write in all of its threads, and there are more sizes of disks: some minutes instead of one.

Exit code 77 where calls can't be made to fail here, for want of strace or of the right to trace.
"""

import collections
import csv
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

TIMEOUT = 120  # seconds for one run, which takes a second or five
DONE = 0
MAKING_CALLS = ["fchmod", "fdatasync", "linkat", "rename"]
REFUSALS = ["ENOSPC", "EACCES", "EIO"]


class Saving:
    """One command that saves a file."""

    def __init__(self, name, arguments, file, whole=False):
        self.name = name
        self.arguments = arguments
        self.file = file
        self.whole = whole


SAVINGS = [
    Saving("a configuration", ["read", "new.cfg", "--force", "--simulated-unit"], "new.cfg"),
    Saving("a backup", ["write", "site.cfg", "--backup", "old.cfg", "--force", "--simulated-unit"], "old.cfg"),
    Saving("a report as HTML", ["report", "site.cfg", "-o", "site.html", "--force"], "site.html"),
    Saving("a report as PDF", ["report", "site.cfg", "-o", "site.pdf", "--force"], "site.pdf"),
    Saving("a log as CSV", ["log", "log.csv", "--force", "--simulated-unit"], "log.csv", whole=True),
    Saving("a log as JSON", ["log", "log.json", "--force", "--simulated-unit"], "log.json", whole=True),
    Saving("a log as database", ["log", "log.db", "--force", "--simulated-unit"], "log.db", whole=True),
]

OLD = b"what was there before\n"


class Fire:
    def __init__(self, tool, folder):
        self.tool = tool
        self.folder = folder
        self.counts = collections.Counter()
        self.wrong = []
        subprocess.run([tool, "read", "site.cfg", "--simulated-unit", "--quiet"], cwd=folder, check=True,
                       stdout=subprocess.DEVNULL, timeout=TIMEOUT)

    def calls(self, saving, call):
        """How many calls of one kind a whole saving makes."""
        log = self.folder / "calls"
        self.run(saving, ["strace", "-f", "-o", str(log), "-e", f"trace={call}"])
        count = sum(f"{call}(" in line for line in log.read_text(errors="replace").splitlines())
        log.unlink()
        return count

    def run(self, saving, before, folder=None):
        command = before + [str(self.tool)] + saving.arguments
        ended = subprocess.run(command, cwd=folder or self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               timeout=TIMEOUT, check=False)
        return ended.returncode, ended.stderr.decode(errors="replace")

    def isWhole(self, saving, content):
        """Whether nothing of a file is missing. A log may hold fewer events than the unit has, where the process was
        slow and the tool said so."""
        kind = pathlib.Path(saving.file).suffix
        if kind == ".json":
            try:
                return bool(json.loads(content))
            except ValueError:
                return False
        if kind == ".csv":
            rows = list(csv.reader(content.decode("utf-8-sig", errors="replace").splitlines()))
            return content.endswith(b"\n") and len({len(row) for row in rows}) == 1
        if kind == ".db":
            pages = int.from_bytes(content[28:32], "big")
            return (content.startswith(b"SQLite format 3\0") and
                    len(content) == pages * int.from_bytes(content[16:18], "big"))
        ends = {".cfg": (b"[Comment]\r\n", b"\r\n"), ".html": (b"<!DOCTYPE html>", b"</html>\n"),
                ".pdf": (b"%PDF-", b"%%EOF\n")}
        first, last = ends[kind]
        # Times and such differ from run to run.
        return content.startswith(first) and content.endswith(last) and len(content) >= self.size[saving.name] * 9 // 10

    def learn(self, savings):
        """How large each file becomes, where nothing fails."""
        self.size = {}
        for saving in savings:
            code, errors = self.run(saving, [])
            assert code == DONE, f"{saving.name}: {errors}"
            self.size[saving.name] = (self.folder / saving.file).stat().st_size

    def judge(self, saving, what, code, errors, folder=None):
        file = (folder or self.folder) / saving.file
        content = file.read_bytes() if file.exists() else None
        self.counts["cases"] += 1
        if content == OLD:
            self.counts["old"] += 1
            told = code != DONE
        elif content is not None and self.isWhole(saving, content):
            self.counts["new"] += 1
            told = True  # killed behind the last call it is new as well, and nobody is left to tell
        else:
            told = False
        # A process that lives has to say why, in a line of its own.
        if code > 0 and code < 128 and not errors.strip():
            told = False
        if not told:
            self.wrong.append(f"{saving.name}, {what}: exit code {code}, "
                              f"{'no file' if content is None else f'{len(content)} bytes'}, says {errors.strip()!r}")

    def tryOne(self, saving, what, before):
        (self.folder / saving.file).write_bytes(OLD)
        try:
            code, errors = self.run(saving, before)
        except subprocess.TimeoutExpired:
            self.wrong.append(f"{saving.name}, {what}: no end")
            return
        self.judge(saving, what, code, errors)
        for litter in self.folder.glob(saving.file + ".*"):
            litter.unlink()

    def callsThatMakeIt(self, saving, refusals):
        for call in MAKING_CALLS:
            for number in range(1, self.calls(saving, call) + 1):
                for fault in ["signal=KILL"] + [f"error={refusal}" for refusal in refusals]:
                    self.tryOne(saving, f"{call} {number} {fault}",
                                ["strace", "-f", "-o", "/dev/null", "-e", f"trace={call}",
                                 "-e", f"inject={call}:{fault}:when={number}"])

    def writes(self, saving, most):
        """Kills at calls of write, which each thread counts for itself."""
        count = self.calls(saving, "write")
        for number in range(1, count + 1, max(1, count // most)):
            self.tryOne(saving, f"write {number} killed",
                        ["strace", "-f", "-o", "/dev/null", "-e", "trace=write",
                         "-e", f"inject=write:signal=KILL:when={number}"])

    def smallDisks(self, saving, steps):
        """On disks with room for a part of the file only, beside the old one."""
        size = self.size[saving.name]
        small = self.folder / "small"
        small.mkdir(exist_ok=True)
        inner = ('mount -t tmpfs -o size="$0"k none small && cp site.cfg small/ && cp "$1" small/"$2" && cd small && '
                 'shift 2 && "$@"; code=$?; cp "$OLDPWD/small/$FILE" "$OLDPWD/found" 2>/dev/null; exit $code')
        for step in range(steps):
            (self.folder / "before").write_bytes(OLD)
            (self.folder / "found").unlink(missing_ok=True)
            room = 4 * (2 + (self.folder / "site.cfg").stat().st_size // 4096 + size * step // steps // 4096)
            ended = subprocess.run(["unshare", "--map-root-user", "--mount", "sh", "-c", inner, str(room), "before",
                                    saving.file, str(self.tool)] + saving.arguments,
                                   cwd=self.folder, env={**os.environ, "FILE": saving.file, "TMPDIR": "/tmp"},
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=TIMEOUT, check=False)
            found = self.folder / "found"
            target = self.folder / saving.file
            target.unlink(missing_ok=True)
            if found.exists():
                found.rename(target)
            self.judge(saving, f"a disk with {room} kB", ended.returncode, ended.stderr.decode(errors="replace"))


def works(command):
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False).returncode == 0
    except FileNotFoundError:
        return False


def main():
    tool = pathlib.Path(sys.argv[1]).resolve()
    whole = "--whole" in sys.argv[2:]
    if not works(["strace", "-f", "-o", "/dev/null", "-e", "inject=fchmod:error=EIO", "true"]):
        print("Calls can't be made to fail here.")
        sys.exit(77)
    disks = works(["unshare", "--map-root-user", "--mount", "sh", "-c", "mount -t tmpfs none /mnt"])
    if not disks:
        print("There are no disks of one's own here: those are left out.")

    savings = [saving for saving in SAVINGS if whole or not saving.whole]
    folder = pathlib.Path(tempfile.mkdtemp())
    try:
        fire = Fire(tool, folder)
        fire.learn(savings)
        for saving in savings:
            fire.callsThatMakeIt(saving, REFUSALS if whole else REFUSALS[:1])
            if whole:
                fire.writes(saving, 40)
            if disks:
                fire.smallDisks(saving, 12 if whole else 3)
    finally:
        shutil.rmtree(folder)
    for line in fire.wrong:
        print(line)
    print(f"files under fire: {fire.counts['cases']} cases, the old file {fire.counts['old']}, "
          f"the new one {fire.counts['new']}, wrong {len(fire.wrong)}")
    sys.exit(1 if fire.wrong else 0)


if __name__ == "__main__":
    main()
