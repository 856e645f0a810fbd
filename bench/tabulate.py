#!/usr/bin/env python3
"""Turns the output of the benchmarks into tables of medians and ratios.

    tabulate.py FILE...

A file holds samples of one program: Google Benchmark's JSON (.json), or lines of "measure, program,
value, unit" with tabulators between them (.tsv). "Ours" is compared with every other program that
was measured the same way.
"""

import json
import pathlib
import re
import statistics
import sys

OURS = "Ours"


def samples_of_functions(path):
    """Yields (measure, program, value, unit) for each run of a benchmark of functions."""
    runs = [
        run
        for run in json.loads(path.read_text())["benchmarks"]
        if run["run_type"] == "iteration"
    ]
    # The runs are in random order.
    runs.sort(key=lambda run: (run["family_index"], run["per_family_instance_index"]))
    for run in runs:
        if run.get("error_occurred"):
            sys.exit(f"{path.name}: {run['name']}: {run['error_message']}")
        # Real time, which includes what other threads do, only where the benchmark says so.
        time = run["real_time" if "/real_time" in run["run_name"] else "cpu_time"]
        name = re.sub(r"/real_time|/iterations:\d+|/repeats:\d+", "", run["run_name"])
        # The name is Measure<Program>/argument. A measure without a peer has no program.
        measure, program, argument = re.fullmatch(r"(\w+)(?:<(\w+)>)?(.*)", name).groups()
        text = re.sub(r"(?<!^)(?=[A-Z])", " ", measure).lower() + argument.replace("/", ", ")
        yield text, program or OURS, time, run["time_unit"]
        if "allocations" in run:
            yield text + ": allocations before the sink", program, run["allocations"], ""


def samples_of_processes(path):
    """The same for a benchmark of whole processes."""
    for line in path.read_text().splitlines():
        measure, program, value, unit = line.split("\t")
        yield measure, program, float(value), unit


def medians(samples):
    """Returns {measure: {program: (median, unit)}}, in the order of first appearance."""
    values = {}
    for measure, program, value, unit in samples:
        values.setdefault(measure, {}).setdefault((program, unit), []).append(value)
    return {
        measure: {
            program: (statistics.median(all_values), unit)
            for (program, unit), all_values in programs.items()
        }
        for measure, programs in values.items()
    }


def text_of(median, unit):
    return f"{median:,.{0 if median >= 1000 else 1 if median >= 10 else 2}f} {unit}".strip()


def rows(measure, programs):
    if OURS not in programs:
        sys.exit(f"{measure}: nothing of ours was measured")
    ours, unit = programs[OURS]
    others = {name: value for name, value in programs.items() if name != OURS}
    if not others:
        yield measure, text_of(ours, unit), "", "", ""
    for name, (median, other_unit) in others.items():
        ratio = f"{ours / median:.2f}" if median else ""
        yield measure, text_of(ours, unit), name, text_of(median, other_unit), ratio


def table(path):
    read = samples_of_functions if path.suffix == ".json" else samples_of_processes
    yield "| measured | tkwebhelper | against | that | ratio |"
    yield "|---|--:|---|--:|--:|"
    for measure, programs in medians(read(path)).items():
        for row in rows(measure, programs):
            yield "| " + " | ".join(row) + " |"


def main():
    for name in sys.argv[1:]:
        path = pathlib.Path(name)
        print(f"\n## {path.stem.replace('_', ' ').capitalize()}\n")
        print("\n".join(table(path)))


main()
