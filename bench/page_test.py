"""Holds that docs/performance.md is what its raw data give, and that the page says what the data say."""

import json
import pathlib
import shutil
import tempfile
import unittest

import page
import rows

DOCS = pathlib.Path(__file__).resolve().parent.parent / "docs"


def measured(row, document, **medians):
    """One measurement for each library, of three samples around the median."""
    return [{"row": row, "document": document, "part": "", "size": 1000, "library": library,
             "values": [median * 2, median, median / 2]} for library, median in medians.items()]


def data_of(*measurements, **more):
    return {
        "about": {"date": "2000-01-01", "plan": "full", "others": 0.0, "repetitions": 3,
                  "machine": {"processor": "one", "processors": 8, "memory": "1 GiB", "system": "Linux",
                              "compiler": "g++"}},
        "libraries": [], "documents": [{"name": name, "bytes": 1000} for name in ("a.xml", "b.xml")], "left-out": [],
        "measurements": [one for some in measurements for one in some], **more}


class PublishedPageTest(unittest.TestCase):
    def test_is_what_the_raw_data_give(self):
        self.assertEqual(page.differences(DOCS), [])

    def test_has_generated_documents_of_the_sizes_that_the_rows_name(self):
        data = json.loads((DOCS / page.RAW).read_text())
        self.assertEqual({one["size"] for one in data["measurements"] if one["row"] == "tiny"}, {175})
        if data["about"]["plan"] == "full":
            for row, size in (("siblings", 1_000_000 * len("<a>x</a>")), ("references", 9_200_000)):
                for one in data["measurements"]:
                    if one["row"] == row:
                        self.assertAlmostEqual(one["size"], size, delta=100)

    def test_is_found_to_differ_where_a_figure_or_a_file_is_changed(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "docs"

            def changed(change):
                shutil.rmtree(copy, ignore_errors=True)
                shutil.copytree(DOCS / "performance", copy / "performance")
                shutil.copy(DOCS / page.PAGE, copy)
                change()
                return page.differences(copy)

            def other_figure():
                data = json.loads((copy / page.RAW).read_text())
                for one in data["measurements"]:
                    if one["row"] == "parse" and one["library"] == rows.OURS:
                        one["values"] = [value * 3 for value in one["values"]]
                (copy / page.RAW).write_text(page.raw_text(data))

            def by_hand():
                text = (copy / page.PAGE).read_text()
                (copy / page.PAGE).write_text(text.replace("| parse from memory", "| parse from  memory", 1))

            self.assertEqual(changed(lambda: None), [])
            self.assertIn(page.PAGE, changed(other_figure))
            self.assertIn("performance/ratios.svg", changed(other_figure))
            self.assertEqual(changed(by_hand), [page.PAGE])
            self.assertEqual(changed((copy / "performance/ratios.svg").unlink), ["performance/ratios.svg"])
            self.assertEqual(changed(lambda: (copy / "performance/old.svg").touch()), ["performance/old.svg"])


class RowTest(unittest.TestCase):
    def result(self, key, *measurements):
        row = next(row for row in rows.ROWS if row.key == key)
        return rows.Result(row, data_of(*measurements)["measurements"])

    def test_takes_the_ratio_of_medians_and_their_geometric_mean(self):
        result = self.result("parse", measured("parse", "a.xml", orvxml=1, pugixml=2),
                             measured("parse", "b.xml", orvxml=8, pugixml=4),
                             measured("write", "a.xml", orvxml=100, pugixml=1))
        self.assertEqual(result.ours, {"a.xml": 0.5, "b.xml": 2})
        self.assertAlmostEqual(result.mean, 1)
        self.assertEqual((result.worst, result.worst_place), (2, "b.xml"))

    def test_meets_its_bars_only_with_mean_and_worst(self):
        for ours, other, is_met in ((0.85, 0.85, True), (0.86, 0.86, False), (0.5, 1.25, True), (0.5, 1.26, False)):
            result = self.result("parse", measured("parse", "a.xml", orvxml=ours, pugixml=1),
                                 measured("parse", "b.xml", orvxml=other, pugixml=1))
            self.assertEqual(result.is_met, is_met, (ours, other))

    def test_compares_validation_with_libxml2(self):
        self.assertEqual(self.result("validate", measured("validate", "a", orvxml=1, libxml2=4)).worst, 0.25)

    def test_compares_events_with_expat(self):
        self.assertEqual(self.result("events", measured("events", "a.xml", orvxml=1, expat=8)).worst, 0.125)

    def test_leaves_out_what_the_other_library_was_not_measured_at(self):
        self.assertEqual(self.result("parse", measured("parse", "a.xml", orvxml=1)).ours, {})


class LossesTest(unittest.TestCase):
    def losses(self, *measurements):
        data = data_of(*measurements)
        return page.losses(data, rows.results_of(data))

    def test_names_nothing_where_this_library_is_the_first(self):
        self.assertEqual(self.losses(measured("parse", "a.xml", orvxml=0.5, pugixml=1, expat=2)),
                         "Nowhere in what was measured.")

    def test_names_a_missed_bar(self):
        self.assertIn("The bar is missed: the mean is 0.90, and may be 0.85.",
                      self.losses(measured("parse", "a.xml", orvxml=0.9, pugixml=1)))

    def test_names_a_document_that_costs_more_where_the_bar_is_met(self):
        text = self.losses(measured("parse", "a.xml", orvxml=0.5, pugixml=1),
                           measured("parse", "b.xml", orvxml=1.2, pugixml=1))
        self.assertNotIn("missed", text)
        self.assertIn("more than pugixml in 1 of 2 cases, up to 1.20 times as much (b.xml)", text)

    def test_names_another_library_that_costs_less(self):
        self.assertIn("RapidXML 2.00", self.losses(measured("parse", "a.xml", orvxml=0.5, pugixml=1, rapidxml=0.25)))

    def test_names_growth_and_queries_at_their_largest(self):
        text = self.losses(measured("growth", "text", orvxml=3, pugixml=1),
                           measured("queries", "wide", orvxml=1, libxml2=2))
        self.assertIn("most in text**: it costs more than others, so many times as much: pugixml 3.00", text)
        self.assertNotIn("wide", text)


class PageTest(unittest.TestCase):
    def test_has_no_field_left_whatever_was_measured(self):
        for data in (data_of(), data_of(measured("find", "a.xml", orvxml=1, pugixml=2))):
            self.assertNotIn("{{", page.render(data)[page.PAGE])

    def test_names_what_was_left_out_and_why(self):
        left_out = [{"document": "a.xml", "library": library, "reason": "too long"}
                    for library in ("expat", rows.STANDARD)]
        text = page.render(data_of(**{"left-out": left_out}))[page.PAGE]
        self.assertIn("\n- Expat was left out on a.xml: too long\n- `readText` was left out on a.xml: too long", text)

    def test_says_that_rows_were_not_measured_that_the_machine_was_not_quiet_and_that_a_run_was_quick(self):
        data = data_of(measured("parse", "a.xml", orvxml=1, pugixml=2))
        text = page.render(data)[page.PAGE]
        self.assertEqual(text.count("| not measured |"), len(rows.ROWS) - 1)
        self.assertNotIn("not quiet", text)
        data["about"].update(others=0.5, plan="quick")
        text = page.render(data)[page.PAGE]
        self.assertIn("not quiet", text)
        self.assertIn("quick run", text)


if __name__ == "__main__":
    unittest.main()
