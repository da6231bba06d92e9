#include "schema/ado_loader.h"

#include <cstdio>
#include <memory>
#include <vector>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/names.h"
#include "core/status.h"
#include "core/tables.h"
#include "platform/text.h"
#include "schema/dialect.h"
#include "schema/field_loading.h"
#include "schema/field_types.h"

namespace bw::schema {
namespace {

constexpr std::int32_t kLoginRefused = static_cast<std::int32_t>(0x80040E4DU);

// E(x) of the statements: a value inside single quotes.
std::string literal(std::string_view value) { return text::replaceAll(value, "'", "''"); }

// The table's name in SQL, behind its quoted schema when it has one.
std::string qualifiedName(AGPTable& table, const std::string& name) {
  const std::string schema = table.attrText("TblSchema");
  return (schema.empty() ? "" : QuoteIdent(schema) + ".") + QuoteIdent(name);
}

// A schema rowset; a driver that does not know a restriction is asked again
// with every restriction empty.
std::unique_ptr<Recordset> openSchemaWithRetry(Connection& cnn, SchemaRowset rowset,
                                               std::vector<Variant> restrictions) {
  try {
    return cnn.openSchema(rowset, restrictions);
  } catch (const ConnectionError&) {
    for (Variant& restriction : restrictions) restriction = Variant();
    return cnn.openSchema(rowset, restrictions);
  }
}

std::vector<Variant> restrictTable(std::size_t position, const std::string& name) {
  std::vector<Variant> restrictions(position + 1);
  restrictions[position] = Variant(name);
  return restrictions;
}

// ---------------------------------------------------------------------------
// One table

void addColumns(AGPTable& table, const std::string& name, Recordset& columns, Recordset* showFields,
                Recordset* pgDefaults, Component* component) {
  const std::int16_t kind = CurrentDbmsKind();
  AGPFields& fields = *table.Fields();
  for (const ColumnInfo& column : columns.columns()) {
    if (fields.field(column.name)) {
      table.setAttr("TblGen", Variant(false));
      table.setAttr("TblError", Variant(AGPVars().ProductName + ": Duplicate Column Name - " + column.name +
                                        " found! ASP scripts may not be generated correctly! Please "
                                        "rename duplicated field names to ensure correct generation!"));
      continue;
    }
    if (!fields.Add(name, column.name)) continue;
    AGPField& field = *fields.field(column.name);
    LoadFld_ADO(field, column);
    if (kind == dbms::kMySql && showFields) SetupMySQLFld(field, *showFields, column.name);
    if (kind == dbms::kPostgreSql && pgDefaults) {
      SetupPostgreSqlFld(field, *pgDefaults, column.name);
      if (component) ReadPgColumnTypes(table, field, *component, name, "");
    }
  }
}

std::string pgDefaultsQuery(AGPTable& table, const std::string& name) {
  const std::string schema = table.attrText("TblSchema");
  return "SELECT a.attname, d.adsrc as def"
         " FROM pg_attrdef d, pg_class c, pg_attribute a, pg_type t, pg_namespace n"
         " WHERE relkind in ('r','v')"
         " AND c.relname='" + literal(name) + "'" +
         (schema.empty() ? "" : " AND n.nspname='" + literal(schema) + "'") +
         " AND c.relnamespace = n.oid"
         " AND a.attname NOT LIKE '....%%' and a.attnum > 0"
         " AND a.atttypid = t.oid AND a.attrelid = c.oid"
         " AND d.adrelid = c.oid AND a.attnum = d.adnum"
         " ORDER BY a.attnum";
}

// Oracle keeps auto-numbering in insert triggers that take a sequence's next
// value, and its true type names in all_tab_cols.
void readOracleSequencesAndTypes(AGPTable& table, Connection& cnn, const std::string& name) {
  const std::string owner = literal(table.attrText("TblSchema"));
  AGPFields& fields = *table.Fields();
  try {
    auto triggers = cnn.execute(
        "SELECT trigger_body FROM all_triggers WHERE owner='" + owner + "' AND table_name='" +
        literal(name) + "' AND triggering_event='INSERT' AND trigger_type='BEFORE EACH ROW' AND status='ENABLED'");
    for (; !triggers->eof(); triggers->moveNext()) {
      const std::string body = triggers->value(0).toText();
      if (body.empty()) continue;
      const std::string sequence = OracleTriggerSequence(body);
      AGPField* field = fields.field(OracleTriggerField(body));
      if (sequence.empty() || !field) continue;
      field->setAttr("FldAdd", Variant(false));
      field->setAttr("FldAutoIncrement", Variant(true));
      field->setAttr("FldDbDefault", Variant(sequence));
    }
  } catch (const ConnectionError&) {
  }
  try {
    auto types = cnn.execute(
        "SELECT column_name, data_type, data_length, data_scale, data_precision, "
        "CASE WHEN nullable = 'Y' THEN 'NULL' ELSE 'NOT NULL' END AS nulls, "
        "data_default FROM all_tab_cols WHERE owner='" + owner + "' AND table_name='" + literal(name) +
        "' ORDER BY column_id");
    for (; !types->eof(); types->moveNext())
      if (AGPField* field = fields.field(types->value(0).toText()))
        field->setAttr("FldTypeName", types->value(1));
  } catch (const ConnectionError&) {
  }
}

// The primary key and the required columns, from the schema rowsets.
void markKeysAndRequired(AGPTable& table, Connection& cnn, const std::string& name) {
  AGPFields& fields = *table.Fields();
  try {
    auto keys = openSchemaWithRetry(cnn, SchemaRowset::kPrimaryKeys, restrictTable(2, name));
    for (; !keys->eof(); keys->moveNext())
      if (keys->value("TABLE_NAME").toText() == name)
        if (AGPField* field = fields.field(keys->value("COLUMN_NAME").toText()))
          field->setAttr("FldIsPrimaryKey", Variant(true));
  } catch (const ConnectionError&) {
  }
  try {
    auto columns = openSchemaWithRetry(cnn, SchemaRowset::kColumns, restrictTable(2, name));
    for (; !columns->eof(); columns->moveNext()) {
      if (columns->value("TABLE_NAME").toText() != name) continue;
      if (columns->value("IS_NULLABLE").toBoolean().value_or(true)) continue;
      if (AGPField* field = fields.field(columns->value("COLUMN_NAME").toText())) {
        field->setAttr("FldReq", Variant(true));
        field->setAttr("FldRequired", Variant(true));
      }
    }
  } catch (const ConnectionError&) {
  }
}

// Walks the index rows of one table in order. A unique index over exactly
// one column marks that column unique; Access and SQL Server tell their
// primary keys here.
class IndexWalk {
 public:
  IndexWalk(AGPFields& fields, std::int16_t kind) : fields_(fields), kind_(kind) {}

