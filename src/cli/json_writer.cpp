#include "cli/json_writer.h"

#include <cassert>

namespace bw::cli {
namespace {

// The length of the well-formed UTF-8 sequence at the start of `s`, or 0.
// Overlong forms, surrogates and code points above U+10FFFF are not
// well-formed.
std::size_t utf8SequenceLength(std::string_view s) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char lead = byte(0);
  std::size_t length;
  unsigned char low = 0x80, high = 0xBF;  // range of the second byte
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;   // overlong
    if (lead == 0xED) high = 0x9F;  // surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;   // overlong
    if (lead == 0xF4) high = 0x8F;  // above U+10FFFF
  } else {
    return 0;
  }
  if (s.size() < length || byte(1) < low || byte(1) > high) return 0;
  for (std::size_t k = 2; k < length; ++k)
    if (byte(k) < 0x80 || byte(k) > 0xBF) return 0;
  return length;
}

}  // namespace

std::string JsonQuoted(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string quoted;
  quoted.reserve(text.size() + 2);
  quoted += '"';
  for (std::size_t k = 0; k < text.size();) {
    const auto c = static_cast<unsigned char>(text[k]);
    switch (c) {
      case '"':
        quoted += "\\\"";
        break;
      case '\\':
        quoted += "\\\\";
        break;
      case '\b':
        quoted += "\\b";
        break;
      case '\f':
        quoted += "\\f";
        break;
      case '\n':
        quoted += "\\n";
        break;
      case '\r':
        quoted += "\\r";
        break;
      case '\t':
        quoted += "\\t";
        break;
      default:
        if (c < 0x20) {
          quoted += "\\u00";
          quoted += kHex[c >> 4];
          quoted += kHex[c & 0xF];
        } else if (const std::size_t length = utf8SequenceLength(text.substr(k)); length == 0) {
          quoted += "\\ufffd";
        } else {
          quoted.append(text.substr(k, length));
          k += length;
          continue;
        }
    }
    ++k;
  }
  quoted += '"';
  return quoted;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  assert(!levels_.empty() && levels_.back().object && !afterKey_ && "a key belongs in an object");
  separate();
  out_ << JsonQuoted(name) << ": ";
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::string(std::string_view text) {
  beforeValue();
  out_ << JsonQuoted(text);
  return *this;
}

JsonWriter& JsonWriter::number(std::int64_t value) {
  beforeValue();
  out_ << value;
  return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
  beforeValue();
  out_ << (value ? "true" : "false");
  return *this;
}

JsonWriter& JsonWriter::null() {
  beforeValue();
  out_ << "null";
  return *this;
}

JsonWriter& JsonWriter::open(char bracket, bool object) {
  beforeValue();
  out_ << bracket;
  levels_.push_back(Level{object});
  return *this;
}

JsonWriter& JsonWriter::close(char bracket, [[maybe_unused]] bool object) {
  assert(!levels_.empty() && levels_.back().object == object && !afterKey_ &&
         "closing a value that is not open");
  const bool empty = levels_.back().empty;
  levels_.pop_back();
  if (!empty) newLine();
  out_ << bracket;
  if (levels_.empty()) out_ << '\n';
  return *this;
}

void JsonWriter::beforeValue() {
  assert((levels_.empty() || !levels_.back().object || afterKey_) &&
         "a value in an object needs a key first");
  separate();
}

void JsonWriter::separate() {
  if (afterKey_) {  // the value of a key follows it on the same line
    afterKey_ = false;
    return;
  }
  if (levels_.empty()) return;
  if (!levels_.back().empty) out_ << ',';
  levels_.back().empty = false;
  newLine();
}

void JsonWriter::newLine() {
  out_ << '\n';
  for (std::size_t k = 0; k < levels_.size(); ++k) out_ << "  ";
}

}  // namespace bw::cli
