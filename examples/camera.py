"""Reads a camera's YUYV frames from ffmpeg, in buffers that are used again and again, and writes
them upright at half their size, B, G, R:

    python3 examples/camera.py | ffplay -f rawvideo -pixel_format bgr24 -video_size 320x240 -
    python3 examples/camera.py -f v4l2 -i /dev/video0 | ffplay ...

Arguments are ffmpeg's, for what it reads; without any it draws a test picture.
"""
import subprocess
import sys

import numpy as np

import qvacceleratedlib as qv

SIZE = WIDTH, HEIGHT = 640, 480
SOURCE = sys.argv[1:] or ["-f", "lavfi", "-i", f"testsrc=size={WIDTH}x{HEIGHT}:duration=2"]

camera = subprocess.Popen(
    ["ffmpeg", "-loglevel", "error", *SOURCE, "-s", f"{WIDTH}x{HEIGHT}", "-pix_fmt", "yuyv422",
     "-f", "rawvideo", "-"], stdout=subprocess.PIPE)
buffer = bytearray(qv.Yuyv.nbytes(*SIZE))
frame = qv.Yuyv.from_buffer(buffer, *SIZE)  # sees what is read into the buffer
picture = np.empty((HEIGHT, WIDTH, 3), np.uint8)
upright = np.empty_like(picture)
small = np.empty((HEIGHT // 2, WIDTH // 2, 3), np.uint8)
while camera.stdout.readinto(buffer) == len(buffer):
    qv.convert(frame, "bgr", matrix="bt601", out=picture)
    qv.mirror(picture, "both", upright)  # the camera hangs upside down
    qv.resize(upright, method="area", out=small)
    sys.stdout.buffer.write(small)
sys.exit(camera.wait())
