#!/usr/bin/env python3
"""Turns the output of the benchmarks into tables of medians and ratios.

    tabulate.py [--beside FOLDER] FILE...

A file holds samples of one program: Google Benchmark's JSON (.json), or lines of "measure, program,
value, unit" with tabulators between them (.tsv). "Ours" is compared with every other program that
was measured the same way. Samples of the same name in the folder, which is named for the system
that they come from, make more columns.
"""

import argparse
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


def rows(path):
    """Returns {(measure, peer): (ours, the peer's, ratio)}, all as texts."""
    read = samples_of_functions if path.suffix == ".json" else samples_of_processes
    result = {}
    for measure, programs in medians(read(path)).items():
        if OURS not in programs:
            sys.exit(f"{measure}: nothing of ours was measured")
        ours, unit = programs.pop(OURS)
        if not programs:
            result[measure, ""] = text_of(ours, unit), "", ""
        for name, (median, other_unit) in programs.items():
            ratio = f"{ours / median:.2f}" if median else ""
            result[measure, name] = text_of(ours, unit), text_of(median, other_unit), ratio
    return result


def table(path, beside):
    head = ["measured", "tkwebhelper", "against", "that", "ratio"]
    others = {}
    if beside and (beside / path.name).exists():
        others = rows(beside / path.name)
        head += [f"{beside.name}: tkwebhelper", "that", "ratio"]
    yield "| " + " | ".join(head) + " |"
    yield "|" + "|".join("---" if name in ("measured", "against") else "--:" for name in head) + "|"
    for (measure, peer), (ours, that, ratio) in rows(path).items():
        cells = [measure, ours, peer, that, ratio]
        if others:
            cells += others.get((measure, peer), ("", "", ""))
        yield "| " + " | ".join(cells) + " |"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--beside", type=pathlib.Path)
    parser.add_argument("files", type=pathlib.Path, nargs="+")
    arguments = parser.parse_args()
    for path in arguments.files:
        print(f"\n## {path.stem.replace('_', ' ').capitalize()}\n")
        print("\n".join(table(path, arguments.beside)))


main()
