// System code and validation modules of the script host.
//
// By default both come finished from the shipped files (AGPStatus::GetSysCode).
// When the setting SYSCODE (or VALIDATECODE) names a list file, the code is
// assembled here from the files of that list instead: each system function
// is a template of its own, compiled by ConvertSystemTemplate into a member
// of the object SYSTEMFUNCTIONS, and every piece is first tried alone in
// ScriptTest so that an error names the file it is in.
#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "template/composition.h"
#include "template/parser.h"
#include "template/script_host.h"

namespace bw {
namespace {

std::string generalSetting(const char* name) {
  return ReadSetting("HKCU", AGPVars().RegGeneral, name).toText();
}

// Dumps go to the output folder; without one there is nowhere to put them.
void writeDump(const std::string& name, const std::string& textOut) {
  const std::string& destination = AGPVars().Destination;
  if (!destination.empty()) AGScript::ScriptWriteFile(files::joinPath(destination, name), textOut);
}

// The folder of a list file, through its last backslash or slash.
std::string folderOf(const std::string& path) {
  const std::size_t cut = path.find_last_of("\\/");
  return cut == std::string::npos ? std::string() : path.substr(0, cut + 1);
}

std::string fileText(const std::string& path) {
  return path.empty() ? std::string() : AGScript::ScriptReadFile(path);
}

// The `file` elements of a list file, in document order.
std::vector<pugi::xml_node> listEntries(const pugi::xml_document& doc) {
  std::vector<pugi::xml_node> entries;
  for (pugi::xml_node node : doc.document_element().children())
    if (node.type() == pugi::node_element && text::toLower(node.name()) == "file" &&
        *node.attribute("value").value())
      entries.push_back(node);
  return entries;
}

bool flag(const pugi::xml_node& node, const char* name) {
  return Variant(node.attribute(name).value()).toBoolean().value_or(false);
}

// A phrase id as a string literal: outer matching quotes removed as long as
// there are any, inner double quotes doubled.
std::string phraseLiteral(std::string_view name) {
  std::string id(text::trimBlanks(name));
  while (id.size() > 1 && (id.front() == '"' || id.front() == '\'') && id.back() == id.front())
    id = std::string(text::trimBlanks(std::string_view(id).substr(1, id.size() - 2)));
  return "\"" + text::replaceAll(id, "\"", "\"\"") + "\"";
}


}  // namespace

std::string AGScript::ConvertSystemTemplate(const std::string& source, bool multiline, bool indent,
                                            const std::string& id) {
  AGParser parser;
  parser.Parse(source);
  if (!AGPVars().ProjErr.empty()) return source;
  const bool jscript = scriptLang_ == "JScript";
  std::string out;
  auto add = [&](const std::string& expression) {
    out += jscript ? "ztOut += " + expression + ";" : id + " = " + id + " & " + expression;
    out += text::kCrLf;
  };
  for (std::int32_t k = 1; k <= parser.Count(); ++k) {
    parser.setBlockID(k);
    switch (parser.BlockType()) {
      case block_type::kCode:
        out += parser.BlockValue() + std::string(text::kCrLf);
        break;
      case block_type::kOutput:
        add(parser.BlockName());
        break;
      case block_type::kPhrase:
        add("Language.Phrase(" + phraseLiteral(parser.BlockName()) + ")");
        break;
      case block_type::kPhraseExpression:
        add("Language.Phrase(" + parser.BlockName() + ")");
        break;
      case block_type::kText: {
        std::string literal = parser.BlockValue();
        if (!multiline) literal = text::replaceAll(literal, text::kCrLf, "");
        if (!literal.empty()) literal = TextLiteral(scriptLang_, literal, indent ? "zt_IndentWrk" : "");
        // Literal text outside a function has nowhere to go.
        if (!literal.empty() && !id.empty()) add(literal);
        break;
      }
      default:  // indented output has no meaning in system code
        break;
    }
  }
  return out;
}

// Assembles system code from a list file; see the file comment.
class SystemCodeLoader {
 public:
  explicit SystemCodeLoader(AGScript& host) : host_(host), jscript_(host.scriptLang_ == "JScript") {}

  void load(const std::string& listPath) {
    pugi::xml_document doc;
    if (!xml::loadFile(doc, listPath)) {
      AGPVars().ProjErr = "Load syscode file " + listPath + " failed!";
      return;
    }
    const std::string prefixPath = generalSetting("SYSCODEPREFIX");
    const std::string suffixPath = generalSetting("SYSCODESUFFIX");
    host_.sysPrefix_ = fileText(prefixPath);
    host_.sysSuffix_ = fileText(suffixPath);
    const std::string folder = folderOf(listPath);
    for (const pugi::xml_node& entry : listEntries(doc))
      if (!addPiece(folder, entry)) return;
    if (prefixPath.empty() || suffixPath.empty()) {
      writeDump("syscode.txt", "'missing syscodeprefix or syscodesuffix\r\n");
      return;
    }
    const std::string joined = jscript_ ? plainCode_ + "\r\nvar SYSTEMFUNCTIONS = {\r\n" +
                                              functionCode_ + "\r\n};\r\n" + SystemCodePrelude()
                                        : plainCode_ + "Class cSystemFunctions\r\n" +
                                              functionCode_ + "End Class";
    // Every piece has passed ScriptTest; the joined code needs no report.
    host_.main_->addCode(joined);
    writeDump("syscode.txt", joined);
  }

