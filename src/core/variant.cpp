#include "core/variant.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "core/dispatch.h"
#include "platform/clock.h"
#include "platform/text.h"

namespace bw {

struct Variant::StringRep {
  std::int32_t refs;
  std::uint32_t size;
  char data[1];

  static StringRep* create(std::string_view text) {
    void* mem = ::operator new(offsetof(StringRep, data) + text.size() + 1);
    auto* rep = static_cast<StringRep*>(mem);
    rep->refs = 1;
    rep->size = static_cast<std::uint32_t>(text.size());
    std::memcpy(rep->data, text.data(), text.size());
    rep->data[text.size()] = '\0';
    return rep;
  }
};

struct Variant::ArrayRep {
  std::int32_t refs = 1;
  std::vector<Variant> items;
};

Variant::Variant(std::string_view v) : type_(VarType::String) {
  u_.s = v.empty() ? nullptr : StringRep::create(v);
}

Variant::Variant(Ref<Dispatch> object) : type_(VarType::Object) { u_.o = object.detach(); }

Variant Variant::null() noexcept {
  Variant v;
  v.type_ = VarType::Null;
  return v;
}

Variant Variant::date(double oaDate) noexcept {
  Variant v(oaDate);
  v.type_ = VarType::Date;
  return v;
}

Variant Variant::byte(std::uint8_t b) noexcept {
  Variant v;
  v.type_ = VarType::Byte;
  v.u_.by = b;
  return v;
}

Variant Variant::array(std::vector<Variant> items) {
  Variant v;
  v.type_ = VarType::Array;
  v.u_.a = new ArrayRep{1, std::move(items)};
  return v;
}

void Variant::retain() noexcept {
  switch (type_) {
    case VarType::String:
      if (u_.s) ++u_.s->refs;
      break;
    case VarType::Object:
      if (u_.o) u_.o->addRef();
      break;
    case VarType::Array:
      ++u_.a->refs;
      break;
    default:
      break;
  }
}

void Variant::drop() noexcept {
  switch (type_) {
    case VarType::String:
      if (u_.s && --u_.s->refs == 0) ::operator delete(u_.s);
      break;
    case VarType::Object:
      if (u_.o) u_.o->release();
      break;
    case VarType::Array:
      if (--u_.a->refs == 0) delete u_.a;
      break;
    default:
      break;
  }
}

Variant::Variant(const Variant& o) noexcept : type_(o.type_), u_(o.u_) { retain(); }

Variant::Variant(Variant&& o) noexcept : type_(o.type_), u_(o.u_) {
  o.type_ = VarType::Empty;
}

Variant& Variant::operator=(const Variant& o) noexcept {
  if (this != &o) {
    Variant copy(o);
    *this = std::move(copy);
  }
  return *this;
}

Variant& Variant::operator=(Variant&& o) noexcept {
  if (this != &o) {
    drop();
    type_ = o.type_;
    u_ = o.u_;
    o.type_ = VarType::Empty;
  }
  return *this;
}

Variant::~Variant() { drop(); }

bool Variant::isNumeric() const {
  switch (type_) {
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Byte:
      return true;
    default:
      return false;
  }
}

std::string_view Variant::string() const {
  if (type_ != VarType::String || !u_.s) return {};
  return {u_.s->data, u_.s->size};
}

Dispatch* Variant::object() const { return type_ == VarType::Object ? u_.o : nullptr; }

const std::vector<Variant>& Variant::items() const {
  static const std::vector<Variant> kNone;
  return type_ == VarType::Array ? u_.a->items : kNone;
}

// ---------------------------------------------------------------------------
// Conversions. Everything numeric goes through toDouble, then is rounded and
// range-checked for the integer types.

std::optional<double> Variant::toDouble() const {
  switch (type_) {
    case VarType::Empty:
      return 0.0;
    case VarType::Boolean:
      return u_.b ? -1.0 : 0.0;
    case VarType::Integer:
      return u_.i;
    case VarType::Long:
      return u_.l;
    case VarType::Byte:
      return u_.by;
    case VarType::Single:
      return u_.f;
    case VarType::Double:
    case VarType::Date:
      return u_.d;
    case VarType::String: {
      std::string_view text = string();
      if (auto number = parseNumber(text)) return number;
      // The Basic also takes "True"/"False" where a number is wanted.
      std::string_view t = text::trimBlanks(text);
      if (text::iequals(t, "True")) return -1.0;
      if (text::iequals(t, "False")) return 0.0;
      return std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

namespace {

template <typename Int>
std::optional<Int> roundToInteger(std::optional<double> value) {
  if (!value || !std::isfinite(*value)) return std::nullopt;
  double rounded = std::nearbyint(*value);  // default rounding mode: half to even
  if (rounded < static_cast<double>(std::numeric_limits<Int>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<Int>::max()))
    return std::nullopt;
  return static_cast<Int>(rounded);
}

}  // namespace

std::optional<std::int16_t> Variant::toInteger() const {
  if (type_ == VarType::Integer) return u_.i;
  return roundToInteger<std::int16_t>(toDouble());
}

std::optional<std::int32_t> Variant::toLong() const {
  if (type_ == VarType::Long) return u_.l;
  return roundToInteger<std::int32_t>(toDouble());
}

std::optional<std::uint8_t> Variant::toByte() const {
  if (type_ == VarType::Byte) return u_.by;
  return roundToInteger<std::uint8_t>(toDouble());
}

std::optional<float> Variant::toSingle() const {
  auto d = toDouble();
  if (!d) return std::nullopt;
  if (std::isfinite(*d) && std::fabs(*d) > std::numeric_limits<float>::max()) return std::nullopt;
  return static_cast<float>(*d);
}

std::optional<bool> Variant::toBoolean() const {
  switch (type_) {
    case VarType::Boolean:
      return u_.b;
    case VarType::String: {
      std::string_view t = text::trimBlanks(string());
      if (text::iequals(t, "True")) return true;
      if (text::iequals(t, "False")) return false;
      if (auto number = parseNumber(t)) return *number != 0;
      return std::nullopt;
    }
    default: {
      auto d = toDouble();
      if (!d) return std::nullopt;
      return *d != 0;
    }
  }
}

std::optional<double> Variant::toDate() const {
  switch (type_) {
    case VarType::Date:
      return u_.d;
    case VarType::String:
      if (auto date = parseDate(string())) return date;
      return parseNumber(string());
    case VarType::Empty:
    case VarType::Boolean:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Byte:
    case VarType::Single:
    case VarType::Double:
      return toDouble();
    default:
      return std::nullopt;
  }
}

std::string Variant::toText() const {
  switch (type_) {
    case VarType::String:
      return std::string(string());
    case VarType::Boolean:
      return u_.b ? "True" : "False";
    case VarType::Integer:
      return std::to_string(u_.i);
    case VarType::Long:
      return std::to_string(u_.l);
    case VarType::Byte:
      return std::to_string(u_.by);
    case VarType::Single:
      return formatNumber(u_.f, 7);
    case VarType::Double:
      return formatNumber(u_.d, 15);
    case VarType::Date:
      return formatDate(u_.d);
    default:
      return {};
  }
}

bool Variant::sameAs(const Variant& o) const {
  if (type_ != o.type_) return false;
  switch (type_) {
    case VarType::Empty:
    case VarType::Null:
      return true;
    case VarType::Boolean:
      return u_.b == o.u_.b;
    case VarType::Integer:
      return u_.i == o.u_.i;
    case VarType::Long:
      return u_.l == o.u_.l;
    case VarType::Byte:
      return u_.by == o.u_.by;
    case VarType::Single:
      return u_.f == o.u_.f;
    case VarType::Double:
    case VarType::Date:
      return u_.d == o.u_.d;
    case VarType::String:
      return string() == o.string();
    case VarType::Object:
      return u_.o == o.u_.o;
    case VarType::Array: {
      const auto& a = items();
      const auto& b = o.items();
      if (a.size() != b.size()) return false;
      for (std::size_t k = 0; k < a.size(); ++k)
        if (!a[k].sameAs(b[k])) return false;
      return true;
    }
  }
  return false;
}

// ---------------------------------------------------------------------------
// Number text.

std::string formatNumber(double value, int significantDigits) {
  if (value == 0) return "0";
  // %G gives exactly the Basic's display form: no trailing zeros, and the
  // exponent form ("1E+15", "1E-05") below 1E-4 and from 10^digits up.
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*G", significantDigits, value);
  return buf;
}

std::optional<double> parseNumber(std::string_view text) {
  std::string_view t = text;
  while (!t.empty() && (t.front() == ' ' || t.front() == '\t')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == ' ' || t.back() == '\t')) t.remove_suffix(1);
  if (t.empty()) return std::nullopt;

  // &H hexadecimal and &O octal literals.
  if (t.size() > 2 && t[0] == '&' && (t[1] == 'H' || t[1] == 'h' || t[1] == 'O' || t[1] == 'o')) {
    int base = (t[1] == 'H' || t[1] == 'h') ? 16 : 8;
    std::string digits(t.substr(2));
    char* end = nullptr;
    unsigned long long v = std::strtoull(digits.c_str(), &end, base);
    if (*end != '\0' || v > 0xFFFFFFFFull) return std::nullopt;
    // Up to four hex digits form an Integer, more a Long: both signed.
    if (v <= 0xFFFF && digits.size() <= 4) return static_cast<double>(static_cast<std::int16_t>(v));
    return static_cast<double>(static_cast<std::int32_t>(v));
  }

  // Sign, digits with optional thousands commas, point, exponent.
  std::string clean;
  std::size_t k = 0;
  if (t[k] == '+' || t[k] == '-') clean += t[k++];
  bool digitsSeen = false;
  for (; k < t.size() && (std::isdigit(static_cast<unsigned char>(t[k])) || t[k] == ','); ++k) {
    if (t[k] == ',') {
      if (!digitsSeen) return std::nullopt;
      continue;
    }
    clean += t[k];
    digitsSeen = true;
  }
  if (k < t.size() && t[k] == '.') {
    clean += t[k++];
    for (; k < t.size() && std::isdigit(static_cast<unsigned char>(t[k])); ++k) {
      clean += t[k];
      digitsSeen = true;
    }
  }
  if (!digitsSeen) return std::nullopt;
  if (k < t.size() && (t[k] == 'e' || t[k] == 'E' || t[k] == 'd' || t[k] == 'D')) {
    clean += 'e';
    ++k;
    if (k < t.size() && (t[k] == '+' || t[k] == '-')) clean += t[k++];
    bool expDigits = false;
    for (; k < t.size() && std::isdigit(static_cast<unsigned char>(t[k])); ++k) {
      clean += t[k];
      expDigits = true;
    }
    if (!expDigits) return std::nullopt;
  }
  if (k != t.size()) return std::nullopt;
  double v = std::strtod(clean.c_str(), nullptr);
  if (!std::isfinite(v)) return std::nullopt;
  return v;
}

// ---------------------------------------------------------------------------
// Dates: the text forms of OLE date numbers (see platform/clock.h).

namespace {

bool readInt(std::string_view& s, int& out, int maxDigits) {
  int n = 0, digits = 0;
  while (!s.empty() && std::isdigit(static_cast<unsigned char>(s.front())) && digits < maxDigits) {
    n = n * 10 + (s.front() - '0');
    s.remove_prefix(1);
    ++digits;
  }
  out = n;
  return digits > 0;
}

bool readTime(std::string_view s, int& h, int& mi, int& sec) {
  sec = 0;
  if (!readInt(s, h, 2) || s.empty() || s.front() != ':') return false;
  s.remove_prefix(1);
  if (!readInt(s, mi, 2)) return false;
  if (!s.empty() && s.front() == ':') {
    s.remove_prefix(1);
    if (!readInt(s, sec, 2)) return false;
  }
  s = text::trimBlanks(s);
  if (text::iequals(s, "AM") || text::iequals(s, "PM")) {
    if (h < 1 || h > 12) return false;
    bool pm = text::iequals(s, "PM");
    h = h % 12 + (pm ? 12 : 0);
    s = {};
  }
  return s.empty() && h < 24 && mi < 60 && sec < 60;
}

bool validDay(int y, int m, int d) {
  if (m < 1 || m > 12 || d < 1) return false;
  return clock::splitDate(clock::makeDate({y, m, 1, 0, 0, 0}) + d - 1).month == m;
}

}  // namespace

std::string formatDate(double oaDate) {
  clock::DateParts p = clock::splitDate(oaDate);
  bool hasDate = std::trunc(oaDate) != 0;
  bool hasTime = p.hour || p.minute || p.second;
  char buf[64];
  std::string out;
  if (hasDate) {
    std::snprintf(buf, sizeof buf, "%d/%d/%04d", p.month, p.day, p.year);
    out = buf;
  }
  if (hasTime || !hasDate) {
    int h12 = p.hour % 12 == 0 ? 12 : p.hour % 12;
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, p.minute, p.second,
                  p.hour < 12 ? "AM" : "PM");
    if (!out.empty()) out += ' ';
    out += buf;
  }
  return out;
}

std::optional<double> parseDate(std::string_view textIn) {
  std::string_view s = text::trimBlanks(textIn);
  if (s.empty()) return std::nullopt;

  // Time of day alone.
  int h = 0, mi = 0, sec = 0;
  if (s.find_first_of("/-") == std::string_view::npos) {
    if (!readTime(s, h, mi, sec)) return std::nullopt;
    return clock::makeDate({1899, 12, 30, h, mi, sec});
  }

  std::string_view datePart = s, timePart;
  if (auto cut = s.find_first_of(" T"); cut != std::string_view::npos) {
    datePart = s.substr(0, cut);
    timePart = text::trimBlanks(s.substr(cut + 1));
  }
  int a = 0, b = 0, c = 0;
  std::string_view d = datePart;
  if (!readInt(d, a, 4) || d.empty()) return std::nullopt;
  char sep = d.front();
  if (sep != '/' && sep != '-') return std::nullopt;
  d.remove_prefix(1);
  if (!readInt(d, b, 2) || d.empty() || d.front() != sep) return std::nullopt;
  d.remove_prefix(1);
  if (!readInt(d, c, 4) || !d.empty()) return std::nullopt;

  int y, m, day;
  if (datePart.find(sep) == 4) {  // year first: YYYY-MM-DD or YYYY/MM/DD
    y = a, m = b, day = c;
  } else {  // month first, as in the United States: M/D/YYYY
    m = a, day = b, y = c;
  }
  if (!validDay(y, m, day)) return std::nullopt;
  if (!timePart.empty() && !readTime(timePart, h, mi, sec)) return std::nullopt;
  return clock::makeDate({y, m, day, h, mi, sec});
}

}  // namespace bw
