#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints the tables of docs/performance.md from the results of scripts/bench.sh.

usage: bench-tables.py FOLDER
"""

import json
import sys
from pathlib import Path

SIZES = (10_000, 100_000, 1_000_000)

# What is measured, against what, the program and its two benchmarks, and the limit of their ratio.
RATIOS = (
    ("Read: bytes to tree", "pugixml's `load_buffer`", "Document", "readTree", "readPugixml", 2.5),
    ("", "`QXmlStreamReader` that fills the same nodes", "Document", "readTree",
     "readQXmlStreamReader", 0.33),
    ("Read and write", "pugixml's load and save", "Document", "readAndWrite",
     "readAndWritePugixml", 2),
    ("Open: read, hash, parse, check the layout", "read and hash", "Store", "open", "readAndHash",
     1.3),
    ("- on one processor", "", "StoreOne", "open", "readAndHash", 1.9),
    ("Save", "four reads, four hashes, a copy and a replacement, both flushed", "Store", "save",
     "saveFloor", 1.2),
    ("- on one processor", "", "StoreOne", "save", "saveFloor", 2),
    ("Poll without its process scan", "read and hash", "Poll", "poll", "readAndHash", 1.3),
    ("Compare", "a hash and a set of path strings", "Compare", "compare", "compareByStrings", 0.4),
    ("Index for the search", "`path().toLower()` for each value", "Search", "indexPaths",
     "indexPathsPlainly", 0.25),
    ("Search for a term that doesn't occur", "a loop of `contains` over the same texts", "Search",
     "searchInVain", "scan", 0.75),
    ("Order all values by path", "the same loop", "Search", "order", "scan", 2),
    ("- with the children of every group in random order", "", "Search", "orderShuffled", "scan",
     3),
    ("Health check, all values are settings", "describe each setting", "Health",
     "healthCheck/values:{}/place:0", "describeOnly/values:{}/place:0", 3),
    ("- all are data of modules", "a walk over them", "Health", "healthCheck/values:{}/place:1",
     "describeOnly/values:{}/place:1", 3),
    ("One edit with every page built", "a walk over the tree", "Bulk", "oneEdit", "plainWalk", 1),
    ("Filter of the tree: by key", "set the document and expand all", "Tree",
     "filterByKey/values:{}/wide:0", "setDocumentAndExpandAll/values:{}/wide:0", 2),
    ("- by value", "", "Tree", "filterByValue/values:{}/wide:0",
     "setDocumentAndExpandAll/values:{}/wide:0", 2),
    ('"Changed only"', "", "Tree", "toggleChangedOnly/values:{}/wide:0",
     "setDocumentAndExpandAll/values:{}/wide:0", 2),
)

# By how much the time for each value, or group, may grow from one size to the other, in percent.
MANY = (100_000, 1_000_000)
GROWTHS = (
    ("Read", "Document", "readTree", MANY, 15),
    ("- one group of all values", "Document", "readWide", MANY, 15),
    ("Write", "Document", "write", MANY, 15),
    ("- one group of all values", "Document", "writeWide", MANY, 15),
    ("Destroy", "Document", "destroy", MANY, 20),
    ("- one group of all values", "Document", "destroyWide", MANY, 40),
    ("Edit beside a difference in each group", "Bulk", "editBesideDifferences", (10_000, 80_000),
     75),
)


class Results:
    """CPU times (elapsed times for Store) in milliseconds, by program and benchmark."""

    def __init__(self, folder):
        self.times = {}
        for path in folder.glob("*.json"):
            text = path.read_text()
            for run in json.loads(text)["benchmarks"] if text else []:
                if run.get("aggregate_name", "median") == "median" and not run.get("error_occurred"):
                    clock = "real_time" if path.stem.startswith("Store") else "cpu_time"
                    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}[run["time_unit"]]
                    name = run["run_name"].removesuffix("/real_time")
                    self.times[path.stem, name] = run[clock] * scale

    def of(self, program, benchmark, size=None):
        """The time of `benchmark`, whose name holds the size at its end or in place of {}."""
        name = benchmark.format(size) if "{}" in benchmark else f"{benchmark}/{size}"
        return self.times.get((program, name if size else benchmark))


def ms(time):
    if time is None:
        return "-"
    digits = 2 if time < 1 else 1 if time < 100 else 0
    return f"{time:,.{digits}f} ms"


def table(title, head, rows):
    print(f"\n## {title}\n")
    print("| " + " | ".join(head) + " |")
    print("|" + "---|" * len(head))
    for row in rows:
        print("| " + " | ".join(row) + " |")


def ratios():
    scan = results.of("Poll", "processScan") or 0
    for name, against, program, benchmark, base, limit in RATIOS:
        row = [name, against, f"{limit:g}"]
        for size in SIZES:
            time, floor = (results.of(program, one, size) for one in (benchmark, base))
            known = time is not None and floor
            row.append(f"{(time - (scan if benchmark == 'poll' else 0)) / floor:.2f}" if known
                       else "-")
        yield row + [ms(time)]
    plain, search = results.of("Pages", "plainRows/100"), results.of("Pages", "searchPage")
    yield ["A page of 100 search results until it is painted",
           "100 rows of a label, a line edit and a button", "2",
           f"{search / plain:.2f}" if search and plain else "-", "-", "-", "-"]


def growths():
    for name, program, benchmark, sizes, limit in GROWTHS:
        small, large = (results.of(program, benchmark, size) for size in sizes)
        growth = (f"{large / small * sizes[0] / sizes[1] * 100 - 100:+.0f} %" if small and large
                  else "-")
        yield [name, f"{sizes[0]:,}", f"{sizes[1]:,}", f"{limit} %", growth, ms(large)]


def printed(folder, name):
    path = folder / f"{name}.md"
    return path.read_text().strip() if path.exists() else "-"


def actions(folder):
    """Both runs of BenchActions side by side."""
    columns = [[line.strip("| ").split(" | ") for line in printed(folder, name).splitlines()[2:]]
               for name in ("Actions", "ActionsMany")]
    for small, large in zip(*columns):
        yield [small[0], *(ms(float(row[-1].removesuffix(" ms"))) for row in (small, large))]


def main():
    folder = Path(sys.argv[1])
    global results
    results = Results(folder)
    table("Ratios", ("Measured", "Against", "Limit", *(f"{size:,}" for size in SIZES),
                     f"Time at {SIZES[-1]:,}"), ratios())
    table("Growth", ("Time for each value or group", "From", "To", "Limit", "Growth",
                     "Time at the larger size"), growths())
    table("Actions", ("Action", "60,000 values", "1,000,000 values"), actions(folder))
    for name, title in (("Memory", "Memory"), ("Start", "Start-up")):
        print(f"\n## {title}\n\n{printed(folder, name)}")


main()
