"""The tests of a tree, and which of them can notice a change."""
import concurrent.futures
import functools
import json
import os
import pathlib
import re
import signal
import subprocess
import threading
import time

# The same again on other displays; campaigns; what asks for real time, which a mutant doesn't have.
NEVER = ("-[0-9]", "^tst_power_cuts$", "^filesUnderFire$", "^tst_ConfigurationDisk$")
LONGEST = 60  # seconds; what takes longer with nothing changed is not asked
SHORTEST_LIMIT, FACTOR = 20, 5  # of the time that a test gets
OUTPUT = 8 << 20  # bytes of it that are looked at


class Test:
    def __init__(self, entry):
        properties = {each["name"]: each["value"] for each in entry.get("properties", [])}
        self.name = entry["name"]
        self.command = entry.get("command", [])
        self.directory = pathlib.Path(properties["WORKING_DIRECTORY"])
        self.environment = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        self.fails_by = [re.compile(each) for each in properties.get("FAIL_REGULAR_EXPRESSION", [])]
        self.skip_code = properties.get("SKIP_RETURN_CODE")
        self.is_alone = bool(properties.get("RUN_SERIAL"))
        self.seconds = 0  # with nothing changed

    def run(self, surroundings, home, limit, stop):
        """The outcome: passed, skipped, caught, timed out or stopped."""
        environment = {**os.environ, "HOME": str(home), **self.environment}
        self.directory.mkdir(parents=True, exist_ok=True)
        with subprocess.Popen([surroundings, *self.command], cwd=self.directory, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True) as process:
            output = bytearray()
            reader = threading.Thread(target=take_output, args=(process.stdout, output))
            reader.start()
            end = time.monotonic() + limit
            while process.poll() is None and time.monotonic() < end and not stop.is_set():
                try:
                    process.wait(0.05)
                except subprocess.TimeoutExpired:
                    pass
            outcome = None
            if process.poll() is None:
                outcome = "stopped" if stop.is_set() else "timed out"
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
            reader.join()
        if outcome:
            return outcome
        if process.returncode == self.skip_code:
            return "skipped"
        text = output.decode(errors="replace")
        return "caught" if process.returncode != 0 or any(each.search(text) for each in self.fails_by) else "passed"


def take_output(stream, output):
    while part := stream.read1(1 << 16):
        if len(output) < OUTPUT:
            output.extend(part)


class Suite:
    def __init__(self, tree, jobs, folders):
        self.tree, self.jobs = tree, jobs
        self.surroundings = tree.original / "tools" / "mutation" / "inside"
        self.home = tree.binary / "home"
        self.home.mkdir(exist_ok=True)
        listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=tree.binary, check=True, capture_output=True).stdout
        tests = (Test(entry) for entry in json.loads(listed)["tests"])
        self.tests = [test for test in tests if not re.search("|".join(NEVER), test.name)
                      and (not folders or self._folder(test) in folders)]

    def measure(self, changed):
        """Runs all with nothing changed, and drops those that fail, that see nothing or take long, naming them.

        What earlier runs found holds as long as no source has changed, but for tests that have.
        """
        kept = self.tree.binary / "times.json"
        known, since = {}, 0
        if kept.exists() and all(name.startswith(("tests/", "tools/", "docs/")) for name in changed):
            known = {name: seconds for name, seconds in json.loads(kept.read_text(encoding="utf-8")).items()
                     if not isinstance(seconds, str)}
            since = kept.stat().st_mtime
        never = threading.Event()

        def ask(test):
            begin = time.monotonic()
            outcome = test.run(self.surroundings, self.home, LONGEST, never)
            known[test.name] = time.monotonic() - begin if outcome == "passed" else outcome

        self._in_turn(ask, [test for test in self.tests if test.name not in known or self._newest(test) > since])
        kept.write_text(json.dumps(known), encoding="utf-8")
        left = sorted(f"{test.name} ({known[test.name]})" for test in self.tests if isinstance(known[test.name], str))
        for test in self.tests:
            test.seconds = known[test.name]
        self.tests = sorted((test for test in self.tests if not isinstance(test.seconds, str)), key=lambda test: test.seconds)
        print(f"{len(self.tests)} tests are asked" + (f"; not: {', '.join(left)}" if left else ""), flush=True)

    @staticmethod
    def _newest(test):
        """When the latest of the files that a test's command names was written."""
        return max((pathlib.Path(part).stat().st_mtime for part in test.command if pathlib.Path(part).is_file()), default=0)

    def _in_turn(self, ask, tests):
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as workers:
            list(workers.map(ask, (test for test in tests if not test.is_alone)))
        for test in tests:
            if test.is_alone:
                ask(test)

    def _folder(self, test):
        """The folder of the tests' tree in which a test is, which mirrors that of the sources."""
        directory = test.directory.parent if test.directory.name.endswith(".dir") else test.directory
        tests = self.tree.binary / "tests"
        return directory.relative_to(tests).as_posix() if directory.is_relative_to(tests) else ""

    def near(self, path):
        """The tests of a source's folder, those with its name first."""
        source = pathlib.PurePath(path)
        folder = source.parent.relative_to("src").as_posix()
        tests = [test for test in self.tests if self._folder(test) == folder]
        return sorted(tests, key=lambda test: not test.name.startswith(f"tst_{source.stem}"))

    def far(self, path, library):
        """All other tests that load a library, themselves or by a program that they start."""
        near = {test.name for test in self.near(path)}
        return [test for test in self.tests if test.name not in near and library in self._libraries_of(test)]

    def _libraries_of(self, test):
        return frozenset().union(*(self._libraries(program) for program in self._programs(test)))

    @functools.lru_cache(maxsize=None)
    def _programs(self, test):
        """The programs of the tree that a test names, in its command or inside of its own program."""
        places = str(self.tree.binary / "bin")
        named = {part for part in test.command if part.startswith(places)}
        for program in list(named):
            content = pathlib.Path(program).read_bytes()
            for coding in ("utf-8", "utf-16-le"):
                for found in content.split((places + "/").encode(coding))[1:]:
                    name = re.match(r"[\w-]*", found[:200].decode(coding, errors="replace"))[0]
                    named.add(f"{places}/{name}")
        return frozenset(program for program in named if pathlib.Path(program).is_file())

    @functools.lru_cache(maxsize=None)
    def _libraries(self, program):
        listed = subprocess.run(["ldd", program], capture_output=True, text=True).stdout
        return frozenset(re.findall(r"\blibhubn_\w+\.so", listed))

    def first_failure(self, tests):
        """What ended the mutant and the test that did; None if all pass. As soon as one fails, the others are stopped."""
        stop, found = threading.Event(), []

        def ask(test):
            if not stop.is_set():
                outcome = test.run(self.surroundings, self.home, max(SHORTEST_LIMIT, FACTOR * test.seconds), stop)
                if outcome in ("caught", "timed out"):
                    found.append((outcome, test.name))
                    stop.set()

        self._in_turn(ask, tests)
        return found[0] if found else None
