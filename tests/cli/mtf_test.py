"""Slanted edges whose modulation transfer is known, and everything that is none."""
import json
import math
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, FILE, USAGE, ProgramTest, main

SIZE = 80


def edge(degrees, sigma=1.0):
    """Sampled at the pel centres, so that only the blur is in the modulation."""
    angle = math.radians(degrees)
    middle = (SIZE - 1) / 2

    def grey(col, row):
        across = (col - middle) * math.cos(angle) - (row - middle) * math.sin(angle)
        return round(4000 + 40000 * 0.5 * math.erfc(-across / sigma / math.sqrt(2)))
    return [[grey(col, row) for col in range(SIZE)] for row in range(SIZE)]


class Mtf(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("edge.pgm", pgm(edge(5)))

    def test_a_gaussian_edge(self):
        text = self.passes("mtf", "--json", "--region", "rect:0,0,0,0", "--region", "part=rect:10,5,70,75", "edge.pgm")
        report = json.loads(text)
        self.assertEqual([region["name"] for region in report["regions"]], ["rect:0,0,0,0", "part"])
        for region in report["regions"]:
            self.assertAlmostEqual(region["angleDegrees"], 5, delta=0.01)
            self.assertAlmostEqual(region["mtf50"], math.sqrt(math.log(2) / 2) / math.pi, delta=0.002)
            self.assertEqual((region["frequency"][0], region["frequency"][-1]), (0, 0.5))
            for frequency, modulation in zip(region["frequency"], region["modulation"]):
                self.assertAlmostEqual(modulation, math.exp(-2 * (math.pi * frequency) ** 2), delta=0.01)

    def test_the_table_and_a_file(self):
        text = self.passes("mtf", "--points", "6", "--json=curve.json", "edge.pgm")
        lines = [line.split() for line in text.splitlines()]
        self.assertIn(["0.0000", "1.0000"], lines)
        self.assertIn(["edge", "angle", "5.000", "degrees"], lines)
        region = self.json("curve.json")["regions"][0]
        self.assertEqual([[f"{f:.4f}", f"{m:.4f}"] for f, m in zip(region["frequency"], region["modulation"])],
                         lines[-6:])

    def test_a_name_that_is_no_text(self):
        name = b"\xff.pgm".decode(errors="surrogateescape")
        self.write(name, pgm(edge(5)))
        self.assertEqual(json.loads(self.passes("mtf", "--json", name))["file"], "\ufffd.pgm")

    def test_what_is_no_edge(self):
        self.write("flat.pgm", pgm([[500] * SIZE for _ in range(SIZE)]))
        self.write("upright.pgm", pgm(edge(0)))
        self.refuses(CANNOT_MEASURE, "no edge", "mtf", "flat.pgm")
        self.refuses(CANNOT_MEASURE, "degrees", "mtf", "upright.pgm")
        self.refuses(CANNOT_MEASURE, "too small", "mtf", "--region", "rect:30,30,45,45", "edge.pgm")
        self.refuses(USAGE, "rectangle", "mtf", "--region", "ellipse:20,20,9,9", "edge.pgm")
        self.refuses(USAGE, "--points", "mtf", "--points", "1", "edge.pgm")
        self.refuses(FILE, "missing.pgm", "mtf", "missing.pgm")


main()
