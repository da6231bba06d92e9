// Variant: the tagged value of the engine.
//
// Bags, collection items and most arguments of the automation interface hold
// a Variant. Its conversions follow the rules of a Basic-style tagged value:
// "True" and "-1" are true, numbers may arrive as text, any nonzero number is
// true, and True is -1 as a number. A conversion that cannot be made yields
// std::nullopt; callers that follow "a failed conversion gives Empty" map that
// to an Empty Variant.
//
// Layout: one tag byte and an eight-byte payload. Strings and arrays are
// immutable, reference-counted representations, so copying a Variant never
// copies text; an empty string needs no allocation.
//
//   +------+---------+--------------------------------------------+
//   | type | padding | payload: bool / int / double / StringRep* |
//   +------+---------+--------------------------------------------+
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "core/ref.h"

namespace bw {

class Dispatch;

// Type tags, numbered as the VarType function of the Basic family does.
enum class VarType : std::uint16_t {
  Empty = 0,
  Null = 1,
  Integer = 2,  // 16-bit
  Long = 3,     // 32-bit
  Single = 4,
  Double = 5,
  Date = 7,
  String = 8,
  Object = 9,
  Boolean = 11,
  Byte = 17,
  Array = 0x200C,
};

class Variant {
 public:
  Variant() noexcept : type_(VarType::Empty) { u_.d = 0; }
  Variant(bool v) noexcept : type_(VarType::Boolean) { u_.b = v; }
  Variant(std::int16_t v) noexcept : type_(VarType::Integer) { u_.i = v; }
  Variant(int v) noexcept : type_(VarType::Long) { u_.l = v; }
  Variant(float v) noexcept : type_(VarType::Single) { u_.f = v; }
  Variant(double v) noexcept : type_(VarType::Double) { u_.d = v; }
  Variant(std::string_view v);
  Variant(const std::string& v) : Variant(std::string_view(v)) {}
  Variant(const char* v) : Variant(std::string_view(v)) {}
  Variant(Ref<Dispatch> object);
  template <typename T, typename = std::enable_if_t<std::is_base_of_v<Dispatch, T> &&
                                                    !std::is_same_v<T, Dispatch>>>
  Variant(const Ref<T>& object) : Variant(Ref<Dispatch>(object)) {}

  static Variant null() noexcept;
  static Variant date(double oaDate) noexcept;
  static Variant byte(std::uint8_t v) noexcept;
  static Variant array(std::vector<Variant> items);

  Variant(const Variant& o) noexcept;
  Variant(Variant&& o) noexcept;
  Variant& operator=(const Variant& o) noexcept;
  Variant& operator=(Variant&& o) noexcept;
  ~Variant();

  VarType type() const { return type_; }
  bool isEmpty() const { return type_ == VarType::Empty; }
  bool isNull() const { return type_ == VarType::Null; }
  bool isString() const { return type_ == VarType::String; }
  bool isObject() const { return type_ == VarType::Object; }
  bool isArray() const { return type_ == VarType::Array; }
  bool isNumeric() const;  // Integer, Long, Single, Double or Byte

  // Raw payloads; each requires the matching type.
  bool boolean() const { return u_.b; }
  std::int16_t integer() const { return u_.i; }
  std::int32_t lng() const { return u_.l; }
  std::uint8_t byteValue() const { return u_.by; }
  double dbl() const { return u_.d; }
  std::string_view string() const;  // String only; "" for any other type
  Dispatch* object() const;         // Object only; nullptr otherwise
  const std::vector<Variant>& items() const;  // Array only; empty otherwise

  // Basic-style conversions.
  std::optional<bool> toBoolean() const;
  std::optional<std::int16_t> toInteger() const;  // rounds half to even
  std::optional<std::int32_t> toLong() const;     // rounds half to even
  std::optional<std::uint8_t> toByte() const;
  std::optional<float> toSingle() const;
  std::optional<double> toDouble() const;
  std::optional<double> toDate() const;  // as an OLE date number

  // The value as it reads when concatenated to a string: Empty and Null
  // give "", Booleans "True"/"False", numbers in the Basic's display form.
  std::string toText() const;

  // Same type and same value; strings compare exactly.
  bool sameAs(const Variant& o) const;

 private:
  struct StringRep;
  struct ArrayRep;

  void retain() noexcept;
  void drop() noexcept;

  VarType type_;
  union {
    bool b;
    std::uint8_t by;
    std::int16_t i;
    std::int32_t l;
    float f;
    double d;
    StringRep* s;
    Dispatch* o;
    ArrayRep* a;
  } u_;
};

static_assert(sizeof(Variant) == 16, "Variant must stay small: bags hold millions");

// Number and date text in the forms of the Basic family.
std::string formatNumber(double value, int significantDigits = 15);
std::optional<double> parseNumber(std::string_view text);
std::string formatDate(double oaDate);  // M/D/YYYY h:mm:ss AM, parts omitted as the Basic does
std::optional<double> parseDate(std::string_view text);

}  // namespace bw
