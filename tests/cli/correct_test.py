"""Stray light, lens coefficients and keystone, from the files that describe them."""
import json
import math
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, FILE, USAGE, ProgramTest, main

COLS, ROWS = 60, 40
# A ramp of columns tells by its level from which column a pel was taken.
RAMP = [[2000 + 100 * col for col in range(COLS)] for _ in range(ROWS)]
MIDDLE = [(COLS - 1) / 2, (ROWS - 1) / 2]


class Correct(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm(RAMP))

    def correct(self, *arguments):
        """The corrected pels and what was told."""
        told = self.passes("correct", *arguments, "-o", "out.pgm")
        return self.pels("out.pgm"), told

    def describe(self, name, **values):
        self.write(name, json.dumps(values))
        return name

    def bad(self, option, reason, code=FILE, **values):
        self.refuses(code, "bad.json: " + reason, "correct", "a.pgm", option, self.describe("bad.json", **values), "-o", "bad.pgm")

    def test_stray_light(self):
        # Of a mean of 1000: 10 % in the left half, none in the right one and where nothing is known.
        self.write("a.pgm", pgm([[1500] * 4 + [500] * 4] * 4))
        (self.folder / "sensor").mkdir()
        self.write("sensor/stray.pgm", pgm([[1000] * 4 + [0] * 3 + [65535]] * 4))
        stray = self.describe("sensor/stray.json", image="stray.pgm", fractionPerGrey=1e-4)
        # The last column, which has no data, does not count in the mean.
        mean = (1500 * 4 + 500 * 3) / 7
        pels, told = self.correct("a.pgm", "--stray-light", stray, "--lux-per-grey=0.5")
        self.assertEqual(pels, [[round(1500 - 0.1 * mean)] * 4 + [500] * 4] * 4)
        self.assertEqual(told, "stray light of sensor/stray.json subtracted\n")
        self.assertEqual(self.json("out.pgm.json"), {"center": [3.5, 1.5], "luxPerGrey": 0.5, "bin": [1, 1]})
        # A cut image's axis says which part of the sensor it is.
        self.write("part.pgm", pgm([[1000] * 2] * 2))
        pels, _ = self.correct("part.pgm", "--stray-light", stray, "--center=0.5,0.5")
        self.assertEqual(pels, [[900, 1000]] * 2)
        self.bad("--stray-light", "image takes a text", image=1, fractionPerGrey=1)
        self.bad("--stray-light", "fractionPerGrey takes a number", image="x")
        self.bad("--stray-light", "unknown field centre", image="x", fractionPerGrey=1, centre=[1, 2])
        self.bad("--stray-light", "its centre does not reach", CANNOT_MEASURE, image="a.pgm", fractionPerGrey=1, center=[0, 0])
        self.refuses(FILE, "gone.pgm", "correct", "a.pgm", "--stray-light", self.describe("gone.json", image="gone.pgm", fractionPerGrey=1), "-o", "bad.pgm")

    def test_lens_coefficients(self):
        cx, cy = 28, 21
        shape = {"center": [cx, cy], "radius": 30}
        for lens in ({"radial": [-0.06, 0.02, 0.01], "tangential": [0.01, -0.02], "scale": 0.9}, {"radial": -0.1}, {}):
            pels, _ = self.correct("a.pgm", "--lens-model", self.describe("lens.json", **shape, **lens), f"--center={cx},{cy}")
            radial = lens.get("radial", [])
            k1, k2, k3 = (radial if isinstance(radial, list) else [radial]) + [0] * (3 - (len(radial) if isinstance(radial, list) else 1))
            p1, p2 = lens.get("tangential", (0, 0))
            for col, row in ((28, 21), (20, 5), (45, 30), (12, 20)):
                x, y = (col - cx) / 30, (row - cy) / 30
                q = x * x + y * y
                source = cx + 30 * lens.get("scale", 1) * (
                    x * (1 + k1 * q + k2 * q * q + k3 * q ** 3) + 2 * p1 * x * y + p2 * (q + 2 * x * x))
                self.assertAlmostEqual(pels[row][col], 2000 + 100 * source, delta=1.1, msg=(lens, col, row))

    def test_lens_settings(self):
        # Scales of 1 and 0.9, of 0.8 and 0.7 about column 0: between all four it is 0.85.
        model = {"center": [0, 0], "radius": 10}
        scaled = [[{**model, "scale": 1}, {**model, "scale": 0.9}], [{**model, "scale": 0.8}, {**model, "scale": 0.7}]]
        lens = self.describe("lens.json", **model, scale=0.5, settings=scaled)
        options = ("a.pgm", "--center=0,0", "--lens-model", lens)
        for setting, scale in (("1,0", 0.8), ("0.5,0.5", 0.85), (None, 0.5)):
            pels, _ = self.correct(*options, *(["--lens-setting", setting] if setting else []))
            self.assertAlmostEqual(pels[7][40], 2000 + 100 * 40 * scale, delta=1.1)
        self.refuses(USAGE, "--lens-setting", "correct", *options, "--lens-setting=1", "-o", "bad.pgm")
        self.refuses(USAGE, "--lens-setting", "correct", "a.pgm", "--lens-setting=1,1", "-o", "bad.pgm")
        self.refuses(USAGE, "exclude", "correct", *options, "--lens-radial=0,0", "-o", "bad.pgm")
        for reason, values in (("center takes 2 numbers", {"radius": 1}), ("radial takes 1 to 3", {**model, "radial": [1] * 4}),
                               ("tangential", {**model, "tangential": "x"}), ("settings", {**model, "settings": [[model], []]}),
                               ("settings", {**model, "settings": {}}), ("not a JSON object", {**model, "settings": [[7]]}),
                               ("unknown field k1", {**model, "settings": [[{**model, "k1": 1}]]})):
            self.bad("--lens-model", reason, **values)
        self.bad("--lens-model", "a sensor has", CANNOT_MEASURE, **model, sensor=[1e300, 5])
        self.bad("--lens-model", "the map is smaller", CANNOT_MEASURE, **model, sensor=[COLS - 1, ROWS])
        self.bad("--lens-model", "not the coefficients", CANNOT_MEASURE, **model, radial=[-5])
        self.write("bad.json", '{"radius": 1e999}')
        self.refuses(FILE, "bad.json: a number", "correct", "a.pgm", "--lens-model=bad.json", "-o", "bad.pgm")

    def test_a_flat_screen(self):
        # A screen of 200 x 120 pels that narrows toward the bottom, each pel the share of it that is lit.
        def lit_share(col, row):
            below = row - 39.5
            return max(0, min(col + 0.5, 249.5 - below / 6) - max(col - 0.5, 49.5 + below / 6)) if 0 <= below < 120 else 0

        def screen(col, row):
            return sum(lit_share(col, row + (j - 3.5) / 8) for j in range(8)) / 8
        self.write("a.pgm", pgm([[round(500 + 40000 * screen(col, row)) for col in range(300)] for row in range(200)]))
        given = [[49.5, 39.5], [249.5, 39.5], [229.5, 159.5], [69.5, 159.5]]
        told = ""
        for values in ({"corners": given}, {"threshold": 20000}):
            pels, told = self.correct("a.pgm", "--keystone", self.describe("screen.json", **values))
            # Upright, as wide as its sides are on average, and of one level.
            edges = [sum(row[col] - 500 for col in range(50, 250)) / 40000 for row in pels]
            lit = [row for row in range(200) if edges[row] > 100]
            self.assertAlmostEqual(len(lit), math.hypot(20, 120), delta=1.1)
            for row in lit[2:-2]:
                self.assertAlmostEqual(edges[row], 180, delta=0.15)
                self.assertAlmostEqual(pels[row][150], 40500, delta=1)
        found = json.loads(told[told.index("[["):told.index("]]") + 2])
        for (col, row), (true_col, true_row) in zip(found, given):
            self.assertLess(math.hypot(col - true_col, row - true_row), 0.1)
        self.assertIn("vertical 11.111 %", self.correct("a.pgm", "--keystone", self.describe("screen.json", corners=given))[1])
        for values, code, reason in (({}, FILE, "corners takes 4 points"), ({"corners": given[:3]}, FILE, "corners takes 4"),
                                     ({"corners": given, "threshold": 1}, FILE, "unknown field corners"),
                                     ({"corners": given[::-1]}, CANNOT_MEASURE, "the corners"),
                                     ({"corners": [[-1, 0]] + given[1:]}, FILE, "corners begin"),
                                     ({"threshold": 65000}, CANNOT_MEASURE, "no pel"), ({"threshold": -1}, FILE, "threshold")):
            self.bad("--keystone", reason, code, **values)

    def test_a_cylinder(self):
        # Seen from the front at ten radii, the focal length 900 pels; the level is the angle about the axis.
        focal, distance, half, height = 900, 10, 40, 0.8
        place = lambda angle, up: (149.5 + focal * math.sin(angle) / (distance - math.cos(angle)),
                                   99.5 - focal * up / (distance - math.cos(angle)))

        def level(col):
            t = (col - 149.5) / focal  # sin a = t (d - cos a)
            return 30000 + 20000 * (math.asin(distance * t / math.hypot(1, t)) - math.atan(t)) if abs(t) < 0.1 else 0
        self.write("a.pgm", pgm([[max(0, round(level(col))) for col in range(300)]] * 200))
        angle = math.radians(half)
        marks = [place(a, up) for a, up in ((-angle, height / 2), (0, height / 2), (angle, height / 2),
                                            (angle, -height / 2), (0, -height / 2), (-angle, -height / 2))]
        values = {"marks": marks, "halfAngle": half, "heightOverRadius": height}
        pels, told = self.correct("a.pgm", "--keystone", self.describe("drum.json", **values))
        self.assertIn("cylinder of drum.json unrolled", told)
        # Columns are uniform in the angle.
        row = pels[100]
        step = (row[190] - row[110]) / 80
        for col in range(90, 211):
            self.assertAlmostEqual(row[col], row[150] + step * (col - 150), delta=0.1 * step + 2)
        self.assertGreater(step, 150)
        self.bad("--keystone", "halfAngle lies", FILE, **{**values, "halfAngle": 90})
        self.bad("--keystone", "the marks", CANNOT_MEASURE, **{**values, "marks": [[9, 9]] * 6})

    def test_what_it_takes(self):
        self.refuses(USAGE, "no correction", "correct", "a.pgm", "-o", "bad.pgm")
        self.refuses(USAGE, "--output", "correct", "a.pgm", "--lens-radial=0,0")
        self.refuses(USAGE, "bad.jpg", "correct", "a.pgm", "--lens-radial=0,0", "-o", "bad.jpg")
        # measure takes the same files.
        self.write("screen.json", json.dumps({"corners": [[10, 10], [49, 10], [49, 29], [10, 29]]}))
        self.assertEqual(self.region("a.pgm", "--keystone=screen.json", "--region=rect:20,20,20,20")["meanGrey"], 4000)


main()
