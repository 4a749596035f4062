#!/usr/bin/env python3
"""Renders docs/performance.md and docs/performance.svg from a run of the benchmarks.

    scripts/performance.py RESULTS.json BUSY.json

Both are qvbench's JSON output with repetitions, the second one of `qvbench --busy`. A time is the
fastest repetition, of the second one the mean; the spread is how far the median lies above the
fastest.
"""
import csv
import json
import pathlib
import statistics
import sys
from collections import defaultdict

ROOT = pathlib.Path(__file__).resolve().parent.parent
FRAMES = ["640x360", "1920x1080", "3840x2160"]
REFERENCE_COPY = dict(zip(FRAMES, (0.017, 0.021, 0.025)))  # ns per byte where the goals were set
PAIRS = ["640x360 to 1280x720", "1280x720 to 1920x1080", "1920x1080 to 1280x720",
         "3840x2160 to 1920x1080"]
PIECES = ["1 KiB", "64 KiB", "8 MiB"]


class Results:
    """Times in ns per pixel: [job][label][(contender, threads)] -> list of repetitions."""

    def __init__(self, path):
        data = json.loads(pathlib.Path(path).read_text())
        self.context = data["context"]
        self.times = defaultdict(lambda: defaultdict(lambda: defaultdict(list)))
        self.moved = {}
        self.pixels = {}
        for run in data["benchmarks"]:
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

    def median(self, job, label, contender):
        return statistics.median(self.times[job][label][contender, 1])

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

    def yardstick(self, label):
        """How much slower a one-byte copy of the frame is here than where the goals were set."""
        frame = min(FRAMES, key=lambda f: abs(self.pixels[f] - self.pixels[label]))
        return self.best("copy 1 byte", frame, "memcpy") / REFERENCE_COPY[frame]


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


def in_order(results, goals):
    """(job, label) pairs in the order of the goals, frames from small to large; others follow."""
    rank = {key: i for i, key in enumerate(goals)}
    jobs = {}
    for job, _ in goals:
        jobs.setdefault(job, len(jobs))
    pairs = [(job, label) for job, labels in results.times.items() for label in labels]
    return sorted(pairs, key=lambda p: (jobs.get(p[0], len(jobs)), p[0], rank.get(p, 0),
                                        results.pixels[p[1]]))


def met(results, job, label, goal):
    """A goal is met if the fastest repetition and the median agree on it."""
    if goal is None:
        return ""
    fastest = results.best(job, label, "ours")
    if fastest > goal:
        return f"**{fastest / goal:.2f}x**"
    return "yes" if results.median(job, label, "ours") <= goal else "fastest"


def table(results, busy, goals):
    head = ["job", "frame", "ours", "spread", "plain", "best peer", "nearest peer", "peer / ours",
            "limit / ours", "all threads", "busy", "goal here", "met"]
    yield "| " + " | ".join(head) + " |"
    yield "|" + " --- |" * len(head)
    for job, label in in_order(results, goals):
        ours = results.best(job, label, "ours")
        if ours is None:
            continue
        plain = results.best(job, label, "plain")
        shared = results.best(job, label, "ours", 0)
        busy_one, busy_shared = (busy.mean(job, label, "ours", threads) for threads in (1, 0))
        peers = results.peers(job, label)
        same = next(((t, n) for t, n in peers if not n.startswith("~")), None)
        near = next(((t, n[1:]) for t, n in peers if n.startswith("~")), None)
        limit = results.limit(job, label)
        goal = goals.get((job, label))
        if goal:
            goal *= results.yardstick(label)
        yield "| " + " | ".join([
            job, label, number(ours), f"{100 * results.spread(job, label, 'ours'):.0f} %",
            f"{number(plain)} ({plain / ours:.1f}x)" if plain else "",
            f"{number(same[0])} {same[1]}" if same else "",
            f"{number(near[0])} {near[1]}" if near else "",
            f"{same[0] / ours:.2f}" if same else f"~{near[0] / ours:.2f}" if near else "",
            f"{100 * limit / ours:.0f} %" if limit else "",
            f"{number(shared)} ({ours / shared:.2f}x)",
            f"{busy_shared / busy_one:.2f}" if busy_one else "",
            number(goal), met(results, job, label, goal),
        ]) + " |"


