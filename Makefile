# Front door: `make run` plays the demo, `make test` runs every test.
JOBS     ?= $(shell nproc)
BUILD    ?= build
ASAN     ?= build-asan
XVFB     := xvfb-run -a -s "-screen 0 1280x1024x24"
# Mesa and SDL keep a few allocations until exit; leaks are checked separately.
SAN_ENV  := ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

.PHONY: all setup build run test test-plain test-asan clean

all: build

setup:
	@bash scripts/setup.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: setup $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

run: build
	cd $(BUILD) && ./velmora

test: setup test-plain test-asan

test-plain: build
	cd $(BUILD) && $(XVFB) ctest --output-on-failure -j $(JOBS)

test-asan: setup
	cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON
	cmake --build $(ASAN) -j $(JOBS)
	cd $(ASAN) && $(SAN_ENV) $(XVFB) ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD) $(ASAN)
