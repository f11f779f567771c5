#!/usr/bin/python3
"""Reads what scripts/bench has measured, prints it, and compares it with its bars or with what is recorded.

report.py --write|--check|--costs|--record RESULTS
"""

import csv
import json
import math
import platform
import re
import statistics
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
RECORDED = ROOT / "benchmarks/costs.csv"
DOCUMENT = ROOT / "docs/performance.md"
PLOT = ROOT / "docs/images/performance.svg"

# Instructions may differ by this much before it counts as a change: compilers' and libraries' updates.
TOLERANCE = 0.03

# Case, ratio to its floor that it is to stay within.
BARS = {
    "transmitDataToFramework/40": 1.3,
    "recMegToPlugin quiet/40": 1.5,
    "recMegToPlugin traced/40": 1.15,
    "pluginTransmitData Graphic/40": 1.6,
    "pluginTransmitData EngineerRoot/40": 1.6,
    "pluginTransmitData Matrix/40": 1.6,
    "pluginTransmitData Guide/40": 1.6,
    "updateGraphic": 1.6,
    "lookUp/40": None,
    "lookUp/1000": 1.5,
    "lookUp/10000": 1.5,
    "lookUp/100000": 1.5,
    "loadAllPlugins/1": 1.25,
    "loadAllPlugins/10": 1.25,
    "loadAllPlugins/50": 1.25,
    "loadAllPlugins/200": 1.25,
    "readPluginConfig/10": 1.2,
    "readPluginConfig/1000": 1.2,
    "readPluginConfig/100000": 1.2,
    "slot direct": 1.3,
    "slot queued": 1.3,
}
SHAPES = ("chain", "lattice", "star", "random")
GROWTH_BAR = 1.1
# Floors that leave out steps which the case must do: the bars are wished for, and misses are no error.
NARROW_FLOORS = {
    "slot direct, beside the bare signal": ("slot direct", "bare", 1.3),
    **{f"loadAllPlugins, {count}, beside the loop alone": (f"loadAllPlugins/{count}", "loop", 1.25)
       for count in (1, 10, 50, 200)},
}
PEERS = ("pluginManger", "Qt signal", "QMetaObject::invokeMethod", "QLibrary", "Boost.DLL", "Poco ClassLoader",
         "ROS class_loader", "KCoreAddons KPluginFactory")


def medians(results):
    """All times of a run in nanoseconds: {"case/floor/size": time}."""
    times = {}
    for file in sorted(results.glob("*.json")):
        for row in json.loads(file.read_text())["benchmarks"]:
            if row.get("aggregate_name") == "median":
                assert row["time_unit"] == "ns"
                times[row["run_name"]] = row["cpu_time"]
    loads = {}
    for name in ("loads.csv", "peerloads.csv"):
        for kind, count, time in csv.reader((results / name).open()):
            loads.setdefault((kind, count), []).append(float(time))
    for (kind, count), measured in loads.items():
        times[f"loadAllPlugins/{kind}/{count}"] = statistics.median(measured)
    return times


def time_of(times, case, side):
    name, _, size = case.partition("/")
    return times[f"{name}/{side}/{size}" if size else f"{name}/{side}"]


def ratio_rows(times):
    for case, bar in BARS.items():
        floor = time_of(times, case, "floor")
        library = time_of(times, case, "library")
        yield case.replace("/", ", "), floor, library, library / floor, bar


def narrow_rows(times):
    """The same beside floors that leave steps out, and the growth of the check by itself."""
    for name, (case, floor, bar) in NARROW_FLOORS.items():
        yield name, time_of(times, case, "library") / time_of(times, case, floor), bar
    for shape, _, exponent, _ in growth_rows(times):
        yield f"check {shape}, exponent by itself", exponent, GROWTH_BAR


