#include "template/conditions.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/conversions.h"
#include "core/generation_error.h"
#include "platform/text.h"
#include "template/controls.h"

namespace bw {
namespace {

constexpr std::string_view kFunctionPrefix = "function/";

// The control fields a `ctrl` term may name, in lower case.
constexpr std::string_view kControlFields[] = {
    "ctrlid",        "ctrltype",
    "ctrlofile",     "ctrloext",
    "ctrlofolder",   "ctrlofolderid",
    "ctrlifiles",    "ctrlifolder",
    "ctrlcond",      "ctrltagext",
    "ctrlparm",      "ctrlspace",
    "ctrlgen",       "ctrlskipheaderfooter",
    "ctrlext",       "ctrlaction",
    "ctrloverwrite",
};

enum class Operator { Eq, Ne, Gt, Ge, Lt, Le, In, Ni, Other };

Operator operatorNamed(std::string_view name) {
  static constexpr std::pair<std::string_view, Operator> kOperators[] = {
      {"eq", Operator::Eq}, {"ne", Operator::Ne}, {"gt", Operator::Gt}, {"ge", Operator::Ge},
      {"lt", Operator::Lt}, {"le", Operator::Le}, {"in", Operator::In}, {"ni", Operator::Ni},
  };
  const std::string lower = text::toLower(name);
  for (const auto& [word, op] : kOperators)
    if (lower == word) return op;
  return Operator::Other;
}

// How the listed values of a term become right sides.
enum class RightRule {
  Coerce,   // function terms: converted to the named type
  Clean,    // ctrl terms: CleanString
  Resolve,  // bag terms: ResolveCondValue in the left side's bag
};

struct LeftSide {
  Variant value;
  RightRule rule;
  DataKind kind = DataKind::Variant;
  const AGProperties* bag = nullptr;
};

// ConvertSetting, with a failed conversion as a run-time failure. Only the
// Boolean and number kinds can fail, and they give Empty exactly then.
Variant coerce(const Variant& value, DataKind kind) {
  Variant converted = ConvertSetting(value, kind);
  if (converted.isEmpty() && kind != DataKind::String && kind != DataKind::Variant)
    RaiseGenerationError();
  return converted;
}

// Whatever the runner throws stops the run with the ProjErr that stands.
Variant runModule(const ConditionContext& context, const std::string& module) {
  try {
    return context.runModule(module);
  } catch (...) {
    RaiseGenerationError();
  }
}

LeftSide functionLeft(const std::vector<std::string>& parts, const ConditionContext& context) {
  const DataKind kind = dataKindOf(parts[1]);
  if (!context.runModule) return {Variant(""), RightRule::Coerce, kind};
  return {coerce(runModule(context, parts[0]), kind), RightRule::Coerce, kind};
}

std::optional<LeftSide> controlLeft(const std::string& name, const ConditionContext& context) {
  const std::string field = text::toLower(name);
  if (std::find(std::begin(kControlFields), std::end(kControlFields), field) ==
      std::end(kControlFields))
    return std::nullopt;
  AGPControl* control = context.controls ? context.controls->current() : nullptr;
  if (!control) RaiseGenerationError();
  return LeftSide{control->get(field), RightRule::Clean};
}

// A custom setting is no attribute of the project's bag: it is read through
// getV and compared as text.
LeftSide projectLeft(const std::string& name, const ConditionContext& context) {
  const AGProperties& bag = context.project;
  if (auto slot = bag.find(name))
    return {bag.valueAt(*slot), RightRule::Resolve, bag.kindAt(*slot), &bag};
  const Variant setting = context.getV ? Variant(context.getV(name).toText()) : Variant("");
  return {setting, RightRule::Resolve, DataKind::String, &bag};
}

LeftSide attributeLeft(const AGProperties* bag, const std::string& name) {
  if (!bag) RaiseGenerationError();
  const auto slot = bag->find(name);
  if (!slot) RaiseGenerationError();
  return {bag->valueAt(*slot), RightRule::Resolve, bag->kindAt(*slot), bag};
}

// The left side of an object term; none when the term holds whatever the
// values are (an unknown object or control field, no current table).
std::optional<LeftSide> objectLeft(const std::vector<std::string>& parts,
                                   const ConditionContext& context) {
  const std::string object = text::toLower(parts[0]);
  const std::string& name = parts[1];
  if (object == "ctrl") return controlLeft(name, context);
  if (object == "proj") return projectLeft(name, context);
  if (object == "db") return attributeLeft(context.database, name);
  if (object == "table") {
    if (!context.table) return std::nullopt;
    return attributeLeft(context.table, name);
  }
  if (object == "field") return attributeLeft(context.field, name);
  return std::nullopt;
}

Variant rightSide(const LeftSide& left, std::string_view value) {
  switch (left.rule) {
    case RightRule::Coerce:
      return coerce(Variant(value), left.kind);
    case RightRule::Clean:
      return Variant(CleanString(Variant(value)));
    case RightRule::Resolve:
      return ResolveCondValue(*left.bag, value, left.kind);
  }
  return Variant();
}

bool containsIgnoringCase(const Variant& hay, const Variant& needle) {
  return text::foldCase(hay.toText()).find(text::foldCase(needle.toText())) != std::string::npos;
}

bool holds(Operator op, const Variant& left, const Variant& right) {
  switch (op) {
    case Operator::Eq:
      return is_eq(CompareVariants(left, right));
    case Operator::Ne: {
      const std::partial_ordering order = CompareVariants(left, right);
      return is_lt(order) || is_gt(order);
    }
    case Operator::Gt:
      return is_gt(CompareVariants(left, right));
    case Operator::Ge:
      return is_gteq(CompareVariants(left, right));
    case Operator::Lt:
      return is_lt(CompareVariants(left, right));
    case Operator::Le:
      return is_lteq(CompareVariants(left, right));
    case Operator::In:
      return containsIgnoringCase(left, right);
    case Operator::Ni:
      return !containsIgnoringCase(left, right);
    case Operator::Other:
      return true;
  }
  return true;
}

bool isBoolean(const Variant& v) {
  return v.type() == VarType::Boolean;
}

Variant flagText(const Variant& v) {
  return Variant(v.boolean() ? "1" : "0");
}

// Two Booleans of a bag term compare as the project file writes them.
bool valueMatches(const LeftSide& left, Operator op, std::string_view value) {
  const Variant right = rightSide(left, value);
  if (left.rule == RightRule::Resolve && isBoolean(left.value) && isBoolean(right))
    return holds(op, flagText(left.value), flagText(right));
  return holds(op, left.value, right);
}

bool termHolds(std::string_view term, const ConditionContext& context) {
  const bool isFunction = text::iequals(term.substr(0, kFunctionPrefix.size()), kFunctionPrefix);
  if (isFunction) term = text::trimBlanks(term.substr(kFunctionPrefix.size()));
  const std::vector<std::string> parts = text::split(term, "/");
  if (parts.size() != 4) return true;
  const std::optional<LeftSide> left =
      isFunction ? functionLeft(parts, context) : objectLeft(parts, context);
  if (!left) return true;
  const Operator op = operatorNamed(parts[2]);
  for (const std::string& value : text::split(parts[3], "|"))
    if (valueMatches(*left, op, value)) return true;
  return false;
}

bool isUnordered(const Variant& v) {
  return v.isNull() || v.isObject() || v.isArray();
}

// A string read as the type of the number, Boolean or date beside it.
std::optional<double> readAsTypeOf(const Variant& typed, const Variant& s) {
  switch (typed.type()) {
    case VarType::Boolean: {
      const std::optional<bool> flag = s.toBoolean();
      if (!flag) return std::nullopt;
      return *flag ? -1.0 : 0.0;
    }
    case VarType::Date:
      return s.toDate();
    default:
      return s.toDouble();
  }
}

}  // namespace

bool EvalCondition(std::string_view cond, const ConditionContext& context) {
  if (cond.empty()) return true;
  for (const std::string& term : text::split(cond, ","))
    if (!termHolds(text::trimBlanks(term), context)) return false;
  return true;
}

Variant ResolveCondValue(const AGProperties& bag, std::string_view value, DataKind type) {
  const std::string_view trimmed = text::trimBlanks(value);
  if (!text::startsWith(trimmed, "%")) return coerce(Variant(trimmed), type);
  const auto slot = bag.find(trimmed.substr(1));
  if (!slot) RaiseGenerationError();
  return coerce(bag.valueAt(*slot), type);
}

std::partial_ordering CompareVariants(const Variant& left, const Variant& right) {
  if (isUnordered(left) || isUnordered(right)) return std::partial_ordering::unordered;
  if (left.isEmpty() && right.isEmpty()) return std::partial_ordering::equivalent;
  if (left.isEmpty()) return CompareVariants(right.isString() ? Variant("") : Variant(0), right);
  if (right.isEmpty()) return CompareVariants(left, left.isString() ? Variant("") : Variant(0));
  if (left.isString() && right.isString()) return left.string() <=> right.string();
  if (!left.isString() && !right.isString()) return *left.toDouble() <=> *right.toDouble();
  if (left.isString()) return 0 <=> CompareVariants(right, left);
  if (auto number = readAsTypeOf(left, right)) return *left.toDouble() <=> *number;
  return std::string_view(left.toText()) <=> right.string();
}

}  // namespace bw
