// Loading and saving a large project file: 1,000 tables of 50 fields, built
// through the definition model and saved once. Prints the best Load time
// (a fresh project and fresh engine state each round, as a new process
// would have), the best Save time, the time pugixml alone takes to parse
// the same file, their ratio, and resident memory: the peak of each phase
// and of the whole run. Targets: Load within 4x of the bare parse, peak RSS
// of loading under 400 MB. Figures only; nothing is asserted.
#include <malloc.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <string>

#include "core/agp_vars.h"
#include "isolated_state.h"
#include "project/agp.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kTables = 1000;
constexpr int kFieldsPerTable = 50;
constexpr int kRounds = 5;

double bestSeconds(auto&& prepare, auto&& work) {
  double best = 0;
  for (int round = 0; round < kRounds; ++round) {
    prepare();
    const auto start = Clock::now();
    work();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (round == 0 || seconds < best) best = seconds;
  }
  return best;
}

long peakRssKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;  // KiB on Linux
}

// A "VmRSS:" or "VmHWM:" line of /proc/self/status, in KiB; -1 if absent.
long statusKiB(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(key)) return std::stol(line.substr(key.size()));
  return -1;
}

double mib(long kib) {
  return static_cast<double>(kib) / 1024.0;
}

// Starts a new peak for the next phase: memory the last phase freed goes
// back to the system first, then the kernel's high-water mark is set to the
// present size (writing 5 to clear_refs). Gives the size at the start.
long startPhase() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return statusKiB("VmRSS:");
}

// A column of a typical business table: the type code, its type name and
// size as a schema reader would give them.
struct Column {
  std::int16_t type;
  const char* typeName;
  std::int32_t size;
};
constexpr Column kColumns[] = {
    {3, "INTEGER", 4}, {202, "VARCHAR", 80}, {135, "DATETIME", 8},  {131, "DECIMAL", 19},
    {11, "BIT", 1},    {201, "TEXT", 65535}, {202, "VARCHAR", 255}, {5, "FLOAT", 8},
};

void addField(bw::AGPTable& table, const std::string& tableName, int k) {
  const std::string name = k == 0 ? "id" : "field_" + std::to_string(k);
  table.Fields()->Add(tableName, name);
  bw::AGPField& field = *table.Fields()->field(name);
  const Column& column = k == 0 ? kColumns[0] : kColumns[k % std::size(kColumns)];
  field.setAttr("FldType", bw::Variant(column.type));
  field.setAttr("FldTypeName", bw::Variant(column.typeName));
  field.setAttr("FldSize", bw::Variant(static_cast<int>(column.size)));
  field.setAttr("FldSupport", bw::Variant(true));
  field.setAttr("FldReq", bw::Variant(k % 3 == 0));
  field.setAttr("FldCaption", bw::Variant("Field " + std::to_string(k) + " of " + tableName));
  if (k == 0) {
    field.setAttr("FldIsPrimaryKey", bw::Variant(true));
    field.setAttr("FldAutoIncrement", bw::Variant(true));
  }
}

// The synthetic project, saved to `path`. False, with the reason printed,
// when the engine refuses.
bool writeSyntheticProject(const std::string& path) {
  auto project = bw::make<bw::AGP>();
  project->AddProj("BigShop");
  bw::Ref<bw::AGPDatabase> db = project->addDatabase("bigshop.db");
  if (!db) {
    std::fprintf(stderr, "addDatabase: %s\n", bw::AGPVars().ProjErr.c_str());
    return false;
  }
  db->setAttr("DBType", bw::Variant("SQLITE"));
  db->setAttr("DBDBMSName", bw::Variant("SQLite"));
  for (int t = 0; t < kTables; ++t) {
    const std::string name = "table_" + std::to_string(t);
    db->Tables()->Add(name);
    bw::AGPTable& table = *db->Tables()->table(name);
    table.setAttr("TblType", bw::Variant(t % 10 == 9 ? "VIEW" : "TABLE"));
    table.setAttr("TblCaption", bw::Variant("Table " + std::to_string(t)));
    table.setAttr("TblGen", bw::Variant(true));
    for (int k = 0; k < kFieldsPerTable; ++k) addField(table, name, k);
  }
  bw::AGPVars().ProjErr.clear();
  project->Save(path);
  if (!bw::AGPVars().ProjErr.empty()) {
    std::fprintf(stderr, "Save: %s\n", bw::AGPVars().ProjErr.c_str());
    return false;
  }
  return true;
}

}  // namespace

