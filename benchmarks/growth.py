#!/usr/bin/env python3
"""Measures cost against size, and compares its growth with the promises in growth.txt.

usage: growth.py FOLDER PLOTS [PROGRAM]...

FOLDER is the build folder of the benchmarks, PLOTS the folder for the plots; PROGRAM
limits the run to the programs named. The exit status is 1 if a cost grows faster than
promised.

The exponent of a curve is the slope of its logarithms: 1 is a linear cost, 2 a quadratic
one. A line through the upper half of the curve has this slope (least squares). The lower
half does not count, because the part of a cost that does not grow hides the rest there.
The time of a size is the least of some repetitions in mixed order.

Google Benchmark's Complexity() is not used: it fits a kind of curve that is given to it,
and finds no exponent.
"""

import collections
import json
import math
import os
import pathlib
import subprocess
import sys

REPETITIONS = 5
SECONDS_OF_ONE = 0.02

# The C library keeps freed memory. Otherwise a size at which it begins to return memory to
# the system, and to get it anew in each round, makes a step of a factor of six in a curve.
MEMORY = {"MALLOC_TRIM_THRESHOLD_": str(2 ** 40), "MALLOC_MMAP_MAX_": "0"}
# Files in memory, because the journal of a disk costs more than the agent.
FILES = {"TMPDIR": "/dev/shm"} if os.access("/dev/shm", os.W_OK) else {}

Promise = collections.namedtuple("Promise", "program curve title promised limit reason")
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


class GrowthError(Exception):
    """The promises and the benchmarks do not fit together, or a benchmark failed."""


def promises(text):
    """Yields the rows of growth.txt."""
    for line in text.splitlines():
        if line.strip() and not line.startswith("#"):
            fields = [field.strip() for field in line.split("|")]
            if len(fields) != len(Promise._fields) or not all(fields):
                raise GrowthError(f"growth.txt: no promise in '{line}'")
            yield Promise(*fields)


def least_times(result):
    """Returns {curve: {size: nanoseconds}} from the output of Google Benchmark."""
    curves = collections.defaultdict(dict)
    for entry in result["benchmarks"]:
        if entry.get("error_occurred"):
            raise GrowthError(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] != "iteration":
            continue
        curve, size = entry["run_name"].split("/")[:2]
        time = entry["cpu_time"] * NANOSECONDS[entry["time_unit"]]
        times = curves[curve]
        times[int(size)] = min(time, times.get(int(size), math.inf))
    return dict(curves)


def upper_half(times):
    """Returns the points of a curve whose sizes are in the upper half, as logarithms."""
    middle = math.sqrt(min(times) * max(times))
    return [(math.log(size), math.log(time)) for size, time in times.items() if size >= middle]


def exponent(times):
    points = upper_half(times)
    if len(points) < 3:
        raise GrowthError(f"{len(points)} points are too few for an exponent")
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    return (sum((x - mean_x) * (y - mean_y) for x, y in points)
            / sum((x - mean_x) ** 2 for x, _ in points))


def judged(table, curves):
    """Yields (promise, exponent, whether it is kept) for each curve of one program."""
    rows = {row.curve: row for row in table}
    if set(rows) != set(curves):
        raise GrowthError(f"not both in growth.txt and measured: {sorted(set(rows) ^ set(curves))}")
    for name, row in rows.items():
        slope = exponent(curves[name])
        yield row, slope, slope <= float(row.limit)


def measure(program):
    print(f"running {program.name} ...", file=sys.stderr, flush=True)
    command = [program, "--benchmark_format=json", f"--benchmark_repetitions={REPETITIONS}",
               "--benchmark_enable_random_interleaving=true", f"--benchmark_min_time={SECONDS_OF_ONE}"]
    run = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                         env={**os.environ, **MEMORY, **FILES})
    return least_times(json.loads(run.stdout))


def readable(nanoseconds):
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= scale:
            return f"{nanoseconds / scale:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def line_of(row, times, slope, kept):
    first, last = min(times), max(times)
    return (f"{row.title:42} {first:>4,} to {last:>10,} {readable(times[first]):>8} to"
            f" {readable(times[last]):>8}  {slope:z6.2f} <= {row.limit:4} {row.promised}"
            f"{'' if kept else '  MISSED'}")


def plot(folder, name, rows, curves):
    """Writes the data of one program, and a picture of them."""
    data = folder / f"{name}.txt"
    with data.open("w", encoding="utf-8") as out:
        for row, slope, _ in rows:
            out.write(f'"{row.title}: {slope:z.2f}"\n')
            out.writelines(f"{size} {time / 1e9}\n" for size, time in sorted(curves[row.curve].items()))
            out.write("\n\n")
    picture = folder / f"{name}.png"
    subprocess.run(["gnuplot", "-e", f"table='{data}'; picture='{picture}'; curves={len(rows)}",
                    pathlib.Path(__file__).with_name("growth.gnuplot")], check=True)
    return picture


def main():
    folder, plots, wanted = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3:]
    plots.mkdir(parents=True, exist_ok=True)
    text = pathlib.Path(__file__).with_name("growth.txt").read_text(encoding="utf-8")
    table = [row for row in promises(text) if not wanted or row.program in wanted]
    programs = {p.name: p for p in folder.rglob("*_growth") if p.is_file()}
    unknown = set(wanted) - {row.program for row in table}
    if unknown:
        raise GrowthError(f"growth.txt names no program {', '.join(sorted(unknown))}")
    missed, pictures = 0, []
    print(f"{'what':42} {'sizes':>18} {'time':>20}  exponent")
    for name in dict.fromkeys(row.program for row in table):
        curves = measure(programs[name])
        rows = list(judged([row for row in table if row.program == name], curves))
        for row, slope, kept in rows:
            print(line_of(row, curves[row.curve], slope, kept), flush=True)
            missed += not kept
        pictures.append(plot(plots, name, rows, curves))
    print("plots:", *pictures)
    return 1 if missed else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except GrowthError as error:
        sys.exit(f"growth.py: {error}")
