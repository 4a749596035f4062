#!/usr/bin/env python3
"""Renders docs/performance-tool.md and docs/performance-tool.svg.

    scripts/performance_tool.py RESULTS.json      what scripts/bench_tool.py has written
"""
import json
import pathlib
import statistics
import sys

import bench_tool
import chart

DOCS = pathlib.Path(__file__).resolve().parent.parent / "docs"
OURS = "qvtool"
SETTINGS = {
    "idle": ("Nothing else at work",
             "From a Y4M file in memory to Y4M into /dev/null, frames a second."),
    "busy": ("On a busy machine", "The same beside as many endless loops as there are processors."),
    "pipe": ("Between a decoder and an encoder",
             "From H.264 to H.264, frames a second: `ffmpeg | qvtool | ffmpeg -c:v libx264 -preset "
             "ultrafast`, beside ffmpeg with the filter in qvtool's place, and beside a single "
             "ffmpeg that does it all. Most of the time goes to the encoder, and what any program "
             "in this place costs is two pipes: so much `cat` shows."),
    "photos": ("Thumbnails", "JPEG photos to JPEG, photos a second. vipsthumbnail takes one after "
               "the other, or a program is started for each photo, as many at once as there are "
               "processors."),
    "memory": ("Peak memory", "Of a thumbnail of one picture, MiB."),
}


def number(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.1f}"


def ratio(row, peer):
    """How many times more qvtool does; of memory, how many times more it takes."""
    ours, others = row["figures"][OURS], row["figures"][peer]
    return statistics.median(ours) / statistics.median(others)


def peers(row):
    return [name for name in row["figures"] if name != OURS]


def cell(figures, best):
    return f"{number(statistics.median(figures))} ({number(best(figures))})"


def table(rows):
    yield "| work | qvtool | beside | | qvtool / other |"
    yield "| --- | --- | --- | --- | --- |"
    for row in rows:
        best = min if row["setting"] == "memory" else max
        for peer in peers(row):
            yield (f"| {row['job']} | {cell(row['figures'][OURS], best)} | {peer} | "
                   f"{cell(row['figures'][peer], best)} | {ratio(row, peer):.2f} |")


def page(results):
    rows = results["rows"]
    lines = [
        "# Performance of qvtool", "",
        "Whole programs on whole files, as a user would run them, beside the programs that people "
        f"use for the same. Clips have {results['frames']} frames of 1920 x 1080 in 4:2:0. Figures "
        f"are the median of {results['repetitions']} runs and, in brackets, the best one; "
        "contenders take turns. Written by `scripts/bench_tool.sh`.", "",
        f"- Machine: {results['cpu']}, {results['cpus']} CPUs; measured {results['date']}.",
        f"- {'; '.join(results['versions'].values())}.",
        "- ffmpeg's filter is the nearest that it has: its linear blend of rows for deinterlacing, "
        "bicubic scaling with its usual flags.",
        "- The library's operations by themselves: [performance.md](performance.md).", "",
        "![Times faster than other programs](performance-tool.svg)", "",
        "| work | qvtool | ffmpeg |", "| --- | --- | --- |",
        *(f"| {job} | `{command}` | `{filters}` |"
          for job, (command, filters) in bench_tool.JOBS.items())]
    for setting, (title, text) in SETTINGS.items():
        lines += ["", f"## {title}", "", text, "",
                  *table([row for row in rows if row["setting"] == setting])]
    return "\n".join(lines) + "\n"


def charted(rows):
    for row in rows:
        if row["setting"] != "memory":
            for peer in peers(row):
                yield f"{row['job']}, {row['setting']}", ratio(row, peer), peer


def main():
    results = json.loads(pathlib.Path(sys.argv[1]).read_text())
    DOCS.joinpath("performance-tool.md").write_text(page(results))
    DOCS.joinpath("performance-tool.svg").write_text(chart.ratios(
        "qvtool: times faster than other programs", list(charted(results["rows"]))))


if __name__ == "__main__":
    main()
