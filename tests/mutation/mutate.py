"""Plants the faults of faults.txt, one at a time, in copies of the tree; see scripts/mutate.sh.

Exit code: 0 if every fault was found, 1 if one survived, 2 if a fault does not apply or does not
build.
"""
import concurrent.futures
import os
import pathlib
import queue
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TARGETS = ["kernelcheck", "unittests"]
# The race of many threads is the thread sanitizer's business.
TESTS = [
    ["tests/kernelcheck", "--calls", "3000"],
    ["tests/unittests", "--gtest_brief=1", "--gtest_fail_fast", "--gtest_filter=-Threads.MayCall*"],
]
SECONDS = 300  # what a test may take: a fault can make it run for ever


class Fault:
    def __init__(self, file, text, number):
        self.file, self.text, self.number = file, text, number
        self.old, self.new = [], []

    def __str__(self):
        return f"{self.file}: {self.text}"

    def planted_in(self, source):
        """The source with the fault, or None if its lines are not there exactly once."""
        lines = [r"[ \t]*".join(["", re.escape(line), ""]) for line in self.old]
        # Empty lines between the given ones do not count either.
        pattern = r"\n(?:[ \t]*\n)*".join(lines)
        found = list(re.finditer(pattern, source))
        if len(found) != 1:
            return None
        at = found[0]
        return source[:at.start()] + "\n".join(self.new) + source[at.end():]


def read_faults(path):
    faults = []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if line.startswith("@ "):
            faults.append(Fault(*line[2:].split(maxsplit=1), number))
        elif line.startswith("-"):
            faults[-1].old.append(line[1:].strip())
        elif line.startswith("+"):
            faults[-1].new.append(line[1:].strip())
        elif line.strip() and not line.startswith("#"):
            sys.exit(f"{path}:{number}: not a fault: {line}")
    return faults


class Copy:
    """What git knows of, as it is now, with a build of its own."""

    def __init__(self, number):
        self.source = ROOT / "build" / "mutation" / str(number) / "source"
        self.directory = self.source.parent / "build"

    def prepare(self):
        """Copies and builds the tree; what is wrong with it, or None."""
        names = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others",
                                "--exclude-standard"], check=True, capture_output=True, text=True)
        for name in filter(None, names.stdout.split("\0")):
            source, target = ROOT / name, self.source / name
            # Files that have not changed keep their time.
            if not source.is_file() or (target.exists()
                                        and target.read_bytes() == source.read_bytes()):
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
        subprocess.run(["cmake", "-S", self.source, "-B", self.directory, "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DQV_BUILD_TOOLS=OFF",
                        "-DQV_VECTOR_OPTIMIZATION=-O1"], check=True, stdout=subprocess.DEVNULL)
        built, output = self.build()
        if not built:
            return output
        found = self.find()
        return f"The tests fail without any fault: {found}" if found else None

    def build(self):
        result = subprocess.run(["cmake", "--build", self.directory, "--target", *TARGETS],
                                text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return result.returncode == 0, result.stdout

    def find(self, file="kernels/"):
        """The test that fails, or None. Wrappers are none of the kernel checks' business."""
        for command in TESTS if file.startswith("kernels/") else TESTS[1:]:
            try:
                result = subprocess.run([self.directory / command[0], *command[1:]],
                                        cwd=self.directory, timeout=SECONDS,
                                        text=True, errors="replace", stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT)
            except subprocess.TimeoutExpired:
                return command[0] + ": no end"
            if result.returncode == 0:
                continue
            failed = re.search(r"^(?:FAILED: (\S+ at \S+)|\[  FAILED  \] (\S+))", result.stdout,
                               re.M)
            name = failed[1] or failed[2] if failed else f"exit code {result.returncode}"
            return f"{command[0].split('/')[1]}: {name.rstrip(':')}"
        return None

    def plant(self, fault):
        """Whether the tree builds with the fault, and the test that finds it."""
        path = self.source / fault.file
        source = path.read_text()
        try:
            path.write_text(fault.planted_in(source))
            built, output = self.build()
            if not built:
                print(output[-2000:])
            return built, self.find(fault.file) if built else None
        finally:
            path.write_text(source)


def main(patterns):
    faults = read_faults(ROOT / "tests" / "mutation" / "faults.txt")
    faults = [f for f in faults if not patterns or any(p in str(f) for p in patterns)]
    bad = [f for f in faults if not (ROOT / f.file).is_file()
           or f.planted_in((ROOT / f.file).read_text()) is None]
    for fault in bad:
        print(f"faults.txt:{fault.number}: does not apply: {fault}")
    planted = [f for f in faults if f not in bad]
    start = time.time()
    # A test keeps one processor busy, so as many copies as there are.
    copies = [Copy(i) for i in range(min(os.cpu_count(), 4, len(planted)))]
    with concurrent.futures.ThreadPoolExecutor(len(copies) or 1) as pool:
        for wrong in pool.map(Copy.prepare, copies):
            if wrong:
                sys.exit(wrong)

        idle = queue.SimpleQueue()
        for copy in copies:
            idle.put(copy)

        def verdict_on(fault):
            copy = idle.get()
            try:
                return copy.plant(fault)
            finally:
                idle.put(copy)

        survivors = []
        for i, (fault, (built, found)) in enumerate(zip(planted, pool.map(verdict_on, planted)), 1):
            if not built:
                bad.append(fault)
            elif not found:
                survivors.append(fault)
            verdict = found or "SURVIVES" if built else "does not build"
            print(f"[{i}/{len(planted)}] {fault} -> {verdict}", flush=True)
    found = len(planted) - len(survivors) - sum(f in planted for f in bad)
    print(f"{found} of {len(planted)} faults found in {time.time() - start:.0f} s")
    for fault in survivors:
        print(f"survivor: {fault}")
    return 2 if bad else 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
