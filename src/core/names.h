// Names derived from other names: identifiers for generated code, captions
// for display, and the search operators a field type offers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace bw {

// An identifier for a table, field, project or database in the generated
// code. A reserved word of the project's language gets "z" in front (again
// and again while it stays reserved); blanks and "." become "_"; any other
// character outside A-Z, a-z, 0-9 and "_" becomes its UTF-16 code value(s)
// in upper-case hexadecimal; a result that does not start with a letter
// gets "z" in front. `prefix` goes before all of it.
//
//   MakeVarName("Order Details", "")  -> "Order_Details"
//   MakeVarName("2nd", "x_")          -> "x_z2nd"
//   MakeVarName("café", "")           -> "cafE9"
std::string MakeVarName(std::string_view text, std::string_view prefix);

// A display caption from a column name: "-" and "_" become blanks, runs of
// blanks become one, and camel case falls apart into words.
//
//   CaptionFromName("OrderID")       -> "Order ID"
//   CaptionFromName("first_name")    -> "first name"
std::string CaptionFromName(std::string_view name);

// The kind of a column by its ADO type number: 1 whole number, 2 date or
// time, 3 text, 4 Boolean, 5 GUID, 6 binary, 7 other number.
std::int16_t FieldTypeClass(std::int32_t adoType);

// The search operators offered for a field of that ADO type, CR LF joined,
// "USER SELECT" first.
std::string FldSrchOprs(std::int16_t adoType);

// A list of names, one per CR LF line, sorted ascending by their trimmed
// text, so that two lists can be compared as strings; "" for a blank text.
std::string SortKeyList(std::string_view text);

}  // namespace bw
