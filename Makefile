# Front door: `make run` plays the demo, `make test` runs every test.
JOBS     ?= $(shell nproc)
BUILD    ?= build
ASAN     ?= build-asan
FUZZ     ?= build-fuzz
XVFB     := xvfb-run -a -s "-screen 0 1280x1024x24"
# Mesa and SDL keep a few allocations until exit; leaks are checked separately.
SAN_ENV  := ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

.PHONY: all setup build run test test-plain asan-build test-asan schedule-asan bench soak clean fuzz fuzz-build fuzz-smoke
.PHONY: video sheet readme-sheet install

all: build

setup:
	@bash scripts/setup.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: setup $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

run: build
	cd $(BUILD) && ./velmora

# The whole schedule with its soundtrack, drawn offline (no display or GPU needed) into an H.264/AAC MP4 that
# browsers and phones play. Ctrl-C leaves nothing under the file's name.
VIDEO      ?= velmora.mp4
VIDEO_SIZE ?= 1280x720
VIDEO_FPS  ?= 60
video: build
	cd $(BUILD) && ./velmora-capture --video $(abspath $(VIDEO)) --size $(VIDEO_SIZE) --fps $(VIDEO_FPS)

# A labelled still of every schedule entry in one picture; readme-sheet remakes the README's small copy of it, in
# 256 colours so the repository stays small.
sheet: build
	cd $(BUILD) && ./velmora-capture --sheet $(abspath sheet.png) --size 320x240
readme-sheet: sheet
	ffmpeg -v error -y -i sheet.png -vf "scale=iw/2:-1:flags=area,split[a][b];[a]palettegen=stats_mode=full[p];[b][p]paletteuse=dither=none" docs/sheet.png

# The programs, the launcher velmora-demo, the data and the default settings under PREFIX (as root for /usr/local).
PREFIX ?= /usr/local
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

test: setup test-plain test-asan schedule-asan fuzz-smoke

test-plain: build
	cd $(BUILD) && $(XVFB) ctest --output-on-failure -j $(JOBS)

asan-build: setup
	cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON
	cmake --build $(ASAN) -j $(JOBS)

test-asan: asan-build
	cd $(ASAN) && $(SAN_ENV) $(XVFB) ctest --output-on-failure -j $(JOBS)

# The whole schedule through velmora-capture under ASan, UBSan and LSan, on the forged data tree and on a
# damaged copy of it; leaks are checked here, against tests/schedule/lsan.supp.
schedule-asan: asan-build
	$(XVFB) bash tests/schedule/run-schedule.sh $(ASAN)

# Frame times per scene at two sizes under Xvfb, each entry judged against the budget of its size; the figures
# name the renderer they ran on. bench.csv holds every timed frame and bench.png draws them along the schedule.
BENCH_FPS ?= 10
BENCH_SIZES ?= 640x480 1280x720
bench: build
	cd $(BUILD) && ./velmora-capture --list | awk '$$1 !~ /^[0-9]+$$/ {next} $$5 == "Fader" {print $$2 "," $$3 "," $$5; next} \
	  {joined = ($$2 in names) ? names[$$2] "+" $$5 : $$5; names[$$2] = joined; ends[$$2] = $$3} \
	  END {for (start in names) print start "," ends[start] "," names[start]}' > bench-schedule.csv
	cd $(BUILD) && for size in $(BENCH_SIZES); do \
	  $(XVFB) ./velmora-capture --bench --fps $(BENCH_FPS) --size $$size --csv bench-$$size.csv || exit 1; echo; done
	cd $(BUILD) && awk 'FNR > 1 || NR == 1' $(foreach size,$(BENCH_SIZES),bench-$(size).csv) > $(abspath bench.csv)
	gnuplot -e "frames='bench.csv'; schedule='$(BUILD)/bench-schedule.csv'; out='bench.png'" scripts/bench-plot.gp
	@echo "bench: wrote bench.csv and bench.png"

# Half an hour of scene time, the schedule and then the black tail, at the demo's own size, with resident
# memory printed along the way and a growth figure from the start of the last scene on (about five minutes).
SOAK_FPS ?= 25
SOAK_SIZE ?= 640x480
SOAK_SECONDS ?= 1800
soak: build
	cd $(BUILD) && $(XVFB) ./velmora-capture --memory 120 --size $(SOAK_SIZE) --fps $(SOAK_FPS) --to $(SOAK_SECONDS)

# libFuzzer targets, one per file reader, in a clang build of their own:
# `make fuzz FUZZ_SECONDS=600` runs each that long; the test run gives each a few seconds.
FUZZ_SECONDS ?= 60
FUZZ_SMOKE_SECONDS ?= 4

$(FUZZ)/CMakeCache.txt:
	cmake -S . -B $(FUZZ) -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DVELMORA_FUZZ=ON -DVELMORA_TESTS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo

fuzz-build: setup $(FUZZ)/CMakeCache.txt
	cmake --build $(FUZZ) -j $(JOBS) --target fuzz_all

fuzz: fuzz-build
	bash tests/fuzz/run-fuzz.sh $(FUZZ) $(FUZZ_SECONDS)

fuzz-smoke: fuzz-build
	bash tests/fuzz/run-fuzz.sh $(FUZZ) $(FUZZ_SMOKE_SECONDS)

clean:
	rm -rf $(BUILD) $(ASAN) $(FUZZ)
