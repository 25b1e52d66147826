# Entry points; CMake does the building. Every target installs what is missing first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= $(shell nproc)

.PHONY: deps build test test-asan test-size bench demo golden soak package clean

deps:
	@scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD) -j $(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure

test-asan: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DWEXEL_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j $(JOBS) --target unit_tests
	cd $(ASAN_BUILD) && ctest --output-on-failure -L unit

# Test lines against code lines per subsystem and in total; how test files are attributed is
# written at the top of the script.
test-size:
	@scripts/test-size.sh

# llvmpipe reads its thread count once a process: its two-thread run of the scene's triangles is a
# process of its own.
bench: build
	$(BUILD)/bench/wexel_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
	LP_NUM_THREADS=2 $(BUILD)/bench/wexel_bench --benchmark_filter='llvmpipe/scene' --benchmark_repetitions=5 \
	  --benchmark_report_aggregates_only=true

demo: build
	mkdir -p out
	java -Djava.library.path=$(BUILD) -cp $(BUILD)/host/wexelhost.jar:$(BUILD)/demo/wexeldemo.jar Demo out/demo.png

# Records the scene's golden frames for this processor, after a change that alters pixels on purpose.
golden: build
	WEXEL_GOLDEN=write $(BUILD)/tests/jvm/jvm_tests --gtest_filter='golden.*'

# Ten thousand frames of the scene under churn; a label of its own, outside `make test`.
soak: build
	cd $(BUILD) && ctest -C soak -L soak --output-on-failure

# A Debian package of the library and the host jar, written to $(BUILD).
package: build
	cd $(BUILD) && cpack

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) out
