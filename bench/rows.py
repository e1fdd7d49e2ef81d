"""The rows of the table: what is measured, against which library, and the bars that the project holds itself to."""

import collections
import math
import statistics

OURS = "orvxml"

# A ratio to `base` may be at most `mean` in the geometric mean and at most `worst` on any one document; None: no bar.
Row = collections.namedtuple("Row", "key label mean worst base", defaults=["pugixml"])

ROWS = [
    Row("parse", "parse from memory and destroy, warm", 0.85, 1.25),
    Row("crlf", "the same text with CR LF for LF", 1.1, 1.5),
    Row("first", "first parse in a fresh process", 1.0, 1.4),
    Row("read", "parse, read every name, value and text once, destroy", 0.75, 1.1),
    Row("file", "parse from a file (`FileInStream`) and destroy", 0.95, 1.4),
    Row("filespec", "parse from a file (`FileSpecInStream`) and destroy", 0.95, 1.4),
    Row("write", "write with indentation to memory", 0.85, 1.1),
    Row("copy", "copy a document", 1.0, 1.5),
    Row("find", "path queries, each with its text compiled", 0.9, 1.4),
    Row("validate", "validate a tree that no validation has seen, against libxml2", 0.35, 0.5, "libxml2"),
    Row("heap", "heap after parse, bytes a node", 1.1, 1.45),
    Row("siblings", "1,000,000 siblings of one character each: parse and destroy, write", 1.5, None),
    Row("tiny", "a document of 175 bytes: parse and destroy", None, 2.0),
    Row("references", "920,000 references in 9 MB: parse, decode, write", 0.5, None),
    Row("standard", "XML 1.0 (`readText`): parse from memory and destroy", 1.0, 1.5),
    Row("standard-all", "XML 1.0, all kept, with places: parse and destroy", 1.25, None),
    Row("standard-first", "XML 1.0 (`readText`): first parse in a fresh process", 1.1, None),
    Row("standard-write", "XML 1.0 (`writeText`): write with indentation to memory", 0.85, 1.1),
    Row("standard-write-raw", "XML 1.0 (`writeText`), as it was read: write to memory", 0.85, 1.1),
    Row("standard-save", "XML 1.0 (`saveFile`): write, sync, replace, against the same text written in place and synced",
        1.2, None, "in-place"),
    Row("events", "XML 1.0 (`StreamReader`): each event looked at, against Expat", 0.15, 0.25, "expat"),
]

# Measured too, without a bar: time against size.
GROWTH = ["growth", "queries"]

KEYS = [row.key for row in ROWS] + GROWTH

# Names as their makers write them.
NAMES = {
    "orvxml": "libOrvXml", "pugixml": "pugixml", "libxml2": "libxml2", "tinyxml2": "tinyxml2",
    "xerces-c": "Xerces-C", "rapidxml": "RapidXML", "expat": "Expat",
    "in-place": "a file written in place",
}

# What is left out on a document under a name of its own: this library's reading of XML 1.0.
STANDARD = "standard"
LEFT_OUT_NAMES = {**NAMES, STANDARD: "`readText`"}


def geometric_mean(values):
    return math.exp(statistics.fmean(map(math.log, values)))


class Result:
    """A row as it was measured: `ratios` has for each library the ratio of medians to the base at each place.

    A place is a document, or a part of the work on one.
    """

    def __init__(self, row, measurements):
        self.row = row
        self.medians = collections.defaultdict(dict)
        for one in measurements:
            if one["row"] == row.key and one["values"]:
                place = ", ".join(filter(None, (one["document"], one["part"])))
                self.medians[one["library"]][place] = statistics.median(one["values"])
        base = self.medians.get(row.base, {})
        self.ratios = {
            library: {place: median / base[place] for place, median in places.items() if place in base}
            for library, places in self.medians.items()
        }

    @property
    def ours(self):
        return self.ratios.get(OURS, {})

    @property
    def mean(self):
        return geometric_mean(self.ours.values())

    @property
    def worst(self):
        return max(self.ours.values())

    @property
    def worst_place(self):
        return max(self.ours, key=self.ours.get)

    @property
    def is_met(self):
        over_mean = self.row.mean is not None and self.mean > self.row.mean
        over_worst = self.row.worst is not None and self.worst > self.row.worst
        return not (over_mean or over_worst)

    def faster(self):
        """The other libraries that are faster in the mean over the places that both have, with the ratio to them."""
        found = {}
        for library, ratios in self.ratios.items():
            both = [place for place in ratios if place in self.ours]
            if library != OURS and both:
                ratio = geometric_mean(self.ours[place] / ratios[place] for place in both)
                if ratio > 1:
                    found[library] = ratio
        return found


def results_of(data):
    """The rows that were measured for both this library and the base."""
    results = [Result(row, data["measurements"]) for row in ROWS]
    return [result for result in results if result.ours]
