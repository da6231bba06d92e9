// LoadDB and LoadTable over real SQLite files: what a project holds after
// reading a schema, and what a failed read leaves behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "core/agp_vars.h"
#include "project/agp.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using ::testing::HasSubstr;

constexpr const char* kShopSchema = R"sql(
  CREATE TABLE Customers (
    CustomerID INTEGER PRIMARY KEY,
    Email VARCHAR(80) NOT NULL UNIQUE,
    Name TEXT NOT NULL,
    Notes TEXT,
    Joined DATE,
    Active BOOLEAN DEFAULT 1,
    Photo BLOB);
  CREATE TABLE OrderLines (
    ProductID INTEGER NOT NULL,
    OrderID INTEGER NOT NULL,
    Quantity SMALLINT NOT NULL DEFAULT 1,
    Price NUMERIC(10,2),
    PRIMARY KEY (ProductID, OrderID));
  CREATE TABLE Pairs (A INT, B INT, UNIQUE (A, B));
  CREATE TABLE "Bob's Table" (Id INTEGER PRIMARY KEY AUTOINCREMENT, Label CHAR(3));
  CREATE VIEW ActiveCustomers AS SELECT Name, Email, length(Name) AS NameLength FROM Customers WHERE Active;
  CREATE TABLE Gone (X INT);
  CREATE VIEW Broken AS SELECT * FROM Gone;
  DROP TABLE Gone;
)sql";

class SchemaLoadTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project_ = make<AGP>();
    project_->AddProj("Shop");
  }

  std::string createDatabase(const char* sql, const std::string& name = "shop.db") {
    const std::string path = tempPath(name);
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    // One transaction: a sync per statement would make each test slow.
    const std::string script = std::string("BEGIN;") + sql + ";COMMIT;";
    EXPECT_EQ(sqlite3_exec(db, script.c_str(), nullptr, nullptr, &error), SQLITE_OK) << (error ? error : "");
    sqlite3_free(error);
    sqlite3_close(db);
    return path;
  }

  void loadDb(const std::string& connStr, const char* type = "SQLITE") {
    project_->LoadDB(Variant("shop"), Variant(type), Variant(""), Variant(""), Variant(false), Variant(""),
                     Variant(""), Variant(connStr), Variant(""));
  }

  AGPTable& table(const std::string& name) {
    AGPTable* found = project_->DB()->Tables()->table(name);
    EXPECT_NE(found, nullptr) << name;
    return *found;
  }
  AGPField& field(const std::string& tableName, const std::string& fieldName) {
    AGPField* found = table(tableName).Fields()->field(fieldName);
    EXPECT_NE(found, nullptr) << tableName << "." << fieldName;
    return *found;
  }

  Ref<AGP> project_;
};

