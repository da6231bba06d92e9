// schema::Component: the database component that reads MySQL, PostgreSQL
// and Oracle schemas as ready objects, so that the engine runs no SQL of its
// own on that road.
//
// The engine keeps one component per session, configures it anew on every
// use (SetDbType first), and learns of failures only through GetLastError:
// "" means the last operation worked. This header is the contract the
// loaders rely on; backends over the client libraries implement it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bw::schema {

// A column as the component describes it. `adoDataType` uses the ADO type
// numbers; enums and sets report `nativeDataType` 247 and 248.
struct ComponentField {
  std::string name;
  bool isPrimaryKey = false;
  std::string dataTypeName;
  std::int32_t nativeDataType = 0;
  bool isEnum = false;
  bool isSet = false;
  std::int16_t adoDataType = 0;
  std::int32_t size = 0;
  bool required = false;
  bool unique = false;
  bool autoIncrement = false;
  std::int32_t adoAttributes = 0;
  std::string defaultValue;
  std::string fieldTagValues;  // of enums and sets, as ParseEnumValues gives them
};

// A table, view or custom view, with its columns.
struct ComponentTable {
  std::string name;
  std::string tableType;  // "TABLE", "VIEW" or "CUSTOMVIEW"
  std::string schema;
  std::vector<ComponentField> fields;
};

inline constexpr std::int32_t kNativeEnum = 247;
inline constexpr std::int32_t kNativeSet = 248;

class Component {
 public:
  virtual ~Component() = default;

  virtual void SetDbType(const std::string& type) = 0;
  virtual void SetSettingsKey(const std::string& key) = 0;
  virtual void SetSchema(const std::string& schema) = 0;
  // `port` 0 means the server's default port.
  virtual void Connect(const std::string& host, const std::string& dbName, const std::string& uid,
                       const std::string& pwd, std::int32_t port, const std::string& method,
                       const std::string& url, const std::string& encoding,
                       const std::string& quote) = 0;
  virtual std::string GetLastError() = 0;
  virtual std::string GetDatabaseNames() = 0;
  virtual std::string GetVersion() = 0;
  virtual std::string GetQuoteChar() = 0;
  // The tables named `name`, or all of them for "".
  virtual std::vector<ComponentTable> GetTables(const std::string& name) = 0;
  // The columns a custom view's SQL gives.
  virtual ComponentTable GetCustomView(const std::string& name, const std::string& sql) = 0;
  virtual bool JVMLoaded() = 0;
};

}  // namespace bw::schema