  void row(const std::string& indexName, const std::string& column, bool unique, const Variant& primaryKey) {
    if (indexName != current_) {
      finishIndex();
      current_ = indexName, columnCount_ = 0, unique_ = unique;
    }
    if (!column.empty()) ++columnCount_, lastColumn_ = column;
    if ((kind_ == dbms::kAccess || kind_ == dbms::kSqlServer) && isPrimaryKey(indexName, primaryKey))
      mark(column, "FldIsPrimaryKey");
  }

  void finishIndex() {
    if (columnCount_ == 1 && unique_) mark(lastColumn_, "FldUniqueIdx");
    columnCount_ = 0;
  }

 private:
  bool isPrimaryKey(const std::string& indexName, const Variant& primaryKey) const {
    if (!primaryKey.isNull()) return primaryKey.toBoolean().value_or(false);
    return (kind_ == dbms::kAccess && indexName == "PrimaryKey") ||
           (kind_ == dbms::kMySql && indexName == "PRIMARY");
  }
  void mark(const std::string& column, const char* attribute) {
    if (AGPField* field = fields_.field(column)) field->setAttr(attribute, Variant(true));
  }

  AGPFields& fields_;
  std::int16_t kind_;
  std::string current_;
  std::int32_t columnCount_ = 0;
  bool unique_ = false;
  std::string lastColumn_;
};

void markIndexes(AGPTable& table, Connection& cnn, const std::string& name) {
  try {
    auto indexes = openSchemaWithRetry(cnn, SchemaRowset::kIndexes, restrictTable(4, name));
    IndexWalk walk(*table.Fields(), CurrentDbmsKind());
    for (; !indexes->eof(); indexes->moveNext()) {
      const Variant indexName = indexes->value("INDEX_NAME");
      if (indexName.isNull() || indexes->value("TABLE_NAME").toText() != name) continue;
      walk.row(indexName.toText(), indexes->value("COLUMN_NAME").toText(),
               indexes->value("UNIQUE").toBoolean().value_or(false), indexes->value("PRIMARY_KEY"));
    }
    walk.finishIndex();
  } catch (const ConnectionError&) {
  }
}

// SQL Server: required columns and GUID keys from INFORMATION_SCHEMA, and
// the identity column from syscolumns.
void readSqlServerColumns(AGPTable& table, Connection& cnn, const std::string& name) {
  auto identity = cnn.execute(
      "SELECT c.name FROM syscolumns c JOIN systypes t ON t.xusertype=c.xusertype JOIN sysobjects o ON o.id=c.id"
      " WHERE o.name='" + literal(name) + "' AND (c.autoval IS NOT NULL OR c.status & 128 = 128)");
  const std::string identityName = identity->eof() ? "" : identity->value(0).toText();
  const bool hasIdentity = !identity->eof();
  for (DefinitionObject* item : table.Fields()->bySequence()) {
    AGPField& field = static_cast<AGPField&>(*item);
    const std::string fieldName = field.attrText("FldName");
    auto column = cnn.execute(
        "SELECT t.table_name, c.column_name, c.data_type, c.is_nullable, c.column_default"
        " FROM INFORMATION_SCHEMA.TABLES t, INFORMATION_SCHEMA.Columns c"
        " WHERE t.table_name = c.table_name AND t.table_name = '" + literal(name) +
        "' AND c.column_name = '" + literal(fieldName) + "'");
    if (!column->eof()) {
      const bool required = text::toLower(text::trimBlanks(column->value(3).toText())) == "no";
      field.setAttr("FldReq", Variant(required));
      field.setAttr("FldRequired", Variant(required));
      if (field.attrBool("FldIsPrimaryKey") && field.attrInteger("FldType") == adotype::kGuid &&
          column->value(4).toText() == "(newid())") {
        field.setAttr("FldAdd", Variant(false));
        field.setAttr("FldAutoIncrement", Variant(true));
      }
    }
    const bool isIdentity = hasIdentity && identityName == fieldName;
    field.setAttr("FldAutoIncrement", Variant(isIdentity));
    if (isIdentity) LoadFldDefault(field);
  }
}

std::string primaryKeyList(AGPTable& table) {
  std::vector<std::string> names;
  for (DefinitionObject* field : table.Fields()->bySequence())
    if (field->attrBool("FldIsPrimaryKey")) names.push_back(field->attrText("FldName"));
  return SortKeyList(text::join(names, text::kCrLf));
}

// The columns of the table from an empty result, with what the dialect adds.
// False, with the reason in TblError, when the table cannot be opened.
bool readColumns(AGPTable& table, Connection& cnn, const std::string& name, Component* component) {
  std::unique_ptr<Recordset> columns;
  try {
    columns = cnn.execute("SELECT * FROM " + qualifiedName(table, name) + " WHERE 0=1");
  } catch (const ConnectionError& error) {
    table.setAttr("TblError", Variant(error.what()));
    table.setAttr("TblGen", Variant(false));
    return false;
  }
  const std::int16_t kind = CurrentDbmsKind();
  std::unique_ptr<Recordset> showFields, pgDefaults;
  if (kind == dbms::kMySql) showFields = cnn.execute("SHOW FIELDS FROM " + qualifiedName(table, name));
  if (kind == dbms::kPostgreSql) pgDefaults = cnn.execute(pgDefaultsQuery(table, name));
  addColumns(table, name, *columns, showFields.get(), pgDefaults.get(), component);
  if (kind == dbms::kOracle) readOracleSequencesAndTypes(table, cnn, name);
  table.setAttr("TblLoaded", Variant(true));
  return true;
}

}  // namespace

void Load_ADO(AGPTable& table, Connection& cnn, Recordset& tables, bool loadAll, Component* component) {
  const std::string name = tables.value("TABLE_NAME").toText();
  const std::string type = tables.value("TABLE_TYPE").toText();
  if (AGPVars().DynamicLoadDB.toBoolean().value_or(false) && loadAll) {
    table.setAttr("TblGen", Variant(false));
    table.setAttr("TblLoaded", Variant(false));
    return;
  }
  // A table that LoadTable added knows only its name so far.
  if (table.attrText("TblType").empty()) table.setAttr("TblType", Variant(type));
  table.setAttr("TblGen", Variant(true));
  table.setAttr("TblError", Variant(""));
  readColumns(table, cnn, name, component);
  if (type == "TABLE") {
    const std::int16_t kind = CurrentDbmsKind();
    if (kind != dbms::kAccess && kind != dbms::kSqlServer && kind != dbms::kMySql)
      markKeysAndRequired(table, cnn, name);
    if (kind != dbms::kMySql) markIndexes(table, cnn, name);
  }
  if (CurrentDbmsKind() == dbms::kSqlServer) readSqlServerColumns(table, cnn, name);
  table.setAttr("TblKey", Variant(primaryKeyList(table)));
  table.LoadTableDefault();
}

// ---------------------------------------------------------------------------
// The database

std::string ConnectionErrorText(const std::vector<ClientError>& errors, const std::string& fallback) {
  const std::string& product = AGPVars().ProductName;
  std::string collected;
  for (const ClientError& error : errors) {
    if (error.number == kLoginRefused)
      return product + ": Unable to connect to Data Source! User ID / Password not valid!";
    char hex[16];
    std::snprintf(hex, sizeof hex, "%X", static_cast<std::uint32_t>(error.number));
    collected += "\r\n   ADO Error   #" + std::string(hex) + "\r\n   Description  " + error.description +
                 "\r\n   Source       " + error.source;
  }
  if (!collected.empty()) return product + ": " + collected;
  return product + ": ADO Connection Error " + fallback;
}

namespace {

// Loads the tables of an open connection; the connection steps are done.
class SchemaListing {
 public:
  SchemaListing(AGPDatabase& db, Connection& cnn, const ConnectionRequest& request, const std::string& tableName)
      : db_(db), cnn_(cnn), request_(request), tableName_(tableName), loadAll_(tableName.empty()),
        kind_(CurrentDbmsKind()) {}

