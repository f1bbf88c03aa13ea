"""Where the photometric header comes from, and that only figures are given that it allows."""
import json
import sys

sys.dont_write_bytecode = True
from support.image_bytes import pgm
from support.program import FILE, USAGE, ProgramTest, main

FULL = {"pelsPerMeter": [200, 100], "center": [3, 2], "luxPerGrey": 0.5, "distance": 4, "bin": [2, 1]}
OPTIONS = ["--pels-per-meter=1000", "--lux-per-grey=0.01", "--distance=2"]


class Header(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.pgm", pgm([[100] * 9] * 7))

    def header(self, *arguments):
        return self.report("a.pgm", *arguments)["header"]

    def test_sources_and_their_order(self):
        nothing = {"center": [4, 3], "bin": [1, 1]}
        self.assertEqual(self.header(), nothing)
        self.write("a.pgm.json", json.dumps(FULL))
        self.assertEqual(self.header(), FULL)
        # A named file takes the place of the sidecar, fields that it lacks included.
        self.write("other.json", '{"distance": 7}')
        self.assertEqual(self.header("--header", "other.json"), {**nothing, "distance": 7})
        # Options win field by field.
        typed = ["--distance=1.5", "--center=-2,8.5", "--pels-per-meter", "300", "--bin=4"]
        self.assertEqual(self.header(*typed), {"pelsPerMeter": [300, 300], "center": [-2, 8.5], "luxPerGrey": 0.5,
                                               "distance": 1.5, "bin": [4, 4]})

    def test_figures_need_their_fields(self):
        grey = {"name", "region", "pels", "emptyPels", "totalGrey", "meanGrey", "minGrey", "minColumn", "minRow",
                "maxGrey", "maxColumn", "maxRow"}
        angles = {"angle1Deg", "angle2Deg", "offAxisDeg"}
        peak = {"peakCandela", "peakAngle1Deg", "peakAngle2Deg", "peakOffAxisDeg"}
        scale, lux, distance = OPTIONS
        for options, figures in (([], set()), ([distance], set()), ([scale], {"areaMm2"}), ([lux], {"meanLux"}),
                                 ([lux, distance], {"meanLux"}), ([scale, lux], {"areaMm2", "meanLux", "fluxLm"}),
                                 ([scale, distance], {"areaMm2"} | angles),
                                 (OPTIONS, {"areaMm2", "meanLux", "fluxLm", "candela"} | angles | peak)):
            self.assertEqual(set(self.region("a.pgm", *options)), grey | figures, options)
            table = self.passes("measure", "a.pgm", *options)
            self.assertEqual("lm" in table.split(), "fluxLm" in figures, table)

    def test_known_light(self):
        # 100 grey at 0.01 lx: 1 lx everywhere; 63 pels of 1 mm2; on the axis I = E D^2.
        region = self.region("a.pgm", *OPTIONS)
        self.assertAlmostEqual(region["meanLux"], 1.0, places=6)
        self.assertAlmostEqual(region["areaMm2"], 63.0, places=6)
        self.assertAlmostEqual(region["fluxLm"], 63e-6, places=11)
        self.assertAlmostEqual(region["candela"], 4.0, places=6)
        # x = 4 mm, y = 3 mm off the axis: R^2 / cos = (D^2 + 25e-6)^1.5 / D, brightest in the first corner.
        self.assertAlmostEqual(region["peakCandela"], (4 + 25e-6) ** 1.5 / 2, places=6)
        # The middle pel of the second region lies 3 mm right of and 2 mm above the axis.
        for mode, angles in ((0, (0.0859437, 0.0572958)), (1, (0.0859437, 0.0572957)),
                             (2, (0.0859436, 0.0572958)), (3, (33.690068, 0.1032913))):
            spot = self.region("a.pgm", *OPTIONS, "--region=ellipse:7,1,1,1", f"--angle-mode={mode}")
            self.assertAlmostEqual(spot["angle1Deg"], angles[0], places=6)
            self.assertAlmostEqual(spot["angle2Deg"], angles[1], places=6)
            self.assertAlmostEqual(spot["offAxisDeg"], 0.1032913, places=6)

    def test_impossible_headers_are_refused(self):
        for option in ("--pels-per-meter=0", "--pels-per-meter=-5", "--pels-per-meter=1,2,3", "--pels-per-meter=x",
                       "--pels-per-meter=1e50", "--lux-per-grey=nan", "--lux-per-grey=1e-60", "--distance=inf",
                       "--distance=0x10", "--center=5", "--center=1,1e9", "--bin=0", "--bin=1.5", "--bin=40000"):
            self.refuses(USAGE, option.split("=")[0], "measure", "a.pgm", option)
        self.refuses(USAGE, "--angle-mode", "measure", "a.pgm", "--angle-mode=4")
        for content, reason in (("{", "not JSON"), ("[1]", "not a JSON object"), ('{"distnace": 2}', "distnace"),
                                ('{"distance": "2"}', "distance"), ('{"distance": -2}', "distance"),
                                ('{"center": [1]}', "center"), ('{"bin": [1, 0]}', "bin"), ("", "not JSON"),
                                ('{"pelsPerMeter": [1, null]}', "pelsPerMeter"), ("[" * 100000, "not JSON")):
            self.write("a.pgm.json", content)
            self.refuses(FILE, reason, "measure", "a.pgm")
        self.refuses(FILE, "none.json: No such file", "measure", "a.pgm", "--header=none.json")


main()
