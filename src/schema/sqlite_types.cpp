#include "schema/sqlite_types.h"

#include <array>
#include <charconv>
#include <string>
#include <vector>

#include "platform/text.h"
#include "schema/connection.h"

namespace bw::schema {
namespace {

// How a type word turns into an ADO type, given the numbers in its "(...)".
enum class Shape {
  kSized,       // precision and size as listed, numbers ignored
  kDecimal,     // (precision, scale)
  kFixedText,   // (length), else long text
  kVarText,     // (length), else long text
  kLongText,    // numbers ignored
  kVarBinary,   // (length), else long binary
  kLongBinary,  // numbers ignored
};

struct Kind {
  Shape shape;
  std::int16_t type = 0;
  std::int32_t precision = 255;
  std::int32_t size = 0;
};

constexpr Kind kInteger{Shape::kSized, adotype::kInteger, 10, 4};
constexpr Kind kBigInt{Shape::kSized, adotype::kBigInt, 19, 8};
constexpr Kind kUnsignedBigInt{Shape::kSized, adotype::kUnsignedBigInt, 20, 8};
constexpr Kind kSmallInt{Shape::kSized, adotype::kSmallInt, 5, 2};
constexpr Kind kTinyInt{Shape::kSized, adotype::kTinyInt, 3, 1};
constexpr Kind kDouble{Shape::kSized, adotype::kDouble, 15, 8};
constexpr Kind kCurrency{Shape::kSized, adotype::kCurrency, 19, 8};
constexpr Kind kBoolean{Shape::kSized, adotype::kBoolean, 255, 2};
// Date precisions count the characters of the value's text form.
constexpr Kind kDate{Shape::kSized, adotype::kDbDate, 10, 6};
constexpr Kind kTime{Shape::kSized, adotype::kDbTime, 8, 6};
constexpr Kind kDateTime{Shape::kSized, adotype::kDbTimeStamp, 23, 16};
constexpr Kind kSmallDateTime{Shape::kSized, adotype::kDbTimeStamp, 16, 16};
constexpr Kind kDateTime2{Shape::kSized, adotype::kDbTimeStamp, 27, 16};
constexpr Kind kTimeStamp{Shape::kSized, adotype::kDbTimeStamp, 19, 16};
constexpr Kind kGuid{Shape::kSized, adotype::kGuid, 255, 16};
constexpr Kind kUntyped{Shape::kSized, adotype::kVarWChar, 255, 255};
constexpr Kind kDecimal{Shape::kDecimal};
constexpr Kind kFixedText{Shape::kFixedText};
constexpr Kind kVarText{Shape::kVarText};
constexpr Kind kLongText{Shape::kLongText};
constexpr Kind kVarBinary{Shape::kVarBinary};
constexpr Kind kLongBinary{Shape::kLongBinary};

struct TypeWord {
  std::string_view word;
  Kind kind;
};

constexpr std::array kTypeWords{
    TypeWord{"INT", kInteger},
    TypeWord{"INTEGER", kInteger},
    TypeWord{"MEDIUMINT", kInteger},
    TypeWord{"INT4", kInteger},
    TypeWord{"BIGINT", kBigInt},
    TypeWord{"INT8", kBigInt},
    TypeWord{"UNSIGNED BIG INT", kUnsignedBigInt},
    TypeWord{"SMALLINT", kSmallInt},
    TypeWord{"INT2", kSmallInt},
    TypeWord{"TINYINT", kTinyInt},
    TypeWord{"REAL", kDouble},
    TypeWord{"DOUBLE", kDouble},
    TypeWord{"DOUBLE PRECISION", kDouble},
    TypeWord{"FLOAT", kDouble},
    TypeWord{"NUMERIC", kDecimal},
    TypeWord{"DECIMAL", kDecimal},
    TypeWord{"MONEY", kCurrency},
    TypeWord{"CURRENCY", kCurrency},
    TypeWord{"BOOLEAN", kBoolean},
    TypeWord{"BOOL", kBoolean},
    TypeWord{"BIT", kBoolean},
    TypeWord{"DATE", kDate},
    TypeWord{"DATETIME", kDateTime},
    TypeWord{"SMALLDATETIME", kSmallDateTime},
    TypeWord{"DATETIME2", kDateTime2},
    TypeWord{"TIMESTAMP", kTimeStamp},
    TypeWord{"TIME", kTime},
    TypeWord{"CHAR", kFixedText},
    TypeWord{"NCHAR", kFixedText},
    TypeWord{"CHARACTER", kFixedText},
    TypeWord{"VARCHAR", kVarText},
    TypeWord{"NVARCHAR", kVarText},
    TypeWord{"VARYING CHARACTER", kVarText},
    TypeWord{"NATIVE CHARACTER", kVarText},
    TypeWord{"CHARACTER VARYING", kVarText},
    TypeWord{"TEXT", kLongText},
    TypeWord{"CLOB", kLongText},
    TypeWord{"NTEXT", kLongText},
    TypeWord{"GUID", kGuid},
    TypeWord{"UNIQUEIDENTIFIER", kGuid},
    TypeWord{"UUID", kGuid},
    TypeWord{"BINARY", kVarBinary},
    TypeWord{"VARBINARY", kVarBinary},
    TypeWord{"BLOB", kLongBinary},
    TypeWord{"IMAGE", kLongBinary},
};

// A declared type taken apart: "character  varying (40)" gives the word
// "CHARACTER VARYING" and the numbers {40}.
struct DeclaredType {
  std::string upper;  // the whole declaration, upper case
  std::string word;   // before "(", blanks collapsed
  std::vector<std::int32_t> numbers;
};

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string CollapseBlanks(std::string_view s) {
  std::string out;
  for (char c : s) {
    if (!IsSpace(c)) {
      out += c;
    } else if (!out.empty() && out.back() != ' ') {
      out += ' ';
    }
  }
  if (!out.empty() && out.back() == ' ') out.pop_back();
  return out;
}

// The numbers between the parentheses; none unless all of them parse.
std::vector<std::int32_t> ParseNumbers(std::string_view inside) {
  std::vector<std::int32_t> numbers;
  for (const std::string& part : text::split(inside, ",")) {
    const std::string digits = CollapseBlanks(part);
    std::int32_t n = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size() || n < 0) {
      return {};
    }
    numbers.push_back(n);
  }
  return numbers;
}

DeclaredType Parse(std::string_view declared) {
  DeclaredType parsed{text::toUpper(declared), {}, {}};
  const std::string_view upper = parsed.upper;
  const std::size_t open = upper.find('(');
  parsed.word = CollapseBlanks(upper.substr(0, open));
  if (open != std::string_view::npos) {
    const std::size_t close = upper.find(')', open);
    if (close != std::string_view::npos) {
      parsed.numbers = ParseNumbers(upper.substr(open + 1, close - open - 1));
    }
  }
  return parsed;
}

bool Contains(std::string_view s, std::string_view part) {
  return s.find(part) != std::string_view::npos;
}

// SQLite's affinity rules, in SQLite's order, for words we do not know.
Kind KindByAffinity(std::string_view upper) {
  if (Contains(upper, "INT")) return kBigInt;
  if (Contains(upper, "CHAR") || Contains(upper, "CLOB") || Contains(upper, "TEXT")) {
    return kVarText;
  }
  if (Contains(upper, "BLOB")) return kLongBinary;
  if (Contains(upper, "REAL") || Contains(upper, "FLOA") || Contains(upper, "DOUB")) {
    return kDouble;
  }
  return kDecimal;
}

Kind KindOf(const DeclaredType& declared) {
  if (declared.upper.find_first_not_of(" \t\r\n") == std::string::npos) return kUntyped;
  for (const TypeWord& entry : kTypeWords) {
    if (entry.word == declared.word) return entry.kind;
  }
  return KindByAffinity(declared.upper);
}

AdoColumnType Sized(std::int16_t type, std::int32_t precision, std::int32_t size) {
  return {type, precision, size, std::nullopt, std::nullopt};
}

AdoColumnType WithLength(std::int16_t type, std::int32_t length) {
  return {type, 255, length, length, std::nullopt};
}

AdoColumnType Resolve(const Kind& kind, const std::vector<std::int32_t>& numbers) {
  const bool hasLength = !numbers.empty();
  switch (kind.shape) {
    case Shape::kSized:
      return Sized(kind.type, kind.precision, kind.size);
    case Shape::kDecimal:
      return {adotype::kNumeric, hasLength ? numbers[0] : 18, 19, std::nullopt,
              numbers.size() > 1 ? numbers[1] : 0};
    case Shape::kFixedText:
      if (hasLength) return WithLength(adotype::kWChar, numbers[0]);
      return Resolve(kLongText, numbers);
    case Shape::kVarText:
      if (hasLength) return WithLength(adotype::kVarWChar, numbers[0]);
      return Resolve(kLongText, numbers);
    case Shape::kLongText:
      return Sized(adotype::kLongVarWChar, 255, 1073741823);
    case Shape::kVarBinary:
      if (hasLength) return WithLength(adotype::kVarBinary, numbers[0]);
      return Resolve(kLongBinary, numbers);
    case Shape::kLongBinary:
      return Sized(adotype::kLongVarBinary, 255, 2147483647);
  }
  return Sized(kUntyped.type, kUntyped.precision, kUntyped.size);
}

}  // namespace

