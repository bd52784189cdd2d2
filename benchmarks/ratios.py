#!/usr/bin/env python3
"""Runs the benchmark programs and prints the ratios of ratios.txt.

usage: ratios.py FOLDER [PROGRAM]...

FOLDER is the build folder of the benchmarks; PROGRAM limits the run to the
programs named. Exit status 1 when a ratio misses its reach.
"""

import json
import pathlib
import subprocess
import sys

REPETITIONS = 15


def rows():
    """The table's rows: program, title, measured, peer, kind of time, reach."""
    table = pathlib.Path(__file__).with_name("ratios.txt")
    for line in table.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            yield [field.strip() for field in line.split("|")]


def medians(program):
    """Median times by benchmark name, as {name: {"cpu": ns, "real": ns}}."""
    print(f"running {program.name} ...", file=sys.stderr, flush=True)
    run = subprocess.run(
        [program, "--benchmark_format=json", f"--benchmark_repetitions={REPETITIONS}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.05",
         "--benchmark_report_aggregates_only=true"],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    times = {}
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    for entry in json.loads(run.stdout)["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            unit = scale[entry["time_unit"]]
            times[entry["run_name"]] = {"cpu": entry["cpu_time"] * unit,
                                        "real": entry["real_time"] * unit}
    return times


def find(times, name, kind):
    """Median of the benchmark whose run name is `name`, with or without the
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
        measured[name] = medians(programs[name])

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
