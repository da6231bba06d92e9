#include "template/sessions.h"

#include <pugixml.hpp>

#include "platform/text.h"

namespace bw {
namespace {

struct SessionAttribute {
  std::string_view name;  // in lower case
  std::string AGPSession::*field;
};

constexpr SessionAttribute kSessionAttributes[] = {
    {"type", &AGPSession::SessType},       {"value", &AGPSession::SessValue},
    {"parm", &AGPSession::SessParm},       {"ifile", &AGPSession::SessIFile},
    {"cond", &AGPSession::SessCond},       {"extension", &AGPSession::SessExt},
    {"action", &AGPSession::SessAction},   {"location", &AGPSession::SessLocation},
    {"loctype", &AGPSession::SessLocType},
};

}  // namespace

void AGPSession::Load(const pugi::xml_node& xmlSession) {
  for (const pugi::xml_attribute& attribute : xmlSession.attributes()) {
    const std::string name = text::toLower(attribute.name());
    for (const SessionAttribute& known : kSessionAttributes)
      if (name == known.name) this->*known.field = attribute.value();
  }
}

const MemberTable& AGPSession::members() const {
  using S = AGPSession;
  static const MemberTable table{
      field<&S::SessType>("SessType"),       field<&S::SessValue>("SessValue"),
      field<&S::SessParm>("SessParm"),       field<&S::SessIFile>("SessIFile"),
      field<&S::SessCond>("SessCond"),       field<&S::SessExt>("SessExt"),
      field<&S::SessAction>("SessAction"),   field<&S::SessLocation>("SessLocation"),
      field<&S::SessLocType>("SessLocType"),
  };
  return table;
}

void AGPSessions::Load(const pugi::xml_node& xmlControl) {
  for (const pugi::xml_node& child : xmlControl.children()) {
    if (child.type() != pugi::node_element || text::toLower(child.name()) != "session") continue;
    auto session = make<AGPSession>();
    session->Load(child);
    sessions_.push_back(std::move(session));
  }
}

Ref<AGPSession> AGPSessions::Item(std::int16_t Index) const {
  if (Index < 1 || Index > Count()) raiseBasicError(basic_error::kSubscriptOutOfRange);
  return sessions_[Index - 1];
}

bool AGPSessions::SessionExist(const std::string& sValue) const {
  return find(sValue).has_value();
}

// An empty `loc` appends even when a session has an empty value (a
// "control_start" usually has none): AddControl appends a control's sessions
// this way and must keep their order.
bool AGPSessions::AddSession(const Ref<AGPSession>& session, const std::string& loc,
                             const std::string& loctype) {
  if (!session) return false;
  std::size_t pos = sessions_.size();
  if (auto neighbour = loc.empty() ? std::nullopt : find(loc))
    pos = *neighbour + (loctype == "after" ? 1 : 0);
  auto added = make<AGPSession>();
  added->SessType = session->SessType;
  added->SessValue = session->SessValue;
  added->SessIFile = session->SessIFile;
  added->SessCond = session->SessCond;
  added->SessExt = session->SessExt;
  added->SessAction = session->SessAction;
  sessions_.insert(sessions_.begin() + static_cast<std::ptrdiff_t>(pos), std::move(added));
  return true;
}

// An empty input file or condition in `session` means "keep", so a change
// cannot remove a condition.
bool AGPSessions::ChangeSession(const std::string& sValue, const Ref<AGPSession>& session) {
  auto at = find(sValue);
  if (!at || !session) return false;
  AGPSession& target = *sessions_[*at];
  if (!session->SessIFile.empty()) target.SessIFile = session->SessIFile;
  if (!session->SessCond.empty()) target.SessCond = session->SessCond;
  target.SessExt = session->SessExt;
  target.SessAction = session->SessAction;
  return true;
}

bool AGPSessions::DeleteSession(const std::string& sValue) {
  auto at = find(sValue);
  if (!at) return false;
  sessions_.erase(sessions_.begin() + static_cast<std::ptrdiff_t>(*at));
  return true;
}

std::optional<std::size_t> AGPSessions::find(std::string_view value) const {
  for (std::size_t i = 0; i < sessions_.size(); ++i)
    if (sessions_[i]->SessValue == value) return i;
  return std::nullopt;
}

const MemberTable& AGPSessions::members() const {
  using S = AGPSessions;
  static const MemberTable table{
      method<&S::Count>("Count"),
      asDefault(property<&S::Item>("Item")),
      method<&S::SessionExist>("SessionExist"),
      method<&S::AddSession>("AddSession"),
      method<&S::ChangeSession>("ChangeSession"),
      method<&S::DeleteSession>("DeleteSession"),
  };
  return table;
}

}  // namespace bw
