# Set-up, build and test in two commands: `make run` and `make test`.
# Every target first installs whatever Debian package is missing (scripts/install-deps.sh).

GENERATOR  := -G Ninja
BUILD      := build
ASAN_BUILD := build-asan
TSAN_BUILD := build-tsan
BENCH_BUILD := build-bench
CTEST      := ctest --output-on-failure --no-tests=error
JOBS       ?= $(shell nproc)

.PHONY: all deps build run docs-picture test test-main test-asan test-tsan format-check format bench clean

all: build

deps:
	@./scripts/install-deps.sh

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/build.ninja
	cmake --build $(BUILD) -j $(JOBS)

# The viewer: the demo scene in the headset (the simulated one unless the environment names an
# OpenVR runtime); pictures, profile and summary under build/run/.
run: build
	./$(BUILD)/apps/norvane_viewer

# The README's picture: the viewer's mirror, shrunk.
docs-picture: build
	./$(BUILD)/apps/norvane_viewer --frames 90 --unpaced --out $(BUILD)/docs-picture
	./$(BUILD)/apps/norvane_shrink_png $(BUILD)/docs-picture/mirror.png docs/viewer_mirror.png 640

# Every test, then the same tests under AddressSanitizer and UndefinedBehaviorSanitizer (clang,
# which also runs each fuzz target for a bounded time), then the foundation under
# ThreadSanitizer, then the formatting check.
test: test-main test-asan test-tsan format-check

test-main: build
	cd $(BUILD) && $(CTEST) -j $(JOBS)

test-asan: deps
	cmake -S . -B $(ASAN_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=Debug \
	  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DNORVANE_SANITIZE=ON -DNORVANE_FUZZ=ON -DNORVANE_BENCH=OFF
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 $(CTEST) -j $(JOBS)

test-tsan: deps
	cmake -S . -B $(TSAN_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DNORVANE_TSAN=ON -DNORVANE_BENCH=OFF
	cmake --build $(TSAN_BUILD) -j $(JOBS) --target foundation_tests
	cd $(TSAN_BUILD) && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 $(CTEST) -L foundation

FORMAT_SOURCES = $(shell git ls-files '*.cpp' '*.h')

format-check: deps
	@clang-format --dry-run --Werror $(FORMAT_SOURCES) && echo "clang-format: all sources formatted"

format:
	clang-format -i $(FORMAT_SOURCES)

bench: deps
	cmake -S . -B $(BENCH_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BENCH_BUILD) -j $(JOBS) --target benchmarks
	@for b in $(BENCH_BUILD)/bench/*_bench; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(BENCH_BUILD)
