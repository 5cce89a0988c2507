"""The copy of the tree in which mutants are built."""
import json
import pathlib
import shutil
import subprocess


class Tree:
    """A copy of what git knows and of what is new, without what is ignored."""

    def __init__(self, original, copy):
        self.original, self.copy = original, copy
        self.binary = copy / "build" / "mutants"
        self.changed = None  # the path of the source that isn't as it was
        self.targets = {}  # by the path of a source
        self.texts = {}  # of the sources with nothing changed

    def prepare(self, folders):
        """Brings the copy up to date, leaving what is the same, and builds it, or the tests of some folders alone.

        Returns what wasn't the same.
        """
        changed = set()
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=self.original,
                                check=True, capture_output=True, text=True).stdout
        wanted = {name for name in listed.split("\0") if name and (self.original / name).is_file()}
        for name in wanted:
            source, target = self.original / name, self.copy / name
            if not target.exists() or source.read_bytes() != target.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
                changed.add(name)
        for target in list(self.copy.rglob("*")):
            name = target.relative_to(self.copy)
            if name.parts[0] != "build" and target.is_file() and name.as_posix() not in wanted:
                target.unlink()
                changed.add(name.as_posix())
        self._run("cmake", "--preset", "mutants")
        targets = [f"tests/{folder}/all" for folder in folders] or ["all"]
        self._run("cmake", "--build", "--preset", "mutants", "-j2", "--target", *targets)
        self._read_targets()
        return changed

    def _run(self, *command):
        result = subprocess.run(command, cwd=self.copy, capture_output=True, text=True)
        if result.returncode != 0:
            raise SystemExit(f"mutate: {' '.join(command)} failed\n{(result.stdout + result.stderr)[-4000:]}")

    def _read_targets(self):
        for entry in json.loads((self.binary / "compile_commands.json").read_text(encoding="utf-8")):
            path = pathlib.Path(entry["file"])
            if path.is_relative_to(self.copy / "src") and "CMakeFiles/" in entry.get("output", entry["command"]):
                output = entry.get("output") or entry["command"].split(" -o ")[1].split(" -c ")[0]
                name = path.relative_to(self.copy).as_posix()
                self.texts[name] = path.read_text(encoding="utf-8")
                self.targets[name] = output.split("CMakeFiles/")[1].split(".dir/")[0]

    def sources(self):
        """Texts of what is compiled, by their paths, as they were when the copy was made."""
        return dict(self.texts)

    def library(self, path):
        return f"lib{self.targets[path]}.so"

    def build(self, path, text):
        """Builds the library of a source with another text, and all else as it was; False if that can't be compiled."""
        targets = {self.targets[path]} | self._write_back()
        (self.copy / path).write_text(text, encoding="utf-8")
        self.changed = path
        result = subprocess.run(["cmake", "--build", "--preset", "mutants", "-j1", "--target", *sorted(targets)],
                                cwd=self.copy, capture_output=True)
        return result.returncode == 0

    def restore(self):
        for target in self._write_back():
            self._run("cmake", "--build", "--preset", "mutants", "-j1", "--target", target)

    def _write_back(self):
        """The targets to be built again."""
        if self.changed is None:
            return set()
        former, self.changed = self.changed, None
        (self.copy / former).write_text(self.texts[former], encoding="utf-8")
        return {self.targets[former]}
