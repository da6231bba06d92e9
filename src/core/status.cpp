#include "core/status.h"

#include <cmath>

#include "core/agp_vars.h"
#include "core/generation_error.h"
#include "platform/files.h"
#include "platform/guid.h"
#include "platform/progress_sink.h"
#include "platform/text.h"

namespace bw {
namespace {

ProgressSink& sink() { return *AGPVars().progress; }

// The longest system code text a caller takes, in characters.
constexpr std::size_t kMaxSystemCode = 1'000'000;

// `utf8` cut after its first `count` characters; a character is never split.
std::string firstChars(std::string_view utf8, std::size_t count) {
  std::size_t end = 0;
  for (std::size_t k = 0; k < count && end < utf8.size(); ++k) text::decodeUtf8(utf8, end);
  return std::string(utf8.substr(0, end));
}

}  // namespace

AGPStatus::AGPStatus() : lastTime_(std::chrono::steady_clock::now()) {}

void AGPStatus::show(int form, const std::string& caption) {
  sink().open(static_cast<StatusForm>(form), caption);
  open_ = true;
}

void AGPStatus::ShowStatus(std::int32_t, const std::string& caption) { show(1, caption); }
void AGPStatus::ShowStatus2(std::int32_t, const std::string& caption) { show(2, caption); }
void AGPStatus::ShowStatus3(std::int32_t, const std::string& caption) { show(3, caption); }

void AGPStatus::DispStatus(const std::string& text) {
  if (open_) sink().setInfo(text);
  sink().yield();
}

std::int32_t AGPStatus::StatusIsCancelled() { return open_ && sink().isCancelled() ? 1 : 0; }

void AGPStatus::CloseStatus() {
  if (!open_) return;
  sink().close();
  open_ = false;
}

void AGPStatus::SetStatus(const Variant& percent) {
  if (open_) {
    // Ties round to the even number, like every conversion to a whole number.
    sink().setPercent(percent.toInteger().value_or(0));
  }
  lastPercent_ = percent;
  lastTime_ = std::chrono::steady_clock::now();
  sink().yield();
}

void AGPStatus::Refresh() {
  if (std::chrono::steady_clock::now() - lastTime_ >= std::chrono::seconds(1))
    SetStatus(lastPercent_);
}

void AGPStatus::BringStatusToFront() { sink().bringToFront(); }

std::string AGPStatus::GetGUID() { return newGuid(); }

std::string SystemCodeFolder() { return files::joinPath(files::shareFolder(), "syscode"); }

std::string SystemCodePrelude() {
  return files::readTextFile(files::joinPath(SystemCodeFolder(), "prelude.js"));
}

// The system code of a code is the shared part, common.js, the code's own
// file ("C#.js", "VB.js") and the prelude; the validation modules ("VL")
// are VL.js alone. Codes are cut or padded to two characters; a code
// without a file gives nothing.
Variant AGPStatus::GetSysCode(const Variant& codeIn) {
  std::string code = firstChars(codeIn.toText(), 2);
  while (text::countChars(code) < 2) code += ' ';
  const std::string folder = SystemCodeFolder();
  std::string text = files::readTextFile(files::joinPath(folder, code + ".js"));
  if (text.empty()) return Variant("");
  if (code != "VL")
    text = files::readTextFile(files::joinPath(folder, "common.js")) + "\r\n" + text + "\r\n" +
           SystemCodePrelude();
  text = text.substr(0, text.find('\0'));
  return Variant(firstChars(text, kMaxSystemCode));
}

const MemberTable& AGPStatus::members() const {
  static const MemberTable table{
      method<&AGPStatus::DispStatus>("DispStatus"),
      method<&AGPStatus::ShowStatus>("ShowStatus"),
      method<&AGPStatus::ShowStatus2>("ShowStatus2"),
      method<&AGPStatus::ShowStatus3>("ShowStatus3"),
      method<&AGPStatus::StatusIsCancelled>("StatusIsCancelled"),
      method<&AGPStatus::CloseStatus>("CloseStatus"),
      method<&AGPStatus::SetStatus>("SetStatus"),
      method<&AGPStatus::Refresh>("Refresh"),
      method<&AGPStatus::GetSysCode>("GetSysCode"),
      method<&AGPStatus::BringStatusToFront>("BringStatusToFront"),
      method<&AGPStatus::GetGUID>("GetGUID"),
  };
  return table;
}

AGPStatus& Status() {
  Ref<Dispatch>& slot = AGPVars().Status;
  if (!slot) slot = make<AGPStatus>();
  return static_cast<AGPStatus&>(*slot);
}

void RaiseGenerationError() {
  Status().CloseStatus();
  throw GenerationError(AGPVars().ProjErr);
}

void CancelGeneration() {
  AGPVars().ProjErr = "Generation cancelled by user!";
  RaiseGenerationError();
}

}  // namespace bw
