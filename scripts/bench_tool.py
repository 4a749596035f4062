#!/usr/bin/env python3
"""Times qvtool beside the programs that people use for the same work.

    scripts/bench_tool.py [OPTION...] QVTOOL RESULTS.json

Clips and pictures are made here and lie in memory; frames that are made of them go to /dev/null.
The contenders of a row take turns, so that a noisy moment hits them all. Prints a line for each row
and writes all figures for scripts/performance_tool.py.
"""
import argparse
import contextlib
import datetime
import json
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import tempfile
import time

SETTINGS = ("idle", "busy", "pipe", "photos", "memory")

# What qvtool does, and the filter of ffmpeg that does the same or comes nearest.
JOBS = {
    "copy": ("copy IN OUT", "null"),
    "resize to 1280x720, cubic": ("resize IN OUT --to 1280x720 --method cubic",
                                  "scale=1280:720:flags=bicubic"),
    "deinterlace, three taps": ("deinterlace IN OUT", "pp=lb"),
    "overlay a logo": ("overlay IN OUT --with logo.png --at 1500,61", "overlay=1500:61"),
    "mirror left to right": ("mirror IN OUT", "hflip"),
    "crop, deinterlace, resize, overlay": (
        "run 'crop 0,0,1440,1080; deinterlace; resize --to 960x720; "
        "overlay --with logo.png --at 600,41' IN OUT",
        "[0]crop=1440:1080:0:0,pp=lb,scale=960:720:flags=bicubic[v];[v][1]overlay=600:41"),
    "convert to BGR": ("convert IN OUT --to bgr --format raw", "format=bgr24"),
}
FFMPEG = "ffmpeg -v error -y"
H264 = "-c:v libx264 -preset ultrafast -f h264 /dev/null"
CPUS = len(os.sched_getaffinity(0))
EACH_PHOTO = f"ls photos | xargs -P {CPUS} -I PHOTO"


def run(command, folder):
    subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


def seconds(command, folder):
    start = time.perf_counter()
    run(command, folder)
    return time.perf_counter() - start


def peak_memory(command, folder):
    """In MiB."""
    run(f"/usr/bin/time -f %M -o peak {command}", folder)
    return int((folder / "peak").read_text()) / 1024


@contextlib.contextmanager
def busy_loops(count):
    loops = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(count)]
    try:
        yield
    finally:
        for loop in loops:
            loop.kill()
            loop.wait()


def in_turns(measure, contenders, repetitions, folder):
    """All contenders once a round, which another one begins each time."""
    names = list(contenders)
    figures = {name: [] for name in names}
    for i in range(repetitions):
        first = i % len(names)
        for name in names[first:] + names[:first]:
            figures[name].append(measure(contenders[name], folder))
    return figures


def qvtool_on(qvtool, job, source):
    return f"{qvtool} " + JOBS[job][0].replace("IN", source).replace("OUT", "-")


def ffmpeg_on(job, source):
    filters = JOBS[job][1]
    if "overlay" in filters:
        return f"{FFMPEG} -i {source} -i logo.png -filter_complex '{filters}'"
    return f"{FFMPEG} -i {source} -vf {filters}"


def files_to_nothing(qvtool, job):
    container = "rawvideo" if "--format raw" in JOBS[job][0] else "yuv4mpegpipe"
    contenders = {"qvtool": qvtool_on(qvtool, job, "clip.y4m"),
                  "ffmpeg": ffmpeg_on(job, "clip.y4m") + f" -f {container} /dev/null"}
    if job == "copy":
        contenders["cat"] = "cat clip.y4m"
    return contenders


def between_ffmpegs(qvtool, job):
    def with_tool(tool):
        return f"{FFMPEG} -i clip.mp4 -f yuv4mpegpipe - | {tool} | {FFMPEG} -i - {H264}"
    contenders = {"qvtool": with_tool(qvtool_on(qvtool, job, "-")),
                  "ffmpeg": with_tool(ffmpeg_on(job, "-") + " -f yuv4mpegpipe -"),
                  "one ffmpeg for all": ffmpeg_on(job, "clip.mp4") + f" {H264}"}
    if job == "copy":
        contenders["cat"] = with_tool("cat")
    return contenders


def make(source, target, more, folder):
    run(f"{FFMPEG} -f lavfi -i \"{source}\" {more} {target}", folder)


def make_clip(frames, folder):
    make("testsrc2=size=1920x1080:rate=25,format=yuv420p", "clip.y4m", f"-frames:v {frames}",
         folder)
    run(f"{FFMPEG} -i clip.y4m -c:v libx264 -preset ultrafast clip.mp4", folder)
    # Transparent on the left, then half, then opaque.
    make("testsrc2=size=320x120,format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)'"
         ":a='clip(4*X-100,0,255)'", "logo.png", "-frames:v 1", folder)


