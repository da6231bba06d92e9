// Host: what the engine asks of the program that drives it.
//
// The engine never prints and never reads a terminal. Message boxes and the
// other modal prompts go through the Host that the driving program installs
// (the CLI, a test's scripted host). Without one, messages are kept in a
// recording host, so that nothing the engine says is lost.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace bw {

enum class MessageIcon { None, Information, Warning, Critical, Question };

// The buttons of a question, and the one the user pressed.
enum class MessageButtons { OkCancel, YesNo, YesNoCancel };
enum class MessageAnswer { Ok, Cancel, Yes, No };

// The answers of the template dialog: the template zip differs from the
// files unpacked from it earlier.
enum class TemplateChoice { Overwrite, Keep };

class Host {
 public:
  virtual ~Host() = default;

  // A modal message box with an OK button; returns when the user closed it.
  virtual void showMessage(std::string_view text, std::string_view title, MessageIcon icon) = 0;

  // A modal question; gives the button pressed, always one of `buttons`.
  virtual MessageAnswer ask(std::string_view text, std::string_view title, MessageButtons buttons,
                            MessageIcon icon) = 0;

  // The template dialog, modal, with the buttons Overwrite and Keep.
  virtual TemplateChoice chooseTemplateAction(std::string_view text, std::string_view title) = 0;
};

// The answer that loses nothing and goes no further, for a host that has
// no one to ask: No, or Cancel where there is no No.
MessageAnswer CautiousAnswer(MessageButtons buttons);

struct HostMessage {
  std::string text;
  std::string title;
  MessageIcon icon;
};

// Keeps every message and question. Questions take the programmed answers
// in order; once those run out, the cautious answer, and Keep for the
// template dialog. The default host, and the scripted host of tests.
class RecordingHost : public Host {
 public:
  void showMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  MessageAnswer ask(std::string_view text, std::string_view title, MessageButtons buttons,
                    MessageIcon icon) override;
  TemplateChoice chooseTemplateAction(std::string_view text, std::string_view title) override;

  std::vector<HostMessage> messages;
  std::vector<HostMessage> questions;  // asked, including the template dialog
  std::deque<MessageAnswer> answers;
  std::deque<TemplateChoice> templateChoices;
};

}  // namespace bw
