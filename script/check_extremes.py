#!/usr/bin/env python3
"""Compares the extremes that `vak show --json` tells with the numbers in the solver's result file.

usage: check_extremes.py RESULT.frd SHOWN.json

Reads the text of the result file (ASCII, long format) by itself, column by column. Every extreme shown must be the
extreme of the text, at a node that has it there. Prints what was compared; the status is 1 on a difference.
"""
import json
import math
import struct
import sys


def single(number):
    """The single precision number nearest to a decimal text."""
    return struct.unpack("f", struct.pack("f", float(number)))[0]


def results(path):
    """Every result of the file: (state, name) -> component names, {node: values}."""
    found, state, name, components, values = {}, None, None, [], None
    with open(path, encoding="ascii", errors="replace") as lines:
        for line in lines:
            line = line.rstrip("\n")
            key = line[:3]
            if line.startswith("  100C"):
                state = int(line[58:63])
            elif key == " -4":
                name, components, values = line[5:13].strip(), [], {}
                found[state, name] = (components, values)
            elif key == " -5":
                if line[33:38].strip() != "1":  # not one to be calculated
                    components.append(line[5:13].strip())
            elif key == " -3":
                values = None
            elif values is not None and key in (" -1", " -2"):
                if key == " -1":
                    node = int(line[3:13])
                    values[node] = []
                values[node] += [single(line[at : at + 12]) for at in range(13, len(line), 12)]
    return found


def check(block, found, problems):
    state, name = block["state"], block["attributes"]["etypvar"]
    components, values = found[state, name]
    shown = block["arrays"]["res"]["components"]
    if [c["name"] for c in shown] != components or block["attributes"]["nent"] != len(values):
        problems.append(f"{name} of state {state}: other components or another number of nodes")
        return
    for i, component in enumerate(shown):
        column = {node: v[i] for node, v in values.items() if not math.isnan(v[i])}
        if component["nan"] != len(values) - len(column):
            problems.append(f"{name} {component['name']} of state {state}: another number of NaN")
        for kind, extreme in (("minimum", min), ("maximum", max)):
            said, expected = component[kind], extreme(column.values())
            if single(said["value"]) != expected or column.get(said["entity"]) != expected:
                problems.append(
                    f"{name} {component['name']} of state {state}: {kind} {said['value']} at node "
                    f"{said['entity']}, but the result file has {expected}"
                )


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    found = results(sys.argv[1])
    with open(sys.argv[2], encoding="utf-8") as file:
        blocks = json.load(file)["blocks"]
    problems = []
    for block in blocks:
        check(block, found, problems)
    compared = sum(2 * len(block["arrays"]["res"]["components"]) for block in blocks)
    if problems or compared == 0:
        sys.exit("\n".join(problems) or "nothing to compare")
    print(f"{compared} extremes of {len(blocks)} blocks agree with the text of the result file")


if __name__ == "__main__":
    main()
