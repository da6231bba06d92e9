# The two commands of the README: `make test` and `make demo`. Both install
# what is missing, configure, build and run.
BUILD ?= build
CMAKE_FLAGS ?= -DCMAKE_BUILD_TYPE=RelWithDebInfo
JOBS ?= $(shell nproc)

.PHONY: all deps configure build test demo bench clean

all: build

deps:
	scripts/deps.sh

configure: deps
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# For now the engine has no end-to-end run to show; the demo prints its
# version and the shipped default settings.
demo: build
	$(BUILD)/bin/brindlework --version
	$(BUILD)/bin/brindlework settings list General --machine

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD)
