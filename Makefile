# Thin wrapper: CMake builds, this file installs what is missing and names the
# everyday commands. PRESET picks the CMake preset (default, debug, asan).
PRESET ?= default
BUILD_DIR := build/$(PRESET)
DEMO_DIR := build/demo
TOOL := $(BUILD_DIR)/src/cli/romsteward-tool
DESKTOP := $(BUILD_DIR)/src/ui/romsteward
# The desktop program's settings for `make run`, so a developer's own stay untouched.
RUN_SETTINGS := build/run-settings.sqlite3

# Debian packages the project builds and tests with.
DEB_PACKAGES := cmake ninja-build g++ pkg-config clang-format \
  libcli11-dev libfmt-dev nlohmann-json3-dev libsqlite3-dev libarchive-dev \
  libgtest-dev libgmock-dev libbenchmark-dev
DEB_PACKAGES += libpugixml-dev zlib1g-dev libssl-dev
# The emulators and the virtual display the launch smoke tests run.
DEB_PACKAGES += blastem mednafen xvfb xauth
# xwininfo (an emulator's dialog window in those tests) and xmessage (a dialog standing in).
DEB_PACKAGES += x11-utils
# The desktop program and its Qt tests.
DEB_PACKAGES += qt6-base-dev
# File-type registration and its test: xdg-mime (mimetype answers its queries), update-mime-database.
DEB_PACKAGES += xdg-utils libfile-mimeinfo-perl shared-mime-info
# What tools/screenshot.sh needs besides the build.
SCREENSHOT_PACKAGES := xvfb xauth imagemagick xdotool

# Warnings are errors wherever CI runs.
CMAKE_FLAGS := $(if $(CI),-DROMSTEWARD_WERROR=ON,)
# ccache, when a developer has it, makes rebuilds and extra work trees cheap.
CCACHE := $(shell command -v ccache 2>/dev/null)
CMAKE_FLAGS += $(if $(CCACHE),-DCMAKE_CXX_COMPILER_LAUNCHER=$(CCACHE),)
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: deps configure build test run bench format format-check clean
.PHONY: screenshot

deps:
	@missing=""; \
	for p in $(DEB_PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  $$sudo apt-get update && \
	  DEBIAN_FRONTEND=noninteractive $$sudo apt-get install -y --no-install-recommends $$missing; \
	fi

configure:
	cmake --preset $(PRESET) $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: deps build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j $(JOBS)

run: deps build
	@[ -d $(DEMO_DIR) ] || $(TOOL) demo $(DEMO_DIR)
	$(TOOL) info $(DEMO_DIR)/*
	@$(TOOL) --settings $(RUN_SETTINGS) settings set Settings dir0 "$(CURDIR)/$(DEMO_DIR)" > /dev/null
	$(DESKTOP) --settings $(RUN_SETTINGS)

screenshot: deps build
	$(MAKE) deps DEB_PACKAGES="$(SCREENSHOT_PACKAGES)"
	tools/screenshot.sh $(BUILD_DIR)

bench: deps build
	@for b in $(BUILD_DIR)/bench/*_bench; do [ -x "$$b" ] && "$$b"; done

FORMAT_FILES = find src tests bench fuzz tools -name '*.cpp' -o -name '*.h'

format:
	$(FORMAT_FILES) | xargs clang-format -i

# Fails on any file clang-format would change; CI runs it.
format-check:
	$(FORMAT_FILES) | xargs clang-format --dry-run -Werror

clean:
	rm -rf build

# Fuzzing: the fuzz preset's compiler and libFuzzer, installed by `make fuzz` when missing.
# Each target runs FUZZ_SECONDS from a seed corpus the project's builders write; a crash,
# hang or leak stops the run and leaves its input in build/fuzz/findings.
FUZZ_PACKAGES := clang-14 libclang-rt-14-dev
FUZZ_SECONDS ?= 180
FUZZ_DIR := build/fuzz

.PHONY: fuzz
fuzz:
	@$(MAKE) --no-print-directory deps DEB_PACKAGES="$(DEB_PACKAGES) $(FUZZ_PACKAGES)"
	cmake --preset fuzz $(CMAKE_FLAGS)
	cmake --build $(FUZZ_DIR) --target romsteward-fuzzers -j $(JOBS)
	$(FUZZ_DIR)/fuzz/romsteward-fuzz-seeds $(FUZZ_DIR)/corpus
	@mkdir -p $(FUZZ_DIR)/findings
	@for t in $(FUZZ_DIR)/fuzz/*_fuzz; do \
	  n=$$(basename $$t); echo "== $$n: $(FUZZ_SECONDS) s"; \
	  $$t -max_total_time=$(FUZZ_SECONDS) -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
	    -print_final_stats=1 -artifact_prefix=$(FUZZ_DIR)/findings/$$n- \
	    $(FUZZ_DIR)/corpus/$$n || exit 1; \
	done
