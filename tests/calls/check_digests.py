"""Holds the digests of a build, with every instruction set it can force, against the ones in the file that all
builds share: the same calls give the same bytes everywhere. A change that is meant to alter figures replaces the
file with what `build/release/bin/call_digest` prints."""

import subprocess
import sys


def digests(*command):
    done = subprocess.run(command, text=True, capture_output=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} ended with {done.returncode}\n{done.stderr}")
    return dict(line.split() for line in done.stdout.splitlines())


def main():
    golden, *program = sys.argv[1:]
    with open(golden) as file:
        expected = dict(line.split() for line in file)
    targets = subprocess.run([*program, "--targets"], text=True, capture_output=True).stdout.split()
    failed = False
    for target in targets or [""]:
        found = digests(*program, target)
        differing = sorted(name for name in expected.keys() | found.keys() if expected.get(name) != found.get(name))
        if differing:
            failed = True
            print(f"{target or 'this build'}: other results than {golden} from {', '.join(differing)}")
    sys.exit(failed)


main()
