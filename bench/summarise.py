#!/usr/bin/env python3
"""Makes tables of a benchmark run: for each operation and document the median time of this library, its throughput, and
the time of each library divided by that of pugixml (of libxml2 for validation, which pugixml does not do).

    orvxml_bench --benchmark_format=json --benchmark_repetitions=5 | bench/summarise.py
    bench/summarise.py RUN.json
"""

import collections
import json
import math
import statistics
import sys

OURS = ("orvxml", "orvxml-platform")
UNIT_SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def medians(run):
    """operation -> document -> library -> (median seconds, median bytes per second)."""
    samples = collections.defaultdict(list)
    for entry in run["benchmarks"]:
        if entry.get("run_type") == "aggregate":
            continue
        name = entry["name"]
        if entry.get("error_occurred"):
            sys.exit(f"{name}: {entry['error_message']}")
        # Google Benchmark adds what a benchmark was set to, such as manual_time, behind the name.
        operation, document, library = name.split("/")[:3]
        seconds = entry["real_time"] * UNIT_SECONDS[entry["time_unit"]]
        samples[operation, document, library].append((seconds, entry["bytes_per_second"]))
    table = collections.defaultdict(lambda: collections.defaultdict(dict))
    for (operation, document, library), values in samples.items():
        table[operation][document][library] = tuple(statistics.median(column) for column in zip(*values))
    return table


def main():
    if len(sys.argv) > 2 or sys.argv[1:2] in (["-h"], ["--help"]):
        sys.exit(__doc__)
    with open(sys.argv[1]) if len(sys.argv) == 2 else sys.stdin as file:
        table = medians(json.load(file))

    for operation, documents in table.items():
        libraries = list(dict.fromkeys(library for row in documents.values() for library in row))
        base = "pugixml" if "pugixml" in libraries else "libxml2"
        columns = [library for library in libraries if library != base]
        print(f"\n{operation}, {base} = 1\n")
        print(f"| document | ms | MB/s | {' | '.join(columns)} |")
        print("|---|--:|--:|" + "--:|" * len(columns))
        ratios = collections.defaultdict(list)
        for document, row in documents.items():
            seconds, throughput = row[OURS[0]]
            cells = []
            for library in columns:
                ratio = row[library][0] / row[base][0]
                ratios[library].append(ratio)
                cells.append(f"{ratio:.2f}")
            print(f"| {document} | {seconds * 1e3:.2f} | {throughput / 1e6:.0f} | {' | '.join(cells)} |")
        means = [math.exp(statistics.mean(map(math.log, ratios[library]))) for library in columns]
        print(f"| *geometric mean* | | | {' | '.join(f'{mean:.2f}' for mean in means)} |")


main()
