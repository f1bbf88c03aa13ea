"""Runs the program whose path is the first argument of a test, each test in an empty folder of its own."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from support.image_bytes import pgm_rows

OK, CANNOT_MEASURE, USAGE, FILE, OUTSIDE = range(5)
PROGRAM = None


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content.encode() if isinstance(content, str) else content)
        return path

    def bytes_of(self, name):
        return (self.folder / name).read_bytes()

    def pels(self, name):
        """The rows of a 16-bit PGM file that the program wrote."""
        return pgm_rows(self.bytes_of(name))

    def json(self, name):
        return json.loads(self.bytes_of(name))

    def start(self, *arguments, **options):
        options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
        return subprocess.run([PROGRAM, *map(str, arguments)], cwd=self.folder, timeout=300, **options)

    def passes(self, *arguments):
        done = self.start(*arguments)
        self.assertEqual((done.returncode, done.stderr), (OK, b""), arguments)
        return done.stdout.decode()

    def refuses(self, code, reason, *arguments):
        """The exit code, one line on stderr that holds the reason, nothing on stdout, and no new file."""
        before = sorted(os.listdir(self.folder))
        done = self.start(*arguments)
        text = done.stderr.decode(errors="replace")
        self.assertEqual(done.returncode, code, (arguments, text))
        self.assertRegex(text, r"\Atqimage: [^\n]*\n\Z")
        self.assertIn(reason, text)
        self.assertEqual(done.stdout, b"")
        self.assertEqual(sorted(os.listdir(self.folder)), before, arguments)

    def report(self, *arguments):
        return json.loads(self.passes("measure", *arguments, "--json"))

    def regions(self, *arguments):
        """The measured regions by name."""
        return {region["name"]: region for region in self.report(*arguments)["regions"]}

    def region(self, *arguments):
        (region,) = self.report(*arguments)["regions"]
        return region


def main():
    """Runs the test cases, and leaves their counts where the builds collect results."""
    global PROGRAM
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    result = unittest.main(exit=False).result
    build = pathlib.Path(PROGRAM).parents[1]
    if (build / "CMakeCache.txt").exists():
        results = build / "results"
        results.mkdir(exist_ok=True)
        name = "cli_" + pathlib.Path(sys.argv[0]).stem
        (results / (name + ".xml")).write_text(
            f'<testsuites tests="{result.testsRun}" failures="{len(result.failures)}" errors="{len(result.errors)}"/>\n')
    sys.exit(not result.wasSuccessful())
