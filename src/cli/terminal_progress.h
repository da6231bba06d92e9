// The CLI's status display. On a terminal it draws the caption, the info
// line and a bar with the percentage on one line that it redraws; otherwise
// it prints each new caption and info line as a plain line. Ctrl-C while a
// cancellable status is open asks the engine to stop; at any other time it
// ends the program as usual.
#pragma once

#include <cstdio>
#include <string>

#include "platform/progress_sink.h"

namespace bw::cli {

class TerminalProgress : public ProgressSink {
 public:
  explicit TerminalProgress(std::FILE* out = stderr);
  ~TerminalProgress() override;

  void open(StatusForm form, std::string_view caption) override;
  void setInfo(std::string_view text) override;
  void setPercent(int percent) override;
  bool isCancelled() override;
  void close() override;

 private:
  void redraw();

  std::FILE* out_;
  bool tty_;
  bool open_ = false;
  StatusForm form_ = StatusForm::Plain;
  std::string caption_;
  std::string info_;
  int percent_ = 0;
};

}  // namespace bw::cli
