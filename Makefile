# The README's commands. Each installs what it needs first (tools/install-deps is idempotent).
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: deps build demo test bench asan tsan fuzz fuzz-replay windows format clean

FUZZ_SECONDS ?= 60

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

# Cross-builds for 64-bit Windows with mingw-w64 and runs the whole suite under Wine.
windows:
	@bash tools/install-deps --windows
	cmake --preset windows
	cmake --build --preset windows -j $(JOBS)
	@# Creates the Wine prefix once, before CTest starts programs in parallel.
	./build/windows/wine-run build/windows/bin/ztutil.exe --version
	ctest --preset windows

# Each harness runs for FUZZ_SECONDS, starting from its checked-in seeds (fuzz/corpus/<name>) with
# its dictionary (fuzz/<name>.dict); new inputs go to build/fuzz/corpus/<name>.
FUZZ_MAX_LEN ?= 65536

fuzz: deps
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	@for h in build/fuzz/fuzz/fuzz_*; do \
	    n=$$(basename $$h | sed 's/^fuzz_//'); \
	    mkdir -p build/fuzz/corpus/$$n; \
	    echo "== $$h"; \
	    $$h -max_total_time=$(FUZZ_SECONDS) -rss_limit_mb=2048 -max_len=$(FUZZ_MAX_LEN) \
	        $$(test -f fuzz/$$n.dict && echo -dict=fuzz/$$n.dict) \
	        build/fuzz/corpus/$$n $$(test -d fuzz/corpus/$$n && echo fuzz/corpus/$$n) || exit 1; \
	done

# Replays every harness once over its checked-in corpus (seeds and reproducers of fixed bugs).
fuzz-replay: deps
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	@for h in build/fuzz/fuzz/fuzz_*; do \
	    n=$$(basename $$h | sed 's/^fuzz_//'); \
	    c=fuzz/corpus/$$n; test -d $$c || { c=build/fuzz/empty; mkdir -p $$c; }; \
	    echo "== $$h ($$c)"; \
	    $$h -runs=0 -rss_limit_mb=2048 -max_len=1048576 $$c \
	        >build/fuzz/replay_$$n.log 2>&1 || { tail -n 40 build/fuzz/replay_$$n.log; exit 1; }; \
	    tail -n 1 build/fuzz/replay_$$n.log; \
	done

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
