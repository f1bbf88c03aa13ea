"""Runs an example and compares what it prints with the figures that the guide shows."""
import pathlib
import subprocess
import sys

expected, *command = sys.argv[1:]
printed = subprocess.run(command, check=True, capture_output=True, text=True).stdout.replace("\r\n", "\n")
if printed != pathlib.Path(expected).read_text():
    sys.exit(f"{command[-1]} prints\n{printed}and not what {expected} says")
