"""Plants the faults of faults.txt, one at a time, in a copy of the tree; see scripts/mutate.sh.

Exit code: 0 if every fault was found, 1 if one survived, 2 if a fault does not apply or does not build.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
COPY = ROOT / "build" / "mutation" / "source"
BUILD = ROOT / "build" / "mutation" / "build"
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


def copy_tree():
    """What git knows of, as it is now. Files that have not changed keep their time."""
    names = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others",
                            "--exclude-standard"], check=True, capture_output=True, text=True)
    for name in filter(None, names.stdout.split("\0")):
        source, target = ROOT / name, COPY / name
        if not source.is_file():
            continue
        if target.exists() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)


def build():
    result = subprocess.run(["cmake", "--build", BUILD, "--target", *TARGETS], text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return result.returncode == 0, result.stdout


def find(file="kernels/"):
    """The test that fails, or None. Wrappers are none of the kernel checks' business."""
    environment = dict(os.environ, OMP_WAIT_POLICY="passive")
    for command in TESTS if file.startswith("kernels/") else TESTS[1:]:
        try:
            result = subprocess.run([BUILD / command[0], *command[1:]], env=environment, cwd=BUILD,
                                    timeout=SECONDS, text=True, errors="replace",
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        except subprocess.TimeoutExpired:
            return command[0] + ": no end"
        if result.returncode == 0:
            continue
        failed = re.search(r"^(?:FAILED: (\S+ at \S+)|\[  FAILED  \] (\S+))", result.stdout, re.M)
        name = failed.group(1) or failed.group(2) if failed else f"exit code {result.returncode}"
        return f"{command[0].split('/')[1]}: {name.rstrip(':')}"
    return None


def main(patterns):
    faults = read_faults(ROOT / "tests" / "mutation" / "faults.txt")
    faults = [f for f in faults if not patterns or any(p in str(f) for p in patterns)]
    bad = [f for f in faults if not (ROOT / f.file).is_file()
           or f.planted_in((ROOT / f.file).read_text()) is None]
    for fault in bad:
        print(f"faults.txt:{fault.number}: does not apply: {fault}")
    start = time.time()
    copy_tree()
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                    "-DQV_BUILD_TOOLS=OFF", "-DQV_VECTOR_OPTIMIZATION=-O1"], check=True, stdout=subprocess.DEVNULL)
    built, output = build()
    if not built:
        sys.exit(output)
    if found := find():
        sys.exit(f"The tests fail without any fault: {found}")

    survivors = []
    planted = [f for f in faults if f not in bad]
    for i, fault in enumerate(planted, 1):
        path = COPY / fault.file
        source = path.read_text()
        try:
            path.write_text(fault.planted_in(source))
            built, output = build()
            found = find(fault.file) if built else None
        finally:
            path.write_text(source)
        if not built:
            bad.append(fault)
            print(output[-2000:])
        elif not found:
            survivors.append(fault)
        verdict = "does not build" if not built else found or "SURVIVES"
        print(f"[{i}/{len(planted)}] {fault} -> {verdict}", flush=True)
    build()
    found = len(planted) - len(survivors) - sum(f in planted for f in bad)
    print(f"{found} of {len(planted)} faults found in {time.time() - start:.0f} s")
    for fault in survivors:
        print(f"survivor: {fault}")
    return 2 if bad else 1 if survivors else 0


sys.exit(main(sys.argv[1:]))
