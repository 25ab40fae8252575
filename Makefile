# The two commands a newcomer needs: `make demo` and `make test`. Each installs what it needs.
BUILD   ?= build
CMAKE_FLAGS ?=

.PHONY: all demo test bench fuzz configure build clean

all: build

configure:
	@scripts/install-deps.sh build
	@[ -f $(BUILD)/build.ninja ] || cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release $(CMAKE_FLAGS)

build: configure
	@cmake --build $(BUILD)

demo: build
	@scripts/demo.sh $(BUILD)

test: build
	@scripts/install-deps.sh test
	@cd $(BUILD) && ctest --output-on-failure -j2

bench: build
	@scripts/install-deps.sh bench
	@scripts/bench.sh $(BUILD)
	@scripts/bench-subsystems.sh $(BUILD)
	@scripts/bench-commands.sh $(BUILD)
	@scripts/bench-check.sh $(BUILD)

fuzz:
	@scripts/install-deps.sh build fuzz
	@[ -f build-fuzz/build.ninja ] || CXX=clang++ cmake -S . -B build-fuzz -G Ninja \
	  -DCMAKE_BUILD_TYPE=Release -DVELTARN_FUZZ=ON -DVELTARN_TESTS=OFF -DVELTARN_BENCH=OFF
	@cmake --build build-fuzz

clean:
	rm -rf $(BUILD) build-fuzz