 private:
  bool addPiece(const std::string& folder, const pugi::xml_node& entry) {
    const std::string value = entry.attribute("value").value();
    const bool isFunction = flag(entry, "function");
    const std::string id =
        isFunction ? std::string(text::trimBlanks(entry.attribute("id").value())) : "";
    const std::string parm =
        isFunction ? std::string(text::trimBlanks(entry.attribute("parm").value())) : "";
    std::string& code = host_.sysText_;
    code = AGScript::ScriptReadFile(folder + value);
    code = host_.ConvertSystemTemplate(code, flag(entry, "multiline"), flag(entry, "indent"), id);
    if (isFunction) code = head(id, parm) + code + tail(id, parm, flag(entry, "override"));
    std::string& error = AGPVars().ProjErr;
    if (!error.empty()) {
      error = value + ": " + error;
      writeDump(value, code + std::string(text::kCrLf) + error);
      return false;
    }
    if (isFunction) {
      if (jscript_ && !functionCode_.empty()) functionCode_ += ",";
      functionCode_ += std::string(text::kCrLf) + code;
    } else {
      plainCode_ += code;
    }
    if (!host_.test_->addCode(testForm(code, isFunction))) {
      writeDump(value, code);
      writeDump("syscode.txt", functionCode_);
      host_.CaptureScriptError(host_.test_.get(), value);
      return false;
    }
    return true;
  }

  // A JScript system function is an object member ("id: function() {...}"),
  // which parses only inside an object literal; it is tried there. The
  // member starts on a line of its own, so line numbers stay those of the
  // piece.
  std::string testForm(const std::string& code, bool isFunction) const {
    if (!jscript_ || !isFunction) return code;
    return "var ztSystemFunctionTest = {" + code + "\r\n};";
  }

  std::string marked(const std::string& textIn, const std::string& id, const std::string& parm) {
    return text::replaceAll(text::replaceAll(textIn, "<name>", id), "<parm>", parm);
  }

  std::string head(const std::string& id, const std::string& parm) {
    const std::string prefix = marked(host_.sysPrefix_, id, parm);
    if (jscript_)
      return "\r\n// " + id + "\r\n" + id + ": function(" + parm + ") {\r\nvar " + host_.outVar_ +
             " = \"\";\r\n" + prefix + "\r\n";
    return "\r\n' " + id + "\r\nFunction " + id + "(" + parm + ")\r\n" + prefix;
  }

  std::string tail(const std::string& id, const std::string& parm, bool override) {
    const std::string suffix = marked(host_.sysSuffix_, id, parm);
    if (jscript_)
      return suffix +
             "\r\nvar fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;\r\n"
             "return " + host_.outVar_ + ";\r\n}";
    std::string out = suffix;
    if (override)
      out += "\r\nIf SCRPT.UserModuleExist(\"USER_" + id + "\") Then " + id + "=USER_" + id + "(" +
             id + ")\r\n";
    return out + "End Function\r\n";
  }

  AGScript& host_;
  bool jscript_;
  std::string plainCode_;
  std::string functionCode_;
};

void AGScript::LoadSystemCode(const Variant& langid) {
  if (!main_) return;
  const std::string listPath = generalSetting("SYSCODE");
  if (!listPath.empty()) {
    SystemCodeLoader(*this).load(listPath);
    return;
  }
  sysText_ = Status().GetSysCode(langid).toText();
  if (!test_->addCode(sysText_))
    CaptureScriptError(test_.get(), "");
  else if (!main_->addCode(sysText_))
    CaptureScriptError(main_.get(), "");
}

void AGScript::LoadValidationCode() {
  if (!validate_) return;
  validateNames_.clear();
  const std::string listPath = generalSetting("VALIDATECODE");
  if (listPath.empty()) {
    validateText_ = Status().GetSysCode("VL").toText();
    if (validateText_.empty()) return;
    if (!validate_->addCode(validateText_)) {
      CaptureScriptError(validate_.get(), "");
      return;
    }
    collectValidationNames();
    return;
  }
  pugi::xml_document doc;
  if (!xml::loadFile(doc, listPath)) {
    AGPVars().ProjErr = "Load validate file " + listPath + " failed!";
    return;
  }
  const std::string folder = folderOf(listPath);
  std::string allCode;
  for (const pugi::xml_node& entry : listEntries(doc)) {
    const std::string value = entry.attribute("value").value();
    validateText_ = ScriptReadFile(folder + value);
    if (!AGPVars().ProjErr.empty()) {
      AGPVars().ProjErr = value + ": " + AGPVars().ProjErr;
      return;
    }
    allCode += std::string(text::kCrLf) + validateText_;
    if (!validateText_.empty() && !validate_->addCode(validateText_)) {
      CaptureScriptError(validate_.get(), value);
      return;
    }
  }
  writeDump("validatecode.txt", allCode);
  collectValidationNames();
}

}  // namespace bw
