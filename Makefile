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

# The demo prints the version, runs a template through the script host,
# creates the demo project from the demo database (once; later runs keep it
# and what was changed in it), shows it, and saves it twice to show that a
# save is stable. It uses the settings of a scratch folder, so it changes
# nothing of the user's.
DEMO_HOME = $(BUILD)/demo-home
DEMO_ENV = BRINDLEWORK_USER_HIVE=$(DEMO_HOME)/user.reg BRINDLEWORK_DOCUMENTS=$(DEMO_HOME)/Documents
DEMO = $(DEMO_ENV) $(BUILD)/bin/brindlework
DEMO_PROJECT = $(DEMO_HOME)/demo.agx
demo: build
	$(BUILD)/bin/brindlework --version
	mkdir -p $(DEMO_HOME)
	$(DEMO) parse 'a<!--##=1+1##-->b'
	test -f $(DEMO_PROJECT) || $(DEMO) new $(DEMO_PROJECT) --name Demo --db-type SQLITE \
	  --db $(BUILD)/examples/demo/demo.db 2>/dev/null
	$(DEMO) info $(DEMO_PROJECT) --fields 2>/dev/null
	$(DEMO) parse --project $(DEMO_PROJECT) \
	  '<ul><!--## for (var k = 1; k <= PROJ.DB.Tables.Count(); k++) { var t = PROJ.DB.Tables.Seq(k); ##--><li><!--##=t.TblCaption##--> (<!--##=t.Fields.Count()##--> fields)</li><!--## } ##--></ul>' 2>/dev/null
	$(DEMO) save $(DEMO_PROJECT) -o $(DEMO_HOME)/saved.agx 2>/dev/null
	$(DEMO) save $(DEMO_HOME)/saved.agx -o $(DEMO_HOME)/again.agx 2>/dev/null
	cmp $(DEMO_HOME)/saved.agx $(DEMO_HOME)/again.agx && echo "saved twice: the same bytes"

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b || exit 1; done

clean:
	rm -rf $(BUILD)
