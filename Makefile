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

# The demo creates the demo project from the demo database once (later runs
# keep it and what was changed in it), customizes it with
# examples/demo/customize.js, and generates its site with the Starter
# template into demo-site/. It uses the settings of a scratch folder, so it
# changes nothing of the user's.
DEMO_HOME = $(BUILD)/demo-home
DEMO_ENV = BRINDLEWORK_USER_HIVE=$(DEMO_HOME)/user.reg BRINDLEWORK_DOCUMENTS=$(DEMO_HOME)/Documents
DEMO = $(DEMO_ENV) $(BUILD)/bin/brindlework
DEMO_PROJECT = $(DEMO_HOME)/demo.agx
DEMO_SITE = $(CURDIR)/demo-site
DEMO_PORT ?= 8080
demo: build
	$(BUILD)/bin/brindlework --version
	mkdir -p $(DEMO_HOME)
	test -f $(DEMO_PROJECT) || { $(DEMO) new $(DEMO_PROJECT) --name Demo --db-type SQLITE \
	  --db $(BUILD)/examples/demo/demo.db --dest $(DEMO_SITE) 2>/dev/null && \
	  $(DEMO) settings set General BackupFile False && \
	  $(DEMO) script examples/demo/customize.js --project $(DEMO_PROJECT) --save 2>/dev/null; }
	$(DEMO) info $(DEMO_PROJECT) 2>/dev/null
	$(DEMO) generate $(DEMO_PROJECT) --dest $(DEMO_SITE) --yes --overwrite 2>/dev/null
	@echo
	@echo "The demo site is in demo-site/. To look at it, serve it with Mono's ASP.NET runtime:"
	@echo "  mono $(BUILD)/tests/e2e/page_host.exe serve demo-site $(DEMO_PORT)"
	@echo "and open http://127.0.0.1:$(DEMO_PORT)/default.cshtml"

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD)
