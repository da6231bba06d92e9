// The info and save commands, run as the built program on a project file
// written by hand.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files.h"
#include "support/cli_run.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using bw::testing::CliRun;

// Three tables in an order that is neither alphabetical nor by key: the
// output must follow the file. order_items lists its key fields out of
// name order; the view has no fields; one caption needs JSON escapes and
// one is not ASCII.
constexpr const char* kShopProject =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Project ProjName="Shop" Version="12.0.4" Product="Brindlework">
<Database DBName="shop.db" DBType="SQLITE" DBDBMSName="SQLite">
<Table TblName="orders" TblType="TABLE" TblCaption="Orders">
<Field FldName="id" FldType="3" FldTypeName="INTEGER" FldIsPrimaryKey="1" FldAutoIncrement="1" FldReq="1" FldSupport="1" FldHtmlTag="NO" FldCaption="Order no."/>
<Field FldName="customer" FldType="202" FldTypeName="VARCHAR" FldSize="80" FldReq="1" FldUniqueIdx="1" FldSupport="1" FldHtmlTag="TEXT" FldCaption="Customer &quot;name&quot; \ &#9;tab"/>
<Field FldName="ordered" FldType="135" FldTypeName="DATETIME" FldSupport="1" FldCaption="Größe"/>
</Table>
<Table TblName="order_items" TblType="TABLE">
<Field FldName="product_id" FldType="3" FldTypeName="INTEGER" FldIsPrimaryKey="1" FldReq="1" FldSupport="1" FldCaption="Product"/>
<Field FldName="order_id" FldType="3" FldTypeName="INTEGER" FldIsPrimaryKey="1" FldReq="1" FldSupport="1" FldCaption="Order"/>
<Field FldName="blob" FldType="205" FldTypeName="" FldSupport="0" FldCaption=""/>
</Table>
<Table TblName="v_totals" TblType="VIEW"/>
</Database>
</Project>
)";

class InfoSaveCliTest : public testing::EngineTest {
 protected:
  CliRun run(const std::vector<std::string>& args) {
    return testing::RunCli(args, tempDir().string());
  }
  std::string shopFile() { return writeTempFile("shop.agx", kShopProject); }
};

TEST_F(InfoSaveCliTest, TextListsTablesInFileOrderWithSortedKeysAndCounts) {
  CliRun info = run({"info", shopFile()});
  ASSERT_EQ(info.exitCode, 0) << info.err;
  EXPECT_EQ(info.out,
            "Project:  Shop\n"
            "Database: shop.db (SQLITE), 3 tables\n"
            "\n"
            "orders (TABLE), key: id, 3 fields\n"
            "\n"
            "order_items (TABLE), key: order_id, product_id, 3 fields\n"
            "\n"
            "v_totals (VIEW), key: none, 0 fields\n");
}

TEST_F(InfoSaveCliTest, FieldsShowTypeFlagsAndCaptionInAlignedColumns) {
  CliRun info = run({"info", shopFile(), "--fields"});
  ASSERT_EQ(info.exitCode, 0) << info.err;
  EXPECT_EQ(info.out,
            "Project:  Shop\n"
            "Database: shop.db (SQLITE), 3 tables\n"
            "Flags:    K primary key, A auto-increment, U unique, R required, G generated; then the "
            "HTML tag\n"
            "\n"
            "orders (TABLE), key: id, 3 fields\n"
            "  id        3 INTEGER     KA-RG  NO    Order no.\n"
            "  customer  202 VARCHAR   --URG  TEXT  Customer \"name\" \\ \ttab\n"
            "  ordered   135 DATETIME  ----G        Größe\n"
            "\n"
            "order_items (TABLE), key: order_id, product_id, 3 fields\n"
            "  product_id  3 INTEGER  K--RG  Product\n"
            "  order_id    3 INTEGER  K--RG  Order\n"
            "  blob        205        -----\n"
            "\n"
            "v_totals (VIEW), key: none, 0 fields\n");
}

