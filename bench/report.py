#!/usr/bin/env python3
"""report.py JSON-FOLDER TARGETS RESULTS: makes the table of ratios from Google Benchmark's JSON files.

Benchmarks are named WORK/ours and WORK/peer:NAME; peer:NAME_native is the same peer as a program of this machine,
not run under Wine as ours is: it stands in a column of its own, without an aim. The ratio is the peer's median time divided by ours: above 1, ours
is faster. TARGETS holds lines "FAMILY/WORK RATIO", or "FAMILY/WORK/peer:NAME RATIO" for one peer: the least ratio
that is aimed at.
"""
import collections
import json
import pathlib
import re
import statistics
import sys

HEADING = """# Benchmark results

Written by `bench/run`: cross-compiled with GCC, run under Wine on one CPU; median of the repetitions, all benchmarks
of a family interleaved in one run. Ratio = peer's time / our time: above 1, ours is faster. The family "headers" is the
compiler's time for a header that a client includes, beside that for the standard library's `string`.
"""


NATIVE = "_native"


def medians(path):
    """Median real time in nanoseconds of each benchmark, and the spread of its repetitions in per cent."""
    times = collections.defaultdict(list)
    units = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    data = json.loads(path.read_text())
    for run in data["benchmarks"]:
        if run.get("run_type") == "iteration" and not run.get("error_occurred"):
            # Without what the framework adds to a name: how it was run, and an argument behind who was measured.
            name = re.sub(r"/(real_time|manual_time|(iterations|repeats):\d+)", "", run["run_name"])
            name = re.sub(r"(/ours|/peer:[^/]+)/\d+$", r"\1", name)
            times[name].append(run["real_time"] * units[run["time_unit"]])
    return data["context"], {
        name: (statistics.median(t), 100 * (max(t) - min(t)) / statistics.median(t)) for name, t in times.items()
    }


def shown(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def kept_sections(path):
    """The families' sections of an earlier table, which stay unless a family was measured anew."""
    sections = {}
    for part in path.read_text().split("\n## ")[1:] if path.exists() else []:
        sections[part.split("\n", 1)[0]] = "## " + part.strip() + "\n"
    return sections


def section(path, targets):
    """One family's table."""
    family = path.stem
    context, times = medians(path)
    lines = [f"## {family}", "", f"{context['date'][:10]}, {context['num_cpus']} CPUs", ""]
    notes = json.loads(path.read_text()).get("notes", [])
    lines += [*notes, ""] if notes else []
    native = any(name.endswith(NATIVE) for name in times)
    lines += ["| work | ours | peer | | ratio | aim |" + " native |" * native,
              "|---|---:|---|---:|---:|---:|" + "---:|" * native]
    for name, (ours, _) in sorted(times.items()):
        if not name.endswith("/ours"):
            continue
        work = name[: -len("/ours")]
        peers = {n[len(work) + 6 :]: t for n, (t, _) in times.items() if n.startswith(work + "/peer:")}
        alike = [peer for peer in peers if not peer.endswith(NATIVE)]
        alike += [peer.removesuffix(NATIVE) for peer in peers if peer.endswith(NATIVE) and peer[: -len(NATIVE)] not in peers]
        for peer in alike or [""]:
            time, native_time = peers.get(peer), peers.get(peer + NATIVE)
            ratio = time / ours if time else None
            aim = targets.get(f"{family}/{work}/peer:{peer}", targets.get(f"{family}/{work}"))
            lines.append(
                f"| {work} | {shown(ours)} | {peer} | {shown(time) if time else ''} "
                f"| {f'{ratio:.2f}' if ratio else ''} "
                f"| {f'{aim:g}' + ('' if not ratio or ratio >= aim else ' (missed)') if aim else ''} |"
                + (f" {f'{shown(native_time)} ({native_time / ours:.2f})' if native_time else ''} |" if native else "")
            )
    return "\n".join(lines) + "\n"


def main(folder, targets_file, results_file):
    targets = {}
    for line in pathlib.Path(targets_file).read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            work, ratio = line.rsplit(None, 1)
            targets[work] = float(ratio)
    sections = kept_sections(pathlib.Path(results_file))
    for path in pathlib.Path(folder).glob("*.json"):
        sections[path.stem] = section(path, targets)
    text = "\n".join([HEADING] + [sections[family] for family in sorted(sections)])
    pathlib.Path(results_file).write_text(text)
    print(text)


if __name__ == "__main__":
    main(*sys.argv[1:])
