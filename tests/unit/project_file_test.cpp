// Project files through AGP::Load and AGP::Save: round trips, repairs on
// reading, and broken inputs that must change nothing.
#include <sys/stat.h>

#include <cstdlib>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/registry.h"
#include "core/tables.h"
#include "language/phrase_store.h"
#include "persistence/master_details.h"
#include "persistence/menus.h"
#include "persistence/project_load.h"
#include "platform/files.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/custom_scripts.h"

namespace bw {
namespace {

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";

std::string projectXml(const std::string& rootAttributes, const std::string& content) {
  return kHead + "<Project ProjName=\"Shop\" ProgramLanguage=\"C#\" " + rootAttributes + ">\r\n" +
         content + "</Project>\r\n";
}

const std::string kDatabase =
    "<Database DBName=\"shop.db\" DBDBMSName=\"SQLite\" FutureDbSetting=\"kept\">\r\n"
    "<Table TblName=\"orders\" TblType=\"TABLE\" TblCaption=\"Orders\">\r\n"
    "<Field FldName=\"id\" FldType=\"3\" FldIsPrimaryKey=\"1\" FldDbDefault=\"\"/>\r\n"
    "<Field FldName=\"status\" FldType=\"202\" FldTagValues=\"new|done\" FldDbDefault=\"'new'\"/>\r\n"
    "</Table>\r\n"
    "<Table TblName=\"lines\" TblType=\"TABLE\"/>\r\n"
    "</Database>\r\n";

class ProjectFileTest : public testing::EngineTest {
 protected:
  // A fresh project loaded from `path`, with backups in the test's folder;
  // ProjErr tells how it went.
  Ref<AGP> load(const std::string& path) {
    ResetStores();
    auto project = make<AGP>();
    AGPVars().BackupFolder = tempPath("backup");
    project->Load(path, false);
    return project;
  }

  static void ResetStores() {
    AGPVarsData& vars = AGPVars();
    vars.Menus = {};
    vars.Language = {};
    vars.CustomScripts = {};
    vars.Extensions = {};
    vars.MasterDetails = {};
  }

