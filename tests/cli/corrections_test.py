"""Dark image, defect list and lens correction."""
import math
import struct
import sys

sys.dont_write_bytecode = True
from support.image_bytes import lens_map, pgm, png
from support.program import CANNOT_MEASURE, FILE, USAGE, ProgramTest, main

COLS, ROWS = 12, 9
PELS = [[1000 + 10 * col + 100 * row for col in range(COLS)] for row in range(ROWS)]


def changed(pels):
    rows = [list(row) for row in PELS]
    for (col, row), value in pels.items():
        rows[row][col] = value
    return rows


class Corrections(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm(PELS))

    def pel(self, col, row, *arguments):
        return self.region(*arguments, f"--region=ellipse:{col},{row},1,1")["totalGrey"]

    def test_dark_image(self):
        dark = changed({(col, row): 900 for col in range(COLS) for row in range(ROWS)} | {(3, 2): 1100, (5, 5): 65535})
        self.write("dark.png", png(dark))
        for (col, row), value in {(0, 0): 100, (11, 8): 1010, (3, 2): 130, (5, 5): 0}.items():
            self.assertEqual(self.pel(col, row, "a.pgm", "--dark=dark.png"), value)
        self.write("small.pgm", pgm(PELS[1:]))
        self.refuses(CANNOT_MEASURE, "small.pgm: 12 x 8 pels, but a.pgm has 12 x 9", "measure", "a.pgm", "--dark=small.pgm")
        self.write("shallow.pgm", pgm([[9] * COLS] * ROWS, 255))
        self.refuses(CANNOT_MEASURE, "shallow.pgm: 8 bits", "measure", "a.pgm", "--dark=shallow.pgm")

    def test_every_type_of_defect(self):
        # The image is linear, so every repaired pel gets its old value back but for the fraction.
        pels = {(3, 3): 0} | {(6, row): 65535 for row in range(ROWS)} | {(8, row): 7 for row in range(2, 6)}
        self.write("a.pgm", pgm(changed(pels)))
        named = "type,x,y,start,end\r\n# columns first\n\ncolumn,6\ncolumn-segment,8,,2,5\r\n pel , 3 , 3 ,,\n"
        numbered = "type,x,y,start,end\n1,6,0,0,0\n2,8,-1,2,5\n0,3,3,0,0"
        for content in (named, numbered):
            self.write("list.csv", content)
            for col, row in pels:
                self.assertAlmostEqual(self.pel(col, row, "a.pgm", "--defects=list.csv"), PELS[row][col], delta=1)
        rows = {(col, 4): 0 for col in range(COLS)} | {(col, 7): 0 for col in range(2, 6)}
        self.write("a.pgm", pgm(changed(rows)))
        self.write("list.csv", "type,x,y,start,end\nrow,,4\nrow-segment,,7,2,5\n")
        for col, row in rows:
            self.assertAlmostEqual(self.pel(col, row, "a.pgm", "--defects=list.csv"), PELS[row][col], delta=1)
        block = {(col, row): 0 for col in (4, 5) for row in (3, 4)}
        self.write("a.pgm", pgm(changed(block)))
        self.write("list.csv", "type,x,y,start,end\nblock,4,3,2,2\n")
        for col, row in block:
            self.assertEqual(self.pel(col, row, "a.pgm", "--defects=list.csv"), 1395)

    def test_defects_in_sensor_coordinates(self):
        self.write("a.pgm", pgm(changed({(3, 4): 0})))
        self.write("list.csv", "type,x,y,start,end\npel,27,148\n")
        # (27 - 20) / 2 = 3, (148 - 140) / 2 = 4
        options = ["--defects=list.csv", "--defect-origin=20,140", "--bin=2"]
        self.assertEqual(self.pel(3, 4, "a.pgm", *options), 1430)
        self.assertEqual(self.pel(3, 4, "a.pgm", *options, "--defect-window=5,1"), 1430)
        self.assertEqual(self.pel(3, 4, "a.pgm", "--defects=list.csv"), 0)

    def test_bad_defect_lists_name_the_line(self):
        head = "type,x,y,start,end\n"
        for content, reason in (("", "header line"), ("pel,1,2\n", "line 1: the header line"),
                                (head + "spot,1,2\n", "line 2: unknown defect type spot"),
                                (head + "6,1,2\n", "line 2: unknown defect type 6"),
                                (head + "\npel,1,\n", "line 3: y of a pel"), (head + "row,,x\n", "line 2: y of a row"),
                                (head + "block,1,2,3,4,5\n", "line 2: more than five"),
                                (head + "pel,1,99999999999\n", "line 2: y of a pel")):
            self.write("list.csv", content)
            self.refuses(FILE, "list.csv: " + ("" if content == "" else reason), "measure", "a.pgm", "--defects=list.csv")
        self.write("list.csv", head + "pel,3,3\n")
        self.refuses(CANNOT_MEASURE, "list.csv: ", "measure", "a.pgm", "--defects=list.csv", "--defect-window=1")
        self.refuses(USAGE, "--defect-window", "measure", "a.pgm", "--defect-window=0")

    def test_lens_map(self):
        center = ((COLS - 1) / 2, (ROWS - 1) / 2)
        self.write("same.map", lens_map(COLS, ROWS, center, lambda col, row: (col, row)))
        # One column to the left; the first has no source.
        self.write("shift.map", lens_map(COLS, ROWS, center, lambda col, row: (col - 1, row)))
        for col, row in ((0, 0), (5, 4), (11, 8)):
            self.assertEqual(self.pel(col, row, "a.pgm", "--lens=same.map"), PELS[row][col])
            self.assertEqual(self.pel(col, row, "a.pgm", "--lens=shift.map"), PELS[row][col - 1] if col else 0)
        self.refuses(CANNOT_MEASURE, "centre", "measure", "a.pgm", "--lens=same.map", "--center=9,4")
        self.write("small.map", lens_map(COLS - 1, ROWS, center, lambda col, row: (col, row)))
        self.refuses(CANNOT_MEASURE, "small.map: the map is smaller", "measure", "a.pgm", "--lens=small.map")
        whole = (self.folder / "same.map").read_bytes()
        for broken in (b"", whole[:11], whole[:-1], whole + b"\0", struct.pack("<HHff", 0, 0, 0, 0)):
            self.write("broken.map", broken)
            self.refuses(FILE, "broken.map: not a lens map", "measure", "a.pgm", "--lens=broken.map")
        self.refuses(USAGE, "exclude", "measure", "a.pgm", "--lens=same.map", "--lens-radial=0,0")

    def test_radial_coefficients(self):
        # A smooth ramp of columns tells by its level where a pel was taken from.
        cols, rows = 201, 101
        self.write("ramp.pgm", pgm([[10000 + 100 * col for col in range(cols)] for _ in range(rows)]))
        half = math.hypot(cols, rows) / 2
        k1, k2, k3 = -0.1, 0.03, -0.01
        for center in ((100, 50), (80.5, 47)):
            for col, row in ((100, 50), (20, 10), (190, 95), (60, 80)):
                x, y = (col - center[0]) / half, (row - center[1]) / half
                q = x * x + y * y
                source = center[0] + half * x * (1 + k1 * q + k2 * q * q + k3 * q ** 3)
                measured = self.pel(col, row, "ramp.pgm", f"--lens-radial={k1},{k2},{k3}", "--center=%g,%g" % center)
                self.assertAlmostEqual(measured, 10000 + 100 * source, delta=1.1)
        # A pincushion lens leaves the corners without a source; a binned image steps through the sensor's map.
        self.assertEqual(self.pel(0, 0, "ramp.pgm", "--lens-radial=0.2,0"), 0)
        self.assertEqual(self.pel(33, 44, "ramp.pgm", "--lens-radial=0,0", "--bin=3,2"), 13300)
        for text in ("0.1", "a,b", "1,2,3,4", "-2,0"):
            self.refuses(USAGE, text, "measure", "ramp.pgm", "--lens-radial=" + text)
        self.refuses(CANNOT_MEASURE, "too large", "measure", "ramp.pgm", "--lens-radial=0,0", "--bin=1000")


main()
