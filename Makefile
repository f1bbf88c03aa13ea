# The commands of daily work; CMakePresets.json has the builds themselves.
#
#   make demo     measures a simulated lamp through the whole chain, next to the true values
#   make test     builds and tests everything: Linux, sanitizers, both Windows DLLs under Wine
#   make bench    speed, next to OpenCV, as one table
#   make fuzz     hostile bytes and calls, ten minutes for each target; FUZZ_SECONDS=n for another time
#   make docs     the guide and the reference of all functions, in build/docs/index.html
#   make format   lays the sources out as .clang-format says
#   make tidy     clang-tidy over the library and the program
#   make clean    removes build/
#
# Each one first installs what a Debian 12 machine lacks for it (make setup).

.PHONY: all setup release demo test bench fuzz docs format tidy clean

all: release

setup:
	@tools/setup.sh

release: setup
	@cmake --preset release
	@cmake --build --preset release

demo: release
	@tools/demo.sh

test: setup
	@tools/test.sh

bench: release
	build/release/bin/tqimage_bench --table

FUZZ_SECONDS ?= 600
fuzz: setup
	@tools/fuzz.sh $(FUZZ_SECONDS)

docs: setup
	@cmake --preset release
	@cmake --build --preset release --target docs

format: setup
	@tools/format.sh

tidy: release
	@tools/tidy.sh

clean:
	rm -rf build
