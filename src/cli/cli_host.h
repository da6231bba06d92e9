// The CLI's Host: message boxes become lines on standard error. Questions
// take the answer given by a command's flags (--yes/--no, --keep/--overwrite);
// without one they are asked on the terminal, and when there is no terminal
// to ask, the answer that loses nothing is taken and said.
#pragma once

#include <memory>
#include <optional>

#include "platform/host.h"

namespace bw::cli {

class CliHost : public Host {
 public:
  void showMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  MessageAnswer ask(std::string_view text, std::string_view title, MessageButtons buttons,
                    MessageIcon icon) override;
  TemplateChoice chooseTemplateAction(std::string_view text, std::string_view title) override;

  // Answers fixed by flags: Yes or No for every question (OK counts as Yes,
  // Cancel as No), and the template dialog's choice.
  std::optional<bool> answerYes;
  std::optional<TemplateChoice> templateChoice;
};

// The host that main() installed.
const std::shared_ptr<CliHost>& TheCliHost();

}  // namespace bw::cli
