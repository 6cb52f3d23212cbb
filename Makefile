# The front door. Every command installs the Debian packages that it lacks (scripts/setup says which).
.DEFAULT_GOAL := help
SHELL := /bin/bash
SECONDS ?= 60
JOBS := $(shell nproc)

.PHONY: help demo quick test long package show bench fuzz check mutate coverage format clean hosted asan tsan asserts \
	windows tests-built

help:
	@echo 'make demo      builds hosted and plays the sample printers; leaves build/demo/'
	@echo 'make quick     between edits: hosted tests without sweeps, in a minute or two'
	@echo 'make test      every test, on Linux and on Wine; the longest sweeps for 150 s each'
	@echo 'make long      the same with every sweep in full'
	@echo 'make show      opens the sheets of all samples under Wine; pictures of every page in build/show/'
	@echo 'make package   the Windows driver package: build/package/ and its zip'
	@echo 'make bench     speed, as ratios to a floor measured in the same run'
	@echo 'make fuzz      fuzzing, SECONDS=60 each target'
	@echo 'make check     format, tidy, cppcheck, and the gates of the architecture'
	@echo 'make mutate    plants one fault after the other, and switches every rule of the record checks off in'
	@echo '               turn: a test must fail each time'
	@echo 'make coverage  lines that the hosted tests execute'
	@echo 'make clean     removes build/'

hosted:
	@scripts/setup hosted windows
	@scripts/build hosted-release tq xpimake samples

asan:
	@scripts/setup hosted windows
	@scripts/build hosted-asan

windows:
	@scripts/setup hosted windows
	@scripts/build windows

demo: hosted
	@scripts/demo

package: hosted windows
	@scripts/package build/hosted build/windows build/package

# Two more builds for one program each, with the samples of the build under sanitizers, whose tools make the package in
# the tests, too: so nothing is built twice.
tsan: asan
	@scripts/build hosted-tsan threads_test

asserts: asan
	@scripts/build hosted-asserts loads_test

# Between edits: what scripts/run-tests quick runs.
QUICK := canary_test conformance_test library_test record_test preview_test preview_picture_test sheet_test hosted_test \
	xpi_test tools_test package_test tq xpimake samples
quick:
	@scripts/setup hosted windows
	@scripts/build hosted-asan $(QUICK)
	@scripts/run-tests quick

tests-built: asan windows tsan asserts
	@scripts/package build/hosted-asan build/windows build/package
	@scripts/setup wine

test: tests-built
	@scripts/run-tests

long: tests-built
	@scripts/run-tests long

bench:
	@scripts/setup hosted windows bench
	@scripts/build hosted-release
	@failed=0; for program in build/hosted/bench/*ratios; do $$program || failed=1; done; exit $$failed

fuzz:
	@scripts/setup hosted windows fuzz
	@scripts/build fuzz
	@scripts/fuzz $(SECONDS)

check: asan windows
	@scripts/setup check bench
	@scripts/check

mutate:
	@scripts/setup hosted windows mutants
	@failed=0; scripts/mutate || failed=1; scripts/mutants || failed=1; exit $$failed

coverage:
	@scripts/setup hosted windows bench
	@scripts/build coverage
	@scripts/coverage

format:
	@scripts/setup check
	@scripts/check --format

show: package
	@scripts/setup wine show
	@scripts/build windows show_sheets
	@scripts/show-sheets

clean:
	rm -rf build
