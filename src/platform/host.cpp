#include "platform/host.h"

namespace bw {

MessageAnswer CautiousAnswer(MessageButtons buttons) {
  return buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Cancel;
}

void RecordingHost::showMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  messages.push_back({std::string(text), std::string(title), icon});
}

MessageAnswer RecordingHost::ask(std::string_view text, std::string_view title,
                                 MessageButtons buttons, MessageIcon icon) {
  questions.push_back({std::string(text), std::string(title), icon});
  if (answers.empty()) return CautiousAnswer(buttons);
  const MessageAnswer answer = answers.front();
  answers.pop_front();
  return answer;
}

TemplateChoice RecordingHost::chooseTemplateAction(std::string_view text, std::string_view title) {
  questions.push_back({std::string(text), std::string(title), MessageIcon::Question});
  if (templateChoices.empty()) return TemplateChoice::Keep;
  const TemplateChoice choice = templateChoices.front();
  templateChoices.pop_front();
  return choice;
}

}  // namespace bw
