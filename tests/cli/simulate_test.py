"""Simulated captures: the truth is true, the noise is what it says, the whole chain gets back to the lamp."""
import math
import os
import sys

sys.dont_write_bytecode = True
from support.image_bytes import flat
from support.program import FILE, USAGE, ProgramTest, main

SCENE = {"size": "400,300", "pels-per-meter": 200, "distance": 2.5, "candela": 900, "exponent": 3}
REGIONS = ["--region=all=rect:0,0,0,0", "--region=zone=rect:120,90,280,210", "--region=spot=ellipse:260,120,31,25",
           "--region=panel=poly:40,200;90,190;100,260;30,270"]


class Simulate(ProgramTest):
    def simulate(self, *arguments, name="lamp.png", **scene):
        scene = [f"--{option.replace('_', '-')}={value}" for option, value in {**SCENE, **scene}.items()]
        self.passes("simulate", "-o", name, *scene, *REGIONS, *arguments)
        stem = name.rsplit(".", 1)[0]
        return self.json(stem + ".truth.json")

    def corrected(self, name="lamp.png", lens=True):
        stem, extension = name.rsplit(".", 1)
        options = [name, f"--dark={stem}.dark.{extension}", f"--defects={stem}.defects.csv"]
        return options + ([f"--lens={stem}.lens.map"] if lens else [])

    def test_the_chain_gets_back_to_the_lamp(self):
        harm = ["--tilt=8,-5", "--hot-pixels=25", "--dead-columns=4", "--lens-radial=-0.08,0.01", "--spot=9", "--seed=3"]
        for name in ("lamp.png", "lamp.tif", "lamp.pgm"):
            self.simulate(*harm, name=name)
            done = self.passes("measure", *self.corrected(name), "--spot=9", "--expect=lamp.truth.json")
            self.assertIn("PASSED", done)
        # The coefficients do what the map does.
        self.passes("measure", *self.corrected(lens=False), "--lens-radial=-0.08,0.01", "--spot=9", "--expect=lamp.truth.json")
        # Each correction is needed, and each missing one is noticed.
        whole = self.corrected("lamp.pgm") + ["--spot=9", "--expect=lamp.truth.json"]
        for left_out in (1, 2, 3):
            part = whole[:left_out] + whole[left_out + 1:]
            self.assertEqual(self.start("measure", *part).returncode, 4, part)

    def test_the_truth_is_the_lamp(self):
        truth = self.simulate("--tilt=0,0")
        figures = {region["name"]: {key: item["value"] for key, item in region["expect"].items()} for region in truth["regions"]}
        # Straight ahead the lamp has its full intensity; all regions but the corner one hold the axis or state their own.
        self.assertAlmostEqual(figures["zone"]["peakCandela"], 900, delta=0.01)
        # (260, 120) lies (60.5, 29.5) pels of 5 mm off the axis: I = I0 cos^3.
        cosine = 2.5 / math.sqrt(2.5**2 + (60.5 * 0.005)**2 + (29.5 * 0.005)**2)
        self.assertAlmostEqual(figures["spot"]["candela"], 900 * cosine**3, places=6)
        # Flux through the target, by a plain sum of E dA over pels cut in four.
        flux = 0.0
        for row in range(600):
            for col in range(800):
                x, y = ((col + 0.5) / 2 - 200) * 0.005, ((row + 0.5) / 2 - 150) * 0.005
                square = 2.5**2 + x * x + y * y
                flux += 900 * (2.5 / math.sqrt(square))**4 / square * 0.0025**2
        self.assertAlmostEqual(figures["all"]["fluxLm"] / flux, 1, places=5)

    def test_a_tilted_lamp_shines_to_its_side(self):
        self.simulate("--tilt=10,6", "--read-noise=0", "--electrons-per-grey=1000", exponent=30)
        region = self.regions("lamp.png", "--dark=lamp.dark.png", "--spot=15")["image"]
        self.assertAlmostEqual(region["peakAngle1Deg"], 10, delta=0.5)
        self.assertAlmostEqual(region["peakAngle2Deg"], 6, delta=0.5)

    def test_noise(self):
        # Dark pels without light: level and read noise; light: shot noise of signal / electrons a grey.
        # A target of 4 mm is evenly lit.
        self.simulate("--dark-level=500", "--read-noise=12", "--electrons-per-grey=0.5", "--dark-frames=4",
                      name="lamp.pgm", **{"pels-per-meter": 100000})
        for name, mean, deviation in (("lamp.dark.pgm", 500, 6), ("lamp.pgm", 49652, math.sqrt(49152 / 0.5 + 144))):
            pels = flat(self.pels(name))
            average = sum(pels) / len(pels)
            spread = math.sqrt(sum((pel - average)**2 for pel in pels) / len(pels))
            self.assertAlmostEqual(average, mean, delta=5 * deviation / math.sqrt(len(pels)) + 0.6)
            self.assertAlmostEqual(spread / deviation, 1, delta=0.02)

    def test_the_seed_decides(self):
        images = []
        for seed in (1, 1, 2):
            self.simulate(f"--seed={seed}", "--hot-pixels=5", "--dead-columns=2", name="lamp.pgm")
            images.append({name: self.bytes_of(name) for name in ("lamp.pgm", "lamp.dark.pgm", "lamp.defects.csv")})
        self.assertEqual(images[0], images[1])
        for name in images[0]:
            self.assertNotEqual(images[0][name], images[2][name])

    def test_refusals_leave_nothing(self):
        for arguments, reason in ((["--size=0"], "--size"), (["--size=8001,5"], "--size"), (["--distance=0"], "--distance"),
                                  (["--pels-per-meter=x"], "--pels-per-meter"), (["--tilt=90,0"], "--tilt"), (["--candela=-1"], "--candela"),
                                  # What leaves no number of a pel.
                                  (["--candela=inf"], "--candela"), (["--lux-per-grey=1e-60"], "--lux-per-grey"), (["--candela=1e-60"], "--lux-per-grey"),
                                  (["--read-noise=inf"], "--read-noise"), (["--electrons-per-grey=1e-320"], "--electrons-per-grey"),
                                  (["--exponent=-1"], "--exponent"), (["--dark-level=70000"], "--dark-level"), (["--dark-frames=0"], "--dark-frames"),
                                  (["--electrons-per-grey=0"], "--electrons-per-grey"), (["--read-noise=nan"], "--read-noise"),
                                  (["--lens-radial=-1,0"], "folds"), (["--hot-pixels=-1"], "defects"), (["--size=20", "--dead-columns=50"], "no room"),
                                  (["--seed=x"], "--seed"), (["--region=rect:1"], "region"), (["--region=ellipse:9,9,30,3"], "inside the image"), (["--spot=0"], "--spot")):
            self.refuses(USAGE, reason, "simulate", "-o", "a.png", *arguments)
        self.refuses(USAGE, "a.jpg", "simulate", "-o", "a.jpg")
        self.refuses(USAGE, "--output", "simulate")
        self.refuses(FILE, "none/a.png: No such file", "simulate", "-o", "none/a.png", "--size=9")
        os.mkdir(self.folder / "a.defects.csv")
        self.refuses(FILE, "a.defects.csv: is not a plain file", "simulate", "-o", "a.png", "--size=9")


main()
