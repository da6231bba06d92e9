// AGPStatus: the status display of long operations, GUID texts, and the
// shipped system code.
//
// The display itself is the driving program's ProgressSink; this class keeps
// the engine's side of it: whether a status is open, the last percentage and
// when it was set, so that Refresh can keep a quiet phase alive without
// flooding the display.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "core/dispatch.h"

namespace bw {

class AGPStatus : public Dispatch {
 public:
  AGPStatus();

  // Replaces the info line of an open status, then yields.
  void DispStatus(const std::string& text);
  // Open a status: plain, stepwise, or one the user can cancel.
  void ShowStatus(std::int32_t hwnd, const std::string& caption);
  void ShowStatus2(std::int32_t hwnd, const std::string& caption);
  void ShowStatus3(std::int32_t hwnd, const std::string& caption);
  // Not 0 once the user asked to stop.
  std::int32_t StatusIsCancelled();
  void CloseStatus();
  // Moves the bar of an open status; remembers the value and the time.
  void SetStatus(const Variant& percent);
  // SetStatus with the last value, if a second has passed since the last.
  void Refresh();
  // The shipped system code for a two-character code ("C#", "VB", "VL").
  Variant GetSysCode(const Variant& code);
  void BringStatusToFront();
  std::string GetGUID();

  bool isOpen() const { return open_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPStatus"; }

 private:
  void show(int form, const std::string& caption);

  bool open_ = false;
  Variant lastPercent_ = Variant(0);
  std::chrono::steady_clock::time_point lastTime_;
};

// The shared status of AGPVars, created on first use.
AGPStatus& Status();

// The folder of the shipped system code files.
std::string SystemCodeFolder();

// The fixed text that ends all system code (prelude.js of that folder).
std::string SystemCodePrelude();

}  // namespace bw
