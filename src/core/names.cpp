#include "core/names.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "core/agp_vars.h"
#include "core/keywords.h"
#include "platform/text.h"

namespace bw {
namespace {

bool isAsciiLetter(char32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isAsciiDigit(char32_t c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string MakeVarName(std::string_view textIn, std::string_view prefix) {
  std::string name(textIn);
  const std::string& language = AGPVars().ProgramLanguage;
  while (Keywords().IsKeyword(language, name)) name.insert(0, "z");

  std::string result;
  for (std::size_t pos = 0; pos < name.size();) {
    char32_t c = text::decodeUtf8(name, pos);
    if (c == ' ' || c == '.') {
      result += '_';
    } else if (isAsciiLetter(c) || isAsciiDigit(c) || c == '_') {
      result += static_cast<char>(c);
    } else {
      for (char16_t unit : text::utf16Units(c)) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%X", static_cast<unsigned>(unit));
        result += hex;
      }
    }
  }
  if (!result.empty() && !isAsciiLetter(static_cast<unsigned char>(result[0]))) result.insert(0, "z");
  return std::string(prefix) + result;
}

std::string CaptionFromName(std::string_view nameIn) {
  std::string name(text::trimBlanks(nameIn));
  for (char& c : name)
    if (c == '-' || c == '_') c = ' ';

  // A character from this set that follows one from outside it starts a
  // new word: "OrderID" -> "Order ID", "Price(USD)" -> "Price (USD)".
  auto startsWord = [](char32_t c) {
    return (c >= 'A' && c <= 'Z') || isAsciiDigit(c) || c == '<' || c == '(' || c == '[' ||
           c == '{';
  };
  std::vector<std::string> words;
  for (const std::string& part : text::split(name, " ")) {
    if (part.empty()) continue;  // runs of blanks
    std::string word;
    bool previousInSet = true;
    for (std::size_t pos = 0; pos < part.size();) {
      const std::size_t start = pos;
      char32_t c = text::decodeUtf8(part, pos);
      const bool inSet = startsWord(c);
      if (inSet && !previousInSet) word += ' ';
      word.append(part, start, pos - start);
      previousInSet = inSet;
    }
    words.push_back(std::move(word));
  }
  return text::join(words, " ");
}

std::int16_t FieldTypeClass(std::int32_t adoType) {
  switch (adoType) {
    case 20: case 3: case 2: case 16: case 17: case 18: case 19: case 21:
      return 1;
    case 7: case 133: case 134: case 135: case 145: case 146:
      return 2;
    case 201: case 203: case 129: case 130: case 200: case 202: case 141:
      return 3;
    case 11:
      return 4;
    case 72:
      return 5;
    case 204: case 205: case 128:
      return 6;
    default:
      return 7;
  }
}

std::string FldSrchOprs(std::int16_t adoType) {
  std::vector<std::string> operators{"USER SELECT", "=", "<>"};
  switch (FieldTypeClass(adoType)) {
    case 4:
      break;
    case 3:
      operators.insert(operators.end(),
                       {"<", "<=", ">", ">=", "BETWEEN", "LIKE", "NOT LIKE", "STARTS WITH"});
      break;
    default:
      operators.insert(operators.end(), {"<", "<=", ">", ">=", "BETWEEN"});
      break;
  }
  return text::join(operators, text::kCrLf);
}

std::string SortKeyList(std::string_view list) {
  if (text::trimBlanks(list).empty()) return {};
  std::vector<std::string> names;
  std::size_t start = 0;
  for (std::size_t at; (at = list.find(text::kCrLf, start)) != std::string_view::npos; start = at + 2)
    names.emplace_back(list.substr(start, at - start));
  names.emplace_back(list.substr(start));
  std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return text::trimBlanks(a) < text::trimBlanks(b);
  });
  return text::join(names, text::kCrLf);
}

}  // namespace bw
