#!/usr/bin/env python3
"""Renders docs/performance.md, docs/performance-avx2.md and docs/performance.svg from benchmarks.

    scripts/performance.py RESULTS.json BUSY.json AVX2.json

All are qvbench's JSON output with repetitions, the second one of `qvbench --busy`, the third one of
`qvbench --level avx2`. A time is the fastest repetition, of the second one the mean; the spread is
how far the median lies above the fastest.
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


def row(results, busy, job, label, goal):
    """The cells of a row, by their heads; None if it is not of ours."""
    ours = results.best(job, label, "ours")
    if ours is None:
        return None
    plain = results.best(job, label, "plain")
    shared = results.best(job, label, "ours", 0)
    busy_one, busy_shared = (busy.mean(job, label, "ours", threads) for threads in (1, 0))
    peers = results.peers(job, label)
    same = next(((t, n) for t, n in peers if not n.startswith("~")), None)
    near = next(((t, n[1:]) for t, n in peers if n.startswith("~")), None)
    limit = results.limit(job, label)
    if goal:
        goal *= results.yardstick(label)
    return {
        "job": job,
        "frame": label,
        "ours": number(ours),
        "spread": f"{100 * results.spread(job, label, 'ours'):.0f} %",
        "plain": f"{number(plain)} ({plain / ours:.1f}x)" if plain else "",
        "best peer": f"{number(same[0])} {same[1]}" if same else "",
        "nearest peer": f"{number(near[0])} {near[1]}" if near else "",
        "peer / ours": (f"{same[0] / ours:.2f}" if same
                        else f"~{near[0] / ours:.2f}" if near else ""),
        "limit / ours": f"{100 * limit / ours:.0f} %" if limit else "",
        "all threads": f"{number(shared)} ({ours / shared:.2f}x)",
        "busy": f"{busy_shared / busy_one:.2f}" if busy_one else "",
        "goal here": number(goal),
        "met": met(results, job, label, goal),
    }


def table(results, busy, goals, without=()):
    rows = [row(results, busy, *key, goals.get(key)) for key in in_order(results, goals)]
    rows = [r for r in rows if r]
    heads = [head for head in rows[0] if head not in without]
    yield "| " + " | ".join(heads) + " |"
    yield "|" + " --- |" * len(heads)
    for r in rows:
        yield "| " + " | ".join(r[head] for head in heads) + " |"


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


COLUMNS = {
    "spread": "how far the median repetition lies above the fastest.",
    "plain": "our own plain rows.",
    "best peer": "the fastest that does the same work; *nearest peer* does less or rounds coarser.",
    "limit / ours": "the time that moving the bytes takes at the speed of that copy, as a share of "
                    "ours.",
    "all threads": "the library as it comes, and how many times faster than on one thread.",
    "busy": "the mean time of the library as it comes over that on one thread, both beside as many "
            "busy loops as there are processors: 1 is as fast, 2 takes twice as long.",
    "goal here": "the goal of bench/goals.csv times how much slower that copy is here than where "
                 "the goals were set; a bold figure says by how much the fastest repetition misses "
                 "it, *fastest* that the median does.",
}


def page(title, results, busy, goals, remarks, without=()):
    context = results.context
    cpu = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo")
                if line.startswith("model name")), "unknown processor")
    copies = ", ".join(f"{f} {results.best('copy 1 byte', f, 'memcpy'):.3f}" for f in FRAMES
                       if results.best("copy 1 byte", f, "memcpy"))
    columns = [f"- *{head}*: {text}" for head, text in COLUMNS.items() if head not in without]
    return "\n".join([
        f"# {title}", "",
        "Nanoseconds per destination pixel (checksums: per byte) on one thread, the fastest of "
        "interleaved repetitions; written by `scripts/bench.sh`.", "",
        f"- Machine: {cpu}, {context['num_cpus']} CPUs; level {context['levels']}; "
        f"version {context['version']}; measured {context['date'][:10]}.",
        f"- A plain copy of a one-byte frame (memcpy), ns per byte: {copies}.",
        *columns, *remarks, "",
        *table(results, busy, goals, without), ""])


def main():
    results, busy, avx2 = (Results(path) for path in sys.argv[1:4])
    goals = read_goals()
    docs = ROOT / "docs"
    docs.joinpath("performance.md").write_text(page("Performance", results, busy, goals, [
        "- The same at the level of most machines, AVX2: "
        "[performance-avx2.md](performance-avx2.md).",
        "- The same on another maker's processor: [Intel Xeon](performance-intel.md), measured "
        "earlier.",
        "- How close the bytes of resizing and warping are to exact ones: "
        "[accuracy.md](accuracy.md).", "",
        "![Speed beside the best peer](performance.svg)"]))
    remarks = [
        "- What an AVX2 processor has, and no more, is used by the library and by those peers that "
        "can be told: OpenCV, libyuv, zimg, swscale. The others use what this processor has."]
    docs.joinpath("performance-avx2.md").write_text(
        page("Performance with AVX2", avx2, avx2, goals, remarks, without=("plain", "busy")))
    docs.joinpath("performance.svg").write_text(chart(results, goals))


if __name__ == "__main__":
    main()
