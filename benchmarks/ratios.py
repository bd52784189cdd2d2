#!/usr/bin/env python3
"""Runs the benchmark programs and prints the ratios of ratios.txt.

usage: ratios.py FOLDER [PROGRAM]...

FOLDER is the build folder of the benchmarks; PROGRAM limits the run to the
programs named. The exit status is 1 if a ratio misses its reach.
"""

import collections
import json
import pathlib
import subprocess
import sys

# Many short repetitions in mixed order: if the machine is slow for a while, it is slow
# for both sides of a ratio. Several processes: where the system puts the memory of one
# changes the ratio of all its repetitions by up to 15 %.
PROCESSES = 5
REPETITIONS = 500  # in each
SECONDS_OF_ONE = 0.0005


def rows():
    """The table's rows: program, title, measured, peer, kind of time, reach."""
    table = pathlib.Path(__file__).with_name("ratios.txt")
    for line in table.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            yield [field.strip() for field in line.split("|")]


def middle_mean(values):
    """Returns the mean of the middle half, so a disturbance of some repetitions does not
    count. A median would jump between two speeds of a machine; this mean does not."""
    values = sorted(values)
    quarter = len(values) // 4
    middle = values[quarter:len(values) - quarter]
    return sum(middle) / len(middle)


def mean_times(program):
    """Returns times by benchmark name, as {name: {"cpu": ns, "real": ns}}."""
    print(f"running {program.name} ...", file=sys.stderr, flush=True)
    command = [program, "--benchmark_format=json", f"--benchmark_repetitions={REPETITIONS}",
               "--benchmark_enable_random_interleaving=true", f"--benchmark_min_time={SECONDS_OF_ONE}"]
    repetitions = collections.defaultdict(lambda: {"cpu": [], "real": []})
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    for _ in range(PROCESSES):
        run = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        for entry in json.loads(run.stdout)["benchmarks"]:
            if entry["run_type"] == "iteration":
                unit = scale[entry["time_unit"]]
                repetitions[entry["run_name"]]["cpu"].append(entry["cpu_time"] * unit)
                repetitions[entry["run_name"]]["real"].append(entry["real_time"] * unit)
    return {name: {kind: middle_mean(values) for kind, values in kinds.items()}
            for name, kinds in repetitions.items()}


def find(times, name, kind):
    """Returns the time of the benchmark whose run name is `name`, with or without the
    suffixes that the library adds; several names joined by + are added up."""
    total = 0.0
    for part in name.split("+"):
        part = part.strip()
        hits = [t for run, t in times.items() if run == part or run.startswith(part + "/real_time")
                or run.startswith(part + "/process_time") or run.startswith(part + "/iterations")]
        if len(hits) != 1:
            raise SystemExit(f"ratios.txt names '{part}', which {len(hits)} benchmarks match")
        total += hits[0][kind]
    return total


def main():
    folder, wanted = pathlib.Path(sys.argv[1]), sys.argv[2:]
    table = [row for row in rows() if not wanted or row[0] in wanted]
    programs = {p.name: p for p in folder.rglob("*_benchmark") if p.is_file()}
    measured = {}
    for name in dict.fromkeys(row[0] for row in table):
        measured[name] = mean_times(programs[name])

    print(f"{'what':58} {'ours':>12} {'peer':>12} {'ratio':>7}  reach")
    missed = 0
    for program, title, ours, peer, kind, reach in table:
        times = measured[program]
        a, b = find(times, ours, kind), find(times, peer, kind)
        comparison, bound = reach.split()
        ratio = b / a if comparison == ">=" else a / b
        reached = ratio >= float(bound) if comparison == ">=" else ratio <= float(bound)
        missed += not reached
        print(f"{title:58} {a:9.0f} ns {b:9.0f} ns {ratio:7.2f}  {reach}{'' if reached else '  MISSED'}")
    print("'>=': as many times as fast as the peer; '<=': share of the peer's time")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