int main() {
  bench::isolateEngineState("bench-project-file");
  const auto dir = std::filesystem::temp_directory_path() / "bw-bench-project-file";
  std::filesystem::create_directories(dir);
  const std::string file = (dir / "big.agx").string();
  const std::string saved = (dir / "saved.agx").string();

  const auto buildStart = Clock::now();
  if (!writeSyntheticProject(file)) return 1;
  const double buildSeconds = std::chrono::duration<double>(Clock::now() - buildStart).count();
  const auto fileBytes = std::filesystem::file_size(file);

  const long parseBase = startPhase();
  const double parse =
      bestSeconds([] {},
                  [&] {
                    pugi::xml_document document;
                    if (!document.load_file(file.c_str()))
                      std::fprintf(stderr, "pugixml cannot parse %s\n", file.c_str());
                  });

  const long parsePeak = statusKiB("VmHWM:");

  bw::Ref<bw::AGP> project;
  bool loadFailed = false;
  const long loadBase = startPhase();
  const double load = bestSeconds(
      [&] {
        project = nullptr;  // the last round's project goes before the clock runs
        bw::ResetAGPVars();
        project = bw::make<bw::AGP>();
      },
      [&] {
        project->Load(file, false);
        loadFailed = loadFailed || !bw::AGPVars().ProjErr.empty();
      });
  if (loadFailed) {
    std::fprintf(stderr, "Load: %s\n", bw::AGPVars().ProjErr.c_str());
    return 1;
  }
  const long loadPeak = statusKiB("VmHWM:");
  const std::int32_t tablesLoaded = project->DB() ? project->DB()->Tables()->Count() : 0;
  const long modelSize = startPhase() - loadBase;  // the loaded project, kept

  bool saveFailed = false;
  const double save = bestSeconds(
      [&] {
        std::filesystem::remove(saved);  // each round writes a new file, without a backup
        bw::AGPVars().ProjErr.clear();
      },
      [&] {
        project->Save(saved);
        saveFailed = saveFailed || !bw::AGPVars().ProjErr.empty();
      });
  if (saveFailed) std::fprintf(stderr, "Save: %s\n", bw::AGPVars().ProjErr.c_str());
  const long savePeak = statusKiB("VmHWM:");

  const double ratio = load / parse;
  const double loadPeakMiB = mib(loadPeak);
  std::printf("project file: %d tables x %d fields, %.1f MB (built and first saved in %.2f s)\n",
              kTables, kFieldsPerTable, static_cast<double>(fileBytes) / 1e6, buildSeconds);
  std::printf("tables after load:          %8d\n", tablesLoaded);
  std::printf("pugixml parse alone (best): %8.1f ms\n", parse * 1e3);
  std::printf("Load (best of %d):           %8.1f ms\n", kRounds, load * 1e3);
  std::printf("Save (best of %d):           %8.1f ms\n", kRounds, save * 1e3);
  std::printf("Load / parse:               %8.2f x   (target: within 4x)   %s\n", ratio,
              ratio <= 4.0 ? "met" : "NOT met");
  std::printf("RSS, loaded project kept:   %8.1f MB\n", mib(modelSize));
  std::printf("peak RSS, parse alone:      %8.1f MB  (from %.1f MB at its start)\n", mib(parsePeak),
              mib(parseBase));
  std::printf(
      "peak RSS, Load:             %8.1f MB  (from %.1f MB at its start; target: under "
      "400 MB) %s\n",
      loadPeakMiB, mib(loadBase), loadPeakMiB < 400.0 ? "met" : "NOT met");
  std::printf("peak RSS, Save:             %8.1f MB\n", mib(savePeak));
  std::printf("peak RSS, whole run:        %8.1f MB  (includes building the project)\n",
              mib(peakRssKiB()));
  return 0;
}
