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

# The demo prints the version and runs a small template through the script
# host, with the settings of a scratch folder so that it changes nothing of
# the user's.
DEMO_HOME = $(BUILD)/demo-home
DEMO_ENV = BRINDLEWORK_USER_HIVE=$(DEMO_HOME)/user.reg BRINDLEWORK_DOCUMENTS=$(DEMO_HOME)/Documents
demo: build
	$(BUILD)/bin/brindlework --version
	mkdir -p $(DEMO_HOME)
	$(DEMO_ENV) $(BUILD)/bin/brindlework parse 'a<!--##=1+1##-->b'
	$(DEMO_ENV) $(BUILD)/bin/brindlework parse \
	  '<ul><!--## for (var k = 1; k <= 3; k++) { ##--><li><!--##=PROJ.ProgramLanguage##--> page <!--##=k##--></li><!--## } ##--></ul>'

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD)
