"""Plots of a lamp whose intensity is the same everywhere, and of a ramp whose profile is known."""
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, USAGE, ProgramTest, main

LAMP = ("--pels-per-meter", "100", "--distance", "1", "--lux-per-grey", "0.01")


class Plot(ProgramTest):
    def setUp(self):
        super().setUp()
        # E = I cos^3 / D^2 of an even source: 200 cd, so 20000 grey on the axis.
        def lamp(col, row):
            return round(20000 / (1 + ((col - 40) / 100) ** 2 + ((row - 30) / 100) ** 2) ** 1.5)
        self.write("lamp.pgm", pgm([[lamp(col, row) for col in range(81)] for row in range(61)]))
        self.write("ramp.pgm", pgm([[500 * col for col in range(81)]] * 61))

    def plot(self, kind, image, *arguments):
        """What is said, and the grey levels row by row."""
        said = self.passes("plot", kind, image, *arguments, "-o", "p.pgm")
        return said, self.pels("p.pgm")

    def test_an_even_source_is_even_over_all_angles(self):
        for kind in ("polar", "radar"):
            said, rows = self.plot(kind, "lamp.pgm", *LAMP, "--angle", "15", "--size", "90")
            lit = [pel for row in rows for pel in row if pel]
            self.assertGreater(len(lit), 6000, kind)
            self.assertTrue(min(lit) > 64900 and max(lit) <= 65000, (kind, min(lit), max(lit)))
            scale = float(said.split("65000 is ")[1].split()[0])
            self.assertAlmostEqual(scale, 200, delta=0.3)

    def test_a_profile_is_read_back_from_its_graph(self):
        _, rows = self.plot("columns", "ramp.pgm", "--size", "81,401", "--style", "points", "--range", "0,40000")
        for col in (0, 40, 80):
            lit = [index for index, row in enumerate(rows) if row[col]]
            self.assertEqual(len(lit), 1)
            self.assertAlmostEqual((400 - lit[0]) * 100, 500 * col, delta=51)

    def test_what_cannot_be_plotted(self):
        self.refuses(USAGE, "8000", "plot", "columns", "ramp.pgm", "--size", "8001", "-o", "p.png")
        self.refuses(USAGE, "--range", "plot", "rows", "ramp.pgm", "--range", "2,1", "-o", "p.png")
        self.refuses(USAGE, "--angle", "plot", "polar", "lamp.pgm", *LAMP, "--angle", "91", "-o", "p.png")
        self.refuses(CANNOT_MEASURE, "--distance", "plot", "radar", "lamp.pgm", "-o", "p.png")


main()
