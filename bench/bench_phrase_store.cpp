// Cost of the phrase store on a large project: 1,000 tables of 50 fields,
// a caption phrase for each in two languages, set one by one as the project
// loader does; then the same phrases set again (each a replace), read
// back, and the phrases of 100 fields deleted one after another with a read
// between, as a host that deletes fields while the generator reads.
#include <chrono>
#include <cstdio>
#include <string>

#include "isolated_state.h"
#include "language/phrase_store.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTables = 1000;
constexpr int kFields = 50;
const char* const kLanguages[] = {"en", "de"};

template <typename Step>
double millisecondsFor(Step step) {
  const auto start = Clock::now();
  step();
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

std::string tableName(int t) {
  return "Table" + std::to_string(t);
}
std::string fieldName(int f) {
  return "Field" + std::to_string(f);
}

void setAll(bw::AGPLanguage& store, const std::string& suffix) {
  for (int t = 0; t < kTables; ++t)
    for (int f = 0; f < kFields; ++f)
      for (const char* language : kLanguages)
        store.SetFieldPhrase(language, tableName(t), fieldName(f), "FldCaption",
                             fieldName(f) + suffix);
}

}  // namespace

int main() {
  bench::isolateEngineState("bench-phrase-store");
  bw::AGPLanguage& store = bw::Language();
  const double load = millisecondsFor([&] { setAll(store, ""); });
  const double replace = millisecondsFor([&] { setAll(store, "!"); });
  std::size_t found = 0;
  const double read = millisecondsFor([&] {
    for (int t = 0; t < kTables; ++t)
      for (int f = 0; f < kFields; ++f)
        found += !store.GetFieldPhrase("de", tableName(t), fieldName(f), "FldCaption").empty();
  });
  const double remove = millisecondsFor([&] {
    for (int f = 0; f < 100; ++f) {
      store.DeleteFieldPhrase(tableName(f), fieldName(f));
      found += !store.GetFieldPhrase("en", tableName(f + 1), fieldName(f), "FldCaption").empty();
    }
  });
  std::printf("field phrases: %d\n", store.FieldCount());
  std::printf("set (append):  %8.1f ms\n", load);
  std::printf("set (replace): %8.1f ms\n", replace);
  std::printf("get:           %8.1f ms (%zu found)\n", read, found);
  std::printf("100 deletes:   %8.1f ms\n", remove);
  return 0;
}
