#!/usr/bin/env python3
"""Whether the tests notice faults: makes small random ones in the module, one at a time, in a copy of the tree (a
comparison flipped, an operator swapped, a constant changed, a condition negated, a statement left out), builds each and
runs the suites until one fails. Prints which suite noticed, and in the end every fault that none did, with its diff.

    scripts/mutations.py                           60 faults of a new seed, which is printed
    scripts/mutations.py --seed 7 --count 100      the same faults whenever the sources are the same
    scripts/mutations.py --match curvesRevision    all faults of the lines that hold this text
    scripts/mutations.py --list --files 'kaChild*' names faults, builds nothing

What does not compile does not count, nor does what scripts/mutations-equivalent.txt names. A run that was stopped goes on
where it was when started again with its seed. Exits with 1 when more than one in twenty is missed.
"""

import argparse
import fnmatch
import hashlib
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True
from cpp_faults import Equivalents, faults_of  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODULE = "Common/Libs/Animation"
EQUIVALENTS = ROOT / "scripts/mutations-equivalent.txt"
MEMORY = 6 << 30  # for one program: a fault may ask for more and more
# Name, program, environment. The last one asks again, at length, what the short ones let pass.
SUITES = [
    ("binding", "ka-test-binding", {}),
    ("model", "ka-test-model", {"KA_MODEL_SEEDS": "20"}),
    ("core", "ka-test-core", {}),
    ("gallery", "ka-test-gallery", {}),
    ("life", "ka-test-life", {}),
    ("documents", "ka-test-documents", {}),
    ("time", "ka-test-time", {}),
    ("faults", "ka-test-faults", {}),
    ("model at length", "ka-test-model", {"KA_MODEL_SEEDS": "250"}),
]
# The suite that is asked first about sources whose names match, until it turns out which one notices.
FIRST = {
    "kaAnimationXml|kaXml|Documents": "documents",
    "kaSegment": "gallery",
    "Controller|Sequence|kaRunning|kaConnections|Triggers": "time",
    "kaLegacy|Import|kaSceneSync|kaPaste": "life",
}


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("-n", "--count", type=int, help="faults that compile (default: 60, with --match: all)")
    parser.add_argument("--seed", type=int, help="of the choice (default: a new one)")
    parser.add_argument("--files", nargs="+", default=["*"], metavar="GLOB", help="names of files, without folders")
    parser.add_argument("--match", nargs="+", metavar="TEXT", help="only faults whose lines hold one of these texts")
    parser.add_argument("--kind", help="only faults of this kind (see --list)")
    parser.add_argument("--list", action="store_true", help="print the chosen faults and build nothing")
    parser.add_argument("--minutes", type=float, default=1e9, help="begin no fault after this time")
    parser.add_argument("--retry", action="store_true", help="ask again about those that an earlier run saw missed")
    parser.add_argument("--report", action="store_true", help="what earlier runs of this seed found; builds nothing")
    parser.add_argument("--jobs", type=int, default=1, help="compilers at a time (default: 1)")
    parser.add_argument("--folder", default="build/mutations", help="for the copy, its build and the results")
    return parser.parse_args()


