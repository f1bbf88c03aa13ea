"""Installs the build into a fresh tree, moves that tree, and builds and runs the example against it twice: with
the CMake package and with the pkg-config file."""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys

EXPECTED = "480.00 cd"
HERE = pathlib.Path(__file__).resolve().parent
EXAMPLE = HERE.parents[1] / "docs" / "examples" / "first_measurement.c"


def run(*command, **options):
    result = subprocess.run([str(part) for part in command], text=True, capture_output=True, **options)
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout.strip()


def check_run(what, emulator, program):
    printed = run(*emulator, program)
    if printed != EXPECTED:
        sys.exit(f"the program built with {what} printed {printed!r}, not {EXPECTED!r}")


def main():
    parser = argparse.ArgumentParser()
    for option in ("build", "cmake", "c-compiler", "toolchain", "libdir"):
        parser.add_argument(f"--{option}", required=True)
    parser.add_argument("emulator", nargs="*")
    arguments = parser.parse_args()
    windows = bool(arguments.toolchain)
    suffix = ".exe" if windows else ""

    work = pathlib.Path(arguments.build) / "install_test"
    shutil.rmtree(work, ignore_errors=True)
    run(arguments.cmake, "--install", arguments.build, "--prefix", work / "first")
    stage = (work / "first").rename(work / "moved")
    programs = work / "programs"
    programs.mkdir()
    if windows:  # a DLL is looked for beside the program
        shutil.copy(stage / "bin" / "tqimage20.dll", programs)

    toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={arguments.toolchain}"] if windows else []
    run(arguments.cmake, "-S", HERE / "consumer", "-B", work / "cmake", "-G", "Ninja", *toolchain,
        f"-DCMAKE_PREFIX_PATH={stage}", f"-DCMAKE_RUNTIME_OUTPUT_DIRECTORY={programs}", f"-DEXAMPLE={EXAMPLE}")
    run(arguments.cmake, "--build", work / "cmake")
    check_run("the CMake package", arguments.emulator, programs / f"consumer{suffix}")

    libdir = stage / arguments.libdir
    flags = run("pkg-config", "--cflags", "--libs", "tqimage20 >= 1.0",
                env=os.environ | {"PKG_CONFIG_PATH": str(libdir / "pkgconfig")}).split()
    run(arguments.c_compiler, "-std=c99", EXAMPLE, *flags, f"-Wl,-rpath,{libdir}" if not windows else "-static-libgcc",
        "-o", programs / f"packaged{suffix}")
    check_run("pkg-config", arguments.emulator, programs / f"packaged{suffix}")


main()
