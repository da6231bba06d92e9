#include "cli/cli_host.h"

#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>

#include "core/agp_vars.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

struct Choice {
  const char* word;  // what the user types, and what is printed
  MessageAnswer answer;
};

std::vector<Choice> choicesOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::OkCancel:
      return {{"ok", MessageAnswer::Ok}, {"cancel", MessageAnswer::Cancel}};
    case MessageButtons::YesNo:
      return {{"yes", MessageAnswer::Yes}, {"no", MessageAnswer::No}};
    case MessageButtons::YesNoCancel:
      return {{"yes", MessageAnswer::Yes}, {"no", MessageAnswer::No}, {"cancel", MessageAnswer::Cancel}};
  }
  return {};
}

bool canAsk() { return isatty(STDIN_FILENO) && isatty(STDERR_FILENO); }

// Asks until one of `words` (or its first letter) is typed; nullopt at the
// end of input.
std::optional<std::size_t> askWord(std::string_view prompt, const std::vector<std::string>& words) {
  std::string line;
  for (;;) {
    std::cerr << prompt << " [" << text::join(words, "/") << "] " << std::flush;
    if (!std::getline(std::cin, line)) return std::nullopt;
    const std::string typed = text::toLower(text::trimBlanks(line));
    for (std::size_t k = 0; k < words.size(); ++k)
      if (!typed.empty() && words[k].starts_with(typed)) return k;
  }
}

}  // namespace

void CliHost::showMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  const char* kind = icon == MessageIcon::Warning    ? "warning: "
                     : icon == MessageIcon::Critical ? "error: "
                                                     : "";
  std::cerr << title << ": " << kind << text << '\n';
}

MessageAnswer CliHost::ask(std::string_view text, std::string_view title, MessageButtons buttons,
                           MessageIcon) {
  const std::vector<Choice> choices = choicesOf(buttons);
  std::cerr << title << ": " << text << '\n';
  if (answerYes) {
    const MessageAnswer answer = *answerYes ? choices[0].answer : choices[1].answer;
    std::cerr << "  answered " << (*answerYes ? choices[0].word : choices[1].word)
              << (*answerYes ? " (--yes)\n" : " (--no)\n");
    return answer;
  }
  if (canAsk()) {
    std::vector<std::string> words;
    for (const Choice& c : choices) words.emplace_back(c.word);
    if (const auto k = askWord("  answer", words)) return choices[*k].answer;
  }
  const MessageAnswer cautious = CautiousAnswer(buttons);
  for (const Choice& c : choices)
    if (c.answer == cautious) std::cerr << "  answered " << c.word << " (no terminal; --yes answers yes)\n";
  return cautious;
}

TemplateChoice CliHost::chooseTemplateAction(std::string_view text, std::string_view title) {
  std::cerr << title << ": " << text << '\n';
  if (templateChoice) {
    std::cerr << (*templateChoice == TemplateChoice::Keep ? "  answered keep (--keep)\n"
                                                          : "  answered overwrite (--overwrite)\n");
    return *templateChoice;
  }
  if (canAsk())
    if (const auto k = askWord("  answer", {"overwrite", "keep"}))
      return *k == 0 ? TemplateChoice::Overwrite : TemplateChoice::Keep;
  std::cerr << "  answered keep (no terminal; --overwrite unpacks the zip again)\n";
  return TemplateChoice::Keep;
}

const std::shared_ptr<CliHost>& TheCliHost() {
  static const auto host = std::make_shared<CliHost>();
  return host;
}

}  // namespace bw::cli