def growth_rows(times):
    """How the check grows from 100 to 100,000 plug-ins beside the pass over the dependencies, which it is
    measured by: 1 is as the pass does, 2 would be with the square of it."""
    for shape in SHAPES:
        def growth(side, shape=shape):
            return time_of(times, f"check {shape}/100000", side) / time_of(times, f"check {shape}/100", side)
        exponent = math.log(growth("library")) / math.log(growth("floor"))
        yield shape, math.log(growth("floor")) / math.log(1000), math.log(growth("library")) / math.log(1000), exponent


def peer_rows(times):
    for peer in PEERS:
        load = times.get(f"loadAllPlugins/{peer}/50")
        yield (peer, load / 50 / 1000 if load else None, times.get(f"resolve/{peer}"), times.get(f"dispatch/{peer}"))


def counted(results):
    """{("instructions", operation): number, ("allocations", operation): number, ("bytes", thing): number}"""
    costs = {(kind, name): float(number) for kind, name, number in csv.reader((results / "costs.csv").open())}
    for file in results.glob("callgrind.*"):
        text = file.read_text()
        operation = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.MULTILINE)
        if operation:
            total = int(re.search(r"^totals: (\d+)", text, re.MULTILINE).group(1))
            costs["instructions", operation.group(1)] = round(total / 100)
    return costs


def table(head, rows):
    rows = [[str(cell) for cell in row] for row in rows]
    widths = [max(len(row[column]) for row in [head, *rows]) for column in range(len(head))]

    def line(row):
        cells = [cell.ljust(width) if column == 0 else cell.rjust(width)
                 for column, (cell, width) in enumerate(zip(row, widths))]
        return "| " + " | ".join(cells) + " |"

    rule = "|" + "|".join("-" * (width + 2) if column == 0 else "-" * (width + 1) + ":"
                          for column, width in enumerate(widths)) + "|"
    return "\n".join([line(head), rule, *map(line, rows)])


def number(value, digits=0):
    return "" if value is None else f"{value:,.{digits}f}"


def tables_of(times, costs):
    operations = [name for kind, name in costs if kind == "allocations"]
    return {
        "cases": table(["case", "floor, ns", "library, ns", "ratio", "bar", ""],
                       [(case, number(floor), number(library), number(ratio, 2), number(bar, 2),
                         "missed" if bar and ratio > bar else "")
                        for case, floor, library, ratio, bar in ratio_rows(times)]),
        "beside": table(["case", "ratio", "bar", ""],
                        [(case, number(ratio, 2), number(bar, 2), "over" if ratio > bar else "")
                         for case, ratio, bar in narrow_rows(times)]),
        "growth": table(["shape", "pass over the dependencies, exponent", "check, exponent", "check by the pass", "bar",
                         ""],
                        [(shape, number(floor, 2), number(library, 2), number(exponent, 2), number(GROWTH_BAR, 2),
                          "missed" if exponent > GROWTH_BAR else "")
                         for shape, floor, library, exponent in growth_rows(times)]),
        "peers": table(["", "load one of 50, µs", "resolve, ns", "dispatch, ns"],
                       [(peer, number(load), number(resolve), number(dispatch))
                        for peer, load, resolve, dispatch in peer_rows(times)]),
        "costs": table(["operation", "instructions", "allocations"],
                       [(name, number(costs.get(("instructions", name))), number(costs["allocations", name]))
                        for name in operations]),
        "bytes": table(["what is kept", "bytes"],
                       [(name, number(value)) for (kind, name), value in costs.items() if kind == "bytes"]),
        "machine": machine(),
    }


def machine():
    processor = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.MULTILINE).group(1)
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.split("\n")[0]
    qt = subprocess.run(["qmake", "-query", "QT_VERSION"], capture_output=True, text=True, check=True).stdout.strip()
    return f"{processor.strip()}, {platform.system()} {platform.machine()}, {compiler}, -O3, Qt {qt}."


def missed(times):
    return (sum(1 for *_, ratio, bar in ratio_rows(times) if bar and ratio > bar)
            + sum(1 for *_, exponent in growth_rows(times) if exponent > GROWTH_BAR))


