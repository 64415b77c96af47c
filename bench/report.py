#!/usr/bin/env python3
"""Runs every bench_* program in a directory and writes the ours-against-peer table.

Benchmarks are paired by name: BM_Ours_<Case> against BM_Peer_<Case> (same arguments).
BM_Ref_<Case> rows are shown as reference figures. The table goes to standard output and
to the given Markdown file, with a note of the machine it ran on.

Each benchmark runs REPETITIONS times and the table shows the median CPU time: on a machine
shared with other work, wall time also counts the time spent waiting for a core.
"""
import json
import os
import platform
import re
import subprocess
import sys
import datetime


REPETITIONS = 3


def run(program):
    out = subprocess.run([program, "--benchmark_format=json", "--benchmark_min_time=0.2",
                          f"--benchmark_repetitions={REPETITIONS}",
                          "--benchmark_report_aggregates_only=true"],
                         check=True, capture_output=True, text=True).stdout
    return json.loads(out)


def fmt_time(ns):
    if ns >= 1e6:
        return f"{ns / 1e6:.2f} ms"
    if ns >= 1e3:
        return f"{ns / 1e3:.2f} us"
    return f"{ns:.2f} ns"


def machine():
    cpu = platform.processor() or "unknown cpu"
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    cpu = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    return f"{cpu}, {os.cpu_count()} cores, {platform.system()} {platform.release()}"


def main():
    bench_dir, results = sys.argv[1], sys.argv[2]
    programs = sorted(os.path.join(bench_dir, p) for p in os.listdir(bench_dir)
                      if p.startswith("bench_") and os.access(os.path.join(bench_dir, p), os.X_OK))
    rows = []
    for program in programs:
        data = run(program)
        times = {}
        order = []
        for b in data["benchmarks"]:
            if b.get("run_type") == "aggregate" and b.get("aggregate_name") != "median":
                continue
            name = b.get("run_name", b["name"])
            scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[b.get("time_unit", "ns")]
            times[name] = b["cpu_time"] * scale
            order.append(name)
        seen = set()
        for name in order:
            m = re.match(r"BM_(Ours|Peer|Ref)_(.*)$", name)
            if not m:
                rows.append((name, fmt_time(times[name]), "-", "-"))
                continue
            kind, case = m.groups()
            if case in seen and kind != "Ref":
                continue
            if kind == "Ref":
                rows.append((f"{case} (reference)", "-", fmt_time(times[name]), "-"))
                continue
            seen.add(case)
            ours = times.get(f"BM_Ours_{case}")
            peer = times.get(f"BM_Peer_{case}")
            ratio = f"{ours / peer:.2f}" if ours and peer else "-"
            rows.append((case, fmt_time(ours) if ours else "-", fmt_time(peer) if peer else "-",
                         ratio))

    lines = ["| benchmark | ours | peer | ratio |", "|---|---|---|---|"]
    lines += [f"| {a} | {b} | {c} | {d} |" for a, b, c, d in rows]
    table = "\n".join(lines)
    print(table)
    with open(results, "w") as f:
        f.write("# Benchmark results\n\n")
        f.write(f"Run on {datetime.date.today().isoformat()}: {machine()}.\n")
        f.write(f"Median CPU time of {REPETITIONS} runs. Ratio is ours divided by peer: below 1 "
                "means ours is faster.\n\n")
        f.write(table + "\n")


if __name__ == "__main__":
    main()
