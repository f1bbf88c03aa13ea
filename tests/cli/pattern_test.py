"""Test images as files: the right picture in every form, and names, sizes and numbers that are none."""
import struct
import sys

sys.dont_write_bytecode = True
from support.program import USAGE, ProgramTest, main


class Pattern(ProgramTest):
    def draw(self, file, *arguments):
        self.passes("pattern", *arguments, "-o", file)
        return self.bytes_of(file)

    def pgm(self, *arguments):
        """The upper bytes of a grey pattern, row by row."""
        self.draw("p.pgm", *arguments)
        return [[pel >> 8 for pel in row] for row in self.pels("p.pgm")]

    def bmp(self, *arguments):
        """The pels of a bitmap, (red, green, blue), row by row."""
        data = self.draw("p.bmp", *arguments)
        kind, size, _, start = struct.unpack("<2s3I", data[:14])
        _, cols, rows, planes, bits, packing = struct.unpack("<IiiHHI", data[14:34])
        self.assertEqual((kind, size, start, planes, bits, packing), (b"BM", len(data), 54, 1, 24, 0))
        stride = (3 * cols + 3) // 4 * 4
        self.assertEqual(len(data), start + stride * rows)
        return [[tuple(data[start + stride * row + 3 * col:][2::-1]) for col in range(cols)]
                for row in reversed(range(rows))]

    def test_every_pattern_is_drawn_and_fills_its_image(self):
        names = "dots distortion ansi13 grid convergence vesa checkerboard zone border gray-scale".split()
        seen = {}
        for name in names:
            rows = self.pgm(name, "90x60")
            self.assertEqual((len(rows), len(rows[0])), (60, 90))
            black = sum(row.count(0) for row in rows)
            self.assertTrue(0 < black < 90 * 60, name)
            # Nothing lies off centre, but for the pel that an even side cannot avoid.
            for lit in ([any(row) for row in rows], [any(column) for column in zip(*rows)]):
                if name not in ("gray-scale", "checkerboard"):
                    self.assertLessEqual(abs(lit.index(True) - lit[::-1].index(True)), 1, name)
            self.assertEqual([[(grey,) * 3 for grey in row] for row in rows], self.bmp(name, "90x60"))
            seen[str(rows)] = name
        self.assertEqual(len(seen), len(names))

    def test_options_reach_the_pattern(self):
        self.assertEqual(self.pgm("dots", "5,4", "--count", "2", "--step", "4,3", "--first", "0", "--radius", "1"),
                         [[255, 255, 0, 255, 255], [255, 0, 0, 0, 255], [255, 0, 0, 0, 255], [255, 255, 0, 255, 255]])
        self.assertEqual(self.pgm("border", "6,1", "--values", "256,512", "--frame", "1,0", "--interior", "65535"),
                         [[1, 2, 255, 255, 2, 1]])
        self.assertEqual(self.pgm("checkerboard", "4,2", "--count", "2", "--black-first"),
                         [[0, 0, 0, 255], [255, 255, 255, 0]])
        self.assertEqual(self.pgm("vesa", "11,1", "--vertical"), [[0, 255] * 5 + [0]])
        self.assertEqual(self.pgm("gray-scale", "6,1", "--count", "2"), [[0, 0, 0, 0, 255, 255]])
        self.assertEqual(sum(map(sum, self.pgm("ansi13", "200,100", "--radius", "1", "--extended"))), 25 * 5 * 255)

    def test_four_colours(self):
        red, green, blue, white, black = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255,) * 3, (0,) * 3
        self.assertEqual(self.bmp("four-color", "3,2"), [[red, red, green], [blue, blue, white]])
        self.assertEqual(self.bmp("four-color", "3,2", "--white-plane", "w.pgm"), [[red, red, green], [blue, blue, black]])
        self.assertTrue((self.folder / "w.pgm").read_bytes().endswith(b"\0" * 10 + b"\xff\xff"))
        png = self.draw("p.png", "four-color", "3,2")
        self.assertEqual(png[16:26], struct.pack(">IIBB", 3, 2, 8, 2))
        tiff = self.draw("p.tif", "four-color", "3,2")
        self.assertIn(bytes(value for pel in (red, red, green, blue, blue, white) for value in pel), tiff)

    def test_what_cannot_be_drawn(self):
        for reason, arguments in {
                "8000": ("dots", "8001,5", "-o", "p.png"), "SIZE": ("zone", "0x5", "-o", "p.png"),
                ".bmp": ("vesa", "5", "-o", "p.jpg"), "or .bmp": ("four-color", "5", "-o", "p.pgm"),
                "--count": ("dots", "5", "--count", "1", "-o", "p.png"), "--values": ("border", "5", "--values", "65536", "-o", "p.png"),
                "--line-width": ("grid", "5", "--line-width", "0", "-o", "p.png"), "--step": ("zone", "5", "--step", "1", "-o", "p.png"),
                "--output": ("zone", "5"), "subcommand": ("stripes", "5", "-o", "p.png")}.items():
            self.refuses(USAGE, reason, "pattern", *arguments)


main()
