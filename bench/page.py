"""Makes the page of performance and its charts from the raw data, and nothing else: the same data give the same bytes.

    page.py FOLDER            writes FOLDER/performance.md and the charts in FOLDER/performance from the raw data there
    page.py --check FOLDER    fails where they differ from what the raw data give
"""

import json
import math
import pathlib
import statistics
import sys

import charts
import rows

TEMPLATE = pathlib.Path(__file__).resolve().parent / "performance.md.in"
PAGE = "performance.md"
RAW = "performance/measurements.json"

# So many processors may be busy with other programs where a machine is called quiet.
MOST_OTHERS = 0.1


def raw_text(data):
    """The raw data as text, a line for each measurement."""
    head = {key: value for key, value in data.items() if key != "measurements"}
    text = json.dumps(head, indent=1)[:-2] + ',\n "measurements": [\n'
    return text + ",\n".join("  " + json.dumps(one) for one in data["measurements"]) + "\n ]\n}\n"


# --- Tables ---


def table(header, lines, left_columns=1):
    """Markdown whose columns stand below each other in a terminal too."""
    cells = [[str(cell) for cell in line] for line in [header, *lines]]
    widths = [max(3, *(len(line[i]) for line in cells)) for i in range(len(header))]

    def padded(line):
        return "| " + " | ".join(cell.ljust(width) if i < left_columns else cell.rjust(width)
                                 for i, (cell, width) in enumerate(zip(line, widths))) + " |"

    rule = "|" + "|".join("-" * (width + 2) if i < left_columns else "-" * (width + 1) + ":"
                          for i, width in enumerate(widths)) + "|"
    return "\n".join([padded(cells[0]), rule, *map(padded, cells[1:])])


def ratio(value):
    if value is None:
        return "-"
    return f"{value:.0f}" if value >= 100 else f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def bar(value):
    return "-" if value is None else f"{value:g}"


def bars_table(results):
    measured = {result.row.key: result for result in results}
    lines = []
    for row in rows.ROWS:
        result = measured.get(row.key)
        cells = ["-", "-", "not measured", ""]
        if result:
            verdict = "met" if result.is_met else "missed"
            cells = [ratio(result.mean), ratio(result.worst), verdict, result.worst_place]
        lines.append([row.label, cells[0], bar(row.mean), cells[1], bar(row.worst), *cells[2:]])
    return table(["work", "mean", "bar", "worst", "bar", "", "the worst is"], lines)


def libraries_table(results):
    libraries = charts.in_order({library for result in results for library in result.ratios})
    lines = []
    for result in results:
        ratios = [result.ratios.get(library) for library in libraries]
        means = [rows.geometric_mean(places.values()) if places else None for places in ratios]
        lines.append([result.row.label, *map(ratio, means)])
    return table(["work", *(rows.NAMES[library] for library in libraries)], lines)


def documents_table(data, results):
    documents = [one["name"] for one in data["documents"]]
    chosen = [result for result in results if set(result.ours) & set(documents)]
    lines = [[document, *(ratio(result.ours.get(document)) for result in chosen)] for document in documents]
    return table(["document", *(result.row.key for result in chosen)], lines)


def paths_table(data, results):
    documents = [one["name"] for one in data["documents"]]
    for result in results:
        if result.row.key == "find":
            parts = sorted({place.partition(", ")[2] for place in result.ours})
            lines = [[part, *(ratio(result.ours.get(f"{document}, {part}")) for document in documents)]
                     for part in parts]
            return table(["path", *documents], lines)
    return "Not measured."


def times_table(data, results):
    for result in results:
        if result.row.key == "parse":
            libraries = charts.in_order(result.medians)
            lines = [[one["name"], f"{one['bytes'] / 1e6:.2f}",
                      *(milliseconds(result.medians[library].get(one["name"])) for library in libraries)]
                     for one in data["documents"]]
            return table(["document", "MB", *(rows.NAMES[library] for library in libraries)], lines)
    return "Not measured."


