"""Regions: every form against figures counted here pel by pel, and every malformed one refused."""
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, USAGE, ProgramTest, main

COLS, ROWS = 40, 30
PELS = [[(7919 * (COLS * row + col) + 101 * col) % 50000 // 50 for col in range(COLS)] for row in range(ROWS)]


def rectangle(left, top, right, bottom):
    return lambda col, row: left <= col <= right and top <= row <= bottom


def ellipse(center_col, center_row, width, height):
    def inside(col, row):
        near = abs(col - center_col) <= width // 2 and abs(row - center_row) <= height // 2
        return near and (2 * (col - center_col) / width) ** 2 + (2 * (row - center_row) / height) ** 2 <= 1
    return inside


class Regions(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm(PELS))

    def check(self, argument, inside):
        region = self.region("a.pgm", "--region", "a b=" + argument)
        self.assertEqual((region["name"], region["region"]), ("a b", argument))
        pels = [(PELS[row][col], col, row) for row in range(ROWS) for col in range(COLS) if inside(col, row)]
        # The first pel in row order counts among equals.
        low = min(pels, key=lambda pel: (pel[0], pel[2], pel[1]))
        high = min(pels, key=lambda pel: (-pel[0], pel[2], pel[1]))
        self.assertEqual(region["pels"], len(pels), argument)
        self.assertEqual(region["emptyPels"], sum(pel[0] == 0 for pel in pels), argument)
        self.assertEqual(region["totalGrey"], sum(pel[0] for pel in pels), argument)
        self.assertAlmostEqual(region["meanGrey"], sum(pel[0] for pel in pels) / len(pels), msg=argument)
        self.assertEqual((region["minGrey"], region["minColumn"], region["minRow"]), low, argument)
        self.assertEqual((region["maxGrey"], region["maxColumn"], region["maxRow"]), high, argument)

    def test_rectangles(self):
        self.check("rect:3,4,20,17", rectangle(3, 4, 20, 17))
        self.check("rect:0,0,0,0", rectangle(0, 0, COLS - 1, ROWS - 1))
        self.check("rect:5,6,0,12", rectangle(5, 6, COLS - 1, 12))
        self.check("rect: -7, -1, 9, 99999", rectangle(0, 0, 9, ROWS - 1))

    def test_ellipses(self):
        for box in ((20, 15, 21, 9), (11, 12, 8, 8), (39, 0, 30, 30), (5, 5, 1, 1), (-3, 14, 20, 11), (20, 15, 40, 30)):
            self.check("ellipse:%d,%d,%d,%d" % box, ellipse(*box))

    def test_polygons(self):
        # Outlines whose pels need no rule for slopes: upright sides, and a diamond with sides of 45 degrees.
        self.check("poly:3,4;20,4;20,17;3,17", rectangle(3, 4, 20, 17))
        self.check("poly:5,5;14,5;14,10;25,10;25,20;5,20",
                   lambda col, row: rectangle(5, 5, 14, 10)(col, row) or rectangle(5, 10, 25, 20)(col, row))
        self.check("poly:20,5;30,15;20,25;10,15", lambda col, row: abs(col - 20) + abs(row - 15) <= 10)
        far = 2 ** 31 - 1
        self.check(f"poly:-{far},-{far};{far},-{far};{far},{far};-{far},{far}", lambda col, row: True)

    def test_brightest_direction(self):
        # A single bright pel beside a dimmer patch: a pel finds the one, a spot the other.
        rows = [[100] * COLS for _ in range(ROWS)]
        rows[4][5] = 60000
        for row in range(18, 25):
            rows[row][28:35] = [20000] * 7
        self.write("spot.pgm", pgm(rows))
        header = ["--pels-per-meter=1000", "--distance=2", "--lux-per-grey=1", "--center=0,0"]
        pel = self.region("spot.pgm", *header, "--region=rect:0,0,0,0")
        spot = self.region("spot.pgm", *header, "--region=rect:0,0,0,0", "--spot=7")
        self.assertAlmostEqual(pel["peakCandela"] / 240000, 1, places=4)
        self.assertAlmostEqual(spot["peakCandela"] / 80000, (1 + (0.031**2 + 0.021**2) / 4) ** 1.5, places=6)
        self.assertAlmostEqual(spot["peakAngle2Deg"], -0.601585, places=5)
        self.refuses(CANNOT_MEASURE, "does not fit", "measure", "spot.pgm", *header, "--region=rect:1,1,7,9", "--spot=7")

    def test_malformed_regions_are_refused(self):
        for argument in ("rect", "rect:", "rect:1,2,3", "rect:1,2,3,4,5", "rect:1,2,3,x", "rect:1,2,3,4.5", "box:1,2,3,4",
                         "rect:1,2,3,99999999999", "ellipse:1,2,0,4", "ellipse:1,2,3,-4", "poly:1,2;3,4",
                         "poly:1,2;3,4;5", "poly:1,2;3,4;5,6;", "poly:1,2,3;4,5;6,7", "=rect:1,2,3,4", "a=b=rect:1,2,3,4"):
            self.refuses(USAGE, "region " + argument, "measure", "a.pgm", "--region=" + argument)
        self.refuses(USAGE, "two regions", "measure", "a.pgm", "--region=a=rect:1,1,2,2", "--region=a=rect:1,1,2,3")
        for spot in ("0", "3,0", "x", "1,2,3"):
            self.refuses(USAGE, "--spot", "measure", "a.pgm", "--spot=" + spot)

    def test_regions_without_pels_cannot_be_measured(self):
        for argument, reason in (("rect:40,0,50,5", "outside"), ("rect:9,9,3,20", "outside"), ("rect:1,-9,5,-3", "outside"),
                                 ("ellipse:200,200,9,9", "no pel"), ("ellipse:20,15,41,9", "larger than the image"),
                                 ("poly:50,1;60,1;60,9", "no pel"), ("poly:5,-9;9,-9;9,-2", "no pel")):
            self.refuses(CANNOT_MEASURE, reason, "measure", "a.pgm", "--region=lost=" + argument)


main()
