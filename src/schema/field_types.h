// What an ADO type number means to the generator, and the small text
// readers that turn a server's own type words into field settings.
//
// Every road (ADO, Access, the database component) reduces a column to an
// ADO type number; these helpers are shared by all of them and by the
// synchronization, which compares columns by the same classes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace bw::schema {

// The type name shown for an ADO type number; type 135 is named by its
// precision (16 SMALLDATETIME, 23 DATETIME, 27 DATETIME2, else TIMESTAMP).
// "" for types without a name.
std::string AdoTypeName(std::int32_t type, std::int32_t precision);

// The class of a type: 1 integer, 2 date and time, 3 text, 4 Boolean,
// 5 GUID, 6 binary, 7 floating, 0 anything else.
std::int16_t FieldClass(std::int32_t type);

// True for the PostgreSQL type names whose values the generated pages can
// read and write.
bool PgTypeIsKnown(std::string_view typeName);

// The tag values of a MySQL enum or set declaration: the values between the
// first "(" and the ")" behind it, each as one CR LF ended line
// `"value","value"`. Single-quoted values may hold a doubled quote.
std::string ParseEnumValues(std::string_view declaration);

// The field and the sequence of an Oracle insert trigger of the form
// `SELECT seq.nextval INTO :NEW.field FROM dual;`; "" when the body is not
// of that form.
std::string OracleTriggerField(std::string_view body);
std::string OracleTriggerSequence(std::string_view body);

}  // namespace bw::schema