def make_photos(count, size, folder):
    """JPEG files of some three bits a pixel, as cameras write them."""
    folder.mkdir()
    make(f"testsrc2=size={size},noise=alls=14:allf=t", "photo-%03d.jpg",
         f"-frames:v {count} -pix_fmt yuvj420p -q:v 3", folder)


def rows(options, folder):
    """(setting, job, unit, amount of work, measure, contenders); made as they are asked for."""
    qvtool, frames = options.qvtool.resolve(), options.frames
    jobs = [job for job in JOBS if re.search(options.jobs, job)]
    if {"idle", "busy", "pipe"} & set(options.settings):
        make_clip(frames, folder)
    for setting in ("idle", "busy"):
        for job in jobs if setting in options.settings else ():
            with busy_loops(CPUS) if setting == "busy" else contextlib.nullcontext():
                yield setting, job, "frames/s", frames, seconds, files_to_nothing(qvtool, job)
    for job in jobs if "pipe" in options.settings else ():
        if job != "convert to BGR":  # no input of the encoder
            yield "pipe", job, "frames/s", frames, seconds, between_ffmpegs(qvtool, job)
    if "photos" in options.settings:
        make_photos(options.photos, "4000x3000", folder / "photos")
        (folder / "small").mkdir()
        thumbnail = f"--size 320x240 -o {folder}/small/%s.jpg"
        yield "photos", "4000x3000 to 320x240", "photos/s", options.photos, seconds, {
            "qvtool": f"{qvtool} resize photos/* --to 320x240 --out small --jobs 0",
            "vipsthumbnail": f"vipsthumbnail photos/* {thumbnail}",
            "vipsthumbnails at once": f"{EACH_PHOTO} vipsthumbnail photos/PHOTO {thumbnail}"}
    if "memory" in options.settings:
        make_photos(1, "12000x9000", folder / "large")
        yield "memory", "12000x9000 to 320x240", "MiB", None, peak_memory, {
            "qvtool": f"{qvtool} resize large/photo-001.jpg small.jpg --to 320x240",
            "vipsthumbnail": "vipsthumbnail large/photo-001.jpg --size 320x240 "
                             f"-o {folder}/small.jpg"}


def measured(options, folder):
    for setting, job, unit, amount, measure, contenders in rows(options, folder):
        figures = in_turns(measure, contenders, options.repetitions, folder)
        if amount:
            figures = {name: [amount / t for t in times] for name, times in figures.items()}
        print(f"{setting:8}{job:36}", ", ".join(
            f"{name} {statistics.median(f):.4g} ({min(f):.4g} to {max(f):.4g})"
            for name, f in figures.items()), unit, flush=True)
        yield {"setting": setting, "job": job, "unit": unit, "figures": figures}


def memory_folder():
    """None, which is the folder for temporary files, where there is not room enough in memory."""
    memory = pathlib.Path("/dev/shm")
    return memory if memory.is_dir() and shutil.disk_usage(memory).free > 2 << 30 else None


def cpu_name():
    with open("/proc/cpuinfo") as lines:
        return next((line.split(":")[1].strip() for line in lines
                     if line.startswith("model name")), "unknown processor")


def first_line(command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.split("\n")[0]


def versions(qvtool):
    return {"qvtool": first_line([qvtool, "--version"]),
            "ffmpeg": first_line(["ffmpeg", "-version"]).split(" Copyright")[0],
            "vipsthumbnail": first_line(["vipsthumbnail", "--vips-version"])}


def main():
    parser = argparse.ArgumentParser(description="Times qvtool beside other programs.")
    parser.add_argument("qvtool", type=pathlib.Path)
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--settings", nargs="+", choices=SETTINGS, default=SETTINGS)
    parser.add_argument("--jobs", default="", metavar="REGEX", help="of jobs on clips")
    parser.add_argument("--frames", type=int, default=300)
    parser.add_argument("--photos", type=int, default=40)
    parser.add_argument("--repetitions", type=int, default=7)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(dir=memory_folder()) as folder:
        results = {
            "date": datetime.date.today().isoformat(), "cpu": cpu_name(), "cpus": CPUS,
            "frames": options.frames, "photos": options.photos,
            "repetitions": options.repetitions, "versions": versions(options.qvtool),
            "rows": list(measured(options, pathlib.Path(folder)))}
    options.results.write_text(json.dumps(results, indent=1) + "\n")


if __name__ == "__main__":
    main()