TEST_F(SchemaLoadTest, WholeLoadReadsTablesViewsKeysAndFieldSettings) {
  loadDb("Data Source=" + createDatabase(kShopSchema) + ";");
  ASSERT_EQ(AGPVars().ProjErr, "");
  Ref<AGPDatabase> db = project_->DB();
  ASSERT_TRUE(db);
  EXPECT_EQ(db->attrText("DBType"), "SQLITE");
  EXPECT_EQ(db->attrText("DBDBMSName"), "SQLite");
  EXPECT_EQ(db->attrText("DBQuoteS"), "`");
  EXPECT_EQ(AGPVars().DBMSName, "SQLite");
  EXPECT_TRUE(AGPVars().Dirty);

  // Tables first, then views, each by name, as the tables rowset orders them.
  std::vector<std::string> names;
  for (DefinitionObject* t : db->Tables()->bySequence()) names.push_back(t->attrText("TblName"));
  EXPECT_EQ(names, (std::vector<std::string>{"Bob's Table", "Customers", "OrderLines", "Pairs",
                                             "ActiveCustomers", "Broken"}));

  AGPTable& customers = table("Customers");
  EXPECT_EQ(customers.attrText("TblType"), "TABLE");
  EXPECT_EQ(customers.attrText("TblKey"), "CustomerID");
  EXPECT_TRUE(customers.attrBool("TblLoaded"));
  EXPECT_TRUE(customers.attrBool("TblGen"));
  EXPECT_TRUE(customers.attrBool("TblAdd"));

  AGPField& id = field("Customers", "CustomerID");
  EXPECT_TRUE(id.attrBool("FldIsPrimaryKey"));
  EXPECT_TRUE(id.attrBool("FldAutoIncrement"));
  EXPECT_EQ(id.attrText("FldHtmlTag"), "NO");
  EXPECT_FALSE(id.attrBool("FldAdd"));
  EXPECT_EQ(id.attrText("FldVar"), "x_CustomerID");

  AGPField& email = field("Customers", "Email");
  EXPECT_EQ(email.attrInteger("FldType"), 202);
  EXPECT_EQ(email.attrText("FldTagMaxLength"), "80");
  EXPECT_TRUE(email.attrBool("FldUniqueIdx"));
  EXPECT_TRUE(email.attrBool("FldReq"));
  EXPECT_TRUE(email.attrBool("FldRequired"));
  EXPECT_EQ(email.attrText("FldSrchOpr"), "LIKE");
  EXPECT_TRUE(email.attrBool("FldBasicSearch"));

  EXPECT_EQ(field("Customers", "Notes").attrText("FldHtmlTag"), "TEXTAREA");
  EXPECT_FALSE(field("Customers", "Notes").attrBool("FldList"));
  EXPECT_FALSE(field("Customers", "Notes").attrBool("FldReq"));
  EXPECT_EQ(field("Customers", "Joined").attrInteger("FldType"), 133);
  EXPECT_EQ(field("Customers", "Joined").attrText("FldQuoteS"), "'");
  EXPECT_EQ(field("Customers", "Active").attrText("FldHtmlTag"), "CHECKBOX");
  EXPECT_EQ(field("Customers", "Photo").attrText("FldHtmlTag"), "FILE");
  EXPECT_FALSE(field("Customers", "Photo").attrBool("FldSearch"));

  // A composite key lists its columns sorted by name, whatever their order.
  EXPECT_EQ(table("OrderLines").attrText("TblKey"), "OrderID\r\nProductID");
  EXPECT_FALSE(field("OrderLines", "OrderID").attrBool("FldAutoIncrement"));
  EXPECT_FALSE(field("OrderLines", "OrderID").attrBool("FldUniqueIdx"));
  EXPECT_EQ(field("OrderLines", "Price").attrText("FldValidate"), "FLOAT");

  // A unique index over two columns marks neither.
  EXPECT_FALSE(field("Pairs", "A").attrBool("FldUniqueIdx"));
  EXPECT_FALSE(field("Pairs", "B").attrBool("FldUniqueIdx"));
  EXPECT_EQ(table("Pairs").attrText("TblKey"), "");

  // A name with a quote in it is read like any other.
  EXPECT_EQ(table("Bob's Table").Fields()->Count(), 2);
  EXPECT_TRUE(field("Bob's Table", "Id").attrBool("FldAutoIncrement"));
}

TEST_F(SchemaLoadTest, ViewsAreReadWithoutKeysAndUnreadableOnesKeepTheirReason) {
  loadDb("Data Source=" + createDatabase(kShopSchema) + ";");
  ASSERT_EQ(AGPVars().ProjErr, "");
  AGPTable& view = table("ActiveCustomers");
  EXPECT_EQ(view.attrText("TblType"), "VIEW");
  EXPECT_EQ(view.Fields()->Count(), 3);
  EXPECT_FALSE(view.attrBool("TblAdd"));
  EXPECT_EQ(view.attrText("TblKey"), "");
  EXPECT_FALSE(field("ActiveCustomers", "Email").attrBool("FldReq"));

  AGPTable& broken = table("Broken");
  EXPECT_FALSE(broken.attrBool("TblGen"));
  EXPECT_FALSE(broken.attrBool("TblLoaded"));
  EXPECT_THAT(broken.attrText("TblError"), HasSubstr("no such table"));
  EXPECT_EQ(broken.Fields()->Count(), 0);
}

