// Cost of reading typed attributes: the path of every template read of
// TABLE.TblName or FIELD.FldReq during generation. Prints nanoseconds per
// read for the C++ path, the late-bound path that scripts take, and the
// Properties.Item(name).Value path; and the memory of 50,000 field-sized
// bags, which share one layout.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "core/project_attributes.h"
#include "project/agp.h"

namespace {

using Clock = std::chrono::steady_clock;

template <typename Read>
double nanosecondsPerRead(int reads, Read read) {
  auto start = Clock::now();
  for (int k = 0; k < reads; ++k) read(k);
  std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
  return elapsed.count() / reads;
}

long peakRssKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// An isolated settings store and documents folder, so that the benchmark
// neither reads nor changes the user's own.
void isolate() {
  auto dir = std::filesystem::temp_directory_path() / "bw-bench-properties";
  std::filesystem::create_directories(dir);
  setenv("BRINDLEWORK_USER_HIVE", (dir / "user.reg").c_str(), 1);
  setenv("BRINDLEWORK_DOCUMENTS", (dir / "Documents").c_str(), 1);
  bw::ResetAGPVars();
}

}  // namespace

int main() {
  isolate();
  auto proj = bw::make<bw::AGP>();
  proj->setAttr("BodyTitle", "Shop");
  proj->setAttr("RecPerPage", bw::Variant(std::int16_t{20}));
  const char* names[] = {"BodyTitle", "RecPerPage", "MultiLanguage", "TblAltColor"};
  const int reads = 2'000'000;
  volatile std::size_t sink = 0;

  double direct = nanosecondsPerRead(reads, [&](int k) {
    sink = sink + static_cast<std::size_t>(proj->typedAttr(names[k & 3]).type());
  });
  double lateBound = nanosecondsPerRead(reads, [&](int k) {
    sink = sink + static_cast<std::size_t>(proj->get(names[k & 3]).type());
  });
  bw::Ref<bw::AGProperties> bag = proj->Properties();
  double throughItem = nanosecondsPerRead(reads / 4, [&](int k) {
    sink = sink + static_cast<std::size_t>(bag->Item(bw::Variant(names[k & 3]))->Value().type());
  });

  std::printf("typed attribute read, C++ path:          %7.1f ns\n", direct);
  std::printf("typed attribute read, late-bound by name: %7.1f ns\n", lateBound);
  std::printf("Properties.Item(name).Value:              %7.1f ns\n", throughItem);

  const long before = peakRssKiB();
  std::vector<bw::Ref<bw::AGProperties>> bags;
  bags.reserve(50'000);
  for (int k = 0; k < 50'000; ++k) {
    auto b = bw::make<bw::AGProperties>(bw::ProjectLayout());
    b->setValue("BodyTitle", bw::Variant("Field " + std::to_string(k)));
    b->setValue("OnDemand", bw::Variant(""));  // shared derived layout
    bags.push_back(b);
  }
  std::printf("50,000 bags of %zu attributes: %.1f MB (peak RSS growth)\n", bags[0]->size(),
              (peakRssKiB() - before) / 1024.0);
  return 0;
}
