"""The list of a sensor's defects: found, grouped into lines, in sensor coordinates, and taken by measure."""
import json
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import FILE, USAGE, ProgramTest, main

COLS, ROWS = 24, 18
HEAD = "type,x,y,start,end"


def flat(pels=None):
    rows = [[1000 + (7 * col + 5 * row) % 11 for col in range(COLS)] for row in range(ROWS)]
    for (col, row), value in (pels or {}).items():
        rows[row][col] = value
    return rows


class Defects(ProgramTest):
    def listed(self, *arguments):
        lines = self.passes("defects", *arguments).splitlines()
        self.assertEqual(lines[0], HEAD)
        return lines[1:]

    def test_pels_columns_and_rows(self):
        pels = {(5, 6): 3000, (14, 11): 20}
        pels |= {(9, row): 30 for row in range(ROWS)} | {(col, 14): 5000 for col in range(COLS)}
        self.write("a.pgm", pgm(flat(pels)))
        both = ["column,9,,,", "row,,14,,", "pel,5,6,,", "pel,14,11,,"]
        self.assertEqual(self.listed("a.pgm"), both)
        # The row hides part of the column; the border band is not tested.
        self.assertEqual(self.listed("a.pgm", "--kind=dark"), ["column,9,,,", "pel,14,11,,"])
        self.assertEqual(self.listed("a.pgm", "--kind", "bright"), ["row,,14,,", "pel,5,6,,"])
        self.assertEqual(self.listed("a.pgm", "--kind=dark", "--line-share=100")[:2], ["pel,9,2,,", "pel,9,3,,"])

    def test_the_reference_and_its_neighbourhood(self):
        # Two bright pels side by side lift the mean of nine to 1666 but not the median.
        self.write("a.pgm", pgm(flat({(5, 6): 4000, (6, 6): 4000})))
        self.assertEqual(self.listed("a.pgm", "--percent=150", "--size=3"), ["pel,5,6,,", "pel,6,6,,"])
        self.assertEqual(self.listed("a.pgm", "--percent=150", "--size=3", "--reference=mean"), [])
        self.assertEqual(self.listed("a.pgm", "--percent=150", "--size=7", "--reference=mean"), ["pel,5,6,,", "pel,6,6,,"])

    def test_pels_without_data(self):
        self.write("a.pgm", pgm(flat({(0, 0): 0, (8, 8): 0, (9, 8): 3000})))
        self.assertEqual(self.listed("a.pgm"), ["pel,9,8,,"])
        self.assertEqual(self.listed("a.pgm", "--zeros"), ["pel,0,0,,", "pel,8,8,,", "pel,9,8,,"])
        self.assertEqual(self.listed("a.pgm", "--clear-radius=1"), [])
        # Beside a dark surround the median of a pel is the surround's, unless that is below the floor.
        dark = {(col, row): 90 for col in range(12, COLS) for row in range(ROWS)}
        self.write("b.pgm", pgm(flat(dark)))
        self.assertEqual(self.listed("b.pgm", "--size=3"), [])
        self.assertEqual(self.listed("b.pgm", "--size=3", "--floor=20", "--kind=dark"), ["column,12,,,"])

    def test_sensor_coordinates(self):
        self.write("a.pgm", pgm(flat({(5, 6): 3000} | {(9, row): 30 for row in range(ROWS)})))
        self.assertEqual(self.listed("a.pgm", "--bin=2,3", "--defect-origin=100,-4"), ["column,118,,,", "pel,110,14,,"])
        self.write("a.pgm.json", json.dumps({"bin": [3, 2]}))
        self.assertEqual(self.listed("a.pgm", "--defect-origin=1"), ["column,28,,,", "pel,16,13,,"])
        self.refuses(USAGE, "no sensor", "defects", "a.pgm", f"--defect-origin={2**31 - 2}")

    def test_measure_takes_the_list(self):
        damaged = {(5, 6): 30000, (14, 11): 20} | {(9, row): 0 for row in range(ROWS)}
        self.write("a.pgm", pgm(flat(damaged)))
        origin = ["--bin=2", "--defect-origin=40,30"]
        self.passes("defects", "a.pgm", "--zeros", "-o", "list.csv", "--map=map.pgm", *origin)
        region = self.region("a.pgm", "--defects=list.csv", *origin)
        self.assertGreaterEqual(region["minGrey"], 1000)
        self.assertLessEqual(region["maxGrey"], 1010)
        # The map holds the values of what was tested and found.
        found = self.region("map.pgm")
        self.assertEqual((found["totalGrey"], found["emptyPels"]), (30020, COLS * ROWS - 2))

    def test_finds_what_a_simulated_camera_has(self):
        self.passes("simulate", "-o", "lamp.png", "--size=300,200", "--hot-pixels=20", "--dead-columns=3", "--dark-level=300")
        truth = (self.folder / "lamp.defects.csv").read_text().splitlines()
        found = self.listed("lamp.dark.png", "--zeros", "--percent=50")
        self.assertEqual(sorted(found), sorted(truth[1:]))

    def test_refusals(self):
        self.write("a.pgm", pgm(flat()))
        for argument in ("--kind=2", "--reference=mode", "--size=1", "--size=x", "--percent=-1", "--percent=nan", "--floor=-1",
                         "--clear-radius=-1", "--line-share=-1", "--bin=0", "--defect-origin=a"):
            self.refuses(USAGE, argument.split("=")[0], "defects", "a.pgm", argument)
        self.refuses(USAGE, "map.bmp", "defects", "a.pgm", "--map=map.bmp")
        self.refuses(USAGE, "exclude", "defects", "a.pgm", "--floor=1", "--clear-radius=1")
        self.refuses(FILE, "none/list.csv", "defects", "a.pgm", "--output=none/list.csv", "--map=map.pgm")


main()
