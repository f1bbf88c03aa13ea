"""The uniformity of a display: points, lumens, mura and blemishes of fields made here, in every form of report."""
import csv
import io
import json
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import CANNOT_MEASURE, FILE, USAGE, ProgramTest, main

COLS, ROWS = 101, 81
HEADER = ["--pels-per-meter=1000", "--lux-per-grey=0.5"]
GRID = [(col, row) for row in (13, 40, 66) for col in (16, 50, 83)]
CORNERS = [(5, 4), (95, 4), (5, 76), (95, 76)]


class Uniformity(ProgramTest):
    def setUp(self):
        super().setUp()
        self.rows = [[10000] * COLS for _ in range(ROWS)]

    def rate(self, *arguments):
        self.write("field.pgm", pgm(self.rows))
        report = json.loads(self.passes("uniformity", "field.pgm", *arguments, "--json"))
        return report, report["figures"]

    def test_a_flat_field_of_known_flux(self):
        report, figures = self.rate(*HEADER)
        self.assertEqual([(point["column"], point["row"]) for point in report["points"]], GRID + CORNERS)
        self.assertEqual({point["meanGrey"] for point in report["points"]}, {10000})
        self.assertEqual({point["meanLux"] for point in report["points"]}, {5000})
        self.assertAlmostEqual(figures["ansiLumens"], 5000 * COLS * ROWS / 1e6)
        for key in ("maximumDeviationPercent", "minimumDeviationPercent", "spotContrastPercent", "pelContrastPercent",
                    "muraTotalPercent", "muraRmsPercent", "muraPelsOffMean", "semu"):
            self.assertEqual(figures[key], 0, key)

    def test_a_bright_corner_and_a_dark_blemish(self):
        for row in range(74, 79):
            self.rows[row][93:98] = [13000] * 5
        for row in range(30, 34):
            self.rows[row][25:30] = [9500] * 5
        report, figures = self.rate(*HEADER, "--spot=3")
        self.assertAlmostEqual(figures["maximumDeviationPercent"], 30)
        self.assertAlmostEqual(figures["spotContrastPercent"], 300 / 23)
        self.assertAlmostEqual(figures["pelContrastPercent"], 350 / 22.5)
        self.assertAlmostEqual(report["points"][12]["deviationPercent"], 30)
        # In the middle of the area only the dark blemish is left: 20 square millimetres, 5 percent.
        report, figures = self.rate(*HEADER, "--region=rect:10,10,70,70")
        mean = (10000 * 61 * 61 - 500 * 20) / (61 * 61)
        self.assertAlmostEqual(figures["semuAreaMm2"], 20)
        self.assertAlmostEqual(figures["semuContrastPercent"], (9500 / mean - 1) * 100, places=2)
        self.assertAlmostEqual(figures["semu"], -figures["semuContrastPercent"] / (1.97 / 20**0.33 + 0.72))
        self.assertAlmostEqual(figures["muraRmsPercent"], (500 * 500 * 20 / 61**2) ** 0.5 / mean * 100, places=2)
        self.assertEqual(self.rate(*HEADER, "--region=rect:10,10,70,70", "--mura-threshold=6")[1]["semu"], 0)

    def test_unknown_fields_leave_their_figures_out(self):
        self.rows[4][95] = 11000
        report, figures = self.rate("--ellipses", "--spot=1")
        self.assertFalse({"ansiLumens", "meanLux", "semu"} & set(figures))
        self.assertAlmostEqual(figures["maximumDeviationPercent"], 10)
        self.assertEqual(report["spotShape"], "ellipse")
        self.write("field.pgm.json", '{"pelsPerMeter": 500, "luxPerGrey": 2}')
        self.assertAlmostEqual(self.rate("--spot=1")[1]["ansiLumens"], 20000 * COLS * ROWS / 500**2)

    def test_every_form_tells_the_same(self):
        self.rows[40][50] = 12000
        report, figures = self.rate(*HEADER, "--spot=1")
        command = ["uniformity", "field.pgm", *HEADER, "--spot=1"]
        table = self.passes(*command, "--json=r.json", "--csv=r.csv")
        self.assertEqual(table, self.passes(*command))
        self.assertEqual(self.json("r.json"), report)
        rows = list(csv.DictReader(io.StringIO((self.folder / "r.csv").read_text())))
        self.assertEqual([float(row["value"]) for row in rows[:13]], [point["meanGrey"] for point in report["points"]])
        self.assertEqual([row["figure"] for row in rows[13:]], list(figures))
        for row, value in zip(rows[13:], figures.values()):
            self.assertAlmostEqual(float(row["value"]), value, delta=abs(value) * 1e-8)
        lines = table.splitlines()
        self.assertEqual(next(line for line in lines if line.startswith("5 ")).split(),
                         ["5", "50", "40", "12000.000", "+17.391", "6000"])

    def test_what_cannot_be_rated_is_refused(self):
        self.write("field.pgm", pgm(self.rows))
        self.write("dark.pgm", pgm([[0] * 9] * 9))
        for reason, arguments in (("--spot", ["--spot=0"]), ("--mura-threshold", ["--mura-threshold=-1"]),
                                  ("--mura-threshold", ["--mura-threshold=101"]), ("rectangle", ["--region=ellipse:9,9,3,3"]),
                                  ("region", ["--region=rect:1,2,3"]), ("stdout", ["--json", "--csv"]),
                                  ("", ["--mura-threshold=x"]), ("", ["--nonsense"])):
            self.refuses(USAGE, reason, "uniformity", "field.pgm", *arguments)
        self.refuses(CANNOT_MEASURE, "dark", "uniformity", "dark.pgm")
        self.refuses(CANNOT_MEASURE, "outside", "uniformity", "field.pgm", "--region=rect:200,1,300,9")
        self.refuses(FILE, "none.pgm", "uniformity", "none.pgm")
        self.refuses(FILE, "r.json", "uniformity", "field.pgm", "--json=none/r.json")


main()