def draw(times):
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.hashsalt": "performance", "svg.fonttype": "none"})
    from matplotlib import pyplot

    figure, (cases, growth) = pyplot.subplots(1, 2, figsize=(12, 6), width_ratios=(3, 2))
    rows = [row for row in ratio_rows(times) if row[4]][::-1]
    cases.barh([row[0] for row in rows], [row[3] for row in rows], color="#4c78a8", label="measured")
    cases.plot([row[4] for row in rows], range(len(rows)), "|", color="#c03030", markersize=11, markeredgewidth=2,
               label="bar")
    cases.axvline(1, color="#555555", linewidth=0.8)
    cases.set_xlabel("time, as a multiple of the floor")
    cases.legend(loc="lower left", bbox_to_anchor=(0, 1), ncols=2, frameon=False)
    sizes = (100, 1000, 10000, 100000)
    for shape, colour in zip(SHAPES, ("#4c78a8", "#f58518", "#54a24b", "#b279a2")):
        for side, style in (("library", "-o"), ("floor", ":")):
            growth.loglog(sizes, [time_of(times, f"check {shape}/{size}", side) / 1e6 for size in sizes], style,
                          color=colour, markersize=4, label=shape if side == "library" else None)
    growth.set_xlabel("plug-ins (dotted: one pass over the dependencies)")
    growth.set_ylabel("check of all, ms")
    growth.legend()
    figure.tight_layout()
    PLOT.parent.mkdir(exist_ok=True)
    figure.savefig(PLOT, metadata={"Date": None})


def write(tables):
    text = DOCUMENT.read_text()
    for name, content in tables.items():
        text, found = re.subn(rf"(<!-- measured: {name} -->\n).*?(<!-- end -->)",
                              lambda match, content=content: f"{match.group(1)}{content}\n{match.group(2)}", text,
                              flags=re.DOTALL)
        if found != 1:
            sys.exit(f"{DOCUMENT} has no place for the table {name}")
    DOCUMENT.write_text(text)


def recordable(costs):
    return {key: value for key, value in costs.items() if key[0] != "bytes"}


def record(costs):
    with RECORDED.open("w") as file:
        csv.writer(file, lineterminator="\n").writerows((*key, f"{value:g}" if key[0] == "allocations" else int(value))
                                                        for key, value in sorted(recordable(costs).items()))


def compare(costs):
    """Prints every cost beside the recorded one, and returns the number of those that differ."""
    recorded = {(kind, name): float(value) for kind, name, value in csv.reader(RECORDED.open())}
    differing = 0
    rows = []
    for key in sorted(recorded.keys() | recordable(costs).keys()):
        before, now = recorded.get(key), costs.get(key)
        allowed = TOLERANCE if key[0] == "instructions" else 0
        differs = before is None or now is None or abs(now - before) > allowed * before
        differing += differs
        rows.append((f"{key[0]}, {key[1]}", number(before), number(now), "differs" if differs else ""))
    print(table(["cost of one operation", "recorded", "now", ""], rows))
    return differing


def main(mode, results):
    costs = counted(results)
    if mode == "--record":
        record(costs)
        return 0
    if mode == "--costs":
        differing = compare(costs)
        if differing:
            print(f"\n{differing} differ. If that is meant, scripts/bench --record records what is now.")
        return differing > 0
    times = medians(results)
    tables = tables_of(times, costs)
    for name in tables:
        print(tables[name], end="\n\n")
    failed = missed(times)
    over = sum(1 for *_, ratio, bar in narrow_rows(times) if ratio > bar)
    print(f"{failed} missed" if failed else "All within their bars.",
          f"{over} are over beside floors that leave out what must be done: docs/performance.md says why.")
    if mode == "--write":
        draw(times)
        write(tables)
        return 0
    return failed > 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], Path(sys.argv[2])))
