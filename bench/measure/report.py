# SPDX-License-Identifier: Apache-2.0
"""The table, the JSON file and the pictures."""
import dataclasses
import json
import pathlib

from processes import output

HERE = pathlib.Path(__file__).resolve().parent
COLUMNS = ("figure", "goal", "library", "bare", "ratio, or value", "spread", "")
WIDTHS = (48, 7, 9, 9, 15, 16, 6)


def heading():
    """The first two lines of the table."""
    return line(COLUMNS) + "\n" + line("-" * width for width in WIDTHS)


def row(figure, judged):
    """The line of a figure, with a verdict or without."""
    verdict = {True: "met", False: "missed", None: ""}[figure.is_met] if judged else ""
    sides = ("" if side is None else with_unit(side, figure.side_unit)
             for side in (figure.library, figure.bare))
    digits = 3 if figure.library is not None and not figure.unit else 2
    return line((figure.name, figure.goal, *sides, with_unit(figure.value, figure.unit, digits),
                 f"{short(figure.low, digits)} to {short(figure.high, digits)}", verdict))


def line(cells):
    """Cells as a line of Markdown, aligned."""
    return "| " + " | ".join(f"{cell:{width}}" for cell, width in zip(cells, WIDTHS)) + " |"


def short(value, digits=2):
    """No digits after the point for whole and large numbers."""
    return f"{value:,.0f}" if abs(value) >= 100 or value == int(value) else f"{value:.{digits}f}"


def with_unit(value, unit, digits=2):
    """A value as text."""
    return f"{short(value, digits)} {unit}".rstrip()


def write(folder, machine, figures, curves):
    """Writes the results to a folder and prints its path."""
    folder.mkdir(exist_ok=True)
    (folder / "results.json").write_text(json.dumps({
        "machine": machine,
        "figures": [{**dataclasses.asdict(figure), "met": figure.is_met} for figure in figures],
        **curves,
    }, indent=1) + "\n", encoding="utf-8")
    parts = next(figure.parts for figure in figures if figure.name.startswith("press, round trip"))
    draw(folder, "press", [[f"{name}: {value:.1f} µs" for name, value in parts.items()],
                           list(parts.values())])
    for name, points in curves.items():
        draw(folder, name, [list(points[0])] + [list(point.values()) for point in points])
    print(f"\n{machine['processor']}, Linux {machine['kernel']}, gRPC {machine['grpc']}, protobuf "
          f"{machine['protobuf']}.\nRatios are of medians, library / bare; the spread holds the "
          "middle four fifths of the pairs that were\nmeasured in the same round. Also in "
          f"{folder}/results.json; where a press\nspends its time in press.svg beside it, and how "
          f"the cost grows in {', '.join(name + '.svg' for name in curves)}.")


def draw(folder, name, rows):
    """A picture of the rows, by the gnuplot file of that name."""
    data, picture = folder / f"{name}.dat", folder / f"{name}.svg"
    data.write_text("".join(" ".join(json.dumps(cell, ensure_ascii=False) for cell in cells) + "\n"
                            for cells in rows), encoding="utf-8")
    output("gnuplot", "-e", f"data='{data}'; picture='{picture}'", HERE / f"{name}.gnuplot")
