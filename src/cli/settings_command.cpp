// brindlework settings: shows and changes the settings store through
// cRegistry, the same way the engine reads it.
#include <charconv>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "core/agp_vars.h"
#include "core/registry.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

constexpr const char* kUsage =
    "usage: brindlework settings list [SECTION] [--machine]\n"
    "       brindlework settings get SECTION NAME [--machine]\n"
    "       brindlework settings set SECTION NAME VALUE [--type text|number] [--machine]\n"
    "SECTION is a section of the settings (General, Project, Table, ...) or a full key\n"
    "path starting with Software\\. NAME \"\" is the section's default value. The user's\n"
    "settings are used unless --machine is given; \"--\" ends the options.\n";

// Bad input: the message, then the usage, exit code 2.
struct UsageError {
  std::string message;
};

// The store cannot do what was asked: the message, exit code 1.
struct StoreError {
  std::string message;
};

struct Request {
  std::string action;
  std::vector<std::string> operands;
  bool machine = false;
  std::optional<std::string> type;
};

Request parseRequest(const Arguments& args) {
  Request request;
  bool optionsEnded = false;
  for (std::size_t k = 0; k < args.size(); ++k) {
    const std::string& arg = args[k];
    if (optionsEnded || !text::startsWith(arg, "--")) {
      request.operands.push_back(arg);
    } else if (arg == "--") {
      optionsEnded = true;
    } else if (arg == "--machine") {
      request.machine = true;
    } else if (arg == "--type") {
      if (++k == args.size()) throw UsageError{"--type needs a value: text or number"};
      request.type = args[k];
    } else {
      throw UsageError{"unknown option '" + arg + "'"};
    }
  }
  if (request.operands.empty()) throw UsageError{"missing the action: list, get or set"};
  request.action = request.operands.front();
  request.operands.erase(request.operands.begin());
  if (request.type && *request.type != "text" && *request.type != "number")
    throw UsageError{"--type must be text or number, not '" + *request.type + "'"};
  if (request.type && request.action != "set") throw UsageError{"--type goes with set only"};
  return request;
}

// A bare section name lies under the settings root.
std::string keyPath(const std::string& section) {
  const bool fullPath = text::iequals(section.substr(0, 9), "Software\\");
  return fullPath ? section : SettingsRoot() + "\\" + section;
}

// Points the shared cRegistry at a key and value of the chosen hive. A hive
// that does not parse would only read as empty, so that is an error here.
cRegistry& aim(const Request& request, const std::string& path, const std::string& name = {}) {
  cRegistry& registry = Registry();
  registry.setClassKey(request.machine ? kHiveLocalMachine : kHiveCurrentUser);
  registry.setSectionKey(path);
  registry.setValueKey(name);
  if (std::string problem = registry.StoreProblem(); !problem.empty()) throw StoreError{problem};
  return registry;
}

std::string displayText(const Variant& value) {
  if (!value.isArray()) return text::replaceAll(value.toText(), std::string_view("\0", 1), "\\0");
  static constexpr char kHex[] = "0123456789abcdef";
  std::string bytes;
  for (const Variant& item : value.items()) {
    if (!bytes.empty()) bytes += ',';
    bytes += kHex[item.byteValue() >> 4];
    bytes += kHex[item.byteValue() & 0xF];
  }
  return bytes;
}

// Plain text needs no label; the other types say what they are.
std::string typeLabel(std::int32_t type) {
  switch (type) {
    case reg_type::kText:
      return "";
    case reg_type::kExpandText:
      return "expanded";
    case reg_type::kBinary:
      return "binary";
    case reg_type::kNumber:
      return "number";
    case reg_type::kNumberBigEndian:
      return "number, high byte first";
    case reg_type::kMultiText:
      return "several texts";
  }
  return "type " + std::to_string(type);
}

// The value, or none when it does not exist: a present value never reads
// as Null, so Null as the default marks a missing one.
std::optional<Variant> readValue(cRegistry& registry) {
  registry.setDefault(Variant::null());
  Variant value = registry.Value();
  if (value.isNull()) return std::nullopt;
  return value;
}

int listSections(const Request& request) {
  std::vector<std::string> sections;
  std::int32_t count = 0;
  aim(request, SettingsRoot()).EnumerateSections(sections, count);
  for (const std::string& section : sections) std::cout << section << '\n';
  return 0;
}

int listValues(const Request& request, const std::string& section) {
  const std::string path = keyPath(section);
  cRegistry& registry = aim(request, path);
  if (!registry.KeyExists()) throw StoreError{"no section '" + section + "'"};
  std::vector<std::string> names;
  std::int32_t count = 0;
  registry.EnumerateValues(names, count);
  for (const std::string& name : names) {
    registry.setValueKey(name);
    const Variant value = readValue(registry).value_or(Variant());
    const std::string label = typeLabel(registry.ValueType());
    std::cout << (name.empty() ? "(default)" : name) << " = " << displayText(value)
              << (label.empty() ? "" : "  (" + label + ")") << '\n';
  }
  registry.EnumerateSections(names, count);
  for (const std::string& subsection : names) std::cout << '[' << subsection << "]\n";
  return 0;
}

int getValue(const Request& request) {
  const std::string& section = request.operands[0];
  const std::string& name = request.operands[1];
  std::optional<Variant> value = readValue(aim(request, keyPath(section), name));
  if (!value) throw StoreError{"no value '" + name + "' in section '" + section + "'"};
  std::cout << displayText(*value) << '\n';
  return 0;
}

Variant parseNumber(const std::string& text) {
  std::int32_t number = 0;
  const char* end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end)
    throw UsageError{"'" + text + "' is not a whole number from -2147483648 to 2147483647"};
  return Variant(number);
}

int setValue(const Request& request) {
  const bool number = request.type == "number";
  const Variant value = number ? parseNumber(request.operands[2]) : Variant(request.operands[2]);
  cRegistry& registry = aim(request, keyPath(request.operands[0]), request.operands[1]);
  registry.setValueType(number ? reg_type::kNumber : reg_type::kText);
  try {
    registry.setValue(value);
  } catch (const AutomationError& error) {
    throw StoreError{error.description()};
  }
  return 0;
}

int list(const Request& request) {
  return request.operands.empty() ? listSections(request)
                                  : listValues(request, request.operands[0]);
}

struct Action {
  const char* name;
  std::size_t leastOperands, mostOperands;
  const char* form;
  int (*run)(const Request&);
};

constexpr Action kActions[] = {
    {"list", 0, 1, "settings list [SECTION]", list},
    {"get", 2, 2, "settings get SECTION NAME", getValue},
    {"set", 3, 3, "settings set SECTION NAME VALUE", setValue},
};

int run(const Request& request) {
  for (const Action& action : kActions) {
    if (request.action != action.name) continue;
    if (request.operands.size() < action.leastOperands)
      throw UsageError{std::string("missing arguments: ") + action.form};
    if (request.operands.size() > action.mostOperands)
      throw UsageError{std::string("too many arguments: ") + action.form};
    return action.run(request);
  }
  throw UsageError{"unknown action '" + request.action + "': use list, get or set"};
}

}  // namespace

int settingsCommand(const Arguments& args) {
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    std::cout << kUsage;
    return 0;
  }
  try {
    return run(parseRequest(args));
  } catch (const UsageError& error) {
    std::cerr << "brindlework settings: " << error.message << '\n' << kUsage;
    return 2;
  } catch (const StoreError& error) {
    std::cerr << "brindlework settings: " << error.message << '\n';
    return 1;
  }
}

}  // namespace bw::cli
