"""Turned, cut and scaled images, and the headers that go with them."""
import json
import math
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, USAGE, ProgramTest, main

COLS, ROWS = 12, 8
PELS = [[1000 * row + 10 * col for col in range(COLS)] for row in range(ROWS)]


class Transform(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm(PELS))
        self.write("a.pgm.json", json.dumps({"pelsPerMeter": [600, 500], "center": [2, 3], "distance": 2, "bin": [2, 1]}))

    def transform(self, *steps):
        """The pels and the header."""
        self.passes("transform", "a.pgm", *steps, "-o", "out.pgm")
        return self.pels("out.pgm"), self.json("out.pgm.json")

    def test_turns_and_mirrors(self):
        columns = [list(column) for column in zip(*PELS)]
        for step, pels, center, turned in (
                ("turn:left", columns[::-1], [3, COLS - 1 - 2], True),
                ("turn:right", [row[::-1] for row in columns], [ROWS - 1 - 3, 2], True),
                ("turn:half", [row[::-1] for row in PELS[::-1]], [COLS - 1 - 2, ROWS - 1 - 3], False),
                ("mirror:columns", [row[::-1] for row in PELS], [COLS - 1 - 2, 3], False),
                ("mirror:rows", PELS[::-1], [2, ROWS - 1 - 3], False),
                ("mirror:diagonal", columns, [3, 2], True)):
            header = {"pelsPerMeter": [500, 600] if turned else [600, 500], "center": center, "distance": 2,
                      "bin": [1, 2] if turned else [2, 1]}
            self.assertEqual(self.transform(step), (pels, header), step)
        self.assertEqual(self.transform("turn:left", "mirror:rows", "mirror:diagonal")[0], PELS)

    def test_crops_and_bins(self):
        pels, header = self.transform("crop:2,3,7,0", "bin:3,2")
        blocks = [[sum(PELS[row + j][col + i] for i in range(3) for j in range(2)) // 6 for col in (2, 5)] for row in (3, 5)]
        self.assertEqual(pels, blocks)
        self.assertEqual((header["pelsPerMeter"], header["bin"]), ([200, 250], [6, 2]))
        self.assertEqual(self.transform("crop:4,4,4,4")[0], [[4040]])
        self.assertEqual(self.transform("bin-lit:2,1", "crop:0,0,0,0")[0][0][0], 10)
        # Binned and back: the borders fall on each other.
        pels, header = self.transform("bin:2", "unbin:2,1")
        self.assertEqual((pels[0][0], pels[-1][-1], len(pels[0]), len(pels)), (505, 6605, 12, 8))
        self.assertEqual(header["bin"], [2, 1])

    def test_scales_and_angles(self):
        # Pels stand for areas: the picture's border stays its border, and a ramp a ramp.
        pels, header = self.transform("scale:2,1.5")
        self.assertEqual((len(pels[0]), len(pels)), (24, 12))
        for col, row in ((2, 3), (21, 10), (9, 6)):
            self.assertAlmostEqual(pels[row][col], 1000 * ((row + 0.5) / 1.5 - 0.5) + 10 * ((col + 0.5) / 2 - 0.5), delta=0.51)
        self.assertEqual(header["pelsPerMeter"], [1200, 750])
        self.assertEqual(header["center"], [2.5 * 2 - 0.5, 3.5 * 1.5 - 0.5])
        turned, header = self.transform("rotate:90")
        self.assertEqual(turned, self.transform("turn:left")[0])
        self.assertEqual((header["center"], header["pelsPerMeter"]), ([3, 9], [500, 600]))
        # By 30 degrees: what lies beside the middle comes to lie obliquely above it, and the corners are empty.
        pels, _ = self.transform("crop:0,0,8,6", "rotate:30")
        self.assertEqual((len(pels[0]), len(pels), pels[0][0]), (12, 11, 0))
        cosine, sine = math.cos(math.pi / 6), math.sin(math.pi / 6)
        for col, row in ((8, 5), (5, 7), (3, 4), (6, 3)):
            x = 4 + cosine * (col - 5.5) - sine * (row - 5)
            y = 3 + sine * (col - 5.5) + cosine * (row - 5)
            self.assertAlmostEqual(pels[row][col], 1000 * y + 10 * x, delta=0.51)

    def test_what_cannot_be(self):
        for step in ("turn", "turn:up", "mirror:left", "rotate:x", "rotate:1e9", "crop:1,2,3", "bin:0", "bin:200,200", "bin:30000",
                     "unbin:", "scale:0", "scale:1,2,3", "scale:1e9", "zoom:2"):
            self.refuses(USAGE, step.split(":")[0], "transform", "a.pgm", step, "-o", "bad.pgm")
        self.refuses(CANNOT_MEASURE, "unbin:4", "transform", "a.pgm", "unbin:4", "-o", "bad.pgm")
        self.refuses(CANNOT_MEASURE, "outside", "transform", "a.pgm", "crop:50,50,60,60", "-o", "bad.pgm")
        self.refuses(USAGE, "STEPS", "transform", "a.pgm", "-o", "bad.pgm")


main()
