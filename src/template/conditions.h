// Conditions: the `cond` attributes of controls and sessions.
//
// A condition is a comma-separated list of terms that must all hold; a term
// compares one value with a "|"-separated list of values, one of which has
// to match:
//
//   table/TblGen/eq/1, proj/ProgramLanguage/eq/C#|VB
//   ctrl/ctrlid/in/list
//   function/IsOn/Boolean/eq/True
//
// A term is object/name/operator/values, or function/module/type/operator/
// values, which runs a script module and coerces its result to the type.
// A term of any other shape, an unknown object or an unknown operator holds,
// so that newer templates still run on an older engine.
//
// The evaluator reads nothing global: a ConditionContext hands it the bags,
// the control list and the script runner, so it can be driven from tests as
// from the generation run.
#pragma once

#include <compare>
#include <functional>
#include <string>
#include <string_view>

#include "core/properties.h"
#include "core/variant.h"

namespace bw {

class AGPControls;

struct ConditionContext {
  // `proj` terms: the project's bag; a name it does not hold is read through
  // getV (custom settings) and compared as text. An empty getV reads "".
  const AGProperties& project;
  std::function<Variant(const std::string&)> getV = nullptr;

  // `ctrl` terms read the control at controls->curIndex().
  const AGPControls* controls = nullptr;

  // `db`, `table` and `field` terms; null when there is none. Without a
  // table a `table` term holds; a `db` or `field` term without its bag is a
  // run-time failure.
  const AGProperties* database = nullptr;
  const AGProperties* table = nullptr;
  const AGProperties* field = nullptr;

  // `function/` terms: runs a script module and gives its result. Empty when
  // no script host exists; the left side is then "".
  std::function<Variant(const std::string&)> runModule = nullptr;
};

// True when every term of `cond` holds; "" is true. A run-time failure (a
// name the db, table or field bag does not hold, a missing db or field bag
// or current control, a value that does not convert to the attribute's
// type, an error of the runner) calls RaiseGenerationError with the ProjErr
// that stands.
bool EvalCondition(std::string_view cond, const ConditionContext& context);

// The right side of a bag term: `value` trimmed; "%Name" takes the value of
// attribute Name of the same bag instead. The result is converted as a
// setting of `type`, the type of the attribute on the left. A Name the bag
// does not hold, or a value that does not convert, is a run-time failure
// (RaiseGenerationError).
Variant ResolveCondValue(const AGProperties& bag, std::string_view value, DataKind type);

// Orders two tagged values the way conditions compare them:
//   - numbers, Booleans (True is -1) and dates compare as numbers;
//   - strings compare exactly, by code value;
//   - Empty is 0 beside a number and "" beside a string;
//   - a string beside a number, Boolean or date is read as that type
//     ("1" and "true" are True beside a Boolean); when it cannot be, both
//     compare as their texts;
//   - Null, objects and arrays are unordered: no comparison holds.
std::partial_ordering CompareVariants(const Variant& left, const Variant& right);

}  // namespace bw
