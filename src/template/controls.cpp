#include "template/controls.h"

#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {
namespace {

// "/a/b" -> "a\b\": backslashes throughout, no leading one, one at the end.
// An empty folder stays empty, meaning the template folder itself.
std::string normaliseInputFolder(std::string_view value) {
  std::string folder = text::replaceAll(value, "/", "\\");
  if (folder.empty()) return folder;
  if (folder.front() == '\\') folder.erase(0, 1);
  if (folder.empty() || folder.back() != '\\') folder += '\\';
  return folder;
}

// Replaces every occurrence of an ASCII token, ignoring case.
std::string replaceIgnoringCase(std::string_view s, std::string_view token,
                                std::string_view replacement) {
  std::string out;
  std::size_t from = 0;
  for (std::size_t at; (at = text::ifindAscii(s, token, from)) != std::string_view::npos;
       from = at + token.size()) {
    out.append(s.substr(from, at - from));
    out.append(replacement);
  }
  out.append(s.substr(from));
  return out;
}

// The project's names in output file and folder names, in this order.
std::string substituteProjectTokens(std::string_view value) {
  if (value.find('{') == std::string_view::npos) return std::string(value);
  const AGPVarsData& vars = AGPVars();
  const std::pair<std::string_view, std::string> tokens[] = {
      {"{PROJ.ProjVar}", vars.ProjVar},
      {"{DB.DBVar}", vars.DBVar},
      {"{PROJ.AppCompatVersion}", vars.AppCompatVersion.toText()},
      {"{ProjClassName}", WebPageClassPrefix() + vars.ProjVar},
  };
  std::string out(value);
  for (const auto& [token, replacement] : tokens)
    out = replaceIgnoringCase(out, token, replacement);
  return out;
}

std::string asGiven(std::string_view value) {
  return std::string(value);
}

struct TextAttribute {
  std::string_view name;  // in lower case
  std::string AGPControl::*field;
  std::string (*normalise)(std::string_view);
};

constexpr TextAttribute kTextAttributes[] = {
    {"id", &AGPControl::CtrlID, asGiven},
    {"type", &AGPControl::CtrlType, asGiven},
    {"ofile", &AGPControl::CtrlOFile, substituteProjectTokens},
    {"oext", &AGPControl::CtrlOExt, asGiven},
    {"ofolder", &AGPControl::CtrlOFolder, substituteProjectTokens},
    {"ofolderid", &AGPControl::CtrlOFolderID, asGiven},
    {"ifiles", &AGPControl::CtrlIFiles, asGiven},
    {"ifolder", &AGPControl::CtrlIFolder, normaliseInputFolder},
    {"cond", &AGPControl::CtrlCond, asGiven},
    {"tagext", &AGPControl::CtrlTagExt, asGiven},
    {"parm", &AGPControl::CtrlParm, asGiven},
    {"extension", &AGPControl::CtrlExt, asGiven},
    {"action", &AGPControl::CtrlAction, asGiven},
    {"remark", &AGPControl::CtrlRemark, asGiven},
};

struct FlagAttribute {
  std::string_view name;  // in lower case
  bool AGPControl::*field;
};

constexpr FlagAttribute kFlagAttributes[] = {
    {"space", &AGPControl::CtrlSpace},
    {"overwrite", &AGPControl::CtrlOverwrite},
};

bool isHeaderOrFooter(std::string_view sessValue) {
  const std::string value = text::toLower(sessValue);
  return value == "header" || value == "footer" || value == "rptheader" || value == "rptfooter";
}

bool isElementNamed(const pugi::xml_node& node, std::string_view lowerName) {
  return node.type() == pugi::node_element && text::toLower(node.name()) == lowerName;
}

// The root's local name begins with the product key, in any case.
bool isControlFileRoot(const pugi::xml_node& root) {
  const std::string name = text::foldCase(xml::localName(root));
  return text::startsWith(name, text::foldCase(ProductKeyWord()));
}

}  // namespace

AGPControl::AGPControl() : sessions_(make<AGPSessions>()) {}

bool AGPControl::CtrlHasHeaderFooter() const {
  for (const Ref<AGPSession>& session : sessions_->items())
    if (session->SessType == "include" && isHeaderOrFooter(session->SessValue)) return true;
  return false;
}

