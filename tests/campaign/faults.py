#!/usr/bin/env python3
"""Every fault of a unit at every step of what a user does with it, through both programs: each ends with the right data
or with an error that is told.

    faults.py PROGRAM [--short | --every N] [--jobs N] [--seed N] [--operation NAME]...
    faults.py PROGRAM --operation NAME --case NUMBER

PROGRAM is hubn-fault-cases, which runs cases of one operation; some programs run side by side, since a case mostly
waits. Without --short or --every all cases are run, more than twenty thousand; --every N takes each Nth.
With --case one is run alone, as its line names it: the operation, and behind it the number.

Exit code 1 if anything was wrong in silence, didn't end, or never met its fault.
"""

import argparse
import collections
import concurrent.futures
import os
import subprocess
import sys
import threading
import time

# The operations, with how many programs share the cases, and of how many cases the short form takes one. Neither number
# may divide what faults there are at a step, or each step would be hit by the same one.
Operation = collections.namedtuple("Operation", "name parts nth")
OPERATIONS = [
    Operation("window-chain", 61, 127),
    Operation("window-write", 17, 53),
    Operation("window-log", 5, 13),
    Operation("window-firmware", 5, 11),
    Operation("tool-read", 41, 101),
    Operation("tool-write", 61, 151),
    Operation("tool-log", 3, 13),
    Operation("tool-firmware", 3, 7),
]
PROMISES = {
    "checksum": "an altered answer whose checksum is right",
    "answer": "a sound answer of another step instead of its own",
    "skipping": "a unit that leaves out a log block whose answer was lost",
}
PATIENCE = 3600  # seconds for one program

Case = collections.namedtuple("Case", "operation number promise verdict milliseconds name what")


class Campaign:
    def __init__(self, options):
        self.options = options
        self.cases = []
        self.complaints = []

    def run_part(self, operation, part, parts):
        """One program, to its end."""
        command = [self.options.program, operation, "--part", f"{part}/{parts}", "--seed", str(self.options.seed)]
        surroundings = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
        total, cases, rest = 0, [], ""
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                              env=surroundings, text=True) as program:
            overdue = threading.Timer(PATIENCE, program.kill)
            overdue.start()
            for line in program.stdout:
                fields = line.rstrip("\n").split("\t")
                if fields[0] == "cases":
                    total = int(fields[1])
                elif len(fields) == 6:
                    cases.append(Case(operation, int(fields[0]), *fields[1:]))
                    self.take(cases[-1])
                else:
                    rest = line
            overdue.cancel()
        due = len(range(part, total, parts))
        if program.returncode != 0 or not total or len(cases) != due:
            self.complaints.append(f"{' '.join(command[1:])}: exit code {program.returncode}, {len(cases)} of {due} "
                                   f"cases. {rest}")

    def run(self):
        jobs = []
        with concurrent.futures.ThreadPoolExecutor(self.options.jobs) as pool:
            for operation in OPERATIONS:
                if self.options.operation and operation.name not in self.options.operation:
                    continue
                if self.options.short or self.options.every:
                    nth = self.options.every or operation.nth
                    first = self.options.seed % nth
                    parts = [(first, 2 * nth), (first + nth, 2 * nth)]
                else:
                    parts = [(part, operation.parts) for part in range(operation.parts)]
                jobs += [pool.submit(self.run_part, operation.name, *part) for part in parts]
            for job in concurrent.futures.as_completed(jobs):
                job.result()

    def take(self, case):
        self.cases.append(case)
        if case.verdict in ("stuck", "unmet") or (case.verdict == "wrong" and case.promise == "kept"):
            print(f"{case.operation} {case.number}: {case.verdict}: {case.name}: {case.what}", flush=True)
        if self.options.verbose:
            print("\t".join(str(field) for field in case), flush=True)

    @staticmethod
    def row(title, cases):
        count = collections.Counter(case.verdict for case in cases)
        print(f"{title:57} {len(cases):6} {count['right']:6} {count['counted']:8} {count['leftOut']:9}"
              f" {count['wrong']:15} {count['stuck']:6} {count['unmet']:6}")

    def tell(self):
        kept = [case for case in self.cases if case.promise == "kept"]
        print(f"{'':57} {'cases':>6} {'right':>6} {'counted':>8} {'left out':>9} {'silently wrong':>15} {'stuck':>6}"
              f" {'unmet':>6}")
        for operation in OPERATIONS:
            cases = [case for case in kept if case.operation == operation.name]
            if cases:
                self.row(operation.name, cases)
        self.row("all", kept)
        print("Beyond what bytes on a wire can tell, so counted for itself:")
        for promise, title in PROMISES.items():
            self.row(title, [case for case in self.cases if case.promise == promise])
        for complaint in self.complaints:
            print(complaint)
        bad = sum(case.verdict in ("stuck", "unmet") or (case.verdict == "wrong" and case.promise == "kept")
                  for case in self.cases)
        return 1 if bad or self.complaints or not self.cases else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--every", type=int, default=0)
    parser.add_argument("--jobs", type=int, default=8)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--operation", action="append", choices=[operation.name for operation in OPERATIONS])
    parser.add_argument("--case", type=int)
    parser.add_argument("--verbose", action="store_true", help="a line for each case")
    options = parser.parse_args()
    if options.case is not None:
        if not options.operation:
            parser.error("--case needs --operation")
        command = [options.program, options.operation[0], "--case", str(options.case), "--seed", str(options.seed)]
        return subprocess.run(command, env=dict(os.environ, QT_QPA_PLATFORM="offscreen")).returncode
    begin = time.monotonic()
    campaign = Campaign(options)
    campaign.run()
    code = campaign.tell()
    print(f"{len(campaign.cases)} cases in {time.monotonic() - begin:.0f} s")
    return code


if __name__ == "__main__":
    sys.exit(main())