AdoColumnType MapDeclaredType(std::string_view declared) {
  const DeclaredType parsed = Parse(declared);
  return Resolve(KindOf(parsed), parsed.numbers);
}

bool IsNumericType(std::int16_t type) {
  switch (type) {
    case adotype::kSmallInt:
    case adotype::kInteger:
    case adotype::kSingle:
    case adotype::kDouble:
    case adotype::kCurrency:
    case adotype::kDecimal:
    case adotype::kTinyInt:
    case adotype::kUnsignedTinyInt:
    case adotype::kUnsignedSmallInt:
    case adotype::kUnsignedInt:
    case adotype::kBigInt:
    case adotype::kUnsignedBigInt:
    case adotype::kNumeric:
    case adotype::kVarNumeric:
      return true;
  }
  return false;
}

std::int32_t TypeAttributes(std::int16_t type) {
  switch (type) {
    case adotype::kBoolean:
    case adotype::kDate:
    case adotype::kDbDate:
    case adotype::kDbTime:
    case adotype::kDbTimeStamp:
    case adotype::kDbTime2:
    case adotype::kDbTimeStampOffset:
    case adotype::kGuid:
    case adotype::kWChar:  // CHAR(n): the declared length is the length of every value
      return adoattr::kFixed;
    case adotype::kLongVarChar:
    case adotype::kLongVarWChar:
    case adotype::kLongVarBinary:
      return adoattr::kLong;
  }
  return IsNumericType(type) ? adoattr::kFixed : 0;
}

}  // namespace bw::schema