void AGPControl::Load(const pugi::xml_node& xmlControl) {
  CtrlCond.clear();
  CtrlSpace = true;
  CtrlOverwrite = true;
  for (const pugi::xml_attribute& attribute : xmlControl.attributes())
    setAttribute(text::toLower(attribute.name()), attribute.value());
  sessions_->Load(xmlControl);
}

void AGPControl::setAttribute(std::string_view lowerName, std::string_view value) {
  for (const TextAttribute& known : kTextAttributes)
    if (lowerName == known.name) this->*known.field = known.normalise(value);
  for (const FlagAttribute& known : kFlagAttributes)
    if (lowerName == known.name)
      if (auto flag = Variant(value).toBoolean()) this->*known.field = *flag;
}

const MemberTable& AGPControl::members() const {
  using C = AGPControl;
  static const MemberTable table{
      field<&C::CtrlID>("CtrlID"),
      field<&C::CtrlType>("CtrlType"),
      field<&C::CtrlOFile>("CtrlOFile"),
      field<&C::CtrlOExt>("CtrlOExt"),
      field<&C::CtrlOFolder>("CtrlOFolder"),
      field<&C::CtrlOFolderID>("CtrlOFolderID"),
      field<&C::CtrlIFiles>("CtrlIFiles"),
      field<&C::CtrlIFolder>("CtrlIFolder"),
      field<&C::CtrlCond>("CtrlCond"),
      field<&C::CtrlTagExt>("CtrlTagExt"),
      field<&C::CtrlParm>("CtrlParm"),
      field<&C::CtrlSpace>("CtrlSpace"),
      field<&C::CtrlGen>("CtrlGen"),
      field<&C::CtrlSkipHeaderFooter>("CtrlSkipHeaderFooter"),
      field<&C::CtrlExt>("CtrlExt"),
      field<&C::CtrlAction>("CtrlAction"),
      field<&C::CtrlOverwrite>("CtrlOverwrite"),
      field<&C::CtrlRemark>("CtrlRemark"),
      property<&C::Sessions>("Sessions"),
      property<&C::CtrlHasHeaderFooter>("CtrlHasHeaderFooter"),
  };
  return table;
}

bool AGPControls::LoadControls(const Variant& file) {
  pugi::xml_document doc;
  if (!xml::loadFile(doc, file.toText())) {
    AGPVars().ExtensionLoadError = 1;
    return false;
  }
  clear();
  const pugi::xml_node root = doc.document_element();
  if (!isControlFileRoot(root)) {
    AGPVars().ExtensionLoadError = 2;
    return false;
  }
  readRootAttributes(root);
  for (const pugi::xml_node& child : root.children()) {
    if (!isElementNamed(child, "control")) continue;
    auto control = make<AGPControl>();
    control->Load(child);
    controls_.push_back(std::move(control));
  }
  return true;
}

void AGPControls::clear() {
  controls_.clear();
  curIndex_ = 0;
  prodDate_.clear();
  prodVersion_.clear();
  prodDesc_.clear();
  prodAuthor_.clear();
}

void AGPControls::readRootAttributes(const pugi::xml_node& root) {
  const std::pair<std::string_view, std::string*> known[] = {
      {"date", &prodDate_},
      {"version", &prodVersion_},
      {"desc", &prodDesc_},
      {"author", &prodAuthor_},
  };
  for (const pugi::xml_attribute& attribute : root.attributes()) {
    const std::string name = text::toLower(attribute.name());
    for (const auto& [lowerName, target] : known)
      if (name == lowerName) *target = attribute.value();
  }
}

Ref<AGPControl> AGPControls::Item(const Variant& Index) {
  std::size_t offset = controls_.size();
  if (Index.isNumeric()) {
    const std::int32_t number = Index.toLong().value_or(0);
    if (number >= 1 && number <= Count()) offset = static_cast<std::size_t>(number - 1);
  } else if (Index.isString()) {
    for (offset = 0; offset < controls_.size(); ++offset)
      if (controls_[offset]->CtrlID == Index.string()) break;
  }
  if (offset == controls_.size()) return nullptr;
  curIndex_ = static_cast<std::int16_t>(offset + 1);
  return controls_[offset];
}

