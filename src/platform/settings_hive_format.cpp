// The text form of a hive; the grammar is in settings_hive.h.
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/settings_hive.h"

namespace bw::settings {
namespace {

constexpr std::string_view kHeaderComment = "; Brindlework settings hive";
constexpr char kHexDigits[] = "0123456789abcdef";

// ---------------------------------------------------------------------------
// Writing

void appendHexByte(std::string& out, unsigned char byte) {
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 0xF];
}

std::string hexNumber(std::uint32_t number, int minDigits) {
  std::string digits;
  do {
    digits.insert(digits.begin(), kHexDigits[number & 0xF]);
    number >>= 4;
  } while (number != 0);
  if (digits.size() < static_cast<std::size_t>(minDigits))
    digits.insert(0, static_cast<std::size_t>(minDigits) - digits.size(), '0');
  return digits;
}

// A byte that cannot stand as itself in a quoted string: control
// characters, and bytes that are not part of valid UTF-8.
bool needsHexEscape(std::string_view text, std::size_t pos, std::size_t& length) {
  const auto byte = static_cast<unsigned char>(text[pos]);
  length = 1;
  if (byte < 0x20 || byte == 0x7F) return true;
  if (byte < 0x80) return false;
  std::size_t next = pos;
  const char32_t cp = text::decodeUtf8(text, next);
  length = next - pos;
  return length == 1 && cp >= 0x80;  // an invalid byte decodes as itself
}

void appendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t pos = 0; pos < text.size();) {
    const char c = text[pos];
    std::size_t length = 1;
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '"':
        out += "\\\"";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\0':
        out += "\\0";
        break;
      default:
        if (needsHexEscape(text, pos, length)) {
          out += "\\x";
          appendHexByte(out, static_cast<unsigned char>(c));
        } else {
          out.append(text.substr(pos, length));
        }
    }
    pos += length;
  }
  out += '"';
}

void appendBytes(std::string& out, std::string_view bytes) {
  for (std::size_t k = 0; k < bytes.size(); ++k) {
    if (k > 0) out += ',';
    appendHexByte(out, static_cast<unsigned char>(bytes[k]));
  }
}

std::uint32_t numberFromBytes(std::string_view bytes, bool highByteFirst) {
  std::uint32_t number = 0;
  for (int k = 0; k < 4; ++k) {
    const auto byte = static_cast<unsigned char>(bytes[highByteFirst ? k : 3 - k]);
    number = (number << 8) | byte;
  }
  return number;
}

// Several texts, each followed by a NUL, have a readable form; other bytes
// of type 7 do not.
bool isMultiText(std::string_view data) {
  return data.empty() || data.back() == '\0';
}

void appendMultiText(std::string& out, std::string_view data) {
  out += "multi:";
  if (data.empty()) return;
  data.remove_suffix(1);  // the NUL behind the last text
  bool first = true;
  for (const std::string& item : text::split(data, std::string_view("\0", 1))) {
    if (!first) out += ',';
    appendQuoted(out, item);
    first = false;
  }
}

void appendData(std::string& out, const Value& value) {
  const std::string_view data = value.data;
  const bool fourBytes = data.size() == 4;
  switch (value.type) {
    case 1:
      return appendQuoted(out, data);
    case 2:
      out += "expand:";
      return appendQuoted(out, data);
    case 3:
      out += "hex:";
      return appendBytes(out, data);
    case 4:
      if (fourBytes) return (void)(out += "dword:" + hexNumber(numberFromBytes(data, false), 8));
      break;
    case 5:
      if (fourBytes) return (void)(out += "dword-be:" + hexNumber(numberFromBytes(data, true), 8));
      break;
    case 7:
      if (isMultiText(data)) return appendMultiText(out, data);
      break;
  }
  out += "hex(" + hexNumber(value.type, 1) + "):";
  appendBytes(out, data);
}

// A key with subkeys and no values needs no header of its own: the paths of
// its subkeys create it, in the same place.
void appendKey(std::string& out, const Key& key, const std::string& path) {
  const bool implied = key.values().empty() && (path.empty() || !key.subkeys().empty());
  if (!implied) {
    out += "\r\n[" + path + "]\r\n";
    for (const auto& [name, value] : key.values()) {
      if (name.empty())
        out += '@';
      else
        appendQuoted(out, name);
      out += '=';
      appendData(out, value);
      out += "\r\n";
    }
  }
  for (const auto& [name, subkey] : key.subkeys())
    appendKey(out, *subkey, path.empty() ? name : path + "\\" + name);
}

// ---------------------------------------------------------------------------
// Reading

struct SyntaxError {
  std::string message;
};

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads the parts of one entry line, left to right; each reader throws
// SyntaxError with a message for the user.
class EntryReader {
 public:
  explicit EntryReader(std::string_view line) : line_(line) {}

  std::string name() {
    if (consume("@")) return {};
    if (!at('"')) fail("a value name must be a \"quoted\" text or @");
    return quoted();
  }

  void equals() {
    skipBlanks();
    if (!consume("=")) fail("missing '=' after the value name");
    skipBlanks();
  }

