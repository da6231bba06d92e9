// Generating a large project with the basic test template: 200 objects of
// 20 columns (every tenth a view) in a synthetic SQLite database, a project
// over it, and two runs of GenCheck and GenScript into a scratch site:
//
//   first run   every control composed, every page written
//   second run  nothing changed, so nothing is composed and every page is
//               written again from the composed functions
//
// For each run it prints the time of the check, of the run and of both, the
// pages written and the time per page, and how the time of GenScript splits
// into running scripts, composing controls, writing output and the rest
// (the walk, folders, copies, the config file, the database copy). Figures
// only; a run that reports an error or composes unexpectedly ends with a
// non-zero exit.
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "isolated_state.h"
#include "project/agp.h"
#include "support/zip_folder.h"
#include "synthetic_sqlite.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
constexpr int kTables = 200;
constexpr int kColumnsPerTable = 20;
constexpr const char* kStateName = "bench-generation";

double msSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct RunFigures {
  double checkMs = 0;
  double scriptRunMs = 0;  // GenScript alone
  bw::AGPVarsData::RunStats stats;
};

// True, after printing it, when the engine left an error.
bool reportError(const char* step) {
  const std::string& error = bw::AGPVars().ProjErr;
  if (error.empty()) return false;
  std::fprintf(stderr, "%s: ProjErr: %s\n", step, error.c_str());
  return true;
}

// One check and run, as a host does them; false after an error.
bool generate(bw::AGP& project, RunFigures& figures) {
  auto start = Clock::now();
  project.GenCheck();
  figures.checkMs = msSince(start);
  if (reportError("GenCheck")) return false;
  start = Clock::now();
  project.GenScript();
  figures.scriptRunMs = msSince(start);
  if (reportError("GenScript")) return false;
  figures.stats = bw::AGPVars().GenerationStats;
  return true;
}

double share(double partMs, double wholeMs) { return wholeMs > 0 ? 100.0 * partMs / wholeMs : 0; }

void printRun(const char* title, const RunFigures& run) {
  const auto& stats = run.stats;
  const double total = run.checkMs + run.scriptRunMs;
  // The engine sums whole milliseconds per page and per control; over
  // thousands of pages the truncation evens out, so the shares hold while a
  // single page's figure would not.
  const double other = run.scriptRunMs - static_cast<double>(stats.scriptMs + stats.composeMs + stats.outputMs);
  std::printf("%s\n", title);
  std::printf("  GenCheck             %9.1f ms\n", run.checkMs);
  std::printf("  GenScript            %9.1f ms\n", run.scriptRunMs);
  std::printf("  total (check + run)  %9.1f ms  %6d pages  %7.3f ms/page  %4d controls composed\n",
              total, stats.pages, stats.pages > 0 ? total / stats.pages : 0.0, stats.composed);
  std::printf("  GenScript shares     scripts %5.1f %%  composition %5.1f %%  output %5.1f %%  "
              "other %5.1f %%\n",
              share(static_cast<double>(stats.scriptMs), run.scriptRunMs),
              share(static_cast<double>(stats.composeMs), run.scriptRunMs),
              share(static_cast<double>(stats.outputMs), run.scriptRunMs), share(other, run.scriptRunMs));
  std::printf("                       (scripts %lld ms, composition %lld ms, output %lld ms, other %.0f ms)\n",
              static_cast<long long>(stats.scriptMs), static_cast<long long>(stats.composeMs),
              static_cast<long long>(stats.outputMs), other);
}

// The basic template as a package: its folder without the notes, zipped.
void makeTemplatePackage(const fs::path& scratch, const std::string& zipPath) {
  const fs::path package = scratch / "package";
  fs::copy(fs::path(BRINDLEWORK_SOURCE_DIR) / "tests" / "templates" / "basic", package,
           fs::copy_options::recursive);
  fs::remove(package / "README.md");
  fs::remove(package / ".gitattributes");
  bw::testing::ZipFolder(package, zipPath);
}

}  // namespace

int main() {
  // A fresh settings store and documents folder: the unpacked template and
  // its composed functions live there, and the first run must compose all.
  const fs::path scratch = fs::temp_directory_path() / (std::string("bw-") + kStateName);
  fs::remove_all(scratch);
  bench::isolateEngineState(kStateName);

  const std::string dbPath = (scratch / "bench.db").string();
  const std::string zipPath = (scratch / "basic.zip").string();
  const std::string site = (scratch / "site").string();
  const auto setupStart = Clock::now();
  try {
    bench::CreateSyntheticSqliteDatabase(dbPath, kTables, kColumnsPerTable);
    makeTemplatePackage(scratch, zipPath);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }

  bw::Ref<bw::AGP> project = bw::make<bw::AGP>();
  project->AddProj("Bench");
  project->LoadDB(bw::Variant("bench"), bw::Variant("SQLITE"), bw::Variant(""), bw::Variant(""),
                  bw::Variant(false), bw::Variant(""), bw::Variant(""),
                  bw::Variant("Data Source=" + dbPath + ";"), bw::Variant(""));
  if (reportError("LoadDB")) return 1;
  // With a physical path the run copies the database into the site, as it
  // does for a project made over a SQLite file.
  project->DB()->setAttr("DBPhyPath", bw::Variant(dbPath));
  project->setAttr("Template", bw::Variant(zipPath));
  project->setDestination(site);
  const double setupMs = msSince(setupStart);

  RunFigures first;
  RunFigures second;
  if (!generate(*project, first) || !generate(*project, second)) return 1;

  std::printf("project: %d objects (%d views) x %d columns, basic template; set up in %.0f ms\n",
              kTables, kTables / 10, kColumnsPerTable, setupMs);
  printRun("first run (everything composed):", first);
  printRun("second run (nothing changed):", second);

  if (first.stats.composed == 0 || second.stats.composed != 0 || first.stats.pages == 0 ||
      second.stats.pages != first.stats.pages) {
    std::fprintf(stderr,
                 "expected a first run that composes and a second one that composes nothing "
                 "and writes the same pages\n");
    return 1;
  }
  return 0;
}
