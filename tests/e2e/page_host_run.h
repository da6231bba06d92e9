// Runs page_host, the C# program that renders the pages of an ASP.NET Web
// Pages site through Mono's ASP.NET runtime, and reads its report.
//
//   PageHostRun run = RunPageHost({"render", site, outDir, "orders_list.cshtml"}, scratch);
//   const RenderedPage* list = run.find("orders_list.cshtml");  // ok, status 200
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace bw::testing {

// One line of the report: "OK <page> <status> [<location>]" or "ERROR <page> <message>".
struct RenderedPage {
  std::string page;  // as requested: "orders_view.cshtml?OrderID=3", "POST:orders_add.cshtml"
  bool ok = false;
  int status = 0;      // of an OK page
  std::string detail;  // the Location of an OK redirect, the message of an ERROR
};

void PrintTo(const RenderedPage& page, std::ostream* os);

struct PageHostRun {
  int exitCode = -1;
  std::vector<RenderedPage> pages;  // in the order of the report
  std::string out;                  // the report as printed
  std::string err;                  // what the host, Mono and the runtime wrote to stderr

  // The first report line about `page`, or nullptr.
  const RenderedPage* find(std::string_view page) const;
};

// Runs `mono page_host.exe <args...>`. The runtime keeps its compiled pages in
// a temporary folder, which is put inside `scratchDir` so that it goes away
// with the test's files.
PageHostRun RunPageHost(const std::vector<std::string>& args, const std::string& scratchDir);

// The report lines of page_host's output; other lines are skipped.
std::vector<RenderedPage> ParsePageReport(std::string_view out);

// The name of the file in OUTDIR that render writes `page`'s body to.
std::string PageOutputName(std::string_view page);

}  // namespace bw::testing
