// The generated site keeps the names of dynamic user levels in a field of
// the user level permission table, and they need 255 characters. A
// narrower field is widened, with the user's consent, before a run.
#include "core/agp_vars.h"
#include "core/project.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "platform/host.h"
#include "platform/text.h"
#include "schema/connection.h"
#include "schema/dialect.h"

namespace bw {
namespace {

constexpr std::int32_t kNeededSize = 255;

std::string sqlServerTableName(AGPTable& table) {
  const std::string schema = table.attrText("TblSchema");
  const std::string name = "[" + table.TblName() + "]";
  return schema.empty() ? name : "[" + schema + "]." + name;
}

std::string connectionText(AGPDatabase& db) {
  if (text::toUpper(db.attrText("DBType")) != "ODBC") return db.attrText("DBConnstr");
  return "dsn=" + db.attrText("DBName") + ";uid=" + db.attrText("DBUID") + ";pwd=" +
         db.attrText("DBPwd");
}

}  // namespace

bool Generation::CheckUserLevelFieldSize() {
  AGPDatabase& db = *project_.DB();
  const std::string tableName = db.attrText("UserLevelPrivTbl");
  const std::string fieldName = db.attrText("UserLevelPrivTblNameFld");
  if (!db.attrBool("UseDynamicUserLevel") || tableName.empty() || fieldName.empty()) return true;
  AGPTable* table = db.Tables()->table(tableName);
  // Only SQL Server is checked here; an Access file would need DAO, which
  // this build has not got, and other databases have no such limit.
  if (!table || CurrentDbmsKind() != dbms::kSqlServer) return true;
  try {
    const auto cnn = schema::CreateConnection(db.attrText("DBType"));
    cnn->open(connectionText(db));
    return EnsureFieldSize(*cnn, sqlServerTableName(*table), tableName, fieldName);
  } catch (const schema::ConnectionError&) {
    return true;  // a database that cannot be reached now is checked by the site itself
  }
}

bool Generation::EnsureFieldSize(schema::Connection& cnn, const std::string& sqlName,
                                 const std::string& tableName, const std::string& fieldName) {
  AGPVarsData& vars = AGPVars();
  const auto rows = cnn.execute("SELECT * FROM " + sqlName + " WHERE 0=1");
  const std::size_t column = rows->columnIndex(fieldName);
  if (column == schema::Recordset::npos) return true;
  const std::int32_t size = rows->columns()[column].definedSize;
  if (size >= kNeededSize) return true;
  const std::string question = "Field size of User level permission table name field [" + tableName +
                               "].[" + fieldName + "] must be >= 255. Current field size is " +
                               std::to_string(size) + ". Update now?";
  if (vars.host->ask(question, vars.ProductName, MessageButtons::OkCancel, MessageIcon::Question) !=
      MessageAnswer::Ok) {
    vars.ProjErr = "Please update the User level permssion table name field size to 255 manually! "
                   "Generation aborted!";
    return false;
  }
  try {
    cnn.execute("ALTER TABLE " + sqlName + " ALTER COLUMN [" + fieldName + "] VARCHAR(255) NULL");
  } catch (const schema::ConnectionError& e) {
    vars.ProjErr = "Unable to change field size automatically. Error description: " +
                   std::string(e.what()) + ". Please perform the action manually! Generation aborted!";
    return false;
  }
  return true;
}

}  // namespace bw
