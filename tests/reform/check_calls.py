#!/usr/bin/env python3
"""Checks wzreform's JSON Lines (and CSV) output of one connection's trace
files against the trace text itself, counted independently here.

  check_calls.py --jsonl OUT.jsonl [--csv OUT.csv] [--summary]
                 [--unfinished N] TRACE...

TRACE... are the connection's files in rotation order (plain text). From
them: the before-records of each function (a data-conversion record
aside), those made while another call was open (nested), the
data-conversion records, the "| Reason:" and "| XA return value:" lines,
and the per-function totals of the last call summary.

The JSON Lines must be one valid JSON object per line: as many top-level
objects as calls that were not nested, each function as often (counting
nested calls) as it has before-records, each data-conversion record inside
a get, every finished call with both times and its codes, as many reason
names as the trace has reason lines. With --summary the function counts
must also equal the call summary's totals. Prints "nested PARENT CHILD"
for each nested call, then "calls TOP TOTAL"; exits 1 on the first
difference, with the reason on standard error.
"""
import argparse
import collections
import csv
import json
import sys


def fail(text):
    print("check_calls: " + text, file=sys.stderr)
    sys.exit(1)


def read_traces(paths):
    befores = collections.Counter()
    nested = 0
    data_conv = 0
    reason_lines = 0
    xa_lines = 0
    summary = None
    open_calls = []
    function = None
    for path in paths:
        rows = None
        with open(path, encoding="latin-1") as f:
            for line in f:
                line = line.rstrip("\n")
                if line.startswith("<"):
                    function = line[1:].split(" ")[0]
                elif line == "(BEFORE":
                    if function == "DATA_CONV_ON_GET":
                        data_conv += 1
                    else:
                        befores[function] += 1
                        if open_calls:
                            nested += 1
                        open_calls.append(function)
                elif line == "(AFTER":
                    if function in open_calls:
                        while open_calls.pop() != function:
                            pass
                elif line.startswith("| Reason:"):
                    reason_lines += 1
                elif line.startswith("| XA return value:"):
                    xa_lines += 1
                elif line.startswith("|Call summary"):
                    rows = {}
                elif line.startswith("|Split summary"):
                    if rows is not None:
                        summary = rows
                    rows = None
                elif rows is not None and line.startswith("|  "):
                    words = line[3:].split()
                    if len(words) >= 6 and words[0] not in ("API", "Total") and \
                            all(w.isdigit() for w in words[1:6]):
                        if int(words[5]) > 0:
                            rows[words[0]] = int(words[5])
                elif rows is not None and line == "":
                    summary = rows
                    rows = None
        if rows is not None:
            summary = rows
    return befores, nested, data_conv, reason_lines, xa_lines, summary


def walk(call, parent, out):
    out.append((call, parent))
    for inner in call["inside"]:
        walk(inner, call, out)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--jsonl", required=True)
    parser.add_argument("--csv")
    parser.add_argument("--summary", action="store_true")
    parser.add_argument("--unfinished", type=int, default=0)
    parser.add_argument("traces", nargs="+")
    args = parser.parse_args()

    befores, nested, data_conv, reason_lines, xa_lines, summary = read_traces(args.traces)

    top = []
    with open(args.jsonl, "rb") as f:
        for number, raw in enumerate(f, 1):
            try:
                text = raw.decode("ascii")
            except UnicodeDecodeError:
                fail("line %d is not plain ASCII" % number)
            try:
                call = json.loads(text)
            except ValueError as error:
                fail("line %d is not JSON: %s" % (number, error))
            if not isinstance(call, dict):
                fail("line %d is not a JSON object" % number)
            top.append(call)

    calls = []
    for call in top:
        walk(call, None, calls)
    counted = collections.Counter(c["function"] for c, _ in calls
                                  if c["function"] != "DATA_CONV_ON_GET")
    total = sum(befores.values())
    if len(top) != total - nested:
        fail("%d top-level objects, the trace has %d calls of which %d nested"
             % (len(top), total, nested))
    if counted != befores:
        fail("calls by function differ: json %s, trace %s"
             % (dict(counted), dict(befores)))
    if args.summary:
        if summary is None:
            fail("the trace has no call summary")
        if dict(counted) != summary:
            fail("calls by function differ from the call summary: json %s, summary %s"
                 % (dict(counted), summary))
    conversions = [(c, p) for c, p in calls if c["function"] == "DATA_CONV_ON_GET"]
    if len(conversions) != data_conv:
        fail("%d data-conversion calls, the trace has %d records" % (len(conversions), data_conv))
    for c, p in conversions:
        if p is None or p["function"] != "ZKGET":
            fail("a data-conversion call is not inside a ZKGET")
    unfinished = sum(1 for c, _ in calls if c["unfinished"])
    if unfinished != args.unfinished:
        fail("%d unfinished calls, expected %d" % (unfinished, args.unfinished))
    for c, p in calls:
        if c["unfinished"]:
            continue
        if c["beforeTime"] is None or c["afterTime"] is None:
            fail("call %s %s lacks a time" % (c["seq"], c["function"]))
        if c["beforeMicros"] is None or c["afterMicros"] is None or \
                c["afterMicros"] < c["beforeMicros"]:
            fail("call %s %s has wrong micros" % (c["seq"], c["function"]))
        if c["compCode"] is None:
            fail("call %s %s has no codes" % (c["seq"], c["function"]))
        if c["function"] != "DATA_CONV_ON_GET":
            if c["before"] is None or c["after"] is None:
                fail("call %s %s lacks its before or after" % (c["seq"], c["function"]))
            if c["elapsedMicros"] is None:
                fail("call %s %s has no elapsed time" % (c["seq"], c["function"]))
    tm = ("xa_", "ax_")
    named = sum(1 for c, _ in calls if c["reasonName"] is not None and
                not c["function"].startswith(tm))
    xa_named = sum(1 for c, _ in calls if c["reasonName"] is not None and
                   c["function"].startswith(tm))
    if named != reason_lines or xa_named != xa_lines:
        fail("reason names: json %d and %d, trace %d and %d"
             % (named, xa_named, reason_lines, xa_lines))

    if args.csv:
        with open(args.csv, newline="") as f:
            rows = list(csv.reader(f))
        if not rows or rows[0][:7] != ["file", "qmgr", "program", "pid", "tid", "depth", "function"]:
            fail("the CSV has no heading")
        body = rows[1:]
        if len(body) != len(calls):
            fail("%d CSV rows, %d calls" % (len(body), len(calls)))
        if any(len(r) != len(rows[0]) for r in body):
            fail("CSV rows of another width than the heading")
        if collections.Counter(r[6] for r in body) != collections.Counter(c["function"] for c, _ in calls):
            fail("the CSV's functions differ from the JSON's")

    for c, p in calls:
        if p is not None:
            print("nested %s %s" % (p["function"], c["function"]))
    print("calls %d %d" % (len(top), len(calls)))


main()