def milliseconds(seconds):
    return "-" if seconds is None else f"{seconds * 1e3:.3g}"


# --- What the data say in words ---


def losses(data, results):
    lines = []
    for result in results:
        sentences = []
        if not result.is_met:
            missed = [f"{name} is {ratio(value)}, and may be {bar(most)}"
                      for name, value, most in (("the mean", result.mean, result.row.mean),
                                                ("the worst", result.worst, result.row.worst))
                      if most is not None and value > most]
            sentences.append(f"The bar is missed: {'; '.join(missed)}.")
        slower = [place for place, value in result.ours.items() if value > 1]
        if slower:
            base = rows.NAMES[result.row.base]
            sentences.append(f"It costs more than {base} in {len(slower)} of {len(result.ours)} cases, "
                             f"up to {ratio(result.worst)} times as much ({result.worst_place}).")
        others = {library: value for library, value in result.faster().items() if library != result.row.base}
        if others:
            named = ", ".join(f"{rows.NAMES[library]} {ratio(value)}" for library, value in others.items())
            sentences.append(f"In the mean it costs more than others, so many times as much: {named}.")
        if sentences:
            lines.append(f"- **{result.row.label}**: {' '.join(sentences)}")
    for one in growth_losses(data):
        lines.append(f"- {one}")
    return "\n".join(lines) if lines else "Nowhere in what was measured."


def medians_of(data, row):
    """By document, library and size."""
    medians = {}
    for one in data["measurements"]:
        if one["row"] == row:
            value = statistics.median(one["values"]) if one["values"] else None
            medians.setdefault(one["document"], {}).setdefault(one["library"], {})[one["size"]] = value
    return medians


def growth_losses(data):
    for row, what in (("growth", "growth, the largest document whose bytes are most in "), ("queries", "the largest ")):
        for document, libraries in medians_of(data, row).items():
            size = max(libraries[rows.OURS])
            ours = libraries[rows.OURS][size]
            faster = [f"{rows.NAMES[library]} {ratio(ours / medians[size])}" for library, medians in libraries.items()
                      if medians.get(size) and ours > medians[size]]
            if faster:
                yield f"**{what}{document}**: it costs more than others, so many times as much: {', '.join(faster)}."


def growth_section(data):
    growth = medians_of(data, "growth")
    if not growth:
        return "Not measured."
    sizes = sorted(next(iter(growth.values()))[rows.OURS])
    smallest, largest = sizes[0], sizes[-1]
    lines = []
    for document, libraries in growth.items():
        for library in charts.in_order(libraries):
            times = libraries[library]
            exponent = math.log(times[largest] / times[smallest]) / math.log(largest / smallest)
            lines.append([document, rows.NAMES[library], f"{smallest / 1e6 / times[smallest]:.0f}",
                          f"{largest / 1e6 / times[largest]:.0f}", f"{exponent:.2f}"])
    names = f"MB/s at {smallest / 1e6:g} MB", f"MB/s at {largest / 1e6:g} MB"
    return "![Time to parse against size](performance/growth.svg)\n\n" + table(
        ["shape", "library", *names, "exponent"], lines, 2)


def queries_section(data):
    queries = medians_of(data, "queries")
    if not queries:
        return "Not measured."
    counts = sorted({one["size"] for one in data["measurements"] if one["row"] == "queries"})
    ended = {(one["document"], one["library"], one["size"]): one["ended"]
             for one in data["measurements"] if "ended" in one}
    lines = []
    for document, libraries in queries.items():
        for library in charts.in_order(libraries):
            cells = [milliseconds(libraries[library].get(count)) if (document, library, count) not in ended else
                     ended[document, library, count] for count in counts]
            lines.append([f"`{document}`", rows.NAMES[library], *cells])
    return "![Time of queries against the number of elements](performance/queries.svg)\n\n" + table(
        ["query", "library", *(f"{count:,}" for count in counts)], lines, 2)


