#include "platform/locale.h"

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>

#include "platform/text.h"

namespace bw::locale {
namespace {

// The codeset part of the locale the environment selects ("en_US.UTF-8"
// gives "UTF-8"), by the precedence of LC_ALL, LC_CTYPE and LANG.
std::string environmentCodeset() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* v = std::getenv(name);
    if (!v || !*v) continue;
    std::string_view locale = v;
    auto dot = locale.find('.');
    if (dot == std::string_view::npos) return {};
    std::string_view codeset = locale.substr(dot + 1);
    return std::string(codeset.substr(0, codeset.find('@')));
  }
  return {};
}

}  // namespace

std::string systemCodePage() {
  const std::string codeset = text::toUpper(environmentCodeset());
  std::string compact;
  for (char c : codeset)
    if (c != '-' && c != '_') compact += c;
  // No codeset, or the C and POSIX locales: the engine's text is UTF-8 in any
  // case, so that is the honest answer.
  if (compact.empty() || compact == "UTF8") return "65001";
  if (text::startsWith(compact, "ISO8859")) {
    int part = std::atoi(compact.c_str() + 7);
    if (part == 15) return "28605";
    if (part >= 1 && part <= 9) return std::to_string(28590 + part);
  }
  if (text::startsWith(compact, "CP") && compact.size() > 2) return compact.substr(2);
  static const std::pair<const char*, const char*> kNamed[] = {
      {"ANSIX3.41968", "20127"}, {"ASCII", "20127"}, {"KOI8R", "20866"}, {"KOI8U", "21866"},
      {"EUCJP", "51932"},        {"SHIFTJIS", "932"}, {"SJIS", "932"},     {"GB2312", "936"},
      {"GBK", "936"},            {"GB18030", "54936"}, {"BIG5", "950"},   {"EUCKR", "949"},
      {"TIS620", "874"},
  };
  for (const auto& [name, page] : kNamed)
    if (compact == name) return page;
  return "65001";
}

std::string charsetForCodePage(std::string_view codePageIn) {
  std::string digits;
  for (char c : codePageIn)
    if (c != '\0') digits += c;
  const int page = std::atoi(std::string(text::trimBlanks(digits)).c_str());

  struct Row {
    const char* charset;
    std::initializer_list<int> pages;
  };
  static const Row kTable[] = {
      {"iso-8859-1", {29001, 20106, 20277, 1142, 20278, 1143, 1147, 20273, 1141, 20871, 1149,
                      1148,  20280, 1144,  20284, 1145, 20285, 1146, 37,    1140, 861,   10079,
                      20108, 437,   20107, 20127, 850,  20105, 28591, 10000, 1252}},
      {"iso-8859-2", {852, 28592, 10029, 1250, 870}},
      {"iso-8859-3", {28593}},
      {"iso-8859-4", {775, 28594, 1257}},
      {"iso-8859-5", {866, 28595, 20866, 21866, 10007, 1251, 20880, 21025, 1026}},
      {"iso-8859-6", {708, 720, 28596, 10004, 1256, 20420}},
      {"iso-8859-7", {737, 28597, 10006, 1253, 869, 875, 20423}},
      {"iso-8859-8", {862, 38598, 28598, 10005, 1255, 20424}},
      {"iso-8859-9", {20905, 857, 28599, 10081, 1254}},
      {"iso-8859-15", {28605}},
      {"gb2312", {51936, 936, 52936, 10008, 50935}},
      {"big5", {950, 20000, 20002, 10002, 50937}},
      {"shift_jis", {50930, 20290, 50931, 51932, 50220, 50222, 50221, 10001, 932, 50939}},
      {"euc-kr", {50933, 20833, 949, 51949, 50225, 1361, 10003}},
      {"windows-874", {20838, 874}},
      {"windows-1258", {1258}},
      {"utf-16", {1200, 1201}},
      {"utf-7", {65000}},
      {"utf-8", {65001}},
  };
  for (const Row& row : kTable)
    for (int p : row.pages)
      if (p == page) return row.charset;
  return {};
}

}  // namespace bw::locale