TEST_F(InfoSaveCliTest, JsonCarriesTheSameContentWithEscapedStrings) {
  const std::string project = shopFile();
  CliRun brief = run({"info", project, "--json"});
  ASSERT_EQ(brief.exitCode, 0) << brief.err;
  EXPECT_EQ(brief.out, R"({
  "project": "Shop",
  "database": {
    "name": "shop.db",
    "type": "SQLITE"
  },
  "tables": [
    {
      "name": "orders",
      "type": "TABLE",
      "key": [
        "id"
      ],
      "fieldCount": 3
    },
    {
      "name": "order_items",
      "type": "TABLE",
      "key": [
        "order_id",
        "product_id"
      ],
      "fieldCount": 3
    },
    {
      "name": "v_totals",
      "type": "VIEW",
      "key": [],
      "fieldCount": 0
    }
  ]
}
)");

  CliRun full = run({"info", "--json", "--fields", project});
  ASSERT_EQ(full.exitCode, 0) << full.err;
  const std::string orders = R"(
      "fields": [
        {
          "name": "id",
          "type": 3,
          "typeName": "INTEGER",
          "primaryKey": true,
          "autoIncrement": true,
          "unique": false,
          "required": true,
          "generate": true,
          "htmlTag": "NO",
          "caption": "Order no."
        },
        {
          "name": "customer",
          "type": 202,
          "typeName": "VARCHAR",
          "primaryKey": false,
          "autoIncrement": false,
          "unique": true,
          "required": true,
          "generate": true,
          "htmlTag": "TEXT",
          "caption": "Customer \"name\" \\ \ttab"
        },
        {
          "name": "ordered",
          "type": 135,
          "typeName": "DATETIME",
          "primaryKey": false,
          "autoIncrement": false,
          "unique": false,
          "required": false,
          "generate": true,
          "htmlTag": "",
          "caption": "Größe"
        }
      ]
    },)";
  EXPECT_NE(full.out.find(orders), std::string::npos) << full.out;
  EXPECT_NE(full.out.find(R"("fieldCount": 0,
      "fields": []
    })"),
            std::string::npos)
      << full.out;
}

TEST_F(InfoSaveCliTest, ControlCharactersAndBrokenUtf8StayValidJson) {
  // A character reference to U+0001 and a stray byte 0xFF in a caption.
  std::string project = kShopProject;
  project.replace(project.find("Order no."), 9,
                  "a&#1;b\xFF"
                  "c");
  CliRun info = run({"info", writeTempFile("odd.agx", project), "--fields", "--json"});
  ASSERT_EQ(info.exitCode, 0) << info.err;
  EXPECT_NE(info.out.find(R"("caption": "a\u0001b\ufffdc")"), std::string::npos) << info.out;
}

TEST_F(InfoSaveCliTest, SavedFileLoadsAgainWithTheSameDefinition) {
  const std::string project = shopFile();
  CliRun before = run({"info", project, "--fields", "--json"});
  ASSERT_EQ(before.exitCode, 0) << before.err;

  const std::string copy = tempPath("copy.agx");
  CliRun save = run({"save", project, "-o", copy});
  ASSERT_EQ(save.exitCode, 0) << save.err;
  const std::string written = files::readFile(copy).value_or("");
  EXPECT_NE(written.find("<Project "), std::string::npos) << written;
  EXPECT_NE(written.find("TblName=\"order_items\""), std::string::npos);
  EXPECT_EQ(files::readFile(project).value_or(""), kShopProject) << "-o leaves the source alone";

  CliRun after = run({"info", copy, "--fields", "--json"});
  ASSERT_EQ(after.exitCode, 0) << after.err;
  EXPECT_EQ(after.out, before.out);

  // In place, through the long option name too.
  ASSERT_EQ(run({"save", project}).exitCode, 0);
  EXPECT_EQ(run({"info", project, "--fields", "--json"}).out, before.out);
  ASSERT_EQ(run({"save", copy, "--output", tempPath("again.agx")}).exitCode, 0);
  EXPECT_EQ(run({"info", tempPath("again.agx"), "--fields", "--json"}).out, before.out);
}

