#!/usr/bin/env python3
"""Writes the page on performance from what the benches of one run left.

write-document.py FOLDER TEMPLATE TARGET: FOLDER holds a JSON file of Google Benchmark's for each
bench, by the bench's name, and seconds.txt with a line "STAGE SECONDS" for each stage. In TEMPLATE a
line "{{NAME}}" stands for the table or the text of that name. Fails when a bench left errors, after
it has written the page.
"""

import collections
import datetime
import json
import pathlib
import platform
import re
import sys

folder, template, target = (pathlib.Path(argument) for argument in sys.argv[1:4])
faults = []


def runs(bench):
    """The runs of a bench in their order, those that failed noted and left out."""
    path = folder / (bench + ".json")
    if not path.exists():
        faults.append(bench + " did not run")
        return []
    kept = []
    for run in json.loads(path.read_text())["benchmarks"]:
        if run.get("run_type") != "iteration":
            continue
        if run.get("error_occurred"):
            faults.append(f"{bench}: {run['name']}: {run['error_message']}")
        else:
            kept.append(run)
    return kept


def name_of(run):
    """Its name without what the library adds about how it was timed."""
    added = r"/(process_time|manual_time|real_time|(iterations|repeats|min_time):[^/]*)"
    return re.sub(added, "", run["name"])


def seconds(run, key="real_time"):
    return run[key] * {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}[run["time_unit"]]


def time(value):
    if value <= 0:
        return "0"
    for limit, unit, factor in ((1e-6, "ns", 1e9), (1e-3, "us", 1e6), (1, "ms", 1e3)):
        if value < limit:
            return f"{value * factor:.3g} {unit}"
    return f"{value:.2f} s" if value < 100 else f"{value:.0f} s"


def rate(value):
    unit, factor = ("M/s", 1e-6) if value >= 1e6 else ("k/s", 1e-3)
    return f"{value * factor:.3g} {unit}"


def milliseconds(value):
    return time(value / 1e3)


def megabytes(value):
    return f"{value:.0f} MB"


