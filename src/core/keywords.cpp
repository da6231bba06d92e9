#include "core/keywords.h"

#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/host.h"
#include "platform/text.h"
#include "platform/xml.h"

namespace bw {

bool AGPKeyword::Load(const Variant& file) {
  const std::string path = file.toText();
  pugi::xml_document doc;
  if (!xml::loadFile(doc, path)) {
    // Say it once: a second failure finds the error text set already.
    if (error_.empty()) {
      AGPVars().host->showMessage("Load keyword file \"" + path +
                                      "\" failed. Please check your keyword file.",
                                  AGPVars().ProductName, MessageIcon::Warning);
      error_ = "Load keyword file failed!";
    }
    return false;
  }
  error_.clear();
  pugi::xml_node root = doc.document_element();
  if (text::toLower(xml::localName(root)) != text::toLower(ProductKeyWord()) + ".keyword") {
    error_ = "Keyword file is invalid!";
    return true;
  }
  for (pugi::xml_node node : root.children()) {
    if (node.type() != pugi::node_element || text::toLower(node.name()) != "keyword") continue;
    addWord(node.attribute("lang").value(), node.attribute("value").value());
  }
  return true;
}

void AGPKeyword::addWord(const std::string& language, const std::string& word) {
  Words& words = byLanguage_[text::foldCase(language)];
  // A pair that is already there (same lang and value, exactly) is replaced
  // by itself: the list keeps one.
  for (const auto& [lang, value] : words_)
    if (lang == language && value == word) return;
  words_.emplace_back(language, word);
  words.exact.insert(word);
  words.folded.insert(text::foldCase(word));
}

bool AGPKeyword::matches(const std::string& languageKey, const std::string& word,
                         bool anyCase) const {
  auto it = byLanguage_.find(languageKey);
  if (it == byLanguage_.end()) return false;
  return anyCase ? it->second.folded.count(text::foldCase(word)) > 0
                 : it->second.exact.count(word) > 0;
}

bool AGPKeyword::IsKeyword(const std::string& language, const std::string& word) const {
  const bool anyCase = text::toLower(language) == "vb";
  return matches("*", word, anyCase) || matches(text::foldCase(language), word, anyCase);
}

const MemberTable& AGPKeyword::members() const {
  static const MemberTable table{
      property<&AGPKeyword::Count>("Count"),
      property<&AGPKeyword::curIndex, &AGPKeyword::setCurIndex>("curIndex"),
      method<&AGPKeyword::Load>("Load"),
      method<&AGPKeyword::IsKeyword>("IsKeyword"),
  };
  return table;
}

AGPKeyword& Keywords() {
  Ref<Dispatch>& slot = AGPVars().Keywords;
  if (!slot) {
    auto keywords = make<AGPKeyword>();
    slot = keywords;
    const std::string file = GeneralSetting("Keyword").toText();
    if (!file.empty()) keywords->Load(file);
  }
  return static_cast<AGPKeyword&>(*slot);
}

}  // namespace bw
