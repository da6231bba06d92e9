// Host: what the engine asks of the program that drives it.
//
// The engine never prints and never reads a terminal. Message boxes and the
// other modal prompts go through the Host that the driving program installs
// (the CLI, a test's scripted host). Without one, messages are kept in a
// recording host, so that nothing the engine says is lost.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bw {

enum class MessageIcon { None, Information, Warning, Critical, Question };

class Host {
 public:
  virtual ~Host() = default;

  // A modal message box with an OK button; returns when the user closed it.
  virtual void showMessage(std::string_view text, std::string_view title, MessageIcon icon) = 0;
};

struct HostMessage {
  std::string text;
  std::string title;
  MessageIcon icon;
};

// Keeps every message; the default host, and the base of scripted test hosts.
class RecordingHost : public Host {
 public:
  void showMessage(std::string_view text, std::string_view title, MessageIcon icon) override {
    messages.push_back({std::string(text), std::string(title), icon});
  }

  std::vector<HostMessage> messages;
};

}  // namespace bw
