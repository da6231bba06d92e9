// AGPSession, AGPSessions: the steps of one control's composition.
//
// A control of control.xml lists its steps as `session` children, in the
// order of the output:
//
//   <control id="list" type="table" ifiles="list.htm">
//     <session type="key" value="header" />
//     <session type="include" value="shared/header/html" cond="proj/UseHeader/eq/1" />
//   </control>
//
// Extensions insert, change and delete sessions of existing controls by
// value, the identity of a session within its control. Every lookup here
// compares values exactly, in case too, and acts on the first match, so two
// sessions with the same value are reached through the first only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

namespace pugi {
class xml_node;
}

namespace bw {

class AGPSession : public Dispatch {
 public:
  std::string SessType;      // "key", "include", "register", "control_start", ...
  std::string SessValue;     // the section's name, or three values separated by "/"
  std::string SessParm;      // free parameter for scripts
  std::string SessIFile;     // template file, when not the control's CtrlIFiles
  std::string SessCond;      // condition, as for a control
  std::string SessExt;       // extension that brought the session
  std::string SessAction;    // what a merge does: "add", "change" or "delete"
  std::string SessLocation;  // for a merge: the value of the neighbour
  std::string SessLocType;   // for a merge: "after", anything else is before

  // Takes the attributes of a `session` element, names compared in lower
  // case; attributes of other names are ignored. For the C++ loader only:
  // scripts hold no XML element to pass.
  void Load(const pugi::xml_node& xmlSession);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPSession"; }
};

class AGPSessions : public Dispatch {
 public:
  // Appends one session for each `session` child element, in document order.
  void Load(const pugi::xml_node& xmlControl);

  std::int32_t Count() const { return static_cast<std::int32_t>(sessions_.size()); }
  // The session at 1..Count; raises error 9 outside that range.
  Ref<AGPSession> Item(std::int16_t Index) const;
  bool SessionExist(const std::string& sValue) const;

  // Inserts a new session before the first one whose value is `loc`, or
  // behind it when `loctype` is exactly "after"; appends when `loc` is empty
  // or no session has that value. The new session copies type, value, input file, condition,
  // extension and action of `session`, not its parameter or location. False
  // (nothing inserted) for a null session.
  bool AddSession(const Ref<AGPSession>& session, const std::string& loc,
                  const std::string& loctype);

  // Updates the first session of value `sValue` from `session`: the input
  // file and condition when they are not empty, the extension and action
  // always. False when no session has that value or `session` is null.
  bool ChangeSession(const std::string& sValue, const Ref<AGPSession>& session);

  // Removes the first session of value `sValue`; false when there is none.
  bool DeleteSession(const std::string& sValue);

  // The sessions in order, for walks from C++.
  const std::vector<Ref<AGPSession>>& items() const { return sessions_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPSessions"; }

 private:
  // Offset of the first session whose value is `value`.
  std::optional<std::size_t> find(std::string_view value) const;

  std::vector<Ref<AGPSession>> sessions_;
};

}  // namespace bw