class Tree:
    """A copy of the sources and its build."""

    def __init__(self, folder, jobs):
        self.folder, self.jobs = folder, jobs
        self.root = folder / "tree"
        self.build = self.root / "build/mutation"
        self.seconds = {}  # that each suite takes without a fault
        os.environ.update(CCACHE_BASEDIR=str(self.root), CCACHE_NOHASHDIR="1")

    def update(self):
        """Makes the copy what the sources are now. What an earlier run left broken differs, and is built anew."""
        listed = subprocess.run(["git", "ls-files", "-coz", "--exclude-standard"], cwd=ROOT, capture_output=True,
                                check=True, text=True).stdout.split("\0")  # fmt: skip
        names = {name for name in listed if name and (ROOT / name).is_file()}
        for name in names:
            source, copy = ROOT / name, self.root / name
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, copy)
                shutil.copymode(source, copy)
        for copy in list(self.root.rglob("*")):
            name = copy.relative_to(self.root)
            if name.parts[0] != "build" and copy.is_file() and str(name) not in names:
                copy.unlink()

    def configure(self):
        if not (self.build / "build.ninja").exists():
            subprocess.run(["cmake", "--preset", "mutation"], cwd=self.root, check=True, stdout=subprocess.DEVNULL)

    def make(self, targets):
        with open(self.folder / "build.log", "w", encoding="utf-8") as log:
            command = ["ninja", "-C", str(self.build), f"-j{self.jobs}", *targets]
            return subprocess.run(command, stdout=log, stderr=subprocess.STDOUT).returncode == 0

    def forget_since(self, start):
        """Only what was made of a fault is to be made anew, not all that reads the same header."""
        for made in self.build.rglob("*"):
            if made.suffix in (".o", ".gch") and made.stat().st_mtime >= start - 1:
                made.unlink()

    def make_all(self):
        return self.make(sorted({program for _, program, _ in SUITES}))

    def run(self, suite, limit):
        """@return None when the suite passes, else what failed first."""
        _, program, environment = suite
        log = self.folder / "test.log"
        with open(log, "wb") as output:
            test = subprocess.Popen(
                [self.build / "bin" / program, "--gtest_brief=1", "--gtest_fail_fast"],
                cwd=self.build, env={**os.environ, **environment}, stdout=output, stderr=output,
                start_new_session=True, preexec_fn=limit_resources,
            )  # fmt: skip
            try:
                status = test.wait(limit)
            except subprocess.TimeoutExpired:
                os.killpg(test.pid, signal.SIGKILL)
                test.wait()
                return "no end"
        if status == 0:
            return None
        failed = re.search(rb"\[  FAILED  \] (\S+)", log.read_bytes())
        return failed[1].decode().rstrip(",") if failed else f"exit status {status}"

    def check_without_fault(self):
        if not self.make_all():
            sys.exit((self.folder / "build.log").read_text())
        for suite in SUITES:
            start = time.monotonic()
            failed = self.run(suite, 1200)
            if failed:
                sys.exit(f"{suite[1]} fails without any fault: {failed}")
            self.seconds[suite[0]] = time.monotonic() - start
        print("suites: " + ", ".join(f"{name} {self.seconds[name]:.1f} s" for name, _, _ in SUITES), flush=True)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Trial:
    """Makes faults in the copy and keeps what became of each in a file, one a line."""

    def __init__(self, tree, results, retry):
        self.tree, self.file = tree, results
        self.results = {}
        self.catchers = {}  # of each source how often which suite caught a fault: asked first
        if results.exists():
            for line in results.read_text().splitlines():
                result = json.loads(line)
                if not (retry and result["result"] == "missed"):
                    self.remember(result)

    def remember(self, result):
        self.results[result["key"]] = result
        if result["result"] == "caught":
            catchers = self.catchers.setdefault(result["file"], {})
            catchers[result["by"]] = catchers.get(result["by"], 0) + 1

    def of(self, fault):
        """What becomes of a fault, by memory or by trial."""
        key = fault.key()
        if key not in self.results:
            start = time.monotonic()
            outcome, by, test = self.attempt(fault)
            result = {"key": key, "file": fault.file, "result": outcome, "by": by, "test": test,
                      "seconds": round(time.monotonic() - start, 1)}  # fmt: skip
            self.remember(result)
            with open(self.file, "a", encoding="utf-8") as file:
                file.write(json.dumps(result) + "\n")
        return self.results[key]

    def attempt(self, fault):
        path = self.tree.root / fault.path
        source, start = path.read_text(), time.time()
        times = path.stat()
        try:
            path.write_text(fault.applied(source))
            # What a header holds matters inside the library most; the tests, many files, are built anew only when that
            # makes no difference.
            header = path.suffix == ".h"
            if not (self.tree.make(["kaAnimation", "ka-test-gallery"]) if header else self.tree.make_all()):
                return "refused", "the compiler", ""
            found = self.first_failure(fault.file)
            if header and not found:
                if not self.tree.make_all():
                    return "refused", "the compiler", ""
                found = self.first_failure(fault.file)
            return ("caught", *found) if found else ("missed", "", "")
        finally:
            path.write_text(source)
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
            self.tree.forget_since(start)

    def first_failure(self, file):
        catchers = dict(self.catchers.get(file, {}))
        for names, suite in FIRST.items():
            if re.search(names, file):
                catchers[suite] = catchers.get(suite, 0) + 1
        for suite in sorted(SUITES, key=lambda suite: -catchers.get(suite[0], 0)):
            failed = self.tree.run(suite, 15 + 4 * self.tree.seconds[suite[0]])
            if failed:
                return suite[0], failed
        return None


