"""Converting: every form keeps what it can hold, and says so when it cannot."""
import json
import struct
import sys
import zlib

sys.dont_write_bytecode = True
from support.image_bytes import flat, pgm, pgm_rows, png, tiff
from support.program import FILE, OK, USAGE, ProgramTest, main

DEEP = [[(7919 * (13 * row + col)) % 4096 for col in range(13)] for row in range(11)]
SHALLOW = [[(29 * row + 7 * col) % 256 for col in range(13)] for row in range(11)]


def bitmap(content):
    """Palette (blue, green, red) and rows, top first, of an 8-bit BMP file."""
    offset, _, cols, rows, _, bits = struct.unpack("<IIiiHH", content[10:30])
    palette = [tuple(content[54 + 4 * i:57 + 4 * i]) for i in range(256)]
    line = (cols + 3) // 4 * 4
    stored = [list(content[offset + line * r:offset + line * r + cols]) for r in range(rows)]
    return bits, palette, stored[::-1]


class Convert(ProgramTest):
    def convert(self, source, target, *options):
        self.assertEqual(self.passes("convert", source, "-o", target, *options), "")
        return self.bytes_of(target)

    def test_grey_levels_survive_every_lossless_form(self):
        self.write("deep.png", png(DEEP))
        for chain in (["a.pgm"], ["a.tif", "a.pgm"], ["a.tqz", "a.pgm"], ["a.PNG", "b.tqz", "c.tiff", "d.pgm"]):
            source = "deep.png"
            for target in chain:
                content = self.convert(source, target)
                source = target
            self.assertEqual(pgm_rows(content), DEEP, chain)

    def test_bytes_survive_bitmaps_too(self):
        for name, content in (("s.pgm", pgm(SHALLOW, 255)), ("s.tif", tiff(SHALLOW, bits=8))):
            self.write(name, content)
            bits, palette, rows = bitmap(self.convert(name, "s.bmp"))
            self.assertEqual((bits, palette, rows), (8, [(i, i, i) for i in range(256)], SHALLOW))
            self.assertEqual(pgm_rows(self.convert("s.bmp", "back.pgm")), SHALLOW)
        self.convert("s.pgm", "s.jpg", "--quality", "2")
        back = flat(pgm_rows(self.convert("s.jpg", "back.pgm")))
        self.assertLessEqual(max(abs(a - b) for a, b in zip(back, flat(SHALLOW))), 4)
        self.assertLess(len(self.convert("s.pgm", "small.jpg", "--quality=200")), (self.folder / "s.jpg").stat().st_size)

    def test_the_byte_string_is_the_block_with_its_header(self):
        self.write("deep.pgm", pgm(DEEP))
        self.write("deep.pgm.json", json.dumps({"luxPerGrey": 0.5, "distance": 3}))
        block = zlib.decompress(self.convert("deep.pgm", "d.tqz", "--pels-per-meter", "1000,500"))
        self.assertEqual(struct.unpack("<iiffff", block[:24]), (13, 11, 1000, 500, 6, 5))
        self.assertEqual(struct.unpack("<ffff", block[32:48]), (0.5, 0, max(flat(DEEP)), 3))
        self.assertEqual(list(struct.unpack("<143H", block[56:])), flat(DEEP))
        # What is typed corrects it, and all else stays.
        corrected = zlib.decompress(self.convert("d.tqz", "e.tqz", "--center", "1,2"))
        self.assertEqual(corrected, block[:16] + struct.pack("<ff", 1, 2) + block[24:])

    def test_a_byte_string_of_an_image_larger_than_most(self):
        pels = struct.pack(">8000H", *range(8000)) * 450
        self.write("wide.pgm", b"P5\n8000 450\n65535\n" + pels)
        self.convert("wide.pgm", "wide.tqz")
        self.assertTrue(self.convert("wide.tqz", "back.pgm").endswith(pels))

    def test_what_a_bitmap_shows(self):
        self.write("deep.pgm", pgm([[0, 50, 100, 600, 1100, 4095]]))
        self.write("palette.txt", "".join(f"{255 - i:3} {i:3}   7   0 " for i in range(256)))
        for options, row in (([], [0, 3, 6, 37, 68, 255]),
                             (["--stretch", "100,1100"], [0, 1, 1, 128, 255, 255]),
                             (["--stretch", "100,1100", "--log"], [0, 1, 1, 190, 255, 255])):
            self.assertEqual(bitmap(self.convert("deep.pgm", "d.bmp", *options))[2], [row], options)
        curved = bitmap(self.convert("deep.pgm", "d.bmp", "--gamma", "1"))[2][0]
        self.assertEqual((curved[0], curved[5]), (0, 254))
        self.assertGreater(curved[3], 100)
        for name, entry in (("red", (0, 0, 128)), ("false", (170, 255, 0)), ("file:palette.txt", (7, 128, 127))):
            self.assertEqual(bitmap(self.convert("deep.pgm", "d.bmp", "--palette", name))[1][128], entry, name)

    def test_refusals(self):
        self.write("a.pgm", pgm(DEEP))
        stream = zlib.compress(b"\0" * 100)
        for name, content, reason in (("cut.jpg", b"\xff\xd8\xff\xe0", "grey JPEG"), ("cut.bmp", b"BM" + b"\0" * 60, "BMP"),
                                      ("cut.tqz", stream[:-1], "damaged"), ("none.tqz", stream, "without an image"),
                                      ("empty.png", b"", "empty")):
            self.write(name, content)
            self.refuses(FILE, reason, "convert", name, "-o", "out.pgm")
        for reason, *options in (("an image file is called", "-o", "a.gif"), ("shape a .bmp", "-o", "b.png", "--log"),
                                 ("--palette is", "-o", "b.bmp", "--palette", "pink"),
                                 ("--gamma is", "-o", "b.bmp", "--gamma", "0"), ("needs --stretch", "-o", "b.bmp", "--log"),
                                 ("exclude", "-o", "b.bmp", "--gamma", "1", "--stretch", "1,2"),
                                 ("higher", "-o", "b.bmp", "--stretch", "7,7"), ("--quality is", "-o", "b.jpg", "--quality", "256")):
            self.refuses(USAGE, reason, "convert", "a.pgm", *options)
        self.refuses(FILE, "No such file", "convert", "missing.pgm", "-o", "b.png")
        self.refuses(FILE, "No such file", "convert", "a.pgm", "-o", "nowhere/b.png")


main()
