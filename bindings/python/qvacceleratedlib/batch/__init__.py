"""A chain of qvtool over many files, on this machine or on a Dask cluster:

    python3 -m qvacceleratedlib.batch "resize --to 1280x720 --method lanczos" *.y4m --out small

`python3 -m qvacceleratedlib.batch --help` lists the options.
"""
