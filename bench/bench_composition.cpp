// Composition and composed functions, the two halves of generating a page:
// composing a 1 MB template into its function, and running composed
// functions through the script host with the shipped system code, one that
// appends 10,000 literal texts and one that reads 5,000 attributes of the
// current table and field (TABLE, FIELD, as the system code makes them
// current). Prints MB/s and ns per append and per read, the best of several
// runs, loop overhead included. Figures only; nothing is asserted.
#include <chrono>
#include <cstdio>
#include <string>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "isolated_state.h"
#include "project/agp.h"
#include "synthetic_template.h"
#include "template/composition.h"
#include "template/script_host.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kRounds = 8;

double bestSeconds(auto&& work) {
  double best = 0;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = Clock::now();
    work();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (round == 0 || seconds < best) best = seconds;
  }
  return best;
}

std::string composedFunction(bw::Composer& composer, const std::string& id,
                             const std::string& templateText) {
  composer.reset();
  composer.composeBlocks(templateText);
  return composer.functionText(id, bw::FunctionForm::Control, false);
}

// Nanoseconds per operation of a composed function that does `operations`
// and outputs `expected`, which shows that the work was really done.
double nanosecondsPerOperation(bw::AGScript& script, bw::Composer& composer, const std::string& id,
                               const std::string& templateText, int operations,
                               const std::string& expected) {
  const std::string code = composedFunction(composer, id, templateText);
  std::string output;
  const double seconds = bestSeconds([&] { output = script.BuildNewCode(id, code, 2, 0); });
  if (!bw::AGPVars().ProjErr.empty() || output != expected) {
    std::fprintf(stderr, "%s failed: %s%s\n", id.c_str(), bw::AGPVars().ProjErr.c_str(),
                 output.substr(0, 80).c_str());
    std::exit(1);
  }
  return seconds * 1e9 / operations;
}

}  // namespace

int main() {
  bench::isolateEngineState("bench-composition");
  auto project = bw::make<bw::AGP>();
  bw::Ref<bw::AGPDatabase> db = project->addDatabase("shop.db");
  db->Tables()->Add("orders");
  bw::AGPTable& orders = *db->Tables()->table("orders");
  orders.setAttr("TblCaption", "Orders");
  for (const char* name : {"id", "customer", "total", "placed"}) {
    orders.Fields()->Add("orders", name);
    orders.Fields()->field(name)->setAttr("FldCaption", name);
    orders.Fields()->field(name)->setAttr("FldSize", bw::Variant(40));
  }
  db->Tables()->SetItem(bw::Variant("orders"));
  orders.Fields()->SetItem(bw::Variant("total"));
  bw::Composer composer("JScript");

  const std::string page = bench::makeTemplate(1024 * 1024);
  std::size_t functionBytes = 0;
  const double composeSeconds =
      bestSeconds([&] { functionBytes = composedFunction(composer, "ztEx_cs_page", page).size(); });
  std::printf("compose 1 MB template:       %8.1f MB/s  (%.1f ms, %d text items, %.2f MB of script)\n",
              page.size() / composeSeconds / 1e6, composeSeconds * 1e3, composer.textCount(),
              functionBytes / 1e6);

  auto script = bw::make<bw::AGScript>();
  bw::AGPVars().Script = script;
  script->Initialize(project, db, project->ControlList(), {}, {}, {}, bw::Variant("C#"), {}, {});
  if (!bw::AGPVars().ProjErr.empty()) {
    std::fprintf(stderr, "script host: %s\n", bw::AGPVars().ProjErr.c_str());
    return 1;
  }
  const double append = nanosecondsPerOperation(
      *script, composer, "ztEx_cs_appends",
      "<!--## for (var k = 0; k < 10000; k++) { ##-->x<!--## } ##-->", 10'000,
      std::string(10'000, 'x'));
  const double read = nanosecondsPerOperation(
      *script, composer, "ztEx_cs_reads",
      "<!--## var seen = 0;\r\n"
      "for (var k = 0; k < 2500; k++) {\r\n"
      "  if (TABLE.TblCaption != \"\") seen++;\r\n"
      "  if (FIELD.FldSize > 0) seen++;\r\n"
      "} ##--><!--##=seen##-->",
      5'000, "5000");
  std::printf("composed function, append:   %8.1f ns  (10,000 appends)\n", append);
  std::printf("composed function, read:     %8.1f ns  (5,000 table and field attribute reads)\n",
              read);
  return 0;
}
