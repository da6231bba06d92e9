#include "project/agp.h"

#include <cstdlib>
#include <filesystem>

#include "core/agp_vars.h"
#include "core/databases.h"
#include "core/keywords.h"
#include "core/registry.h"
#include "support/engine_test.h"

namespace bw {
namespace {

// Projects over an empty settings store unless a test fills it first.
class AGPTest : public testing::EmptySettingsTest {
 protected:
};

TEST_F(AGPTest, ANewProjectIsCleanAndHasTheFixedDefaults) {
  auto proj = make<AGP>();
  EXPECT_FALSE(proj->IsDirty());
  EXPECT_FALSE(proj->ProjInit());
  EXPECT_EQ(proj->attrText("ProjID").size(), 38u);
  EXPECT_EQ(proj->attrText("SecType"), "None");
  EXPECT_TRUE(proj->attr("AutoSync").boolean());
  EXPECT_EQ(proj->attr("PagerStyle").integer(), 2);
  EXPECT_EQ(proj->UnloadThresholdCount(), 20);
  EXPECT_EQ(proj->attrText("XMLEncoding"), AGPVars().SystemCharset);
  EXPECT_FALSE(AGPVars().SystemCharset.empty());
  EXPECT_EQ(proj->AppVersion(), "12.0.4");
  EXPECT_EQ(AGPVars().ProductVersion, "12.0");
  EXPECT_EQ(proj->TemplateExt(), "tpl");
  EXPECT_EQ(proj->Properties()->Count(), 183);
}

TEST_F(AGPTest, ConstructionMakesTheUserFolders) {
  make<AGP>();
  EXPECT_EQ(AGPVars().UserFolder, tempPath("Documents") + "\\Brindlework");
  EXPECT_TRUE(std::filesystem::is_directory(tempPath("Documents/Brindlework/Backup")));
  EXPECT_TRUE(std::filesystem::is_directory(tempPath("Documents/Brindlework/Report")));
}

TEST_F(AGPTest, TheUnloadThresholdFallsBackTo20BelowOne) {
  for (auto [stored, expected] : {std::pair{0, 20}, {-1, 20}, {1, 1}, {35, 35}}) {
    setGeneral("UnloadThresholdCount", stored, 4);
    EXPECT_EQ(make<AGP>()->UnloadThresholdCount(), expected) << stored;
  }
}

TEST_F(AGPTest, StoredDefaultsAreReadButFixedValuesWin) {
  WriteSetting("HKCU", AGPVars().RegProject, "RecPerPage", 4, 50);
  WriteSetting("HKCU", AGPVars().RegProject, "MultiLanguage", 1, "True");
  WriteSetting("HKCU", AGPVars().RegProject, "CharSet", 1, "'utf-8'");
  auto proj = make<AGP>();
  EXPECT_TRUE(proj->attr("RecPerPage").sameAs(Variant(std::int16_t{50})));
  EXPECT_TRUE(proj->attr("MultiLanguage").sameAs(Variant(true)));
  EXPECT_EQ(proj->attrText("CharSet"), "utf-8");

  proj->setAttr("SecType", "Static");
  proj->LoadDefault();
  EXPECT_EQ(proj->attrText("SecType"), "None");
}

TEST_F(AGPTest, SaveDefaultWritesTheProjectAndGeneralSections) {
  auto proj = make<AGP>();
  proj->setAttr("RecPerPage", Variant(std::int16_t{25}));
  proj->setAttr("BodyTitle", "Shop");
  proj->SaveDefault();
  EXPECT_EQ(ReadSetting("HKCU", AGPVars().RegProject, "RecPerPage").toLong(), 25);
  EXPECT_EQ(AGPVars().RegValueType, 4);
  EXPECT_EQ(ReadSetting("HKCU", AGPVars().RegProject, "BodyTitle").toText(), "Shop");
  EXPECT_EQ(ReadSetting("HKCU", AGPVars().RegGeneral, "BackupFile").toText(), "False");
  EXPECT_TRUE(ReadSetting("HKCU", AGPVars().RegProject, "ProjName").isEmpty());  // not a default
  EXPECT_TRUE(ReadSetting("HKCU", AGPVars().RegDatabase, "MaxUploadSize").isEmpty())
      << "no database, no database defaults";

  proj->addDatabase("shop.db")->setAttr("MaxUploadSize", Variant(4096));
  proj->SaveDefault();
  EXPECT_EQ(ReadSetting("HKCU", AGPVars().RegDatabase, "MaxUploadSize").toLong(), 4096);
  EXPECT_TRUE(ReadSetting("HKCU", AGPVars().RegDatabase, "DBName").isEmpty());
}

TEST_F(AGPTest, AddProjMakesAVariableNameAndADirtyProject) {
  setGeneral("Keyword", Variant(sourceShare() + "/brindlework.keyword"));
  WriteSetting("HKCU", AGPVars().RegProject, "ProgramLanguage", 1, "C#");
  auto proj = make<AGP>();
  proj->AddProj("class");
  EXPECT_EQ(proj->attrText("ProjVar"), "zclass");
  EXPECT_EQ(AGPVars().ProjVar, "zclass");
  EXPECT_TRUE(proj->ProjInit());
  EXPECT_TRUE(proj->IsDirty());
  proj->AddProj("9 Lives.Shop");
  EXPECT_EQ(proj->attrText("ProjVar"), "z9_Lives_Shop");
}

TEST_F(AGPTest, DeleteProjLeavesTheAttributeTableCompleteAndEmpty) {
  auto proj = make<AGP>();
  proj->AddProj("Shop");
  proj->SetV("Custom", "x");
  proj->DeleteProj();
  EXPECT_FALSE(proj->ProjInit());
  EXPECT_EQ(proj->Properties()->Count(), 183);
  EXPECT_EQ(proj->GetV("ProjName").toText(), "");
  EXPECT_FALSE(proj->Properties()->PropertyExist("Custom"));
}

TEST_F(AGPTest, GetVAndSetVFallBackOnTheCustomSettingFile) {
  std::string file = writeTempFile("custom.xml",
                                   "<zt-setting><section name='Project'>"
                                   "<setting id='PageSize' type='Integer' value='30'/>"
                                   "<setting id='Motto' value=' \"Hi\" '/>"
                                   "</section></zt-setting>");
  setGeneral("ConfigFile", file);
  auto proj = make<AGP>();
  const std::int32_t before = proj->Properties()->Count();

  EXPECT_EQ(proj->GetV("x").toText(), "");
  EXPECT_EQ(proj->Properties()->Count(), before) << "unknown names add nothing";

  EXPECT_TRUE(proj->GetV("PageSize").sameAs(Variant(std::int16_t{30})));
  EXPECT_EQ(proj->Properties()->Item("pagesize")->DataType(), "Integer");
  EXPECT_EQ(proj->GetV("Motto").toText(), "Hi");

  proj->SetV("Other", "'quoted'");  // new attribute: stored unconverted
  EXPECT_EQ(proj->attrText("Other"), "'quoted'");
  proj->SetV("Other", "'quoted'");  // existing String: cleaned
  EXPECT_EQ(proj->attrText("Other"), "quoted");
  proj->Properties()->Item("Other")->setValue("'direct'");
  EXPECT_EQ(proj->attrText("Other"), "'direct'");
}

TEST_F(AGPTest, ThemeStylesBecomeAttributesAndTheProjectThemeOverridesThem) {
  const std::string themes = tempPath("themes");
  writeTempFile("themes/bootstrap.xml",
                "<theme><style id='ThemeA' value='1'/><STYLE id='ThemeB' value='2'/>"
                "<other id='ThemeC' value='3'/></theme>");
  writeTempFile("themes/dark.xml", "<theme><style id='ThemeB' value='dark'/></theme>");
  setGeneral("ThemeFolder", themes);
  WriteSetting("HKCU", AGPVars().RegProject, "ApplicationTheme", 1, "Dark");
  auto proj = make<AGP>();
  EXPECT_EQ(proj->attrText("ThemeA"), "1");
  EXPECT_EQ(proj->attrText("ThemeB"), "dark");
  EXPECT_FALSE(proj->Properties()->PropertyExist("ThemeC"));
  EXPECT_FALSE(proj->IsDirty());
}

TEST_F(AGPTest, SecPasswdEncriptHashesByPasswordFormat) {
  auto proj = make<AGP>();
  proj->setAttr("SecPasswd", "secret");
  proj->setAttr("PasswordFormat", "MD5");
  EXPECT_EQ(proj->SecPasswdEncript(), "5EBE2294ECD0E0F08EAB7690D2A6EE69");
  proj->setAttr("PasswordFormat", "sha1");
  EXPECT_EQ(proj->SecPasswdEncript(), "E5E9FA1BA31ECD1AE84F75CAAA474F3A663F05F4");
  proj->setAttr("PasswordFormat", "");
  EXPECT_EQ(proj->SecPasswdEncript(), "secret");
}

TEST_F(AGPTest, ReadRegValueSelectsTheMachineHiveWithoutRegardToCase) {
  auto proj = make<AGP>();  // first: a first run copies machine values over the user's
  WriteSetting("HKLM", AGPVars().RegGeneral, "Where", 1, "machine");
  WriteSetting("HKCU", AGPVars().RegGeneral, "Where", 1, "user");
  EXPECT_EQ(proj->ReadRegValue("HKLM", AGPVars().RegGeneral, "Where").toText(), "machine");
  EXPECT_EQ(proj->ReadRegValue("hklm", AGPVars().RegGeneral, "Where").toText(), "machine");
  EXPECT_EQ(proj->ReadRegValue("X", AGPVars().RegGeneral, "Where").toText(), "user");
  EXPECT_EQ(ReadSetting("hklm", AGPVars().RegGeneral, "Where").toText(), "user");
}

TEST_F(AGPTest, AddTraceJoinsLinesWithCrLf) {
  auto proj = make<AGP>();
  proj->AddTrace("a");
  EXPECT_EQ(AGPVars().Trace, "a");
  proj->AddTrace("b");
  EXPECT_EQ(AGPVars().Trace, "a\r\nb");
}

TEST_F(AGPTest, AttributesAreTypedPropertiesForScripts) {
  auto proj = make<AGP>();
  proj->put("RecPerPage", "20");
  EXPECT_TRUE(proj->get("recperpage").sameAs(Variant(std::int16_t{20})));
  proj->put("MultiLanguage", "1");
  EXPECT_TRUE(proj->get("MultiLanguage").sameAs(Variant(true)));
  proj->setAttr("TblAltColor", "");  // an empty Boolean reads as False, not an error
  EXPECT_TRUE(proj->get("TblAltColor").sameAs(Variant(false)));
  EXPECT_FALSE(proj->member("TblAltColor").isCallable());
  EXPECT_THROW(proj->put("RecPerPage", "many"), AutomationError);
  EXPECT_THROW(proj->put("ProjVar", "x"), AutomationError);
  proj->put("ProjName", "My Shop");
  EXPECT_EQ(proj->get("ProjVar").toText(), "My_Shop");
  proj->put("Destination", "/srv/site");
  EXPECT_EQ(AGPVars().Destination, "/srv/site");
  Variant name[] = {Variant("MultiLanguage")};
  EXPECT_TRUE(proj->get("GetV", name).sameAs(Variant(true)));
}

}  // namespace
}  // namespace bw