TEST_F(SchemaLoadTest, FailedLoadsLeaveNoDatabaseAndSayWhy) {
  const std::string missing = tempPath("missing.db");
  loadDb("Data Source=" + missing + ";");
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework: \r\n   ADO Error   #80004005\r\n   Description  Cannot open the "
                               "SQLite database \"" + missing + "\": the file does not exist\r\n   Source       SQLite");
  EXPECT_FALSE(project_->DB());
  EXPECT_EQ(project_->DBCnt(), 0);
  EXPECT_EQ(project_->curDBName(), "");

  loadDb("Data Source=" + writeTempFile("notes.txt", "just some text, not a database\n") + ";");
  EXPECT_THAT(AGPVars().ProjErr, HasSubstr("file is not a database"));
  EXPECT_FALSE(project_->DB());

  loadDb("");
  EXPECT_THAT(AGPVars().ProjErr, HasSubstr("names no database file"));
  EXPECT_FALSE(project_->DB());

  loadDb("Data Source=x;", "FIREBIRD");
  EXPECT_THAT(AGPVars().ProjErr, HasSubstr("No database client for type \"FIREBIRD\""));

  loadDb("", "ACCESS");
  EXPECT_EQ(AGPVars().ProjErr, "invalid database path!");
  EXPECT_FALSE(project_->DB());
}

TEST_F(SchemaLoadTest, ASecondLoadIsRefused) {
  const std::string connStr = "Data Source=" + createDatabase(kShopSchema) + ";";
  loadDb(connStr);
  ASSERT_EQ(AGPVars().ProjErr, "");
  loadDb(connStr);
  EXPECT_EQ(AGPVars().ProjErr, "database already loaded!");
  EXPECT_EQ(project_->DB()->Tables()->Count(), 6);
}

TEST_F(SchemaLoadTest, LazyLoadKnowsTablesByNameAndLoadTableReadsThemOnDemand) {
  project_->setAttr("DynamicLoadDB", Variant(true));
  loadDb("Data Source=" + createDatabase(kShopSchema) + ";");
  ASSERT_EQ(AGPVars().ProjErr, "");
  for (DefinitionObject* t : project_->DB()->Tables()->bySequence()) {
    EXPECT_FALSE(t->attrBool("TblLoaded"));
    EXPECT_FALSE(t->attrBool("TblGen"));
    EXPECT_EQ(static_cast<AGPTable*>(t)->Fields()->Count(), 0);
  }

  project_->LoadTable("OrderLines");
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(project_->DB()->Tables()->Count(), 6);  // nothing added again
  EXPECT_TRUE(table("OrderLines").attrBool("TblLoaded"));
  EXPECT_EQ(table("OrderLines").Fields()->Count(), 4);
  EXPECT_EQ(table("OrderLines").attrText("TblKey"), "OrderID\r\nProductID");
  EXPECT_EQ(table("Customers").Fields()->Count(), 0);

  project_->LoadTable("OrderLines");
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework: Table OrderLines already loaded!");
}

TEST_F(SchemaLoadTest, LoadTableAddsATableTheProjectDidNotKnow) {
  const std::string path = createDatabase("CREATE TABLE First (Id INTEGER PRIMARY KEY);");
  loadDb("Data Source=" + path + ";");
  ASSERT_EQ(AGPVars().ProjErr, "");
  createDatabase("CREATE TABLE Later (Id INTEGER PRIMARY KEY, Title VARCHAR(20));");  // same file
  project_->LoadTable("Later");
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(table("Later").attrText("TblType"), "TABLE");
  EXPECT_EQ(table("Later").Fields()->Count(), 2);
  EXPECT_EQ(table("Later").attrText("TblCaption"), "Later");
}

TEST_F(SchemaLoadTest, LoadTableWithoutADatabaseSaysSo) {
  project_->LoadTable("Anything");
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework: Database not loaded!");
}

}  // namespace
}  // namespace bw
