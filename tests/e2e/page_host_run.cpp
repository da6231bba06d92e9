#include "page_host_run.h"

#include <filesystem>
#include <sstream>

#include "support/cli_run.h"

namespace bw::testing {

void PrintTo(const RenderedPage& page, std::ostream* os) {
  *os << (page.ok ? "OK " : "ERROR ") << page.page;
  if (page.ok) *os << " " << page.status;
  if (!page.detail.empty()) *os << " " << page.detail;
}

const RenderedPage* PageHostRun::find(std::string_view page) const {
  for (const RenderedPage& rendered : pages) {
    if (rendered.page == page) return &rendered;
  }
  return nullptr;
}

PageHostRun RunPageHost(const std::vector<std::string>& args, const std::string& scratchDir) {
  const std::filesystem::path runtimeTemp = std::filesystem::path(scratchDir) / "aspnet-tmp";
  std::filesystem::create_directories(runtimeTemp);
  std::vector<std::string> command{BRINDLEWORK_MONO, BRINDLEWORK_PAGE_HOST};
  command.insert(command.end(), args.begin(), args.end());
  CliRun run = RunProgram(command, scratchDir, {"TMPDIR=" + runtimeTemp.string()});
  return PageHostRun{run.exitCode, ParsePageReport(run.out), run.out, run.err};
}

// Pages carry no spaces (a query is url-encoded), so the page is the second
// word; what follows the status of an OK line is a redirect's Location.
std::vector<RenderedPage> ParsePageReport(std::string_view out) {
  std::vector<RenderedPage> pages;
  std::istringstream lines{std::string(out)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string kind;
    RenderedPage page;
    words >> kind >> page.page;
    if ((kind != "OK" && kind != "ERROR") || page.page.empty()) continue;
    page.ok = kind == "OK";
    if (page.ok && !(words >> page.status)) continue;
    std::getline(words >> std::ws, page.detail);
    pages.push_back(page);
  }
  return pages;
}

// Mirrors OutputName in page_host: every character outside [A-Za-z0-9._=-]
// becomes '_', a leading '/' is dropped, and ".html" is added.
std::string PageOutputName(std::string_view page) {
  while (!page.empty() && page.front() == '/') page.remove_prefix(1);
  std::string name;
  for (char c : page) {
    const bool safe = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                      c == '.' || c == '_' || c == '=' || c == '-';
    name += safe ? c : '_';
  }
  return name + ".html";
}

}  // namespace bw::testing
