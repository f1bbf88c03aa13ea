"""Reading: every pel of every form arrives as it is; anything else is refused by name and reason."""
import random
import sys

sys.dont_write_bytecode = True
from support.image_bytes import chunk, flat, interlaced_png, pgm, plain_pgm, png, tiff
from support.program import FILE, OK, ProgramTest, main

DEEP = [[(7919 * (13 * row + col)) % 65536 for col in range(13)] for row in range(11)]
SHALLOW = [[value % 256 for value in row] for row in DEEP]
ROW_REGIONS = [f"--region=r{row}=rect:0,{row},12,{row}" for row in range(1, 11)]


class Reading(ProgramTest):
    def check_pels(self, path, rows, bits):
        report = self.report(path, *[f"--region={c},{r}=rect:{c},{r},{c},{r}" for c in range(1, 13) for r in (1, 6, 10)],
                             *ROW_REGIONS)
        self.assertEqual((report["columns"], report["rows"], report["bitsPerPel"]), (13, 11, bits), path)
        measured = {region["name"]: region["totalGrey"] for region in report["regions"]}
        for row in range(1, 11):
            self.assertEqual(measured[f"r{row}"], sum(rows[row]), path)
        for col in range(1, 13):
            for row in (1, 6, 10):
                self.assertEqual(measured[f"{col},{row}"], rows[row][col], (path, col, row))

    def test_every_form_keeps_every_pel(self):
        files = {
            "deep.png": (png(DEEP), DEEP, 16),
            "deep_interlaced.png": (interlaced_png(DEEP), DEEP, 16),
            "deep.pgm": (pgm(DEEP), DEEP, 16),
            "deep_plain.pgm": (plain_pgm(DEEP), DEEP, 16),
            "deep_little.tif": (tiff(DEEP), DEEP, 16),
            "deep_big.tif": (tiff(DEEP, order=">", rows_per_strip=4), DEEP, 16),
            "deep_zip.tif": (tiff(DEEP, compress=True, rows_per_strip=3), DEEP, 16),
            "deep_tiles.tif": (tiff(DEEP, tile=(16, 16)), DEEP, 16),
            "shallow.png": (png(SHALLOW, bits=8), SHALLOW, 8),
            "shallow.pgm": (pgm(SHALLOW, 255), SHALLOW, 8),
            "shallow_tiles.tif": (tiff(SHALLOW, bits=8, tile=(16, 16), order=">"), SHALLOW, 8),
            # A page marked as reduced, behind the first: the same bytes, its marker in both.
            "reduced.tif": (tiff(DEEP, pages=2, tags={254: (4, 1)}), DEEP, 16),
            # The first bytes tell the form, not the name.
            "misnamed.tif": (png(DEEP), DEEP, 16),
        }
        for name, (content, rows, bits) in files.items():
            self.check_pels(self.write(name, content), rows, bits)

    def test_unfit_images_are_refused_with_their_reason(self):
        pairs = [[value for value in row for _ in range(2)] for row in DEEP]
        triples = [[value for value in row for _ in range(3)] for row in DEEP]
        files = {
            "rgb.png": (png(triples, color=2, cols=13), "colour"),
            "palette.png": (png(SHALLOW, bits=8, color=3, before_pixels=chunk(b"PLTE", b"\1\2\3")), "palette"),
            "alpha.png": (png(pairs, color=4, cols=13), "alpha"),
            "transparent.png": (png(DEEP, before_pixels=chunk(b"tRNS", b"\0\1")), "transparent"),
            "nibbles.png": (png([[0] * 7] * 3, bits=4, cols=13), "4 bits"),
            "rgb.tif": (tiff(triples, tags={256: (4, 13), 262: (3, 2), 277: (3, 3)}), "colour"),
            "palette.tif": (tiff(SHALLOW, bits=8, tags={262: (3, 3), 320: (3, [0] * 768)}), "palette"),
            "white.tif": (tiff(DEEP, tags={262: (3, 0)}), "white"),
            "alpha.tif": (tiff(pairs, tags={256: (4, 13), 277: (3, 2), 338: (3, 1)}), "2 values a pel"),
            "float.tif": (tiff(DEEP, bits=32, tags={339: (3, 3)}), "floating-point"),
            "signed.tif": (tiff(DEEP, tags={339: (3, 2)}), "signed"),
            "long.tif": (tiff(DEEP, bits=32), "32 bits"),
            "turned.tif": (tiff(DEEP, tags={274: (3, 6)}), "turned"),
            "pages.tif": (tiff(DEEP, pages=2), "more than one page"),
            "tall.tif": (tiff([[0]] * 8001), "1 x 8001"),
            "color.ppm": (b"P6 1 1 255\n\1\2\3", "not a grey image"),
            "two.pgm": (pgm(DEEP) * 2, "more than one image"),
            "dim.pgm": (pgm(DEEP, 60000), "above the stated maximum"),
            "deep24.pgm": (b"P5 1 1 70000\n\1\2", "maximum"),
            "more.pgm": (plain_pgm(DEEP) + b"5", "more pels"),
            "words.pgm": (b"P2 2 1 255\n12 dark", "not a number"),
            "empty.png": (b"", "empty"),
            "text.png": (b"hello, world", "not a PNG, TIFF or PGM"),
        }
        for name, (content, reason) in files.items():
            self.write(name, content)
            self.refuses(FILE, reason, "measure", name)
        self.refuses(FILE, "missing.png: No such file", "measure", "missing.png")
        self.refuses(FILE, "Is a directory", "measure", ".")

    def test_cut_files_are_refused_wherever_they_end(self):
        for name, content in (("a.png", png(DEEP)), ("a.tif", tiff(DEEP, rows_per_strip=4)), ("a.pgm", pgm(DEEP)),
                              ("b.pgm", plain_pgm(DEEP).rstrip())):
            # What ends a TIFF directory and a plain file's last number is not missed.
            last = len(content) - (5 if name in ("a.tif", "b.pgm") else 1)
            for length in sorted({0, 1, 3, 9, last} | set(range(5, last, last // 12))):
                self.write(name, content[:length])
                self.refuses(FILE, f"tqimage: {name}: ", "measure", name)

    def test_broken_bytes_never_do_more_than_fail(self):
        choose = random.Random(5)
        for name, content in (("a.png", png(DEEP)), ("a.tif", tiff(DEEP, tile=(16, 16))),
                              ("b.tif", tiff(DEEP, compress=True, rows_per_strip=3)), ("a.pgm", pgm(DEEP))):
            for _ in range(25):
                broken = bytearray(content)
                for _ in range(choose.randint(1, 4)):
                    broken[choose.randrange(len(broken))] = choose.randrange(256)
                self.write(name, bytes(broken))
                done = self.start("measure", name)
                self.assertIn(done.returncode, (OK, FILE), done.stderr)


main()
