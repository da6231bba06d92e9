#include "cli/terminal_progress.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>

namespace bw::cli {
namespace {

std::atomic<bool> gCancelRequested{false};
std::atomic<bool> gCancellable{false};

// Ctrl-C: a request to stop while the work can be cancelled, otherwise the
// usual end of the program.
void onInterrupt(int signal) {
  if (gCancellable.load()) {
    gCancelRequested.store(true);
    return;
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

constexpr int kBarWidth = 30;

}  // namespace

TerminalProgress::TerminalProgress(std::FILE* out) : out_(out), tty_(isatty(fileno(out)) != 0) {
  std::signal(SIGINT, onInterrupt);
}

TerminalProgress::~TerminalProgress() {
  close();
  std::signal(SIGINT, SIG_DFL);
}

void TerminalProgress::open(StatusForm form, std::string_view caption) {
  form_ = form;
  // Captions may be padded with leading blanks to centre them in a window
  // title; a terminal line starts at the left.
  caption_ = caption.substr(std::min(caption.find_first_not_of(' '), caption.size()));
  info_.clear();
  percent_ = 0;
  open_ = true;
  gCancelRequested.store(false);
  gCancellable.store(form == StatusForm::Cancellable);
  if (tty_)
    redraw();
  else
    std::fprintf(out_, "%s\n", caption_.c_str());
}

void TerminalProgress::setInfo(std::string_view text) {
  if (text == info_) return;
  info_ = text;
  if (tty_)
    redraw();
  else if (!info_.empty())
    std::fprintf(out_, "  %s\n", info_.c_str());
}

void TerminalProgress::setPercent(int percent) {
  percent = std::clamp(percent, 0, 100);
  if (percent == percent_) return;
  percent_ = percent;
  if (tty_) redraw();
}

bool TerminalProgress::isCancelled() { return gCancelRequested.load(); }

void TerminalProgress::close() {
  if (!open_) return;
  open_ = false;
  gCancellable.store(false);
  if (tty_) std::fprintf(out_, "\r\033[K");
  std::fflush(out_);
}

// One line: caption, bar, percentage and info, cut to a sensible width.
void TerminalProgress::redraw() {
  const int filled = percent_ * kBarWidth / 100;
  std::string bar(static_cast<std::size_t>(filled), '#');
  bar.resize(kBarWidth, '-');
  std::string line = caption_ + " [" + bar + "] " + std::to_string(percent_) + "%";
  if (!info_.empty()) line += "  " + info_;
  if (line.size() > 120) line.resize(120);
  std::fprintf(out_, "\r\033[K%s", line.c_str());
  std::fflush(out_);
}

}  // namespace bw::cli