def chosen_faults(options):
    faults, sources = [], {}
    for path in sorted((ROOT / MODULE).rglob("*.[ch]*"), key=lambda path: path.name):
        if path.suffix in (".h", ".cpp") and any(fnmatch.fnmatch(path.name, glob) for glob in options.files):
            name = str(path.relative_to(ROOT))
            sources[name] = path.read_text()
            faults += faults_of(name, sources[name])
    if options.match:
        texts = [" ".join(text.split()) for text in options.match]
        faults = [fault for fault in faults if any(text in fault.before for text in texts)]
    if options.kind:
        faults = [fault for fault in faults if fault.kind == options.kind]
    if not options.match:
        # Each by a number of its own, so that an edit elsewhere leaves the choice as it is.
        faults.sort(key=lambda fault: hashlib.sha256(f"{options.seed} {fault.key()}".encode()).digest())
    return faults, sources


def described(fault):
    return f"{fault.path}:{fault.line} {fault.function}: {fault.before}  =>  {fault.after or '(nothing)'}"


def report(tried, equivalent, sources, stale):
    caught = [fault for fault, result in tried if result["result"] == "caught"]
    missed = [fault for fault, result in tried if result["result"] == "missed"]
    for fault in missed:
        print(f"\nMISSED {fault.path}:{fault.line}, {fault.kind}\n@ {fault.function}\n{fault.diff(sources[fault.path])}")
    for fault, why in equivalent:
        print(f"equivalent: {described(fault)}: {why}")
    for entry in stale:
        print(f"mutations-equivalent.txt: no such line any more in {entry['file']}: {entry['before']}")
    counted = len(caught) + len(missed)
    refused = sum(result["result"] == "refused" for _, result in tried)
    share = 100 * len(caught) / counted if counted else 100
    print(f"\n{len(caught)} of {counted} caught ({share:.1f} %); {len(equivalent)} known to change nothing, "
          f"{refused} refused by the compiler")  # fmt: skip
    return share >= 95


def main():
    options = arguments()
    options.seed = options.seed if options.seed is not None else random.SystemRandom().randrange(1 << 31)
    count = options.count or (1 << 30 if options.match else 60)
    faults, sources = chosen_faults(options)
    print(f"seed {options.seed}: {len(faults)} faults to choose from", flush=True)
    if options.list:
        for fault in faults[: options.count]:
            print(f"{fault.kind:<11}{described(fault)}")
        return 0
    known = Equivalents(EQUIVALENTS.read_text())
    present = {(fault.file, fault.before) for fault in chosen_faults(argparse.Namespace(
        files=["*"], match=[], kind=None, seed=0))[0]}  # fmt: skip
    stale = [entry for entry in known.entries if (entry["file"], entry["before"]) not in present]
    folder = (ROOT / options.folder).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    tree = Tree(folder, options.jobs)
    if not options.report:
        tree.update()
        tree.configure()
        tree.check_without_fault()
    name = "results-match.jsonl" if options.match else f"results-{options.seed}.jsonl"
    trial = Trial(tree, folder / name, options.retry or bool(options.match))
    tried, equivalent, counted, start = [], [], 0, time.monotonic()
    for fault in faults:
        if counted >= count or time.monotonic() - start > 60 * options.minutes:
            break
        why = known.why(fault)
        if why:
            if not options.report or fault.key() in trial.results:
                equivalent.append((fault, why))
            continue
        if options.report and fault.key() not in trial.results:
            continue
        result = trial.of(fault)
        tried.append((fault, result))
        counted += result["result"] != "refused"
        by = f"{result['by']}: {result['test']}" if result["by"] else ""
        print(f"{counted:4} {result['result']:<8}{result['seconds']:6.1f} s  {described(fault)}  {by}", flush=True)
    return 0 if report(tried, equivalent, sources, stale) else 1


if __name__ == "__main__":
    sys.exit(main())