PLANS = {
    "full": "",
    "quick": "**This was a quick run**: few repetitions, and generated documents of a tenth of the sizes that the rows "
             "name. Its figures are provisional.",
    "once": "**This was a run that measures everything once**, on tiny documents: its figures say that it runs, not "
            "how fast.",
}


def run_notice(about):
    notices = [PLANS[about["plan"]]]
    if about["others"] > MOST_OTHERS:
        notices.append(f"**The machine was not quiet**: other programs took {about['others']:.2f} of its "
                       f"{about['machine']['processors']} processors meanwhile. The figures are provisional.")
    notices.append(f"Measured on {about['date']}.")
    return "\n\n".join(filter(None, notices))


def machine_section(data):
    about = data["about"]
    machine = about["machine"]
    lines = [
        f"- {about['date']}; repetitions: {about['repetitions']}",
        f"- processors that other programs took meanwhile: {about['others']:.2f}",
        f"- {machine['processor']}, {machine['processors']} processors, {machine['memory']} of memory",
        f"- {machine['system']}",
        f"- {machine['compiler']}, `-O2`",
        "- " + "; ".join(f"{rows.NAMES[one['name']]} {one['version']}" for one in data["libraries"]),
    ]
    for one in data["left-out"]:
        lines.append(f"- {rows.LEFT_OUT_NAMES[one['library']]} was left out on {one['document']}: {one['reason']}")
    return "\n".join(lines)


# --- The page, its charts and its raw data, by their names ---


def render(data):
    results = rows.results_of(data)
    of_row = {row: [one for one in data["measurements"] if one["row"] == row] for row in rows.GROWTH}
    fields = {
        "run": run_notice(data["about"]),
        "bars": bars_table(results),
        "ratios_chart": "![Each library's ratio in each row](performance/ratios.svg)" if results else "",
        "losses": losses(data, results),
        "libraries": libraries_table(results) if results else "Not measured.",
        "documents": documents_table(data, results),
        "paths": paths_table(data, results),
        "times": times_table(data, results),
        "growth": growth_section(data),
        "queries": queries_section(data),
        "machine": machine_section(data),
    }
    text = TEMPLATE.read_text()
    for name, value in fields.items():
        text = text.replace("{{" + name + "}}", value)
    files = {PAGE: text, RAW: raw_text(data)}
    if results:
        files["performance/ratios.svg"] = charts.ratios(results)
    if of_row["growth"]:
        files["performance/growth.svg"] = charts.lines(
            "Parse and destroy: milliseconds against megabytes", "MB", of_row["growth"], 1e6)
    if of_row["queries"]:
        files["performance/queries.svg"] = charts.lines(
            "Path queries: milliseconds against elements", "elements", of_row["queries"], 1)
    return files


def write(data, folder):
    for name, text in render(data).items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(text.encode())
    return folder / PAGE


def differences(folder):
    """The files in the folder that are not what the raw data there give."""
    data = json.loads((folder / RAW).read_bytes())
    wanted = render(data)
    there = {PAGE} | {f"performance/{path.name}" for path in (folder / "performance").iterdir()}
    return sorted(name for name in there | set(wanted)
                  if name not in wanted or not (folder / name).is_file() or
                  (folder / name).read_bytes() != wanted[name].encode())


def for_terminal(data):
    results = rows.results_of(data)
    met = sum(result.is_met for result in results)
    return f"\n{bars_table(results)}\n\nOf the {len(results)} rows that were measured {met} meet their bars.\n"


def main():
    *options, folder = sys.argv[1:]
    folder = pathlib.Path(folder)
    if options == ["--check"]:
        found = differences(folder)
        if found:
            sys.exit(f"{', '.join(found)}: not what {folder / RAW} gives; bench/page.py {folder} writes it anew")
    else:
        write(json.loads((folder / RAW).read_bytes()), folder)


if __name__ == "__main__":
    main()
