"""A stack as a whole: its pairs, how far they are, one table of all reports."""

import collections
import csv
import os
import pathlib

import pair_run

TABLE = "reports.csv"
COLUMNS = ("pair", "state", "cause", "start", "end", "seconds", "peak_memory_mb", "warnings", "pixels", "dem_points", "voids",
           "product_bytes", "phase_minimum", "phase_maximum", "phase_mean")


def pairs_of(stack):
    """Names of the pairs, in the order of pairs.csv."""
    with open(pathlib.Path(stack) / "pairs.csv", newline="", encoding="utf-8") as file:
        rows = csv.DictReader(file)
        if "pair" not in (rows.fieldnames or ()):
            raise ValueError("%s: has no column \"pair\"" % file.name)
        return [row["pair"] for row in rows]


def outcomes_of(stack):
    return {pair: pair_run.outcome(pathlib.Path(stack) / "pairs" / pair) for pair in pairs_of(stack)}


def failures_by_cause(outcomes):
    """Pairs by cause, the most frequent cause first."""
    causes = collections.defaultdict(list)
    for pair, outcome in outcomes.items():
        if outcome.state == pair_run.FAILED:
            causes[outcome.cause].append(pair)
    return sorted(causes.items(), key=lambda item: -len(item[1]))


def summary(outcomes, every_pair=False):
    """Lines for people: counts, and failures by cause."""
    counts = collections.Counter(outcome.state for outcome in outcomes.values())
    lines = ["%d pairs: %s" % (len(outcomes), ", ".join("%d %s" % (counts[state], state) for state in pair_run.STATES))]
    for cause, pairs in failures_by_cause(outcomes):
        lines.append("  %d failed: %s" % (len(pairs), cause))
        shown = pairs if every_pair else pairs[:3]
        lines.append("    " + " ".join(shown) + (" ..." if len(shown) < len(pairs) else ""))
    if every_pair:
        for state in (pair_run.RUNNING, pair_run.LEFT):
            lines += ["  %s: %s" % (state, pair) for pair, outcome in outcomes.items() if outcome.state == state]
    return lines


def _row(pair, outcome):
    report = outcome.report
    row = {"pair": pair, "state": outcome.state, "cause": outcome.cause}
    if not report:
        return row
    stages, products, counts = report["stages"], report["products"], report["counts"] or {}
    phase = next((product for product in products if product["key"] == "SIMU_PHASE"), {})
    row.update(start=report["start"], end=report["end"], warnings=report["warnings"],
               seconds="%.3f" % sum(stage["seconds"] for stage in stages),
               peak_memory_mb="%.1f" % (max((stage["peak_memory_bytes"] for stage in stages), default=0) / 1e6),
               product_bytes=sum(product.get("bytes", 0) for product in products))
    row.update({name: counts.get(name, "") for name in ("pixels", "dem_points", "voids")})
    row.update({"phase_" + name: phase.get(name, "") for name in ("minimum", "maximum", "mean")})
    return row


def write_table(stack, outcomes):
    """reports.csv: one row per pair, whole or not at all."""
    path = pathlib.Path(stack) / TABLE
    temporary = path.with_name("%s.%d" % (TABLE, os.getpid()))
    with open(temporary, "w", newline="", encoding="utf-8") as file:
        writer = csv.DictWriter(file, COLUMNS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(_row(pair, outcome) for pair, outcome in outcomes.items())
    os.replace(temporary, path)
    return path
