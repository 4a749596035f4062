#!/usr/bin/env python3
"""Renders docs/performance.md, docs/performance-avx2.md and docs/performance.svg from benchmarks.

    scripts/performance.py [--goals] --results FILE... --busy FILE... --avx2 FILE...

All are qvbench's JSON output with repetitions, of one or more processes: as it comes, of
`qvbench --busy` and of `qvbench --level avx2`. A time is the fastest repetition; with several
threads it is the median, and on the busy machine the mean. With --goals nothing is written: a table
for those who work on the library is printed, of what was aimed at.
"""
import argparse
import csv
import json
import pathlib
import statistics
from collections import defaultdict

import chart

ROOT = pathlib.Path(__file__).resolve().parent.parent
FRAMES = ["640x360", "1920x1080", "3840x2160"]
USUAL_FRAME = "1920x1080"
REFERENCE_COPY = dict(zip(FRAMES, (0.017, 0.021, 0.025)))  # ns per byte where the goals were set
PAIRS = ["640x360 to 1280x720", "1280x720 to 1920x1080", "1920x1080 to 1280x720",
         "3840x2160 to 1920x1080"]
PIECES = ["1 KiB", "64 KiB", "8 MiB"]


class Results:
    """Times in ns per pixel: [job][label][(contender, threads)] -> list of repetitions."""

    def __init__(self, paths):
        self.times = defaultdict(lambda: defaultdict(lambda: defaultdict(list)))
        self.moved = {}
        self.pixels = {}
        for path in paths:
            data = json.loads(pathlib.Path(path).read_text())
            self.context = data["context"]
            self.add(data["benchmarks"])

    def add(self, runs):
        for run in runs:
            if run.get("run_type") != "iteration":
                continue
            job, contender, label, threads = run["name"].split("|")
            key = (contender, int(threads.split("/")[0]))
            nanoseconds = run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]
            self.times[job][label][key].append(nanoseconds / run["pixels"])
            self.pixels[label] = run["pixels"]
            if run["moved"]:
                self.moved[job, label] = run["moved"]

    def best(self, job, label, contender, threads=1):
        runs = self.times[job][label].get((contender, threads))
        return min(runs) if runs else None

    def median(self, job, label, contender, threads=1):
        return statistics.median(self.times[job][label][contender, threads])

    def mean(self, job, label, contender, threads):
        runs = self.times[job][label].get((contender, threads))
        return statistics.mean(runs) if runs else None

    def spread(self, job, label, contender):
        return self.median(job, label, contender) / self.best(job, label, contender) - 1

    def peers(self, job, label):
        names = {c for c, t in self.times[job][label] if c not in ("ours", "plain")}
        return sorted((self.best(job, label, c), c) for c in names)

    def copy_rate(self, total_bytes):
        """ns per byte moved by the plain copy that moves about as much."""
        rates = []
        for job, size in (("copy 1 byte", 2), ("copy 3 bytes", 6)):
            for label in FRAMES:
                time = self.best(job, label, "memcpy")
                if time:
                    rates.append((abs(size * self.pixels[label] - total_bytes), time / size))
        return min(rates)[1]

    def limit(self, job, label):
        moved = self.moved.get((job, label))
        return moved * self.copy_rate(moved * self.pixels[label]) if moved else None

    def nearest_frame(self, label):
        return min(FRAMES, key=lambda f: abs(self.pixels[f] - self.pixels[label]))


def read_goals():
    goals = {}
    with open(ROOT / "bench" / "goals.csv", newline="") as file:
        for row in list(csv.reader(file))[1:]:
            labels = (PAIRS if row[0].startswith("resize")
                      else PIECES if row[0].endswith("-32") else FRAMES)
            for label, goal in zip(labels, row[1:]):
                if goal:
                    goals[row[0], label] = float(goal)
    return goals


def number(value):
    return "" if value is None else f"{value:.3f}" if value < 10 else f"{value:.1f}"


def times(value):
    return f"{value:.2f}" if value < 10 else f"{value:.0f}"


def in_order(results, goals):
    """(job, label) pairs in the order of the goals, frames from small to large; others follow."""
    rank = {key: i for i, key in enumerate(goals)}
    jobs = {}
    for job, _ in goals:
        jobs.setdefault(job, len(jobs))
    pairs = [(job, label) for job, labels in results.times.items() for label in labels
             if results.best(job, label, "ours")]
    return sorted(pairs, key=lambda p: (jobs.get(p[0], len(jobs)), p[0], rank.get(p, 0),
                                        results.pixels[p[1]]))


def usual(results, job):
    """The label that stands for the job: the frame of HD, or the nearest there is."""
    labels = list(results.times[job])
    named = [label for label in (USUAL_FRAME, f"{USUAL_FRAME} to 1280x720") if label in labels]
    return (named or sorted(labels, key=lambda label: results.pixels[label])[-1:])[0]


