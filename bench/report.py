#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""report.py FOLDER: one table of the figures in FOLDER, each beside its peer, the ratio and the budget."""
import json
import os
import re
import sys

SCALE = {"ns": 1, "us": 1e3, "ms": 1e6}


def medians(path, clock="real_time"):
    """Nanoseconds by name, and bytes or rows a second. A benchmark's own choice of clock counts."""
    times, rates = {}, {}
    rows = json.load(open(path))["benchmarks"] if os.path.exists(path) else []
    for b in rows:
        if b.get("aggregate_name") != "median":
            continue
        name = re.sub(r"/(min_time:[0-9.]+|iterations:\d+|repeats:\d+|real_time|manual_time)", "", b["run_name"])
        own = re.search(r"/(real|manual)_time", b["run_name"])
        times[name] = b["real_time" if own else clock] * SCALE[b["time_unit"]]
        for counter, unit in (("bytes_per_second", "MB/s"), ("items_per_second", "M rows/s")):
            if counter in b:
                rates[name] = f"{b[counter] / 1e6:.{0 if unit == 'MB/s' else 2}f} {unit}"
    return times, rates


def failures(path):
    """What a benchmark that could not do its work said, by name."""
    rows = json.load(open(path))["benchmarks"] if os.path.exists(path) else []
    return {b["run_name"]: b["error_message"] for b in rows if b.get("error_occurred")}


def counters(path, counter):
    rows = json.load(open(path))["benchmarks"] if os.path.exists(path) else []
    return {b["run_name"]: b[counter] for b in rows if counter in b and b.get("aggregate_name", "median") == "median"}


def per_megabyte(times):
    """What a megabyte of a growing file takes."""
    return {f"{name} a MB": time / int(name.rsplit("/", 1)[1]) for name, time in times.items() if "Linear/" in name}


BUILD_BUDGETS = {  # milliseconds
    "hello, edit to run": 25, "1 class of 200 lines": 30, "50 x 200 lines from nothing": 190,
    "the same, body of the bottom class": 40, "the same, head of the bottom class": 55, "the same, nothing changed": 6,
    "8,000 lines in one class": 90,
}


def builds(path):
    """The table of the toolchain and its peers, one column for each."""
    cases = json.load(open(path))
    load = cases.pop("load")
    names = list(next(iter(cases.values())))
    print(f"\n{'builds, ms, at a load of ' + str(load):36}" + "".join(f"{name:>10}" for name in names) + "  budget")
    for case, times in cases.items():
        budget = BUILD_BUDGETS[case]
        met = "met" if times["Tarnwick"] <= budget else "MISSED"
        print(f"{case:36}" + "".join(f"{times.get(name, 0):10.1f}" for name in names) + f"  {budget} {met}")


def text(ns):
    for unit, factor in (("ms", 1e6), ("us", 1e3)):
        if ns >= factor:
            return f"{ns / factor:.2f} {unit}"
    return f"{ns:.2f} ns"


