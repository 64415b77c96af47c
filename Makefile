# The README's commands. Each installs what it needs first (tools/install-deps is idempotent).
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: deps build demo test bench asan tsan format clean

deps:
	@bash tools/install-deps

build: deps
	cmake --preset default
	cmake --build --preset default -j $(JOBS)

demo: build
	./build/default/tools/ztutil/ztutil demo

test: build
	ctest --preset default

bench: deps
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	python3 bench/report.py build/release/bench bench/RESULTS.md

asan: deps
	cmake --preset asan
	cmake --build --preset asan -j $(JOBS)
	ctest --preset asan

tsan: deps
	cmake --preset tsan
	cmake --build --preset tsan -j $(JOBS)
	ctest --preset tsan

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