def best_peers(results, job, label):
    """(time, name) of the fastest that does the same work, and of the fastest like it, or None."""
    peers = results.peers(job, label)
    return (next(((t, n) for t, n in peers if not n.startswith("~")), None),
            next(((t, n[1:]) for t, n in peers if n.startswith("~")), None))


# ---- What everybody reads -----------------------------------------------------------------------

def row(results, job, label):
    """The cells of a row, by their heads."""
    ours = results.best(job, label, "ours")
    plain = results.best(job, label, "plain")
    same, similar = best_peers(results, job, label)
    nearest = same or similar
    return {
        "operation": job,
        "frame": label,
        "one thread": number(ours),
        f"{results.context['num_cpus']} threads": number(results.median(job, label, "ours", 0)),
        "plain C++": number(plain),
        "same work by": f"{number(same[0])} {same[1]}" if same else "",
        "similar work by": f"{number(similar[0])} {similar[1]}" if similar else "",
        "faster": ("" if same else "~") + times(nearest[0] / ours) if nearest else "",
    }


def columns(results):
    threads = f"{results.context['num_cpus']} threads"
    return {
        "operation": "its numbers are bytes a pixel.",
        "one thread": "the library, called on one thread.",
        threads: "as it comes; the median, because not every call finds a thread awake that could "
        "help. Several cores have several caches: where the parts of a frame fit theirs and the "
        "whole does not fit one's, threads save more than their number says.",
        "plain C++": "the library's portable code, which runs where there are no vectors, on one "
        "thread.",
        "same work by": "the fastest library of Debian's that does exactly this, on one thread.",
        "similar work by": "the fastest that does something like it, such as less, or with "
        "coarser rounding; the words after its name say what.",
        "faster": "how many times faster the library is than that peer, both on one thread; below "
        "1 the peer is faster. With ~ it is the peer of similar work.",
    }


def table(rows, without=()):
    heads = [head for head in rows[0] if head not in without]
    yield "| " + " | ".join(heads) + " |"
    yield "|" + " --- |" * len(heads)
    for cells in rows:
        yield "| " + " | ".join(cells[head] for head in heads) + " |"


def noise(results, keys):
    spreads = sorted(results.spread(job, label, "ours") for job, label in keys)
    return (f"The median repetition takes {100 * statistics.median(spreads):.0f} % longer than the "
            f"fastest (the median of all rows; {100 * spreads[-1]:.0f} % in the worst).")


def beside_busy_loops(busy, keys):
    ratios = sorted(busy.mean(*key, "ours", 0) / busy.mean(*key, "ours", 1)
                    for key in keys if busy.mean(*key, "ours", 1))
    return (f"- On a busy machine, beside as many endless loops as there are processors, the "
            f"library as it comes takes {statistics.median(ratios):.2f} times what it takes on one "
            f"thread (the median of all rows; {ratios[-1]:.2f} in the worst).")


def cpu_name():
    with open("/proc/cpuinfo") as lines:
        return next((line.split(":")[1].strip() for line in lines
                     if line.startswith("model name")), "unknown processor")


def page(title, results, goals, remarks, without=()):
    context = results.context
    keys = in_order(results, goals)
    first = [key for key in keys if key[1] == usual(results, key[0])]
    copies = ", ".join(f"{f} {results.best('copy 1 byte', f, 'memcpy'):.3f}" for f in FRAMES
                       if results.best("copy 1 byte", f, "memcpy"))
    return "\n".join([
        f"# {title}", "",
        "Nanoseconds for each pixel of the result (checksums: for each byte), the fastest of "
        "repetitions that all contenders made in turns, in several processes. 0.1 is 0.2 ms for a "
        "frame of 1920 x 1080. Written by `scripts/bench.sh`.", "",
        f"- Machine: {cpu_name()}, {context['num_cpus']} CPUs; level {context['levels']}; "
        f"version {context['version']}; measured {context['date'][:10]}. " + noise(results, keys),
        f"- A plain copy of a frame of one byte a pixel (memcpy): {copies}.",
        *(f"- *{head}*: {text}" for head, text in columns(results).items() if head not in without),
        *remarks, "",
        "## Frames of 1920 x 1080", "",
        *table([row(results, *key) for key in first], without), "",
        "## Other sizes", "",
        *table([row(results, *key) for key in keys if key not in first], without), ""])