def main():
    folder = sys.argv[1]
    all_ = {}
    for name in ("kernel_bench", "values_bench", "library_bench", "platform_bench", "os_bench", "edit_bench", "windows_bench",
                 "designer_bench", "search_bench", "program_bench", "debugger_bench"):
        all_.update(medians(f"{folder}/{name}.json")[0])
    data, rates = medians(f"{folder}/data_bench.json", "cpu_time")
    all_.update(data)
    all_.update(per_megabyte(data))
    start = json.load(open(f"{folder}/start.json")) if os.path.exists(f"{folder}/start.json") else {}
    for name, row in start.items():
        all_["start " + name] = row["ms"] * 1e6
    if "openLarge" in all_:
        all_["open 4 MB, extra"] = all_["openLarge"] - all_["openSmall"]
    # name, peer, the budget as a ratio to the peer or as nanoseconds
    rows = [
        ("stampInline", None, 1), ("stampCalled", None, 2), ("frame", None, None),
        ("stampUnderDebugger/0/1", None, 25), ("stampUnderDebugger/200/1", None, 25), ("stampUnderDebugger/200/50", None, 25),
        ("callUnderDebugger", None, None), ("conditionTested", None, 100), ("stepUnderDebugger", None, 5e6),
        ("condition/integer", None, 100), ("condition/three", None, 200),
        ("values/collapsed", None, 20e6), ("values/expanded", None, 20e6), ("values/page", None, 1e6),
        ("concatKernel/40", "concatStd/40", 0.5), ("concatKernel/4000", "concatStd/4000", None),
        ("allocateKernel/40", "allocateMalloc/40", 1.2), ("allocateKernel/1000", "allocateMalloc/1000", None),
        *((f"string{work}Kernel/{n}", f"string{work}Std/{n}", 1.3 if n == 16 else None)
          for work in ("Assign", "Compare") for n in (16, 256, 65536)),
        ("listAppendKernel", "listAppendStd", 2), ("listGetKernel", "listGetStd", None),
        *((f"tableFindKernel/{n}", f"tableFind{peer}/{n}", {1000: 3, 100000: 0.5}.get(n) if peer == "Boost" else None)
          for n in (1000, 10000, 100000) for peer in ("Boost", "Map", "Sqlite")),
        *((f"tableNextKernel/{n}", f"tableNextMap/{n}", 3 if n == 1000 else 1.5) for n in (1000, 10000, 100000)),
        *((f"tableAddKernel/{n}/{i}", f"tableAdd{peer}/{n}/{i}", (3 if n == 1000 else 1.2) if peer == "Boost" else None)
          for n in (1000, 10000, 100000) for i in (1, 5) for peer in ("Boost", "Sqlite")),
        *((f"tableDeleteKernel/{n}/{i}", f"tableDeleteBoost/{n}/{i}", None) for n in (1000, 100000) for i in (1, 5)),
        ("setUnionKernel/256", "setUnionStd/256", None), ("setUnionKernel/32000", "setUnionStd/32000", None),
        ("fixedMulKernel", "fixedMulPlain", None), ("fixedMulKernel", None, 2),
        ("fixedDivKernel", "fixedDivPlain", None), ("fixedDivKernel", None, 4),
        ("dateParseKernel", "dateParseLibc", None), ("dateAddKernel", None, None),
        ("profilestrget/50", "gkeyfile/50", 0.4), ("profilestrget/1000", "gkeyfile/1000", 0.4),
        *((f"class{work}", "linesPlain", None) for work in ("Scan", "Find", "Add", "Delete", "Rename", "Uses")),
        ("classScan", None, 5e6), ("classFind", None, 5e6),
        ("saveDurable", "writeAndSync", None),
        ("xmlBareKernel", "xmlEventsExpat", None), ("xmlTypesKernel", "xmlEventsExpat", None),
        ("xmlListKernel", "xmlEventsExpat", 1.2), ("xmlListKernel", "xmlTreePugi", None),
        ("xmlTableKernel/0", "xmlEventsExpat", 1.2), ("xmlTableKernel/1", "xmlEventsExpat", 1.2),
        ("xmlAttributesKernel", "xmlAttributesExpat", 1.2), ("xmlSaveKernel", "xmlSavePugi", None),
        ("csvListKernel", "csvImportSqlite/0", 0.5), ("csvListKernel", "csvSplitPlain", None),
        ("csvDiscoverKernel", "csvImportSqlite/0", 0.5), ("csvTableKernel/0", "csvImportSqlite/0", 0.5),
        ("csvTableKernel/1", "csvImportSqlite/1", 0.5), ("csvSaveKernel", "csvSaveSqlite", None),
        ("csvFileListKernel", "csvFileImportSqlite", 0.5),
        ("scanKernel", "scanFlex", 1.43),
        ("xbaseReadKernel", "xbaseReadShapelib", 0.67), ("xbaseWriteKernel", "xbaseWriteShapelib", 0.25),
        *((f"disk{work}Kernel/{n}/1", f"disk{work}{peer}/{n}/1",
           0.25 if (work, peer, n) == ("Find", "SqliteOpened", 100000) else None)
          for work in ("Find", "Next") for n in (1000, 10000, 100000, 1000000)
          for peer in ("SqliteOpened", "SqliteHeld", "Level")),
        *((f"disk{work}Kernel/{n}/{i}", f"disk{work}{peer}/{n}/{i}",
           0.6 if (work, peer, n, i) == ("Add", "SqliteOpened", 100000, 5) else None)
          for work in ("Add", "Delete") for n in (1000, 10000, 100000, 1000000) for i in (1, 5)
          for peer in ("SqliteOpened", "SqliteHeld", "Level")),
        *((f"diskDeleteSpread{kind}/{n}/{i}", f"diskDeleteSpreadSqliteOpened/{n}/{i}", 1)
          for kind in ("Kernel", "Grown") for n in (100000, 1000000) for i in (1, 5)),
        # As rows that were added one by one leave the indexes; and held open, as the peer is.
        *((f"disk{work}Grown/{n}/1", f"disk{work}SqliteOpened/{n}/1", 0.2) for work in ("Find", "Next")
          for n in (100000, 1000000)),
        *((f"disk{work}Grown/{n}/{i}", f"disk{work}SqliteOpened/{n}/{i}", 1) for work in ("Add", "Delete")
          for n in (100000, 1000000) for i in (1, 5)),
        *((f"disk{work}Held/{n}/1", f"disk{work}SqliteHeld/{n}/1", 1) for work in ("Find", "Next")
          for n in (100000, 1000000)),
        *((f"disk{work}Held/{n}/{i}", f"disk{work}SqliteHeld/{n}/{i}", 1) for work in ("Add", "Delete")
          for n in (100000, 1000000) for i in (1, 5)),
        *((f"diskAddDurable/100000/{i}", f"diskAddSqliteFull/100000/{i}", 1 if i == 5 else None) for i in (1, 5)),
        *((f"diskRebuildKernel/100000/{i}", f"diskRebuildSqlite/100000/{i}", None) for i in (1, 5)),
        *((f"{work}Linear/{n} a MB", f"{work}Linear/1 a MB", 1.5)
          for work in ("xmlBare", "xmlList", "csvList") for n in (10, 100)),
        ("start ide", "start geany", 0.6), ("start ide", "start qt", None),
        ("open 4 MB, extra", "plainOpenLarge", None),
        ("open 4 MB, extra", None, 50e6), ("keyToPaint", "plainKeyToPaint", None), ("keyToPaint", None, 4e6),
        ("keyToPaintWithLooks", None, 4e6), ("endlessKeyToPaintStart", None, 16e6),
        ("endlessKeyToPaintMiddle", None, 16e6), ("endlessKeyToPaintEnd", None, 16e6),
        ("programMakeTool", None, None), ("programOpen", None, 60e6), ("programRefresh", None, 30e6),
        ("programRows5000", "treeRows5000", 0.6),
        ("debugStopFirst", None, 30e6), ("debugStop8000", None, 30e6), ("debugStep", None, 5e6), ("debugValues20000", None, 20e6),
        ("userBreakAsked", "userBreakAskedAlone", None), ("userBreakAsked", None, 10),
        ("load255", "plain255", None), ("load255", None, 50e6), ("menuRefresh", None, 2e6),
        ("designRedraw255", "plainPaint255", 1.2), ("designAnew255", "plain255", None), ("designAnew255", None, 50e6),
        ("editorFirst255", None, None), ("editorOpen255", None, 50e6), ("editorOpenOf100", None, 20e6),
        ("editorSaveOf100", None, 20e6),
        *((f"menuRefresh/{n}", None, 2e6) for n in (50, 10000)),
        ("menuRefreshFresh/50", None, 2e6), ("menuRefreshFresh/10000", None, None),
        ("loadAndUnload", None, None),
        ("replaceAll", "replaceAllVim", 0.3), ("findIgnoringCase", "findByLibc", None),
        ("findInFiles", "grepFiles", None),
    ]
    print(f"{'work':30} {'here':>12} {'peer':>12} {'ratio':>7} {'rate':>16}  budget (peer)")
    for name, peer, budget in rows:
        if name not in all_ or (peer is not None and "Level" in peer and peer not in all_):
            continue
        here, other = all_[name], all_.get(peer)
        ratio = f"{here / other:.2f}" if other else ""
        met = ""
        if budget is not None and (other or not peer):
            value = here / other if other else here
            met = f"{budget if peer else text(budget)}{' x' if peer else ''} {'met' if value <= budget else 'MISSED'}"
        print(f"{name:30} {text(here):>12} {text(other) if other else '':>12} {ratio:>7} "
              f"{rates.get(name, ''):>16}  {met}{f' ({peer})' if other else ''}".rstrip())
    for name, message in failures(f"{folder}/data_bench.json").items():
        print(f"{name:30} FAILED: {message}")
    memory = counters(f"{folder}/data_bench.json", "kB")
    if memory:
        print("memory that using a table on disk takes: " +
              ", ".join(f"{kb:.0f} kB of {name.split('/')[1]} rows" for name, kb in memory.items()))
    if os.path.exists(f"{folder}/builds.json"):
        builds(f"{folder}/builds.json")
    if "ide" in start:
        print("memory after start: " + ", ".join(f"{n} {r['mb']:.0f} MB" for n, r in start.items()) + " (budget 110 MB)")


main()
