# SPDX-License-Identifier: Apache-2.0
"""Changes the product in one place at a time and lists the changes that no test notices.

usage: run.py [COUNT] [SEED]    (`./dev mutate` calls it)

COUNT changes (default 20) are made in copies of the checkout below build/mutate, MAV_JOBS of them side
by side. What a change needs is built, then the release tests run until one fails or hangs. A change that
does not compile or leaves the programs as they were is replaced by another. The same SEED (default 1)
takes the same changes of the same sources.
"""
import hashlib
import os
import shutil
import signal
import subprocess
import sys
import threading
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from changes import sequence

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutate"
FOLDERS = ("platform/src", "host/src", "cli")
# A header that more sources include costs minutes to build.
MAX_SOURCES = 4


class Copy:
    """A checkout of its own with its build; what a command leaves running or behind is bounded."""
    running = set()

    def __init__(self, number, jobs):
        self.tree = WORK / str(number)
        self.build = self.tree / "build" / "release"
        self.tmp = WORK / f"tmp{number}"
        self.log = WORK / f"log{number}"
        self.jobs = str(jobs)
        self.limit = 7200.0
        self.environment = dict(os.environ, TMPDIR=str(self.tmp), CCACHE_BASEDIR=str(self.tree))

    def fill(self, files):
        known = {self.tree / file for file in files}
        for folder, _, names in os.walk(self.tree):
            if not Path(folder).is_relative_to(self.tree / "build"):
                for path in {Path(folder) / name for name in names} - known:
                    path.unlink()
        for file in files:
            source, target = ROOT / file, self.tree / file
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.exists() or target.read_bytes() != source.read_bytes():
                shutil.copy(source, target)

    def run(self, *command):
        """Whether the command succeeded in time."""
        shutil.rmtree(self.tmp, ignore_errors=True)
        self.tmp.mkdir(parents=True)
        bounded = ["bash", "-c", 'ulimit -v 8000000; exec "$@"', "-", *map(str, command)]
        with open(self.log, "w") as log:
            process = subprocess.Popen(bounded, cwd=self.tree, env=self.environment, stdout=log, stderr=log,
                                       stdin=subprocess.DEVNULL, start_new_session=True)
        Copy.running.add(process)
        try:
            return process.wait(self.limit) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
            Copy.running.discard(process)

    def compile(self, *targets):
        return self.run("cmake", "--build", self.build, "-j", self.jobs,
                        *(["--target", *targets] if targets else []))

    def unit_tests(self):
        return self.run(self.build / "bin/unit_tests", "--gtest_fail_fast", "--gtest_brief=1")

    def other_tests(self):
        return self.run("ctest", "--test-dir", self.build, "-j", self.jobs, "--stop-on-failure",
                        "--no-tests=error", "-R", r"^(cli|schema|fuzz|abi)\.|host_alone")

    def programs(self):
        files = [self.build / "bin/mav", self.build / "lib/libmav_platform.so"]
        return [hashlib.sha256(file.read_bytes()).digest() for file in files]

    def prepare(self, files):
        self.fill(files)
        self.require(self.run("cmake", "--preset", "release") and self.compile())
        self.plain = self.programs()

    def test_plain(self):
        """How long one run of a changed program may take."""
        begin = time.monotonic()
        self.require(self.unit_tests() and self.other_tests())
        return 60 + 5 * (time.monotonic() - begin)

    def require(self, success):
        if not success:
            raise SystemExit(f"mutate: without a change already this fails, see {self.log}")

    def verdict(self, change):
        """"caught", "survived", or why the change does not count."""
        file = self.tree / change.file
        file.write_text(change.changed())
        try:
            if not self.compile("mav"):
                return "does not compile"
            if self.programs() == self.plain:
                return "changes nothing"
            passes = (change.file.startswith("cli/") or
                      self.compile("unit_tests") and self.unit_tests())
            return "survived" if passes and self.compile() and self.other_tests() else "caught"
        finally:
            file.write_text(change.source)


def output(*command):
    return subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, text=True, check=True).stdout


def sources_to_change(files, build):
    """The sources, and the headers on which few objects depend."""
    lines = output("ninja", "-C", build, "-t", "deps").splitlines()
    uses = Counter(line.strip().removeprefix("../../") for line in lines)
    return sorted(file for file in files if file.startswith(FOLDERS) and
                  (file.endswith(".cpp") or file.endswith(".h") and uses[file] <= MAX_SOURCES))


class Round:
    """Hands changes out until COUNT of them count, whatever the order in which they end."""

    def __init__(self, count, changes):
        self.count, self.changes = count, iter(changes)
        self.counted, self.open, self.survivors = 0, 0, []
        self.moved = threading.Condition()

    def take(self):
        with self.moved:
            self.moved.wait_for(lambda: self.counted + self.open < self.count or not self.open)
            change = next(self.changes, None) if self.counted < self.count else None
            self.open += change is not None
            return change

    def settle(self, change, verdict):
        with self.moved:
            self.open -= 1
            if verdict in ("caught", "survived"):
                self.counted += 1
                print(f"{self.counted}/{self.count} {verdict}", change, flush=True, file=sys.stderr)
            if verdict == "survived":
                self.survivors.append(change)
            self.moved.notify_all()

    def stop(self):
        with self.moved:
            self.count = 0
            self.moved.notify_all()
        for process in list(Copy.running):
            os.killpg(process.pid, signal.SIGKILL)

    def work(self, copy):
        try:
            while (change := self.take()) is not None:
                self.settle(change, copy.verdict(change))
        except BaseException:
            self.stop()
            raise


def main():
    count, seed = (int(given) for given in (sys.argv[1:] + ["20", "1"][len(sys.argv) - 1:]))
    cores = len(os.sched_getaffinity(0))
    shards = max(1, min(int(os.environ.get("MAV_JOBS", cores)), count))
    files = [file for file in output("git", "ls-files", "-co", "--exclude-standard").splitlines()
             if (ROOT / file).is_file()]
    copies = [Copy(number, max(1, cores // shards)) for number in range(shards)]
    for copy in copies:
        copy.prepare(files)
    limit = copies[0].test_plain()
    for copy in copies:
        copy.limit = limit
    tree = copies[0].tree
    session = Round(count, sequence(tree, sources_to_change(files, copies[0].build), seed))
    with ThreadPoolExecutor(shards) as pool:
        works = [pool.submit(session.work, copy) for copy in copies]
        try:
            for work in works:
                work.result()
        except BaseException:
            session.stop()
            raise
    for survivor in sorted(session.survivors, key=lambda change: (change.file, change.line)):
        print(survivor)
    print(f"{session.counted - len(session.survivors)} of {session.counted} caught")


if __name__ == "__main__":
    main()