  AGPTable& table(AGP& project, const std::string& name) {
    return *project.DB()->Tables()->table(name);
  }
};

TEST_F(ProjectFileTest, SaveLoadSaveGivesTheSameBytes) {
  const std::string source = writeTempFile(
      "shop.agx",
      projectXml("FutureProjectSetting=\"x\" Version=\"12.0.1\"",
                 kDatabase +
                     "<MasterDetail MasterTable=\"orders\" DetailTable=\"lines\" CascadeDelete=\"1\">"
                     "<Relation MasterField=\"id\" DetailField=\"order_id\"/></MasterDetail>\r\n"
                     "<CustomScript ScriptType=\"Server\" ScriptCodeType=\"Table\" ScriptName=\"Row_Rendering\" "
                     "ScriptLanguage=\"C#\" ScriptCtrlID=\"list\" ScriptL1Key=\"orders\" ScriptL2Key=\"\">"
                     "<![CDATA[int a = 1;\r\n]]></CustomScript>\r\n"
                     "<Menu MenuID=\"3\" MenuText=\"Orders\" MenuParentID=\"-1\" MenuUrl=\"orders\" MenuShow=\"1\"/>\r\n"
                     "<Extension Name=\"Charts\" Enabled=\"1\"><ExtProject/></Extension>\r\n"
                     "<ProjectPhrase LanguageId=\"de\" ProjectAttribute=\"BodyTitle\" Phrase=\"Laden\"/>\r\n"
                     "<MenuPhrase LanguageId=\"de\" MenuId=\"3\" MenuAttribute=\"MenuText\" Phrase=\"Bestellungen\"/>\r\n"
                     "<MenuPhrase LanguageId=\"de\" MenuId=\"9\" MenuAttribute=\"MenuText\" Phrase=\"weg\"/>\r\n"
                     "<TablePhrase LanguageId=\"de\" TableName=\"orders\" TableAttribute=\"TblCaption\" Phrase=\"Auftr\xC3\xA4ge\"/>\r\n"
                     "<TablePhrase LanguageId=\"de\" TableName=\"gone\" TableAttribute=\"TblCaption\" Phrase=\"x\"/>\r\n"
                     "<FieldPhrase LanguageId=\"de\" TableName=\"orders\" FieldName=\"id\" FieldAttribute=\"FldCaption\" Phrase=\"Nr\"/>\r\n"));

  Ref<AGP> first = load(source);
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_FALSE(first->IsDirty()) << "reading a file is no change";
  EXPECT_EQ(table(*first, "orders").Fields()->field("status")->attrText("FldTagValues"),
            "new\r\ndone");
  EXPECT_EQ(table(*first, "orders").attrText("TblKey"), "id");
  EXPECT_EQ(MasterDetails().Count(), 1);
  EXPECT_EQ(Menus().Count(), 1);
  EXPECT_EQ(CustomScripts().Count(), 1);

  const std::string saved = tempPath("saved.agx");
  first->Save(saved);
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(AGPVars().ProjectFile, saved);
  const std::string once = files::readFile(saved).value();
  EXPECT_TRUE(once.starts_with("\xEF\xBB\xBF<?xml")) << "saved with a byte order mark";
  EXPECT_NE(once.find("FutureProjectSetting=\"x\""), std::string::npos) << "unknown attributes survive";
  EXPECT_NE(once.find("FutureDbSetting=\"kept\""), std::string::npos);
  EXPECT_NE(once.find("FldTagValues=\"new|done\""), std::string::npos);
  EXPECT_NE(once.find("Version=\"12.0.4\""), std::string::npos) << "the version is always ours";
  EXPECT_NE(once.find("<Extension Name=\"Charts\" Enabled=\"1\">"), std::string::npos);
  EXPECT_EQ(once.find("Phrase=\"weg\""), std::string::npos) << "phrase of a missing menu dropped";
  EXPECT_EQ(once.find("TableName=\"gone\""), std::string::npos) << "phrase of a missing table dropped";
  // XML reading turns the code's line ends into LF, as in any XML text.
  EXPECT_NE(once.find("<![CDATA[int a = 1;\n]]>"), std::string::npos);
  EXPECT_LT(once.find("TblName=\"orders\""), once.find("TblName=\"lines\""));

  Ref<AGP> second = load(saved);
  ASSERT_EQ(AGPVars().ProjErr, "");
  second->Save(saved);
  EXPECT_EQ(files::readFile(saved).value(), once);
  EXPECT_EQ(files::readFile(tempPath("backup/saved(1).agx")).value(), once)
      << "the previous save is the newest backup";
}

TEST_F(ProjectFileTest, ReadingRepairsOldValues) {
  const std::string path = writeTempFile(
      "old.agx",
      projectXml("Version=\"12.0\" ThemeBrandPrimary=\"#A1B2C3\" SmtpServer=\"\" "
                 "DotNetFrameworkVersion=\"3.5\"",
                 "<Database DBName=\"d\" DBDBMSName=\"ACCESS\"><Table TblName=\"t\">"
                 "<Field FldName=\"a\" FldType=\"7\" FldAutoIncrement=\"1\" FldAdd=\"1\" FldSupport=\"0\"/>"
                 "<Field FldName=\"b\" FldType=\"202\" FldList=\"1\" FldViewTemplate='{\"id\":\"QRCode\",\"name\":\"QRCode Library\"}'/>"
                 "</Table></Database>"));
  Ref<AGP> project = load(path);
  ASSERT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(project->attrText("ThemeBrandPrimary"), "darken(#a1b2c3, 6.5%)");
  EXPECT_EQ(project->attrText("SmtpServer"), "localhost");
  EXPECT_EQ(project->attrText("SmtpServerPort"), "25");
  EXPECT_EQ(project->attrText("DotNetFrameworkVersion"), "4.0");
  EXPECT_EQ(project->attrText("ProjVar"), "Shop");
  AGPFields& fields = *table(*project, "t").Fields();
  EXPECT_EQ(fields.field("a")->attrText("FldQuoteS"), "#") << "dates of Access";
  EXPECT_FALSE(fields.field("a")->attrBool("FldAdd")) << "no entry for an auto-increment field";
  EXPECT_EQ(fields.field("a")->attrText("FldDbDefault"), "") << "files before FldDbDefault";
  EXPECT_EQ(fields.field("b")->attrText("FldQuoteS"), "'");
  EXPECT_TRUE(fields.field("b")->attrBool("FldExport")) << "FldExport follows FldList when absent";
  EXPECT_EQ(fields.field("b")->attrText("FldViewTemplate"),
            "{\"id\":\"Barcode\",\"name\":\"Barcode Library\",\"encode\":\"QRCODE\",\"encode_field\":null}");
  EXPECT_EQ(AGPVars().QuoteStart, "[");
}

TEST_F(ProjectFileTest, CustomScriptElementsLoadThroughAddAndSkipWhatItRefuses) {
  const auto element = [](const std::string& attributes, const std::string& code,
                          const std::string& name = "CustomScript") {
    return "<" + name + " " + attributes + ">\r\n<![CDATA[" + code + "]]>\r\n</" + name + ">\r\n";
  };
  const std::string place =
      "ScriptCodeType=\"Table\" ScriptName=\"list_page_load\" ScriptLanguage=\"C#\" "
      "ScriptCtrlID=\"list\" ScriptL2Key=\"\" ";
  const std::string path = writeTempFile(
      "scripts.agx",
      projectXml(
          "Version=\"12.0\"",
          kDatabase +
              element("ScriptType=\"template\" " + place + "ScriptL1Key=\"orders\"", "first") +
              element("ScriptType=\"TEMPLATE\" " + place + "ScriptL1Key=\"orders\"", "second") +
              element("ScriptType=\"template\" " + place + "ScriptL1Key=\"ORDERS\"", "other case") +
              element("ScriptType=\"template\" ScriptCodeType=\"Table\" ScriptLanguage=\"C#\"",
                      "no name") +
              element("ScriptType=\"template\" " + place + "ScriptL1Key=\"lines\"", "x",
                      "customscript") +
              element("ScriptType=\"Server\" ScriptCodeType=\"Table\" ScriptName=\"Row_Rendering\" "
                      "ScriptL1Key=\"orders\"",
                      "a = 1;") +
              element("ScriptType=\"Client\" ScriptCodeType=\"Table\" ScriptName=\"Startup\" "
                      "ScriptL1Key=\"orders\"",
                      "b = 2;")));
  load(path);
  ASSERT_EQ(AGPVars().ProjErr, "");
  AGPCustomScripts& scripts = CustomScripts();
  ASSERT_EQ(scripts.Count(), 3) << "a place met again, a taken key, no name, a lower-case element";
  EXPECT_EQ(scripts.Seq(1)->ScriptCode(), "second") << "the later element's code wins";
  EXPECT_EQ(scripts.Seq(1)->attrText("ScriptType"), "template");

  // Files before scripts had a language: server code is in the project's
  // language, the rest in JavaScript, and the old code is wrapped.
  Ref<AGPCustomScript> server = scripts.Seq(2);
  EXPECT_EQ(server->attrText("ScriptLanguage"), "C#");
  EXPECT_EQ(server->ScriptCode(), WrapLegacyScriptCode("Row_Rendering", "", "a = 1;", "C#"));
  EXPECT_EQ(scripts.Seq(3)->attrText("ScriptLanguage"), "JavaScript");
  EXPECT_FALSE(AGPVars().Dirty) << "reading a file is no change";
}

TEST_F(ProjectFileTest, BrokenInputsGiveTheirMessagesAndChangeNothing) {
  struct Case {
    const char* name;
    std::string content;
    std::string message;
  };
  const std::string product = "Brindlework: ";
  const std::vector<Case> cases = {
      {"notxml.agx", "<Project a=\"1\"\r\n<Database/>",
       product + "Load project file failed! Parse error: line 2, character 1\r\n<"},
      {"empty.agx", "", product + "Load project file failed! Parse error: line 1, character 1\r\n"},
      {"root.agx", kHead + "<Projekt Version=\"12.0\"/>", product + "Invalid Project File!"},
      {"newer.agx", projectXml("Version=\"13.0\"", kDatabase),
       product + "Project file version (13.0) newer than software (12.0.4)! Please check!"},
      {"nodb.agx", projectXml("Version=\"12.0\"", ""),
       product + "No Database Information in Project File!"},
      {"foreign.xyz", projectXml("Version=\"12.0\"", kDatabase),
       product + "Unable to convert project file from 'xyz' to 'agx'."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = writeTempFile(c.name, c.content);
    load(path);
    EXPECT_EQ(AGPVars().ProjErr, c.message);
    EXPECT_EQ(files::readFile(path), c.content);
    EXPECT_EQ(AGPVars().ProjectFile, std::string(c.name) == "nodb.agx" ? path : "")
        << "of the failures only a file without database counts as loaded";
  }

  load(tempPath("missing.agx"));
  EXPECT_TRUE(AGPVars().ProjErr.starts_with(product + "Load Project File failed! "))
      << AGPVars().ProjErr;
}

TEST_F(ProjectFileTest, AnErrorInsideATableNamesItsPlaceInTheWholeFile) {
  // The tables are parsed one by one; the place is still the file's.
  const std::string path = writeTempFile(
      "bad.agx", projectXml("Version=\"12.0\"",
                            "<Database DBName=\"d\">\r\n<Table TblName=\"a\">\r\n"
                            "<Field FldName=\"x\"/>\r\n</Table>\r\n<Table TblName=\"b\">\r\n"
                            "  <Field FldName=x/>\r\n</Table>\r\n</Database>\r\n"));
  load(path);
  EXPECT_EQ(AGPVars().ProjErr,
            "Brindlework: Load project file failed! Parse error: line 8, character 18\r\n"
            "  <Field FldName=x");
}

TEST_F(ProjectFileTest, OlderFilesLoadAsTheyAreWhenTheyCannotBeConverted) {
  Ref<AGP> project = load(writeTempFile("old.agx", projectXml("Version=\"11.5\"", kDatabase)));
  EXPECT_EQ(AGPVars().ProjErr, "");
  EXPECT_EQ(project->DB()->Tables()->Count(), 2);
  EXPECT_FALSE(project->IsDirty());
}

TEST_F(ProjectFileTest, SavingRepairsSequencesAndSurvivesAFailedBackup) {
  Ref<AGP> project = load(writeTempFile("shop.agx", projectXml("Version=\"12.0\"", kDatabase)));
  ASSERT_EQ(AGPVars().ProjErr, "");
  table(*project, "lines").setAttr("TblSeq", Variant(std::int16_t{1}));
  AGPVars().BackupFolder = "/proc/no/backups";
  const std::string path = tempPath("shop.agx");
  project->Save(path);
  EXPECT_EQ(AGPVars().ProjErr, "");
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_EQ(host().messages[0].text, "Incorrect table sequence for table: lines. Reorder from 1 to 2.");
  EXPECT_EQ(table(*project, "orders").attrInteger("TblSeq"), 1) << "the first keeps its number";

  ::chmod(path.c_str(), 0444);
  project->Save(path);
  EXPECT_NE(AGPVars().ProjErr.find("read-only"), std::string::npos) << AGPVars().ProjErr;
  ::chmod(path.c_str(), 0644);
}

}  // namespace
}  // namespace bw
