# SPDX-License-Identifier: Apache-2.0
"""The table, the JSON file and the plots."""
import dataclasses
import json
import pathlib
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
COLUMNS = ("figure", "goal", "measured", "spread", "library", "bare", "")
WIDTHS = (46, 8, 11, 15, 11, 11, 3)


def heading():
    """The first two lines of the table."""
    return "\n".join([line(COLUMNS), line(["-" * width for width in WIDTHS])])


def row(figure):
    """The line of a figure."""
    verdict = {True: "met", False: "MISSED", None: ""}[figure.is_met]
    sides = (figure.library, figure.bare)
    return line((
        figure.name, figure.goal, with_unit(figure.value, figure.unit),
        f"{short(figure.low)} to {short(figure.high)}",
        *("" if side is None else with_unit(side, figure.side_unit) for side in sides), verdict))


def line(cells):
    """Cells as a line of Markdown, aligned."""
    return "| " + " | ".join(f"{cell:{width}}" for cell, width in zip(cells, WIDTHS)) + " |"


def short(value):
    """Three digits that count, more of a large number."""
    if abs(value) >= 100 or value == int(value):
        return f"{value:,.0f}"
    return f"{value:.2f}" if abs(value) >= 0.1 else f"{value:.3f}"


def with_unit(value, unit):
    """A value as text."""
    return f"{short(value)} {unit}".rstrip()


def write(build, machine, figures, load):
    """Leaves everything in the build folder."""
    results = {
        "machine": machine,
        "figures": [{**dataclasses.asdict(figure), "met": figure.is_met} for figure in figures],
        "load": load,
    }
    (build / "results.json").write_text(json.dumps(results, indent=1) + "\n", encoding="utf-8")
    draw(build, "load", [list(load[0])] + [list(point.values()) for point in load])
    draw(build, "press", next(figure.parts for figure in figures if figure.parts).items())
    print(f"\n{machine['processor']}, Linux {machine['kernel']}, gRPC {machine['grpc']}, "
          f"protobuf {machine['protobuf']}. Ratios are of medians, library / bare; the spread\n"
          "holds the middle four fifths of the pairs that were measured next to each other.\n"
          f"In {build} are results.json, load.svg (latency against load), and press.svg (where\n"
          "the instructions of a press go).")


def draw(build, name, rows):
    """A picture of the rows, by the gnuplot file of that name."""
    data, picture = build / f"{name}.dat", build / f"{name}.svg"
    data.write_text("".join(" ".join(json.dumps(cell, ensure_ascii=False) for cell in cells) + "\n"
                            for cells in rows), encoding="utf-8")
    subprocess.run(["gnuplot", "-e", f"data='{data}'; picture='{picture}'",
                    HERE / f"{name}.gnuplot"], check=True, timeout=60)
