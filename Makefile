# The project's commands. Each does all the set-up it needs; a second run does none of it twice.

SHELL := /bin/bash
.SHELLFLAGS := -euo pipefail -c
.DEFAULT_GOAL := help
.NOTPARALLEL:
.DELETE_ON_ERROR:

JOBS ?= $(shell nproc)
OUT ?= out

# Objects are cached by content and by paths relative to the tree, so that a second clone finds them.
export CCACHE_BASEDIR ?= $(CURDIR)
export CCACHE_NOHASHDIR ?= 1

sources = find $(wildcard Common Tools Studio Tests Benchmarks Docs) -name "*.h" -o -name "*.cpp"

.PHONY: help
help: ## list the commands
	@sed -n 's/^\([a-z-]*\):.*## /\1\t/p' $(MAKEFILE_LIST) | expand -t 16

.PHONY: demo
demo: setup ## import a real motion, play it and draw it into out/
	@test -f build/release/build.ninja || cmake --preset release
	cmake --build --preset release --target ka-anim
	build/release/bin/ka-anim demo -o $(OUT)

# Without a display the window opens on one in memory, for three seconds.
STUDIO_FILE ?= /usr/share/assimp/models/BVH/01_01.bvh
.PHONY: studio
studio: setup setup-studio configure-studio ## build the studio and open it on a real motion
	cmake --build --preset release --target ka-studio
	@if [ -n "$${DISPLAY:-}$${WAYLAND_DISPLAY:-}" ]; then build/release/bin/ka-studio $(STUDIO_FILE); \
	else echo "no display: opened for three seconds on one in memory"; \
		xvfb-run -a build/release/bin/ka-studio --quit-after 3 $(STUDIO_FILE); fi

# Qt 3D may have come after the tree was configured.
.PHONY: configure-studio
configure-studio:
	@grep -qs '^Qt53DRender_DIR:PATH=/' build/release/CMakeCache.txt || cmake --preset release

.PHONY: bench-studio
bench-studio: setup setup-studio configure-studio build-release ## measure what a user of the studio waits for, as a table
	xvfb-run -a -s "-screen 0 1600x1000x24" build/release/bin/ka-studio-bench

.PHONY: test
test: setup-studio setup-python configure-python configure-studio test-release ## build everything, optimised, and run all tests

# The Python package is a part of the tests' build alone: it has packages of its own.
.PHONY: configure-python
configure-python:
	@grep -qs '^KA_BUILD_PYTHON:BOOL=ON' build/release/CMakeCache.txt || cmake --preset release -D KA_BUILD_PYTHON=ON

# Seconds for each fuzzer.
FUZZ_SECONDS ?= 60
.PHONY: programme torture
programme: setup-studio test-sanitize build-release ## further, as CI does: all tests under the sanitizers, fuzzers, random edits, locales, bad disks, valgrind
	scripts/programme.sh build/sanitize build/release $(FUZZ_SECONDS)

# Minutes for each fuzzer.
FUZZ_MINUTES ?= 60
torture: build-sanitize build-release ## the hardening programme at length: FUZZ_MINUTES=60 a fuzzer
	scripts/torture.sh build/sanitize build/release $(FUZZ_MINUTES)

.PHONY: bench
bench: build-release ## measure the hot operations as ratios to a plain reference, into out/bench.json
	mkdir -p $(OUT)
	build/release/bin/ka-bench --benchmark_repetitions=5 \
		--benchmark_min_time=0.1 --benchmark_enable_random_interleaving=true \
		--benchmark_out=$(OUT)/bench.json --benchmark_out_format=json

.PHONY: bench-growth
bench-growth: setup-docs build-release ## draw how long operations take for a thousand to a million items
	mkdir -p $(OUT)
	KA_BENCH_GROWTH=1 build/release/bin/ka-bench --benchmark_filter=^growth/ \
		--benchmark_out=$(OUT)/growth.json --benchmark_out_format=json > $(OUT)/growth.txt || true
	scripts/growth_picture.py $(OUT)/growth.json Docs/images/growth.png

.PHONY: round-trips
round-trips: setup-round-trips build-release ## import, export and import all test models; glTF past its public validator (network)
	scripts/round-trips.sh build/release/bin/ka-round-trip

.PHONY: docs
docs: setup-docs build-release ## API pages into out/docs/, and the pictures of the pages in Docs/
	scripts/docs.sh build/release $(OUT)

.PHONY: format check-format
format: setup-lint ## lay out every source file with clang-format
	$(sources) | xargs clang-format-14 -i

check-format: setup-lint ## fail when a source file is not laid out with clang-format
	$(sources) | xargs clang-format-14 --dry-run --Werror

.PHONY: tidy
tidy: setup-lint ## look for faults in the libraries with clang-tidy; fails on a finding
	test -f build/sanitize/build.ninja || cmake --preset sanitize
	run-clang-tidy-14 -quiet -j $(JOBS) -p build/sanitize '^$(CURDIR)/Common/Libs/.*\.cpp$$'

# The random edits visit the same branches long before their last seed, and nothing is optimised here.
.PHONY: coverage
coverage: export KA_MODEL_SEEDS ?= 40
coverage: setup-coverage test-coverage ## line and branch coverage of the libraries, in out/coverage/; fails below 90 % of the module
	mkdir -p $(OUT)/coverage
	gcovr --root . --object-directory build/coverage --filter 'Common/Libs/' --exclude-throw-branches \
		--exclude-unreachable-branches --html-details $(OUT)/coverage/index.html \
		--txt $(OUT)/coverage/summary.txt --json $(OUT)/coverage/all.json --print-summary
	@echo "the module alone:"
	@gcovr --root . --add-tracefile $(OUT)/coverage/all.json --filter 'Common/Libs/Animation/' \
		--txt $(OUT)/coverage/module.txt --print-summary --fail-under-branch 90

.PHONY: package package-check
package: setup-package ## Debian packages of libraries, headers and tools in out/packages/
	JOBS=$(JOBS) scripts/package.sh $(OUT)/packages build/packages
	ls -l $(OUT)/packages

package-check: package setup-package-check ## install the packages in a bare system and use them there (root)
	scripts/package-check.sh $(OUT)/packages build/package-check

.PHONY: clean
clean: ## remove everything that was built
	rm -rf build out

.PHONY: setup
setup:
	@scripts/setup.sh

setup-%: setup
	@scripts/setup.sh scripts/packages-$*.txt

# build-PRESET and test-PRESET, for the presets of CMakePresets.json
build-%: setup
	@test -f build/$*/build.ninja || cmake --preset $*
	cmake --build --preset $*

test-%: build-%
	ctest --preset $* --no-tests=error --timeout 1200 -j $(JOBS)