def times(theirs, ours):
    return f"{theirs / ours:.2f}" if ours > 0 else ""


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def machine():
    def field(path, key):
        text = pathlib.Path(path).read_text()
        found = re.search(rf"^{key}\s*:\s*(.*)$", text, re.MULTILINE)
        return found.group(1) if found else "not told"

    information = pathlib.Path("/proc/cpuinfo").read_text()
    memory = int(field("/proc/meminfo", "MemTotal").split()[0]) / 1024 / 1024
    stages = [line.split() for line in (folder / "seconds.txt").read_text().splitlines()]
    total = sum(int(spent) for _, spent in stages)
    return table(
        ["", ""],
        [
            ["date", datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d")],
            ["processor", field("/proc/cpuinfo", "model name")],
            ["processors", str(len(re.findall(r"^processor", information, re.MULTILINE)))],
            ["memory", f"{memory:.1f} GB"],
            ["kernel", f"{platform.system()} {platform.release()} {platform.machine()}"],
            ["Debian", pathlib.Path("/etc/debian_version").read_text().strip()],
            ["this run", f"{total} s: " + ", ".join(f"{name} {spent}" for name, spent in stages)],
        ],
    )


def pixel():
    """Of several repetitions the one that was disturbed least, as the bench's own table takes."""
    operations = collections.OrderedDict()
    for run in runs("pixel_bench"):
        operation, who = name_of(run).rsplit("/", 1)
        best = operations.setdefault(operation, {})
        if who not in best or run["cpu_time"] < best[who]["cpu_time"]:
            best[who] = run

    def figure(run):
        if "items_per_second" in run:
            return rate(run["items_per_second"])
        return time(seconds(run, "cpu_time"))

    rows = []
    for operation, best in sorted(operations.items()):
        ours = best.pop("tavrix", None)
        if ours is None:
            continue
        for who, theirs in sorted(best.items(), key=lambda peer: (peer[0] == "limit", peer[0])):
            beside = "copy limit" if who == "limit" else who
            ratio = times(theirs["cpu_time"], ours["cpu_time"])
            rows.append([operation, figure(ours), beside, figure(theirs), ratio])
    return table(["operation", "ours", "beside", "theirs", "times as fast"], rows)


def codec():
    rows = []
    for run in runs("codec_bench"):
        what, form = name_of(run).split("/", 1)
        ours = seconds(run)
        theirs = ours / run["of_tool"]
        rows.append(
            [form, what, time(ours), f"`{run.get('label', '')}`", time(theirs)]
            + [times(theirs, ours), f"{run['our_mb']:.1f} MB", f"{run['tool_mb']:.1f} MB"]
        )
    return table(
        ["format", "", "ours", "beside", "theirs", "times as fast", "memory", "its memory"], rows
    )


def start():
    rows = []
    for run in runs("start_bench"):
        budget = run.get("budget_ms")
        decode = run.get("plain_decode_ms")
        rows.append(
            [
                name_of(run).replace("_", " "),
                time(seconds(run)),
                milliseconds(decode) if decode else "",
                milliseconds(budget) if budget else "",
                times(budget / 1e3, seconds(run)) if budget else "",
                megabytes(run["peak_MB"]) if "peak_MB" in run else "",
            ]
        )
    return table(["start", "ours", "plain decode", "limit", "limit / ours", "peak"], rows)


def display():
    """One row for each program, ours first: what it stands on and its medians."""
    programs = collections.OrderedDict()
    for run in runs("display_bench"):
        what, program = name_of(run).split("/", 1)
        programs.setdefault(program, {"label": run.get("label", "")})[what] = seconds(run)
    waited = 0.1  # by our job
    rows = []
    for program, found in programs.items():
        ours = program == "tavrix"
        picture = found.get("SmallPicture")
        rows.append(
            [
                "ours" if ours else f"`{program}`",
                found["label"],
                time(found["EmptyWindow"]) if "EmptyWindow" in found else "",
                time(picture) if picture else "",
                time(picture - (waited if ours else 0)) if picture else "",
                f"{found['Idle'] * 100:.2f} %" if "Idle" in found else "",
            ]
        )
    head = ["program", "stands on", "empty window", "small picture", "without the wait"]
    return table(head + ["idle"], rows)


def view():
    rows = []
    for run in runs("view_bench"):
        name = name_of(run)
        count = 1000 if name.startswith("Stroke_of_1000") else 1
        spent = seconds(run) / count
        frame = run["of_frame"] / count
        rows.append(
            [
                name.replace("_", " ") + (", a dab" if count > 1 else ""),
                time(spent),
                milliseconds(run["copy_us"] / 1e3),
                f"{run['of_copy'] / count:.1f}",
                f"{frame * 100:.1f} %",
            ]
        )
    return table(["", "ours", "copy of the surface", "copies", "of a 60 Hz frame"], rows)


def flows():
    """The figures of the whole program: flow -> step -> run."""
    found = collections.OrderedDict()
    for run in runs("program_bench"):
        flow, step = name_of(run).split("/", 1)
        found.setdefault(flow, collections.OrderedDict())[step] = run
    return found


program_runs = flows()


def program():
    ample = program_runs.get("12_megapixels", {})
    short = program_runs.get("12_megapixels_in_16M", {})
    rows = []
    for step, run in ample.items():
        peer = run.get("peer_ms")
        other = short.get(step)
        rows.append(
            [
                step.replace("_", " "),
                time(seconds(run)),
                milliseconds(run["cpu_ms"]),
                megabytes(run["peak_mb"]),
                run.get("label", ""),
                milliseconds(peer) if peer else "",
                times(peer, run["cpu_ms"]) if peer else "",
                time(seconds(other)) if other else "",
                megabytes(other["peak_mb"]) if other else "",
            ]
        )
    head = ["step", "time", "processor", "peak", "beside", "theirs", "times as fast"]
    return table(head + ["in 16 MB", "peak"], rows)


def big():
    rows = []
    for flow, steps in program_runs.items():
        if not re.match(r"\d+x\d+", flow):
            continue
        for step, run in steps.items():
            files = run.get("files_made_ms") if step.startswith("open") else None
            peer = run.get("peer_ms")
            rows.append(
                [
                    flow.replace("_in_", " in ").replace("32M", "32 MB"),
                    step.replace("_", " "),
                    time(seconds(run)),
                    megabytes(run["peak_mb"]),
                    milliseconds(peer) if peer else "",
                    milliseconds(files) if files else "",
                    times((peer + (files or 0)) / 1e3, seconds(run)) if peer else "",
                ]
            )
    head = ["picture", "step", "time", "peak", "plain decode", "files made"]
    return table(head + ["both / ours"], rows)


def growth():
    sizes = [steps for flow, steps in program_runs.items() if flow.startswith("growth_")]
    whole = ("redraw_25", "redraw_whole", "redraw_100", "dab", "close")
    rows = []
    for step in sizes[0] if sizes else []:
        present = [steps[step] for steps in sizes if step in steps]
        unit = "" if step in whole else ", a megapixel"
        figures = [
            milliseconds(run["cpu_ms"] / (1 if step in whole else run["megapixels"]))
            for run in present
        ]
        rows.append([step.replace("_", " ") + unit] + figures)
    head = [f"{steps['close']['megapixels']:.0f} MP" for steps in sizes if "close" in steps]
    return table(["step"] + head, rows)


def named(run, keep):
    """A bench whose counters speak for themselves."""
    return [name_of(run), time(seconds(run, keep[0]))] + [
        f"{run[counter]:.2f}" if counter in run else "" for counter in keep[1:]
    ]


def plugin():
    rows = [named(run, ["cpu_time", "of_plain"]) for run in runs("plugin_bench")]
    # Without a plugin there is nothing plain to stand beside.
    rows = [row[:2] + [""] if row[0] == "StartUpPass/0" else row for row in rows]
    return table(["", "ours", "plain ones"], rows)


def transfer():
    rows = []
    for run in runs("transfer_bench"):
        rows.append(named(run, ["real_time", "of_curl"]))
    return table(["", "ours", "times as fast as curl"], rows)


parts = {
    "machine": machine,
    "pixel": pixel,
    "codec": codec,
    "start": start,
    "display": display,
    "view": view,
    "program": program,
    "big": big,
    "growth": growth,
    "plugin": plugin,
    "transfer": transfer,
}
text = template.read_text()
for name, make in parts.items():
    place = "{{" + name + "}}"
    if place in text:
        text = text.replace(place, make())
target.write_text(text)
for fault in dict.fromkeys(faults):
    print("write-document:", fault, file=sys.stderr)
sys.exit(1 if faults else 0)
