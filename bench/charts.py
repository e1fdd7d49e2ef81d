"""Draws what was measured as SVG: ratios row by row, and times against size on logarithmic axes."""

import collections
import math
import statistics
from xml.sax.saxutils import escape

import rows

COLOURS = {
    "orvxml": "#0060a8", "pugixml": "#d55e00", "libxml2": "#009e73", "tinyxml2": "#cc79a7", "xerces-c": "#a67c00",
    "rapidxml": "#56b4e9", "expat": "#777777", "in-place": "#e69f00",
}
INK, FAINT, BAR = "#222222", "#dddddd", "#b00020"


class Drawing:
    def __init__(self, width, height):
        self.parts = [
            f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}" '
            'font-family="sans-serif" font-size="13">',
            f'<rect width="{width}" height="{height}" fill="white"/>',
        ]

    def line(self, x1, y1, x2, y2, colour=INK, width=1.0):
        self.parts.append(
            f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" stroke-width="{width}"/>')

    def text(self, x, y, text, anchor="start", colour=INK, weight="normal"):
        self.parts.append(
            f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}" font-weight="{weight}">'
            f"{escape(text)}</text>")

    def dot(self, x, y, colour, radius=3.5):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="{radius}" fill="{colour}"/>')

    def path(self, points, colour, width):
        joined = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polyline points="{joined}" fill="none" stroke="{colour}" stroke-width="{width}"/>')

    def legend(self, x, y, libraries):
        for library in libraries:
            self.dot(x, y - 4, COLOURS[library], radius(library))
            self.text(x + 9, y, rows.NAMES[library], weight="bold" if library == rows.OURS else "normal")
            x += 26 + 8.2 * len(rows.NAMES[library])
        return x

    def svg(self):
        return "\n".join([*self.parts, "</svg>", ""])


def radius(library):
    return 5 if library == rows.OURS else 3.5


class Axis:
    """A logarithmic axis between whole powers of ten, from one place of the drawing to another."""

    def __init__(self, values, start, end):
        self.low = math.floor(math.log10(min(values)) + 1e-9)
        self.high = max(math.ceil(math.log10(max(values)) - 1e-9), self.low + 1)
        self.start, self.end = start, end

    def at(self, value):
        return self.start + (math.log10(value) - self.low) / (self.high - self.low) * (self.end - self.start)

    def ticks(self):
        return [10.0**power for power in range(self.low, self.high + 1)]


def number(value):
    return f"{value:,.0f}" if value >= 1 else f"{value:g}"


def in_order(libraries):
    return [library for library in rows.NAMES if library in libraries]


def ratios(results):
    """Each library's mean ratio in each row; of this library the line goes on to its worst document."""
    left, right, top, step = 480, 960, 92, 30
    bottom = top + step * len(results)
    drawing = Drawing(1000, bottom + 40)
    libraries = in_order({library for result in results for library in result.ratios})
    means = [{library: rows.geometric_mean(ratios.values()) for library, ratios in result.ratios.items() if ratios}
             for result in results]
    bars = [bar for result in results for bar in (result.row.mean, result.row.worst) if bar is not None]
    axis = Axis([value for mean in means for value in mean.values()] + bars + [result.worst for result in results],
                left, right)
    drawing.text(20, 26, "Ratio of medians, pugixml = 1 (validation: libxml2 = 1, events: Expat = 1); "
                 "left is less and better", weight="bold")
    end = drawing.legend(26, 54, libraries)
    drawing.line(end, 43, end, 57, BAR, 3)
    drawing.text(end + 8, 54, "bar for the mean (thin: the worst)", colour=BAR)
    for tick in axis.ticks():
        x = axis.at(tick)
        drawing.line(x, top - 10, x, bottom, INK if tick == 1 else FAINT)
        drawing.text(x, bottom + 20, number(tick), "middle")
    for i, (result, mean) in enumerate(zip(results, means)):
        y = top + step * i + step / 2
        drawing.text(left - 14, y + 4, result.row.label.replace("`", "").partition(", against ")[0], "end")
        for bar, width in ((result.row.mean, 3), (result.row.worst, 1)):
            if bar is not None:
                drawing.line(axis.at(bar), y - 9, axis.at(bar), y + 9, BAR, width)
        drawing.line(axis.at(result.mean), y, axis.at(result.worst), y, COLOURS[rows.OURS], 2)
        for library in reversed(in_order(mean)):
            drawing.dot(axis.at(mean[library]), y, COLOURS[library], radius(library))
    return drawing.svg()


def lines(title, x_name, measurements, scale):
    """A panel for each document: the median in milliseconds of each library against size, both logarithmic."""
    panels = collections.defaultdict(lambda: collections.defaultdict(list))
    for one in measurements:
        if one["values"]:
            point = one["size"] / scale, statistics.median(one["values"]) * 1e3
            panels[one["document"]][one["library"]].append(point)
    columns = 3 if len(panels) == 3 else 2
    width, height, gap = 960 / columns, 300, 66
    drawing = Drawing(990, 70 + math.ceil(len(panels) / columns) * (height + gap))
    drawing.text(20, 26, title, weight="bold")
    drawing.legend(26, 54, in_order({library for panel in panels.values() for library in panel}))
    points = [point for panel in panels.values() for line in panel.values() for point in line]
    for i, (name, panel) in enumerate(panels.items()):
        left, top = 20 + width * (i % columns) + 58, 100 + (height + gap) * (i // columns)
        x_axis = Axis([x for x, _ in points], left, left + width - 84)
        y_axis = Axis([y for _, y in points], top + height - 40, top)
        drawing.text(left, top - 10, name, weight="bold")
        for tick in x_axis.ticks():
            drawing.line(x_axis.at(tick), y_axis.start, x_axis.at(tick), y_axis.end, FAINT)
            drawing.text(x_axis.at(tick), y_axis.start + 18, number(tick), "middle")
        for tick in y_axis.ticks():
            drawing.line(x_axis.start, y_axis.at(tick), x_axis.end, y_axis.at(tick), FAINT)
            drawing.text(x_axis.start - 6, y_axis.at(tick) + 4, number(tick), "end")
        drawing.text((x_axis.start + x_axis.end) / 2, y_axis.start + 36, x_name, "middle")
        for library in reversed(in_order(panel)):
            line = sorted(panel[library])
            drawing.path([(x_axis.at(x), y_axis.at(y)) for x, y in line], COLOURS[library],
                         3 if library == rows.OURS else 1.5)
            for x, y in line:
                drawing.dot(x_axis.at(x), y_axis.at(y), COLOURS[library], 4 if library == rows.OURS else 2.5)
    return drawing.svg()