def chart(results, goals):
    """Bars: how many times faster than the best peer, at 1080p or the nearest there is."""
    bars = []
    for job in dict.fromkeys(job for job, _ in in_order(results, goals)):
        labels = results.times[job]
        label = "1920x1080" if "1920x1080" in labels else list(labels)[min(2, len(labels) - 1)]
        ours = results.best(job, label, "ours")
        peers = results.peers(job, label)
        same = [p for p in peers if not p[1].startswith("~")] or peers
        if ours and same:
            bars.append((job, same[0][0] / ours, same[0][1]))
    width, row, left = 900, 18, 260
    top = max((b[1] for b in bars), default=1)
    scale = (width - left - 220) / top
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" '
           f'width="{width}" height="{row * len(bars) + 50}" '
           'font-family="sans-serif" font-size="11">',
           '<rect width="100%" height="100%" fill="#fff"/>',
           '<text x="10" y="18" font-size="13">Speed beside the best peer on one thread '
           '(1 = as fast as the peer; longer is faster)</text>']
    for i, (job, ratio, peer) in enumerate(bars):
        y = 30 + i * row
        colour = "#2a7" if ratio >= 1 else "#c54"
        name = job.replace("&", "&amp;")
        out.append(f'<text x="{left - 6}" y="{y + 12}" text-anchor="end">{name}</text>'
                   f'<rect x="{left}" y="{y + 2}" width="{ratio * scale:.1f}" height="{row - 5}" '
                   f'fill="{colour}"/>'
                   f'<text x="{left + ratio * scale + 4:.1f}" y="{y + 12}">'
                   f'{ratio:.2f} {peer.lstrip("~")}</text>')
    out.append(f'<line x1="{left + scale:.1f}" x2="{left + scale:.1f}" '
               f'y1="26" y2="{30 + row * len(bars)}" stroke="#444"/>')
    out.append("</svg>\n")
    return "\n".join(out)


def main():
    results, busy = (Results(path) for path in sys.argv[1:3])
    context = results.context
    goals = read_goals()
    cpu = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo")
                if line.startswith("model name")), "unknown processor")
    copies = ", ".join(f"{f} {results.best('copy 1 byte', f, 'memcpy'):.3f}" for f in FRAMES
                       if results.best("copy 1 byte", f, "memcpy"))
    lines = [
        "# Performance", "",
        "Nanoseconds per destination pixel (checksums: per byte) on one thread, the fastest of "
        "interleaved repetitions; written by `scripts/bench.sh`.", "",
        f"- Machine: {cpu}, {context['num_cpus']} CPUs; level {context['levels']}; "
        f"version {context['version']}; measured {context['date'][:10]}.",
        f"- A plain copy of a one-byte frame (memcpy), ns per byte: {copies}.",
        "- *spread*: how far the median repetition lies above the fastest. "
        "*plain*: our own plain rows.",
        "- *best peer* does the same work; *nearest peer* does less or rounds coarser.",
        "- *all threads*: the library as it comes, and how many times faster than on one thread.",
        "- *busy*: the mean time of the library as it comes over that on one thread, both beside "
        "as many busy loops as there are processors: 1 is as fast, 2 takes twice as long.",
        "- *limit / ours*: the time that moving the bytes takes at the speed of that copy, as a "
        "share of ours.",
        "- *goal here*: the goal of bench/goals.csv times how much slower that copy is here than "
        "where the goals were set; a bold figure says by how much the fastest repetition misses "
        "it, *fastest* that the median does.",
        "- The same on another maker's processor: [Intel Xeon](performance-intel.md), measured "
        "earlier.",
        "- How close the bytes of resizing and warping are to exact ones: "
        "[accuracy.md](accuracy.md).", "",
        "![Speed beside the best peer](performance.svg)", "",
        *table(results, busy, goals), ""]
    (ROOT / "docs" / "performance.md").write_text("\n".join(lines))
    (ROOT / "docs" / "performance.svg").write_text(chart(results, goals))


if __name__ == "__main__":
    main()
