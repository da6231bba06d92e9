// The CLI's Host: message boxes become lines on standard error.
#pragma once

#include "platform/host.h"

namespace bw::cli {

class CliHost : public Host {
 public:
  void showMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
};

}  // namespace bw::cli