TEST_F(InfoSaveCliTest, MissingAndBrokenFilesFailWithTheReason) {
  const std::string missing = tempPath("missing.agx");
  CliRun info = run({"info", missing});
  EXPECT_EQ(info.exitCode, 1);
  EXPECT_EQ(info.out, "");
  EXPECT_TRUE(info.err.starts_with("Brindlework: Load Project File failed! ")) << info.err;
  CliRun save = run({"save", missing, "-o", tempPath("out.agx")});
  EXPECT_EQ(save.exitCode, 1);
  EXPECT_EQ(save.err, info.err);

  const std::string broken = writeTempFile(
      "broken.agx",
      "<?xml version=\"1.0\"?>\n<Project ProjName=\"Shop\">\n<Database DBName=\"x\">\n");
  CliRun parse = run({"info", broken});
  EXPECT_EQ(parse.exitCode, 1);
  EXPECT_EQ(parse.out, "");
  EXPECT_TRUE(parse.err.starts_with("Brindlework: Load project file failed! Parse error: line "))
      << parse.err;

  const std::string foreign = writeTempFile("foreign.agx", "<?xml version=\"1.0\"?><Other/>\n");
  CliRun root = run({"info", foreign});
  EXPECT_EQ(root.exitCode, 1);
  EXPECT_EQ(root.err, "Brindlework: Invalid Project File!\n");

  // Nothing is written for a file that did not load.
  CliRun saveBroken = run({"save", broken, "-o", tempPath("out.agx")});
  EXPECT_EQ(saveBroken.exitCode, 1);
  EXPECT_EQ(saveBroken.err, parse.err);
  EXPECT_FALSE(std::filesystem::exists(tempPath("out.agx")));
}

TEST_F(InfoSaveCliTest, AProjectWithoutDatabaseIsShownAndSavedWithAWarning) {
  const std::string project = writeTempFile(
      "empty.agx",
      R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?><Project ProjName="Empty" Version="12.0.4" Product="Brindlework"/>)");
  const std::string warning = "Brindlework: No Database Information in Project File!\n";
  CliRun text = run({"info", project, "--fields"});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  EXPECT_EQ(text.out, "Project:  Empty\nDatabase: none\n");
  EXPECT_TRUE(text.err.ends_with(warning)) << text.err;

  CliRun json = run({"info", project, "--json"});
  EXPECT_EQ(json.exitCode, 0) << json.err;
  EXPECT_EQ(json.out, "{\n  \"project\": \"Empty\",\n  \"database\": null,\n  \"tables\": []\n}\n");

  CliRun save = run({"save", project, "-o", tempPath("copy.agx")});
  EXPECT_EQ(save.exitCode, 0) << save.err;
  EXPECT_EQ(run({"info", tempPath("copy.agx"), "--json"}).out, json.out);
}

TEST_F(InfoSaveCliTest, BadUsageExitsTwoWithTheUsageLine) {
  const std::string project = shopFile();
  const std::vector<std::vector<std::string>> infoCalls{
      {"info"}, {"info", project, project}, {"info", project, "--feilds"}};
  for (const auto& args : infoCalls) {
    CliRun r = run(args);
    EXPECT_EQ(r.exitCode, 2) << args.back();
    EXPECT_NE(r.err.find("usage: brindlework info PROJECT [--fields] [--json]\n"),
              std::string::npos)
        << r.err;
  }
  const std::vector<std::vector<std::string>> saveCalls{
      {"save"}, {"save", project, "-o"}, {"save", project, "--force"}, {"save", "-o", "x"}};
  for (const auto& args : saveCalls) {
    CliRun r = run(args);
    EXPECT_EQ(r.exitCode, 2) << args.back();
    EXPECT_NE(r.err.find("usage: brindlework save PROJECT [-o OUT]\n"), std::string::npos) << r.err;
  }
  EXPECT_EQ(run({"save", project, "-o"}).err,
            "brindlework save: -o needs a value\nusage: brindlework save PROJECT [-o OUT]\n");
}

}  // namespace
}  // namespace bw
