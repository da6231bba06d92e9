// A small writer of JSON text, for commands whose output scripts read.
//
// Values go out as they are added; the writer places the commas and
// indents nested values by two blanks a level, except that an empty object
// or array stays on one line:
//
//   JsonWriter json(std::cout);
//   json.beginObject();
//   json.key("name").string("orders");
//   json.key("key").beginArray().string("id").endArray();
//   json.endObject();                 // {\n  "name": "orders",\n  "key": [\n    "id"\n  ]\n}
//
// Calls must nest properly and each value in an object needs a key first;
// the writer asserts that rather than guessing.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace bw::cli {

class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}

  JsonWriter& beginObject() { return open('{', true); }
  JsonWriter& endObject() { return close('}', true); }
  JsonWriter& beginArray() { return open('[', false); }
  JsonWriter& endArray() { return close(']', false); }
  JsonWriter& key(std::string_view name);

  JsonWriter& string(std::string_view text);
  JsonWriter& number(std::int64_t value);
  JsonWriter& boolean(bool value);
  JsonWriter& null();

 private:
  struct Level {
    bool object;
    bool empty = true;
  };

  JsonWriter& open(char bracket, bool object);
  JsonWriter& close(char bracket, bool object);
  // The comma, line break and indent before a value or key.
  void beforeValue();
  void separate();
  void newLine();

  std::ostream& out_;
  std::vector<Level> levels_;
  bool afterKey_ = false;
};

// `text` as a JSON string literal, quotes included. Quotes, backslashes and
// control characters are escaped; other characters pass as UTF-8. Bytes that
// are not well-formed UTF-8 become U+FFFD, so the output always parses.
std::string JsonQuoted(std::string_view text);

}  // namespace bw::cli
