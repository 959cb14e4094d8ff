#!/usr/bin/env python3
"""Makes a table of what bench_peers measured: medians, and ours over theirs."""
import json
import sys


def duration(nanoseconds):
    for unit, size in ("ms", 1e6), ("µs", 1e3):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


jobs = {}
for run in json.load(sys.stdin)["benchmarks"]:
    if run.get("aggregate_name") == "median":
        job, side = run["run_name"].split("/", 1)
        jobs.setdefault(job, {})[side] = run["real_time"]

print("| job | Kalvo | the other | ratio |\n|---|---|---|---|")
for job, sides in sorted(jobs.items()):
    ours = sides.pop("Kalvo")
    (peer, theirs), = sides.items()
    print(f"| {job} | {duration(ours)} | {peer}, {duration(theirs)} | {ours / theirs:.2f} |")
