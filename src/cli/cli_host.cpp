#include "cli/cli_host.h"

#include <iostream>

namespace bw::cli {

void CliHost::showMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  const char* kind = icon == MessageIcon::Warning    ? "warning: "
                     : icon == MessageIcon::Critical ? "error: "
                                                     : "";
  std::cerr << title << ": " << kind << text << '\n';
}

}  // namespace bw::cli