  void run() {
    if (loadAll_) Status().DispStatus("Loading Database Tables/Views...");
    auto tables = cnn_.openSchema(SchemaRowset::kTables);
    if (!tables->eof()) {
      AGPVars().ProgressTotal = countPassing(*tables);
      tables->moveFirst();
    }
    std::int32_t done = 0;
    for (; !tables->eof(); tables->moveNext()) {
      if (passes(*tables)) loadRow(*tables);
      if (loadAll_) Status().SetStatus(Variant(ProgressPercent(++done, AGPVars().ProgressTotal)));
    }
  }

 private:
  std::string rowSchema(Recordset& tables) const {
    std::string schema = tables.value("TABLE_SCHEMA").toText();
    if (kind_ == dbms::kPostgreSql && schema == "public" && pgBefore703()) schema.clear();
    return schema;
  }

  // PostgreSQL before 7.3 had no schemas: "public" then means none.
  bool pgBefore703() const {
    const std::string version = db_.attrText("DBDBMSVer").substr(0, 3);
    if (version.size() < 3) return false;
    for (char c : version)
      if (c < '0' || c > '9') return false;
    return std::stoi(version) < 703;
  }

  bool passes(Recordset& tables) const {
    const std::string type = tables.value("TABLE_TYPE").toText();
    if (type != "TABLE" && type != "VIEW") return false;
    if (kind_ == dbms::kSqlServer) return request_.schema.empty() || rowSchema(tables) == request_.schema;
    if (kind_ == dbms::kOracle) return rowSchema(tables) == request_.schema;
    return true;
  }