CHARTED = (
    "copy 3 bytes", "fill 3 bytes", "mirror 1 byte, left-right", "mirror 3 bytes, left-right",
    "palette to 3 bytes", "packed 4:2:2 to BGR", "planar 4:2:0 to BGR", "BGR to I420",
    "two-plane to planar 4:2:0", "constant alpha, 3 bytes, over", "over, 3 bytes",
    "deinterlace 1 byte", "bob, both fields, mean",
    "turn by 90, 3 bytes", "warp perspective linear 3", "rotate 30 degrees cubic 3",
    "resize nearest 3", "resize linear 3", "resize cubic 3", "resize Lanczos 3", "resize area 1",
    "resample Lanczos 3", "CRC-32", "Adler-32",
)


def charted(results):
    for job in CHARTED:
        if job not in results.times:
            continue
        label = usual(results, job)
        same, similar = best_peers(results, job, label)
        time, name = same or similar
        name = ("" if same else "~") + name.split(",")[0]
        yield job, time / results.best(job, label, "ours"), name


# ---- What was aimed at --------------------------------------------------------------------------

def over_goal(results, job, label, goal, frame):
    """The time over the goal, which is scaled by how long memcpy takes for a plane of `frame` here
    and where the goals were set: the worse of the fastest repetitions and the medians of both."""
    return max(
        statistic(job, label, "ours") / goal
        / (statistic("copy 1 byte", frame, "memcpy") / REFERENCE_COPY[frame])
        for statistic in (results.best, results.median))


def met(results, job, label, goal, frame):
    if goal is None:
        return ""
    ratio = over_goal(results, job, label, goal, frame)
    return "yes" if ratio <= 1 else f"**{ratio:.2f}x**"


def goal_row(results, busy, job, label, goal):
    ours, shared = (results.best(job, label, "ours", threads) for threads in (1, 0))
    busy_one, busy_shared = (busy.mean(job, label, "ours", threads) for threads in (1, 0))
    limit = results.limit(job, label)
    return {
        "job": job,
        "frame": label,
        "ours": number(ours),
        "spread": f"{100 * results.spread(job, label, 'ours'):.0f} %",
        "copy / ours": f"{100 * limit / ours:.0f} %" if limit else "",
        "all threads": f"{number(shared)} ({ours / shared:.2f}x)",
        "busy": f"{busy_shared / busy_one:.2f}" if busy_one else "",
        "goal there": number(goal),
        f"met, by a copy of {USUAL_FRAME}": met(results, job, label, goal, USUAL_FRAME),
        "met, by a copy of the frame": met(results, job, label, goal,
                                           results.nearest_frame(label)),
    }


def print_goals(results, busy, keys, goals):
    """What was aimed at. There are two yardsticks because caches differ: where a processor's own
    cache has grown to hold a small frame, its copy takes half as long and arithmetic does not."""
    rows = [goal_row(results, busy, *key, goals.get(key)) for key in keys]
    print(*table(rows), "", sep="\n")
    for head in rows[0]:
        verdicts = [cells[head] for cells in rows if cells[head]]
        if head.startswith("met"):
            print(f"{head}: {verdicts.count('yes')} of {len(verdicts)}")


def main():
    parser = argparse.ArgumentParser(description="Renders benchmarks of the library.")
    parser.add_argument("--goals", action="store_true", help="print what was aimed at")
    for name in ("results", "busy", "avx2"):
        parser.add_argument(f"--{name}", nargs="+", required=True, metavar="FILE")
    options = parser.parse_args()
    results, busy, avx2 = (Results(p) for p in (options.results, options.busy, options.avx2))
    goals = read_goals()
    keys = in_order(results, goals)
    if options.goals:
        print_goals(results, busy, keys, goals)
        return
    docs = ROOT / "docs"
    docs.joinpath("performance.md").write_text(page("Performance", results, goals, [
        beside_busy_loops(busy, keys),
        "- The same at the level of most machines, AVX2: "
        "[performance-avx2.md](performance-avx2.md).",
        "- The same on another maker's processor: [Intel Xeon](performance-intel.md), measured "
        "earlier.",
        "- How close the bytes of resizing and warping are to exact ones: "
        "[accuracy.md](accuracy.md).",
        "- Whole files and streams, beside other programs: "
        "[performance-tool.md](performance-tool.md).", "",
        "![Speed beside the best peer, ~ that of similar work](performance.svg)"]))
    remarks = [
        "- What an AVX2 processor has, and no more, is used by the library and by those peers that "
        "can be told: OpenCV, libyuv, zimg, swscale. The others use what this processor has."]
    docs.joinpath("performance-avx2.md").write_text(
        page("Performance with AVX2", avx2, goals, remarks, without=("plain C++",)))
    docs.joinpath("performance.svg").write_text(chart.ratios(
        "Times faster than the best peer, frames of 1920 x 1080, one thread",
        list(charted(results))))


if __name__ == "__main__":
    main()
