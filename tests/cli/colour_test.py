"""Colours whose chromaticities and temperatures are published, side by side in three images."""
import json
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, USAGE, ProgramTest, main

# x and y of illuminants D65, A and E and of the red of sRGB, with the temperatures that McCamy's formula has.
PATCHES = {"d65": (0.31271, 0.32902, 6504), "a": (0.44757, 0.40745, 2856), "e": (1 / 3, 1 / 3, 5459),
           "red": (0.64, 0.33, None)}
SRGB = "0.4124,0.3576,0.1805,0.2126,0.7152,0.0722,0.0193,0.1192,0.9505"


def uv(x, y):
    return 4 * x / (-2 * x + 12 * y + 3), 9 * y / (-2 * x + 12 * y + 3)


class Colour(ProgramTest):
    def setUp(self):
        super().setUp()
        colours = [(20000 * x / y, 20000, 20000 * (1 - x - y) / y) for x, y, _ in PATCHES.values()]
        for k, name in enumerate("XYZ"):
            row = [round(colours[col // 10][k]) for col in range(40)]
            self.write(name + ".pgm", pgm([row] * 8))
        self.patches = [word for i, name in enumerate(PATCHES)
                        for word in ("--region", f"{name}=rect:{10 * i},0,{10 * i + 9},7")]

    def colour(self, *arguments):
        return json.loads(self.passes("colour", "X.pgm", "Y.pgm", "Z.pgm", *arguments, "--json"))

    def test_published_colours(self):
        report = self.colour(*self.patches, "--lux-per-grey", "0.5")
        self.assertEqual(report["unit"], "lx")
        for found, (name, (x, y, kelvin)) in zip(report["regions"], PATCHES.items()):
            self.assertEqual(found["name"], name)
            self.assertAlmostEqual(found["XYZ"][1], 10000)
            for value, expected in zip(found["xy"] + found["uv"], (x, y) + uv(x, y)):
                self.assertAlmostEqual(value, expected, delta=2e-5)
            if kelvin is None:
                self.assertIsNone(found["kelvin"])
            else:
                self.assertAlmostEqual(found["kelvin"], kelvin, delta=3)
        self.assertEqual(report["largestDifference"]["regions"], ["d65", "red"])
        self.assertAlmostEqual(report["largestDifference"]["uv"], 0.2587, delta=1e-4)
        self.assertIn("\na,", self.passes("colour", "X.pgm", "Y.pgm", "Z.pgm", *self.patches, "--csv"))

    def test_a_matrix_and_the_scale_of_each_image(self):
        # Equal lux of the three primaries, whatever their grey levels, are D65.
        for name, grey in (("R", 100), ("G", 200), ("B", 400)):
            self.write(name + ".pgm", pgm([[grey] * 4] * 3))
            self.write(name + ".pgm.json", json.dumps({"luxPerGrey": 1 / grey}))
        found, = json.loads(self.passes("colour", "R.pgm", "G.pgm", "B.pgm", "--matrix", SRGB, "--json"))["regions"]
        self.assertAlmostEqual(found["uv"][0], 0.1978, delta=1e-4)
        self.assertAlmostEqual(found["uv"][1], 0.4683, delta=1e-4)
        (self.folder / "G.pgm.json").unlink()
        self.refuses(CANNOT_MEASURE, "some images only", "colour", "R.pgm", "G.pgm", "B.pgm")

    def test_maps(self):
        report = self.colour(*self.patches, "--u-map", "u.pgm", "--v-map", "v.bmp", "--range", "0.1,0.6",
                             "--difference-map", "d.pgm", "--reference", "0.1978,0.4683")
        self.assertEqual([entry["quantity"] for entry in report["maps"]], ["u'", "v'", "difference in u'v'"])
        away = [sum((a - b) ** 2 for a, b in zip(uv(x, y), (0.1978, 0.4683))) ** 0.5 for x, y, _ in PATCHES.values()]
        for name, low, high, values in (("u.pgm", 0.1, 0.6, [uv(x, y)[0] for x, y, _ in PATCHES.values()]),
                                        ("d.pgm", 0, report["maps"][2]["high"], away)):
            pels = self.pels(name)
            for index, value in enumerate(values):
                self.assertAlmostEqual(low + pels[0][10 * index + 5] * (high - low) / 65000, value, delta=5e-5)
        bitmap = self.bytes_of("v.bmp")
        self.assertEqual((bitmap[:2], len(bitmap)), (b"BM", 54 + 1024 + 320))
        self.assertAlmostEqual(bitmap[-320], 1 + 254 * (0.4683 - 0.1) / 0.5, delta=1)

    def test_what_cannot_be_measured(self):
        files = ("X.pgm", "Y.pgm", "Z.pgm")
        self.refuses(USAGE, "--matrix", "colour", *files, "--matrix", "1,2,3")
        self.refuses(USAGE, "--range", "colour", *files, "--u-map", "u.bmp", "--range", "0.5,0.5")
        self.refuses(USAGE, "u.jpg", "colour", *files, "--u-map", "u.jpg")
        self.refuses(USAGE, "Z", "colour", *files[:2])
        self.write("other.pgm", pgm([[1]]))
        self.refuses(CANNOT_MEASURE, "another size", "colour", *files[:2], "other.pgm")


main()
