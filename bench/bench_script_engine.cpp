// Cost of the two things composed template functions do most: appending
// text to a StringBuilder and reading attributes of bound automation
// objects, through a bag (`BAG.Item("x").Value`) and as plain properties
// (`PROJ.BodyTitle`). Prints nanoseconds per append and per read, the best
// of several runs, loop overhead included.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/agp_vars.h"
#include "core/properties.h"
#include "isolated_state.h"
#include "project/agp.h"
#include "template/script_engine.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kScript = R"js(
function StringBuilder() { this.parts = []; }
StringBuilder.prototype.Append = function (value) { this.parts.push(String(value)); return this; };
StringBuilder.prototype.ToString = function () { return this.parts.join(""); };

function appendText(count) {
  var sb = new StringBuilder();
  for (var k = 0; k < count; k++) sb.Append("<td>").Append(k).Append("</td>");
  return sb.ToString().length;
}

var names = ["Caption", "Width", "Visible", "Format"];
function readBag(count) {
  var seen = 0;
  for (var k = 0; k < count; k++) if (BAG.Item(names[k & 3]).Value !== undefined) seen++;
  return seen;
}

function readProject(count) {
  var seen = 0;
  for (var k = 0; k < count; k++) {
    var v = (k & 1) ? PROJ.BodyTitle : PROJ.RecPerPage;
    if (v !== undefined) seen++;
  }
  return seen;
}
)js";

bw::Ref<bw::AGProperties> makeBag() {
  auto bag = bw::make<bw::AGProperties>(bw::PropertyLayout::create({
      bw::AttributeDef{"Caption"},
      bw::AttributeDef{"Width", "Long"},
      bw::AttributeDef{"Visible", "Boolean"},
      bw::AttributeDef{"Format"},
  }));
  bag->setValue("Caption", bw::Variant("Order date"));
  bag->setValue("Width", bw::Variant(120));
  bag->setValue("Visible", bw::Variant(true));
  bag->setValue("Format", bw::Variant("yyyy-MM-dd"));
  return bag;
}

// Nanoseconds per operation of `procedure`(operations), best of `rounds`.
double nanosecondsPerOperation(bw::ScriptEngine& engine, const char* procedure, int operations,
                               int rounds = 10) {
  double best = 0;
  for (int round = 0; round < rounds; ++round) {
    bw::Variant result;
    const bw::Variant args[] = {bw::Variant(operations)};
    const auto start = Clock::now();
    if (!engine.run(procedure, args, result)) {
      std::fprintf(stderr, "%s failed: %s\n", procedure, engine.error().description.c_str());
      std::exit(1);
    }
    const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
    const double perOperation = elapsed.count() / operations;
    if (round == 0 || perOperation < best) best = perOperation;
  }
  return best;
}

}  // namespace

int main() {
  bench::isolateEngineState("bench-script-engine");
  auto proj = bw::make<bw::AGP>();
  proj->setAttr("BodyTitle", "Shop");
  proj->setAttr("RecPerPage", bw::Variant(std::int16_t{20}));

  auto engine = bw::CreateScriptEngine();
  engine->addObject("PROJ", proj);
  engine->addObject("BAG", makeBag());
  if (!engine->addCode(kScript)) {
    std::fprintf(stderr, "script: %s\n", engine->error().description.c_str());
    return 1;
  }

  // Each iteration of appendText makes three appends.
  const double append = nanosecondsPerOperation(*engine, "appendText", 10'000 / 3) / 3;
  const double bagRead = nanosecondsPerOperation(*engine, "readBag", 5'000);
  const double propertyRead = nanosecondsPerOperation(*engine, "readProject", 5'000);

  std::printf("StringBuilder append (10,000):              %8.1f ns\n", append);
  std::printf("BAG.Item(name).Value read (5,000):          %8.1f ns\n", bagRead);
  std::printf("PROJ.<property> read (5,000):               %8.1f ns\n", propertyRead);
  return 0;
}
