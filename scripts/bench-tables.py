#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints the tables of docs/performance.md from the results of scripts/bench.sh.

usage: bench-tables.py FOLDER
"""

import json
import sys
from pathlib import Path

SIZES = (10_000, 100_000, 1_000_000)


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

    def of(self, program, benchmark):
        return self.times.get((program, benchmark))


def ms(time):
    if time is None:
        return "-"
    digits = 2 if time < 1 else 1 if time < 100 else 0
    return f"{time:,.{digits}f} ms"


def ratio(time, base, digits=2):
    return "-" if time is None or not base else f"{time / base:.{digits}f}"


def growth(small, large):
    """How much longer each value takes at 1,000,000 values than at 100,000."""
    return "-" if small is None or large is None else f"{large / small * 10 - 100:+.0f} %"


def table(title, head, rows):
    print(f"\n### {title}\n")
    print("| " + " | ".join(head) + " |")
    print("|" + "---|" * len(head))
    for row in rows:
        print("| " + " | ".join(row) + " |")


def versus(program, base, *others, suffix=""):
    """A row for each size: the time of `base`, then the time and ratio of each of `others`."""
    for size in SIZES:
        floor = results.of(program, f"{base}/{size}{suffix}")
        row = [f"{size:,}", ms(floor)]
        for other in others:
            time = results.of(program, f"{other}/{size}{suffix}")
            row += [ms(time), ratio(time, floor)]
        yield row


def reading():
    for size in SIZES:
        at = lambda name: results.of("Document", f"{name}/{size}")
        yield [f"{size:,}", ms(at("readPugixml")), ms(at("readQXmlStreamReader")), ms(at("readTree")),
               ratio(at("readTree"), at("readPugixml")),
               ratio(at("readTree"), at("readQXmlStreamReader")),
               ms(at("readAndWritePugixml")), ms(at("readAndWrite")),
               ratio(at("readAndWrite"), at("readAndWritePugixml"))]


def growing():
    for name, label in (("readTree", "Read"), ("write", "Write"), ("destroy", "Destroy"),
                        ("readWide", "Read, wide"), ("writeWide", "Write, wide"),
                        ("destroyWide", "Destroy, wide")):
        small, large = (results.of("Document", f"{name}/{size}") for size in SIZES[1:])
        yield [label, ms(small), ms(large), growth(small, large)]


def stores():
    for size in SIZES:
        for program, processors in (("Store", "2"), ("StoreOne", "1")):
            at = lambda name: results.of(program, f"{name}/{size}")
            yield [f"{size:,}", processors, ms(at("readAndHash")), ms(at("open")),
                   ratio(at("open"), at("readAndHash")), ms(at("saveFloor")), ms(at("save")),
                   ratio(at("save"), at("saveFloor"))]


def polls():
    scan = results.of("Poll", "processScan") or 0
    for size in SIZES:
        floor = results.of("Poll", f"readAndHash/{size}")
        poll = results.of("Poll", f"poll/{size}")
        rest = None if poll is None else poll - scan
        yield [f"{size:,}", ms(floor), ms(poll), ms(scan), ms(rest), ratio(rest, floor)]


def trees():
    shapes = [f"values:{n}/wide:0" for n in (60_000, *SIZES[1:])]
    shapes += [f"values:{n}/wide:1" for n in SIZES[1:]]
    for name, label in (("setDocumentAndExpandAll", "Set the document and expand all"),
                        ("filterByKey", "Filter by key, each change"),
                        ("filterByValue", "Filter by value"),
                        ("filterToNothing", "Filter to nothing and back, each"),
                        ("toggleChangedOnly", '"Changed only", each toggle'),
                        ("editOne", "One edit under a filter"),
                        ("flipManyInABatch", "Half of all values in a batch"),
                        ("deleteAndUndoGroup", "Mark the last group and take it back"),
                        ("revertAll", "Revert all and expand all")):
        yield [label] + [ms(results.of("Tree", f"{name}/{shape}")) for shape in shapes]


def searches():
    for size in SIZES:
        at = lambda name: results.of("Search", f"{name}/{size}")
        yield [f"{size:,}", ms(at("indexPathsPlainly")), ms(at("indexPaths")),
               ratio(at("indexPaths"), at("indexPathsPlainly")), ms(at("scan")),
               ms(at("searchInVain")), ratio(at("searchInVain"), at("scan")), ms(at("order")),
               ratio(at("order"), at("scan")), ms(at("orderShuffled")),
               ratio(at("orderShuffled"), at("scan"))]


def healths():
    for size in SIZES:
        row = [f"{size:,}"]
        for place in (0, 1):
            plain, check = (results.of("Health", f"{name}/values:{size}/place:{place}")
                            for name in ("describeOnly", "healthCheck"))
            row += [ms(plain), ms(check), ratio(check, plain)]
        yield row


def pages():
    plain, search = results.of("Pages", "plainRows/100"), results.of("Pages", "searchPage")
    yield ["100", ms(plain), ms(search), ratio(search, plain)]


def bulks():
    for size in SIZES:
        at = lambda name: results.of("Bulk", f"{name}/{size}")
        yield [f"{size:,}", ms(at("plainWalk")), ms(at("oneEdit")),
               ratio(at("oneEdit"), at("plainWalk")), ms(at("manyEdits")), ms(at("manyMarks"))]


folder = Path(sys.argv[1])
results = Results(folder)
table("Reading and writing",
      ("Values", "pugixml", "QXmlStreamReader", "Read", "to pugixml", "to Qt",
       "pugixml, read and write", "Read and write", "Ratio"), reading())
table("Growth", ("", "100,000", "1,000,000", "Growth a value"), growing())
for name, title in (("Memory", "Memory"), ("Start", "Start-up")):
    print(f"\n### {title}\n")
    printed = folder / f"{name}.md"
    print(printed.read_text().strip() if printed.exists() else "-")
table("Opening and saving whole",
      ("Values", "Processors", "Read and hash", "Open", "Ratio", "Floor of a save", "Save", "Ratio"),
      stores())
table("Poll", ("Values", "Read and hash", "Poll", "Its process scan", "Without it", "Ratio"), polls())
table("The tree of all settings",
      ("", "60,000", "100,000", "1,000,000", "Wide 100,000", "Wide 1,000,000"), trees())
table("Compare", ("Values", "Plain", "Compare", "Ratio"),
      versus("Compare", "compareByStrings", "compare"))
table("Search",
      ("Values", "Index: plain", "Index", "Ratio", "Term: plain", "Term", "Ratio", "Order: sorted",
       "Ratio", "Order: any", "Ratio"), searches())
table("Health check",
      ("Values", "All are settings: plain walk", "Health check", "Ratio",
       "All are data of modules: plain walk", "Health check", "Ratio"), healths())
table("Pages", ("Rows", "Plain", "Search", "Ratio"), pages())
table("All pages at once",
      ("Values", "Plain walk", "One edit", "Ratio", "Edits at once", "Marks at once, twice"), bulks())