  std::int32_t countPassing(Recordset& tables) const {
    std::int32_t count = 0;
    for (; !tables.eof(); tables.moveNext()) count += passes(tables) ? 1 : 0;
    return count;
  }

  void loadRow(Recordset& tables) {
    const std::string name = tables.value("TABLE_NAME").toText();
    if (!loadAll_ && name != tableName_) return;
    AGPTables& list = *db_.Tables();
    if (loadAll_) {
      const std::string type = tables.value("TABLE_TYPE").toText();
      Status().DispStatus("Loading " + type + " " + name + "...");
      if (list.Add(name)) {
        AGPTable& added = *list.table(name);
        added.setAttr("TblLoaded", Variant(false));
        added.setAttr("TblType", Variant(type));
        added.setAttr("TblSchema", Variant(rowSchema(tables)));
      }
    }
    if (AGPTable* table = list.table(name)) Load_ADO(*table, cnn_, tables, loadAll_, nullptr);
  }

  AGPDatabase& db_;
  Connection& cnn_;
  const ConnectionRequest& request_;
  const std::string& tableName_;
  bool loadAll_;
  std::int16_t kind_;
};

std::string connectionString(const ConnectionRequest& request) {
  if (text::toUpper(request.dbType) == "ODBC" && request.connStr.empty())
    return "dsn=" + request.dbName + ";uid=" + request.uid + ";pwd=" + request.pwd;
  return request.connStr;
}

void writeConnectionAttributes(AGPDatabase& db, Connection& cnn, const ConnectionRequest& request) {
  const auto set = [&](const char* name, Variant value) { db.setAttr(name, std::move(value)); };
  set("DBType", Variant(request.dbType));
  set("DBPath", Variant(""));
  set("DBUseServerMapPath", Variant(false));
  set("DBPhyPath", Variant(""));
  set("DBUID", Variant(request.uid));
  set("DBPwd", Variant(request.pwd));
  set("DBConnstr", Variant(request.connStr));
  set("DBADOVer", Variant(cnn.version()));
  set("DBDBMSName", cnn.property("DBMS Name"));
  set("DBDBMSVer", cnn.property("DBMS Version"));
  set("DBOLEDBVer", cnn.property("OLE DB Version"));
  set("DBProviderName", cnn.property("Provider Name"));
  set("DBProviderVer", cnn.property("Provider Version"));
  if (CurrentDbmsKind() == dbms::kSqlServer) set("DBSchema", Variant(request.schema));
  set("DBQuoteS", Variant(AGPVars().QuoteStart));
  set("DBQuoteE", Variant(AGPVars().QuoteEnd));
}

}  // namespace

std::int16_t LoadADODB(AGPDatabase& db, const ConnectionRequest& request, const std::string& tableName) {
  const bool loadAll = tableName.empty();
  try {
    if (loadAll) Status().DispStatus("Connecting to Data Source...");
    std::unique_ptr<Connection> cnn = CreateConnection(request.dbType);
    cnn->open(connectionString(request));
    if (cnn->state() != kStateOpen) return kLoadNotOpen;
    std::string dbmsName = cnn->property("DBMS Name").toText();
    if (text::ifindAscii(dbmsName, "Interbase") != std::string::npos) dbmsName = "Interbase Server";
    AGPVars().DBMSName = dbmsName;
    SetQuoteChars(dbmsName);
    if (loadAll) writeConnectionAttributes(db, *cnn, request);
    if (CurrentDbmsKind() == dbms::kOracle) {
      // Oracle's long columns need a larger fetch chunk.
      cnn->close();
      std::string chunked = request.connStr;
      if (!text::endsWith(chunked, ";")) chunked += ";";
      cnn->open(chunked + "ChunkSize=65535;");
    }
    SchemaListing(db, *cnn, request, tableName).run();
    return kLoadOk;
  } catch (const ConnectionError& error) {
    AGPVars().ProjErr = ConnectionErrorText(error.errors(), error.what());
  } catch (const std::exception& error) {
    AGPVars().ProjErr = ConnectionErrorText({}, error.what());
  }
  return kLoadFailed;
}

}  // namespace bw::schema