  Value data() {
    if (at('"')) return Value{1, quoted()};
    if (consume("expand:")) return Value{2, quoted()};
    if (consume("dword:")) return Value{4, numberBytes(false)};
    if (consume("dword-be:")) return Value{5, numberBytes(true)};
    if (consume("multi:")) return Value{7, multiText()};
    if (consume("hex:")) return Value{3, bytes()};
    if (consume("hex(")) {
      const std::uint32_t type = hexNumber("hex( needs a type of 1 to 8 hex digits");
      if (!consume("):")) fail("hex(N) must be followed by ':'");
      return Value{type, bytes()};
    }
    fail(
        "unknown value form: expected a \"text\", expand:, dword:, dword-be:, multi:, hex: or "
        "hex(N):");
  }

  void end() {
    skipBlanks();
    if (pos_ < line_.size()) fail("unexpected text after the value");
  }

 private:
  [[noreturn]] static void fail(std::string message) { throw SyntaxError{std::move(message)}; }

  bool at(char c) const { return pos_ < line_.size() && line_[pos_] == c; }

  bool consume(std::string_view token) {
    if (line_.substr(pos_, token.size()) != token) return false;
    pos_ += token.size();
    return true;
  }

  void skipBlanks() {
    while (at(' ') || at('\t')) ++pos_;
  }

  std::string quoted() {
    ++pos_;  // the opening quote
    std::string out;
    while (pos_ < line_.size() && line_[pos_] != '"') {
      if (line_[pos_] == '\\')
        out += escape();
      else
        out += line_[pos_++];
    }
    if (!consume("\"")) fail("unterminated string: missing the closing '\"'");
    return out;
  }

  char escape() {
    ++pos_;  // the backslash
    if (pos_ >= line_.size()) fail("unterminated string: missing the closing '\"'");
    switch (line_[pos_++]) {
      case '\\':
        return '\\';
      case '"':
        return '"';
      case 'r':
        return '\r';
      case 'n':
        return '\n';
      case 't':
        return '\t';
      case '0':
        return '\0';
      case 'x':
        return static_cast<char>(hexByte("\\x must be followed by two hex digits"));
    }
    fail(std::string("unknown escape '\\") + line_[pos_ - 1] +
         "' in a string (use \\\\ for a backslash)");
  }

  int hexByte(const char* problem) {
    const int high = pos_ < line_.size() ? hexValue(line_[pos_]) : -1;
    const int low = pos_ + 1 < line_.size() ? hexValue(line_[pos_ + 1]) : -1;
    if (high < 0 || low < 0) fail(problem);
    pos_ += 2;
    return high * 16 + low;
  }

  std::uint32_t hexNumber(const char* problem) {
    std::uint32_t number = 0;
    std::size_t digits = 0;
    for (int digit; pos_ < line_.size() && (digit = hexValue(line_[pos_])) >= 0; ++pos_, ++digits)
      number = (number << 4) | static_cast<std::uint32_t>(digit);
    if (digits < 1 || digits > 8) fail(problem);
    return number;
  }

  std::string numberBytes(bool highByteFirst) {
    const std::uint32_t number = hexNumber("a dword needs 1 to 8 hex digits");
    std::string out(4, '\0');
    for (int k = 0; k < 4; ++k)
      out[static_cast<std::size_t>(highByteFirst ? 3 - k : k)] =
          static_cast<char>((number >> (8 * k)) & 0xFF);
    return out;
  }

  // Items separated by ",", each with a NUL behind it.
  std::string multiText() {
    std::string out;
    skipBlanks();
    while (at('"')) {
      out += quoted();
      out += '\0';
      skipBlanks();
      if (!consume(",")) break;
      skipBlanks();
      if (!at('"')) fail("multi: expects a \"quoted\" text after ','");
    }
    return out;
  }

  std::string bytes() {
    std::string out;
    skipBlanks();
    if (pos_ >= line_.size()) return out;
    for (;;) {
      out += static_cast<char>(hexByte("bad byte: expected two hex digits"));
      skipBlanks();
      if (!consume(",")) return out;
      skipBlanks();
    }
  }

  std::string_view line_;
  std::size_t pos_ = 0;
};

std::string_view trimLine(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

// Applies one non-blank, non-comment line to the tree.
void readLine(std::string_view line, Key& root, Key*& current) {
  if (line.front() == '[') {
    if (line.back() != ']') throw SyntaxError{"a key header must end with ']'"};
    current = &root.make(line.substr(1, line.size() - 2));
    return;
  }
  if (!current) throw SyntaxError{"a value must follow a [key\\path] header"};
  EntryReader reader(line);
  std::string name = reader.name();
  reader.equals();
  Value value = reader.data();
  reader.end();
  if (current->values().find(name))
    throw SyntaxError{"the value \"" + name + "\" appears twice in this key"};
  current->values().put(name, std::move(value));
}

}  // namespace

std::string formatHive(const Key& root) {
  std::string out(kHeaderComment);
  out += "\r\n";
  appendKey(out, root, "");
  return out;
}

HiveStatus parseHive(std::string_view text, std::string_view file, Key& root) {
  if (text::startsWith(text, "\xEF\xBB\xBF")) text.remove_prefix(3);
  Key* current = nullptr;
  std::size_t lineNumber = 0;
  for (std::size_t start = 0; start < text.size();) {
    std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    const std::string_view line = trimLine(text.substr(start, end - start));
    start = end + 1;
    ++lineNumber;
    if (line.empty() || line.front() == ';') continue;
    try {
      readLine(line, root, current);
    } catch (const SyntaxError& error) {
      return HiveStatus::failure(std::string(file), error.message, lineNumber);
    }
  }
  return HiveStatus{"", std::string(file), 0};
}

}  // namespace bw::settings
