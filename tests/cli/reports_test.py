"""What a measurement writes: table, JSON, CSV, bitmap, comparison; and that a failure writes nothing."""
import csv
import io
import json
import os
import struct
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, FILE, OUTSIDE, USAGE, ProgramTest, main

HEADER = ["--pels-per-meter=1000", "--lux-per-grey=0.01", "--distance=2"]
REGIONS = ["--region=left=rect:1,1,3,5", '--region=the "round", one=ellipse:4,3,3,3', "--region=poly:1,1;5,1;5,5"]


class Reports(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm([[1000 + 100 * col + row for col in range(9)] for row in range(7)]))
        self.measure = ["measure", "a.pgm", *HEADER, *REGIONS]

    def test_json_and_csv_hold_the_same_figures(self):
        report = json.loads(self.passes(*self.measure, "--json"))
        rows = list(csv.DictReader(io.StringIO(self.passes(*self.measure, "--csv"))))
        self.assertEqual([row["name"] for row in rows], ["left", 'the "round", one', "poly:1,1;5,1;5,5"])
        self.assertEqual(len(report["regions"]), len(rows))
        for region, row in zip(report["regions"], rows):
            self.assertEqual({key for key, value in row.items() if value}, set(region))
            for key, value in region.items():
                if isinstance(value, (int, float)):
                    self.assertAlmostEqual(float(row[key]) / (value or 1), 1 if value else 0, places=7, msg=key)
                else:
                    self.assertEqual(row[key], value)

    def test_the_table_stays_beside_files(self):
        table = self.passes(*self.measure)
        self.assertEqual(self.passes(*self.measure, "--json=r.json", "--csv=r.csv"), table)
        self.assertEqual(self.passes(*self.measure, "--json"), (self.folder / "r.json").read_text())
        self.assertEqual(self.passes(*self.measure, "--csv"), (self.folder / "r.csv").read_text())
        lines = table.splitlines()
        grey = next(index for index, line in enumerate(lines) if line.startswith("grey levels"))
        self.assertEqual(lines[grey + 2].split(), ["left", "15", "0", "18045", "1203.000", "1101", "1", "1", "1305", "3", "5"])
        # Aligned: every figure ends where its title ends.
        self.assertEqual(lines[grey].index("total") + 5, lines[grey + 2].index("18045") + 5)

    def test_bitmap(self):
        self.passes(*self.measure, "--bitmap=a.bmp")
        content = (self.folder / "a.bmp").read_bytes()
        kind, size, start = struct.unpack_from("<2sI4xI", content)
        cols, rows, _, bits = struct.unpack_from("<iiHH", content, 18)
        self.assertEqual((kind, size, cols, abs(rows), bits), (b"BM", len(content), 9, 7, 8))
        # The brightest column shows pale red whatever the range of the image is, the darkest something else.
        palette, pels = content[start - 1024:start], content[start:start + 12]
        blue, green, red = palette[4 * pels[8]:4 * pels[8] + 3]
        self.assertGreater(red, 250)
        self.assertNotEqual(palette[4 * pels[0]:4 * pels[0] + 3], bytes((blue, green, red)))

    def expect(self, **figures):
        figures = {key: {"value": value, "tolerancePercent": tolerance} for key, (value, tolerance) in figures.items()}
        self.write("e.json", json.dumps({"note": "x", "regions": [{"name": "left", "region": "rect:1,1,3,5", "expect": figures}]}))
        return ["measure", "a.pgm", "--expect=e.json"]

    def test_expectations(self):
        # The regions come from the expectations unless some are typed.
        within = self.expect(meanGrey=(1200, 0.26), totalGrey=(18045, 0))
        self.assertIn("PASSED: 2 of 2", self.passes(*within))
        report = json.loads(self.passes(*within, "--json"))
        self.assertEqual([region["name"] for region in report["regions"]], ["left"])
        self.assertAlmostEqual(report["comparisons"][0]["differencePercent"], 0.25)
        for figures, options, verdict in ((dict(meanGrey=(1200, 0.24), pels=(15, 0)), [], "1 of 2"),
                                          (dict(emptyPels=(0, 0), pels=(0, 50)), [], "1 of 2"),
                                          # What is not measured is not within: no scale, no such region.
                                          (dict(areaMm2=(15, 99)), [], "0 of 1"),
                                          (dict(pels=(15, 99)), ["--region=rect:1,1,3,5"], "0 of 1")):
            arguments = self.expect(**figures) + options
            done = self.start(*arguments, "--csv=kept.csv")
            self.assertEqual(done.returncode, OUTSIDE)
            self.assertIn(b"FAILED: " + verdict.encode(), done.stdout)
            self.assertIn(b"tqimage: a.pgm: figures outside", done.stderr)
            # The figures are good for finding out why.
            (self.folder / "kept.csv").unlink()
        region = {"name": "a", "region": "rect:1,1,3,5"}
        for content, reason in (({}, "regions"), ({"regions": 1}, "regions"), ({"regions": [1]}, "name"), ({"regions": [region]}, "expect"),
                                ({"regions": [{**region, "expect": {"lumen": {}}}]}, "unknown figure lumen"),
                                ({"regions": [{**region, "expect": {"pels": {"value": 1}}}]}, "tolerancePercent"),
                                ({"regions": [{**region, "region": "rect:1", "expect": {}}]}, "four whole numbers")):
            self.write("e.json", json.dumps(content))
            self.refuses(FILE, reason, "measure", "a.pgm", "--expect=e.json")

    def test_nothing_half_written(self):
        outputs = ["--json=r.json", "--csv=r.csv", "--bitmap=r.bmp"]
        self.write("r.csv", "kept")
        # The measurement fails: no output appears and none is touched.
        self.refuses(CANNOT_MEASURE, "outside", "measure", "a.pgm", *outputs, "--region=rect:90,90,99,99")
        # One output cannot be written: the others do not appear either.
        for name, reason in (("none/r.bmp", "none/r.bmp: No such file"), (".", "is not a plain file"), ("/dev/full", "is not a plain file")):
            self.refuses(FILE, reason, *self.measure, "--json=r.json", "--csv=r.csv", "--bitmap=" + name)
        self.refuses(USAGE, "both", *self.measure, "--json", "--csv", "--bitmap=r.bmp")
        self.assertEqual((self.folder / "r.csv").read_text(), "kept")
        self.passes(*self.measure, *outputs)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.pgm", "r.bmp", "r.csv", "r.json"])
        # A report that reaches nobody is a failure too.
        with open("/dev/full", "wb") as full:
            done = self.start("measure", "a.pgm", stdout=full)
        self.assertEqual((done.returncode, done.stderr), (FILE, b"tqimage: stdout: cannot be written\n"))

    def test_usage(self):
        for arguments, reason in (([], "subcommand"), (["weigh"], "subcommand"), (["measure"], "IMAGE"), (["measure", "a.pgm", "b.pgm"], "b.pgm"),
                                  (["measure", "a.pgm", "--dark"], "--dark"), (["measure", "a.pgm", "--angle-mode=x"], "--angle-mode"),
                                  (["measure", "a.pgm", "--center=1"], "--center")):
            self.refuses(USAGE, reason, *arguments)
        self.assertIn("--lens-radial", self.passes("measure", "--help"))
        self.assertIn(b"measuring left (1 of 3)", self.start(*self.measure, "--progress").stderr)
        self.assertRegex(self.passes("--version"), r"\A\d+\.\d+\.\d+\n\Z")


main()
