// Throughput of the template block parser on a large synthetic template.
//
// Figures only; nothing is asserted.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "core/agp_vars.h"
#include "template/parser.h"
#include "synthetic_template.h"

namespace {

constexpr std::size_t kTemplateBytes = 10 * 1024 * 1024;
constexpr int kRuns = 8;

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Reads every block as composition does: type, then name or value.
std::size_t walk(bw::AGParser& parser) {
  std::size_t bytes = 0;
  for (std::int32_t id = 1; id <= parser.Count(); ++id) {
    parser.setBlockID(id);
    switch (parser.BlockType()) {
      case bw::block_type::kText:
      case bw::block_type::kCode:
        bytes += parser.BlockValue().size();
        break;
      case bw::block_type::kIndentedOutput:
        bytes += parser.BlockIndent().size() + parser.BlockName().size();
        break;
      default:
        bytes += parser.BlockName().size();
    }
  }
  return bytes;
}

void report(const char* what, std::size_t bytes, std::int32_t blocks, double seconds) {
  std::printf("%-14s %8.1f MB/s %8.2f M blocks/s  (%d runs, %.3f s)\n", what,
              bytes * kRuns / seconds / 1e6, blocks * double(kRuns) / seconds / 1e6, kRuns,
              seconds);
}

}  // namespace

int main() {
  const std::string source = bench::makeTemplate(kTemplateBytes);
  bw::AGParser parser;

  auto start = std::chrono::steady_clock::now();
  for (int run = 0; run < kRuns; ++run) parser.Parse(source);
  const double parseSeconds = secondsSince(start);

  std::size_t walked = 0;
  start = std::chrono::steady_clock::now();
  for (int run = 0; run < kRuns; ++run) {
    parser.Parse(source);
    walked += walk(parser);
  }
  const double walkSeconds = secondsSince(start);

  if (!bw::AGPVars().ProjErr.empty()) {
    std::fprintf(stderr, "parse failed: %s\n", bw::AGPVars().ProjErr.c_str());
    return 1;
  }
  std::printf("template: %.2f MB, %d blocks, %zu bytes read per walk\n", source.size() / 1e6,
              parser.Count(), walked / kRuns);
  report("parse", source.size(), parser.Count(), parseSeconds);
  report("parse + walk", source.size(), parser.Count(), walkSeconds);
  return 0;
}
