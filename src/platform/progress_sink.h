// ProgressSink: where the engine's status display goes.
//
// Long operations open a status with a caption, change its info line and
// percentage, and poll for cancellation; the driving program decides how
// that looks (the CLI draws a bar on a terminal). Three forms exist: a plain
// one, one for stepwise work, and one whose user can cancel.
#pragma once

#include <string_view>

namespace bw {

enum class StatusForm { Plain = 1, Steps = 2, Cancellable = 3 };

class ProgressSink {
 public:
  virtual ~ProgressSink() = default;

  virtual void open(StatusForm form, std::string_view caption) = 0;
  virtual void setInfo(std::string_view text) = 0;
  virtual void setPercent(int percent) = 0;
  // True once the user asked to stop the work of a cancellable status.
  virtual bool isCancelled() = 0;
  virtual void close() = 0;
  virtual void bringToFront() {}
  // Lets the driving program handle pending events (input, redraws).
  virtual void yield() {}
};

// Shows nothing; the default when no program installed a sink.
class SilentProgressSink : public ProgressSink {
 public:
  void open(StatusForm, std::string_view) override {}
  void setInfo(std::string_view) override {}
  void setPercent(int) override {}
  bool isCancelled() override { return false; }
  void close() override {}
};

}  // namespace bw
