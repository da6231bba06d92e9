#include "template/code_base.h"

#include "core/agp_vars.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {
namespace {

bool sameKeys(const CodeRecord& a, const CodeRecord& b) {
  return text::iequals(a.CodeScriptType, b.CodeScriptType) &&
         text::iequals(a.CodeCodeType, b.CodeCodeType) && text::iequals(a.CodeName, b.CodeName) &&
         text::iequals(a.CodeLanguage, b.CodeLanguage);
}

// The record that a `code` element describes; attributes of other names
// are ignored.
CodeRecord recordOf(const pugi::xml_node& code) {
  CodeRecord record;
  for (pugi::xml_attribute attribute : code.attributes()) {
    const std::string name = text::toLower(attribute.name());
    if (name == "scripttype")
      record.CodeScriptType = attribute.value();
    else if (name == "codetype")
      record.CodeCodeType = attribute.value();
    else if (name == "name")
      record.CodeName = attribute.value();
    else if (name == "language")
      record.CodeLanguage = attribute.value();
  }
  record.CodeText = code.first_child().value();
  return record;
}

}  // namespace

bool AGPCodeBase::Load(const Variant& file) {
  pugi::xml_document doc;
  // The text goes out as written: CodeSource adds the CR of each line end.
  if (!xml::loadFile(doc, file.toText(), xml::LineEnds::Keep)) {
    error_ = "Load code base file failed!";
    return false;
  }
  error_.clear();
  const pugi::xml_node root = doc.document_element();
  if (text::toLower(xml::localName(root)) != text::toLower(ProductKeyWord()) + ".codebase") {
    error_ = "Code base file is invalid!";
    return true;
  }
  records_.clear();
  curIndex_ = 0;
  for (pugi::xml_node node : root.children())
    if (node.type() == pugi::node_element && text::toLower(node.name()) == "code") takeCode(node);
  return true;
}

// A place that the file names again takes the later text.
void AGPCodeBase::takeCode(const pugi::xml_node& code) {
  CodeRecord record = recordOf(code);
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (!sameKeys(records_[i], record)) continue;
    records_[i].CodeText = std::move(record.CodeText);
    curIndex_ = static_cast<std::int32_t>(i + 1);
    return;
  }
  records_.push_back(std::move(record));
  curIndex_ = Count();
}

const CodeRecord* AGPCodeBase::find(const std::string& scriptType, const std::string& codeType,
                                    const std::string& name, const std::string& language) const {
  const CodeRecord wanted{scriptType, codeType, name, language, {}};
  for (const CodeRecord& record : records_)
    if (sameKeys(record, wanted)) return &record;
  return nullptr;
}

bool AGPCodeBase::CodeExist(const std::string& scriptType, const std::string& codeType,
                            const std::string& name, const std::string& language) const {
  return find(scriptType, codeType, name, language) != nullptr;
}

std::string AGPCodeBase::CodeSource(const std::string& scriptType, const std::string& codeType,
                                    const std::string& name, const std::string& language) const {
  const CodeRecord* record = find(scriptType, codeType, name, language);
  return record ? text::replaceAll(record->CodeText, "\n", "\r\n") : std::string();
}

const MemberTable& AGPCodeBase::members() const {
  using C = AGPCodeBase;
  static const MemberTable table{
      property<&C::Count>("Count"),
      property<&C::curIndex, &C::setCurIndex>("curIndex"),
      method<&C::Load>("Load"),
      method<&C::CodeExist>("CodeExist"),
      method<&C::CodeSource>("CodeSource"),
  };
  return table;
}

AGPCodeBase& CodeBase() {
  Ref<Dispatch>& slot = AGPVars().CodeBase;
  if (!slot) slot = make<AGPCodeBase>();
  return static_cast<AGPCodeBase&>(*slot);
}

}  // namespace bw