AGPControl* AGPControls::current() const {
  if (curIndex_ < 1 || curIndex_ > Count()) return nullptr;
  return controls_[curIndex_ - 1].get();
}

bool AGPControls::ControlExist(const Ref<AGPControl>& Ctrl) const {
  if (!Ctrl) return false;
  for (const Ref<AGPControl>& control : controls_)
    if (control->CtrlID == Ctrl->CtrlID && control->CtrlTagExt == Ctrl->CtrlTagExt) return true;
  return false;
}

// The copy leaves out what belongs to a run (CtrlGen, CtrlSkipHeaderFooter)
// and the host's remark. Sessions lose their parameter and location on the
// way, as AddSession copies no more.
bool AGPControls::AddControl(const Ref<AGPControl>& Ctrl) {
  if (!Ctrl || ControlExist(Ctrl)) return false;
  auto copy = make<AGPControl>();
  copy->CtrlID = Ctrl->CtrlID;
  copy->CtrlType = Ctrl->CtrlType;
  copy->CtrlIFiles = Ctrl->CtrlIFiles;
  copy->CtrlIFolder = Ctrl->CtrlIFolder;
  copy->CtrlOFile = Ctrl->CtrlOFile;
  copy->CtrlOExt = Ctrl->CtrlOExt;
  copy->CtrlOFolder = Ctrl->CtrlOFolder;
  copy->CtrlOFolderID = Ctrl->CtrlOFolderID;
  copy->CtrlCond = Ctrl->CtrlCond;
  copy->CtrlTagExt = Ctrl->CtrlTagExt;
  copy->CtrlParm = Ctrl->CtrlParm;
  copy->CtrlSpace = Ctrl->CtrlSpace;
  copy->CtrlExt = Ctrl->CtrlExt;
  copy->CtrlAction = Ctrl->CtrlAction;
  copy->CtrlOverwrite = Ctrl->CtrlOverwrite;
  for (const Ref<AGPSession>& session : Ctrl->Sessions()->items()) {
    session->SessExt = Ctrl->CtrlExt;
    copy->Sessions()->AddSession(session, "", "");
  }
  controls_.push_back(std::move(copy));
  return true;
}

bool AGPControls::DeleteControl(const Ref<AGPControl>& Ctrl) {
  if (!Ctrl) return false;
  for (auto it = controls_.begin(); it != controls_.end(); ++it) {
    const AGPControl& control = **it;
    if (control.CtrlID == Ctrl->CtrlID && control.CtrlType == Ctrl->CtrlType &&
        control.CtrlTagExt == Ctrl->CtrlTagExt) {
      controls_.erase(it);
      return true;
    }
  }
  return false;
}

const MemberTable& AGPControls::members() const {
  using C = AGPControls;
  static const MemberTable table{
      property<&C::ProdDate>("ProdDate"),         property<&C::ProdVersion>("ProdVersion"),
      property<&C::ProdDesc>("ProdDesc"),         property<&C::ProdAuthor>("ProdAuthor"),
      method<&C::LoadControls>("LoadControls"),   method<&C::Count>("Count"),
      asDefault(property<&C::Item>("Item")),      property<&C::curIndex>("curIndex"),
      method<&C::ControlExist>("ControlExist"),   method<&C::AddControl>("AddControl"),
      method<&C::DeleteControl>("DeleteControl"),
  };
  return table;
}

std::string ControlFileErrorMessage(std::int16_t extensionLoadError) {
  constexpr std::string_view kAdvice = " Please check if the correct template file is in use!";
  const std::string_view problem =
      extensionLoadError == 2 ? ": Control file is invalid!" : ": Load control file failed!";
  return ProductMessage(std::string(problem) + std::string(kAdvice));
}

std::string WebPageClassPrefix() {
  const std::string setting =
      GeneralSetting("WebPageClassNamePrefix").toText();
  return setting.empty() ? DefaultWebPageClassPrefix(BRINDLEWORK_VERSION_MAJOR) : setting;
}

// Version 13 carried the year in its class names, and generated sites
// depend on that name.
std::string DefaultWebPageClassPrefix(int majorVersion) {
  const std::string version = majorVersion == 13 ? "2016" : std::to_string(majorVersion);
  return "Brindlework" + version + "_";
}

}  // namespace bw
