#include "language/language_file.h"

#include "platform/text.h"

namespace bw {

std::string ChooseText(const std::string& attributeValue, const std::string& phrase,
                       bool multiLanguage) {
  const std::string& first = multiLanguage ? phrase : attributeValue;
  const std::string& second = multiLanguage ? attributeValue : phrase;
  return first.empty() ? second : first;
}

// A token is "{" up to the next "}", as the pattern {([^}]*)} matches it:
// "{{a}" is one token naming "{a". All tokens are found in the text as it
// came, then each is replaced in the text as it is by then, so a folder
// that itself holds a later token's text has that replaced too.
std::string ExpandFolderTokens(const std::string& text, const FolderLookup& folderOf) {
  std::vector<std::string> tokens;
  for (std::size_t open = text.find('{'); open != std::string::npos; open = text.find('{', open)) {
    const std::size_t close = text.find('}', open + 1);
    if (close == std::string::npos) break;
    tokens.push_back(text.substr(open, close - open + 1));
    open = close + 1;
  }
  std::string expanded = text;
  for (const std::string& token : tokens)
    expanded = text::replaceAll(expanded, token, folderOf(token.substr(1, token.size() - 2)));
  return expanded;
}

std::optional<std::vector<std::string>> ParseQuotedList(std::string_view text) {
  if (text.empty()) return std::nullopt;
  std::vector<std::string> items;
  while (!text.empty()) {
    if (text.front() != '"') return std::vector<std::string>();
    std::size_t close = 1;
    while (true) {
      close = text.find('"', close);
      if (close == std::string_view::npos) return std::vector<std::string>();
      if (close + 1 < text.size() && text[close + 1] == '"') {
        close += 2;  // a doubled quote belongs to the item
        continue;
      }
      break;
    }
    const std::string_view item = text.substr(1, close - 1);
    text.remove_prefix(close + 1);
    if (!text.empty()) {
      if (text.front() != ',') return std::vector<std::string>();
      text.remove_prefix(1);
    }
    if (!item.empty()) items.push_back(text::replaceAll(item, "\"\"", "\""));
  }
  return items;
}

bool HasNumberMark(std::string_view entry) {
  return text::ifindAscii(entry, "%n") != std::string_view::npos;
}

std::string NumberedName(std::string_view entry, int n) {
  const std::string number = std::to_string(n);
  std::string name;
  std::size_t from = 0;
  for (std::size_t at = text::ifindAscii(entry, "%n"); at != std::string_view::npos;
       at = text::ifindAscii(entry, "%n", from)) {
    name.append(entry.substr(from, at - from)).append(number);
    from = at + 2;
  }
  return name.append(entry.substr(from));
}

std::vector<std::string> AttributeList(std::string_view setting) {
  std::vector<std::string> entries;
  for (const std::string& raw : text::split(setting, ",")) {
    const std::string_view entry = text::trimBlanks(raw);
    if (!entry.empty()) entries.emplace_back(entry);
  }
  return entries;
}

}  // namespace bw
