#!/usr/bin/env python3
"""Turns Google Benchmark JSON (with repetitions) into the tables the docs quote.

Each benchmark is shown by the median of its repetitions. A benchmark `X`
(or `X/args`) is compared with its anchor `X_Anchor` (same args, or fewer)
measured in the same run: the ratio is X's time over the anchor's time, so
1.0 means as fast and 2.0 twice as slow.
"""
import json
import sys


def medians(report):
    rows = {}
    for b in report["benchmarks"]:
        if b.get("aggregate_name", "median") != "median":
            continue
        name = b.get("run_name", b["name"]).replace("/real_time", "")
        rows[name] = b
    return rows


def seconds(b):
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[b.get("time_unit", "ns")]
    return b["real_time"] * scale


def show_time(t):
    for unit, scale in (("s", 1.0), ("ms", 1e-3), ("µs", 1e-6), ("ns", 1e-9)):
        if t >= scale:
            return f"{t / scale:.3g} {unit}"
    return f"{t / 1e-9:.3g} ns"


def shown_counters(b):
    return [f"{k} {v:.3g}" for k, v in b.items() if k.endswith(("_over_size", "_MB", "_per_row", "_ratio"))]


def anchor_of(name, rows):
    base, _, args = name.partition("/")
    parts = args.split("/") if args else []
    for n in range(len(parts), -1, -1):
        candidate = base + "_Anchor" + ("/" + "/".join(parts[:n]) if n else "")
        if candidate in rows:
            return candidate
    return None


def main():
    for path in sys.argv[1:]:
        with open(path) as f:
            rows = medians(json.load(f))
        print(f"\n{path.rsplit('/', 1)[-1].replace('.json', '')}\n")
        print("| Benchmark | Median | Rate | Anchor | Ratio |")
        print("|---|---|---|---|---|")
        for name, b in rows.items():
            if "_Anchor" in name:
                continue
            rate = ""
            if "items_per_second" in b:
                rate = f"{b['items_per_second'] / 1e6:.3g} M/s"
            elif "bytes_per_second" in b:
                rate = f"{b['bytes_per_second'] / 1e6:.3g} MB/s"
            anchor = anchor_of(name, rows)
            ratio = f"{seconds(b) / seconds(rows[anchor]):.2f}" if anchor else ""
            shown = show_time(seconds(rows[anchor])) if anchor else ""
            label = b.get("label", "")
            counters = shown_counters(b)
            if counters:
                label = ", ".join(([label] if label else []) + counters)
            if anchor and shown_counters(rows[anchor]):
                shown += " (" + ", ".join(shown_counters(rows[anchor])) + ")"
            print(f"| {name}{' (' + label + ')' if label else ''} | {show_time(seconds(b))} | {rate} | {shown} | {ratio} |")


if __name__ == "__main__":
    main()
