#include "core/agp_vars.h"
#include "core/keywords.h"
#include "core/registry.h"
#include "core/settings_file.h"
#include "support/engine_test.h"
#include "template/app_settings.h"
#include "template/filter.h"

namespace bw {
namespace {

using SideFilesTest = testing::EngineTest;

TEST_F(SideFilesTest, KeywordMatchingFollowsTheLanguage) {
  AGPKeyword k;
  ASSERT_TRUE(k.Load(writeTempFile("a.keyword",
                                   "<brindlework.keyword><keyword lang='*' value='Class'/>"
                                   "<KEYWORD lang='cs' value='int'/><keyword lang='C#' value='int'/>"
                                   "<keyword lang='C#' value='int'/></brindlework.keyword>")));
  EXPECT_EQ(k.Count(), 3) << "an exact duplicate replaces itself";
  EXPECT_FALSE(k.IsKeyword("C#", "class"));
  EXPECT_TRUE(k.IsKeyword("C#", "Class"));
  EXPECT_TRUE(k.IsKeyword("VB", "class"));
  EXPECT_TRUE(k.IsKeyword("vb", "CLASS"));
  EXPECT_TRUE(k.IsKeyword("c#", "int"));
  EXPECT_FALSE(k.IsKeyword("C#", "Int"));
  EXPECT_FALSE(k.IsKeyword("VB", "int")) << "lang cs applies to no language but cs";
}

TEST_F(SideFilesTest, KeywordFilesAddUpAndAWrongRootAddsNothing) {
  AGPKeyword k;
  k.Load(writeTempFile("a.keyword", "<brindlework.keyword><keyword lang='VB' value='Dim'/></brindlework.keyword>"));
  EXPECT_TRUE(k.Load(writeTempFile("b.keyword", "<words><keyword lang='VB' value='Sub'/></words>")));
  EXPECT_EQ(k.error(), "Keyword file is invalid!");
  EXPECT_EQ(k.Count(), 1);
  k.Load(writeTempFile("c.keyword", "<x:brindlework.keyword xmlns:x='urn:x'><keyword lang='VB' value='Sub'/></x:brindlework.keyword>"));
  EXPECT_EQ(k.error(), "");
  EXPECT_EQ(k.Count(), 2);
}

TEST_F(SideFilesTest, AKeywordFileThatFailsToLoadIsReportedOnce) {
  AGPKeyword k;
  std::string missing = tempPath("none.keyword");
  EXPECT_FALSE(k.Load(missing));
  EXPECT_FALSE(k.Load(missing));
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_EQ(host().messages[0].text,
            "Load keyword file \"" + missing + "\" failed. Please check your keyword file.");
  EXPECT_EQ(host().messages[0].title, "Brindlework");
  EXPECT_EQ(k.error(), "Load keyword file failed!");
}

TEST_F(SideFilesTest, TheShippedKeywordFileCoversBothLanguages) {
  AGPKeyword k;
  ASSERT_TRUE(k.Load(sourceShare() + "/brindlework.keyword"));
  EXPECT_EQ(k.error(), "");
  for (const char* word : {"class", "namespace", "string", "foreach", "using"})
    EXPECT_TRUE(k.IsKeyword("C#", word)) << word;
  for (const char* word : {"Dim", "end", "NOTHING", "ReDim", "Module"})
    EXPECT_TRUE(k.IsKeyword("VB", word)) << word;
  EXPECT_FALSE(k.IsKeyword("C#", "Customers"));
}

TEST_F(SideFilesTest, CustomSettingFileLookupsMatchExactly) {
  WriteSetting("HKCU", AGPVars().RegGeneral, "ConfigFile", 1,
               writeTempFile("s.xml",
                             "<zt-setting><section name='Project'>"
                             "<setting id='A' type='Long' value='7'/><setting id='B' value='x'/>"
                             "<setting id='C' type='Long' value='oops'/>"
                             "</section></zt-setting>"));
  AGPSettings& s = Settings();
  EXPECT_EQ(s.LoadSettingType("Project", "A"), "Long");
  EXPECT_EQ(s.LoadSettingType("Project", "B"), "String");
  EXPECT_EQ(s.LoadSettingType("project", "A"), "String") << "section names match exactly";
  EXPECT_EQ(s.LoadSettingType("Project", "a"), "String");
  EXPECT_TRUE(s.LoadSettingValue("Project", "A").sameAs(Variant(7)));
  EXPECT_TRUE(s.LoadSettingValue("", "A").isEmpty());
  EXPECT_TRUE(s.LoadSettingValue("Project", "Z").isEmpty());
  EXPECT_TRUE(s.LoadSettingValue("Project", "C").isEmpty());
}

TEST_F(SideFilesTest, ABrokenCustomSettingFileIsReportedAndIgnored) {
  std::string path = writeTempFile("bad.xml", "<zt-setting>");
  WriteSetting("HKCU", AGPVars().RegGeneral, "ConfigFile", 1, path);
  EXPECT_FALSE(Settings().hasDocument());
  ASSERT_EQ(host().messages.size(), 1u);
  EXPECT_EQ(host().messages[0].text, "Unable to load custom setting file: '" + path + "'. Please check.");
  EXPECT_EQ(Settings().LoadSettingType("Project", "A"), "String");
}

TEST_F(SideFilesTest, NoCustomSettingFileIsNoMessage) {
  EXPECT_FALSE(Settings().hasDocument());
  EXPECT_TRUE(host().messages.empty());
}

TEST_F(SideFilesTest, AppSettingsLoadAndAreFoundByPositionOrId) {
  auto list = make<AGPAppSettings>();
  ASSERT_TRUE(list->LoadAppSettings(writeTempFile(
      "app.xml",
      "<Project><AppSetting ID='a' Name='Alpha' type='text' values='' DefaultValue='1'/>"
      "<appsetting id='b' name='Beta'/><other id='c'/></Project>")));
  EXPECT_EQ(list->Count(), 2);
  EXPECT_EQ(list->Item(Variant(1))->AppSettingName, "Alpha");
  EXPECT_EQ(list->Item(Variant(1))->AppSettingDefaultValue, "1");
  EXPECT_EQ(list->Item(Variant("b"))->AppSettingName, "Beta");
  EXPECT_EQ(list->curIndex(), 2);
  EXPECT_FALSE(list->Item(Variant(3)));
  EXPECT_FALSE(list->Item(Variant(true)));
  EXPECT_FALSE(list->AddSetting("a", "", "", "", ""));
  EXPECT_TRUE(list->AddSetting("c", "Gamma", "", "", ""));
  EXPECT_TRUE(list->DeleteSetting("a"));
  EXPECT_EQ(list->Item(Variant(1))->AppSettingID, "b");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(SideFilesTest, AppSettingsReportBadFilesAndKeepTheList) {
  auto list = make<AGPAppSettings>();
  list->AddSetting("keep", "", "", "", "");
  EXPECT_FALSE(list->LoadAppSettings(tempPath("missing.xml")));
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework: Load project file failed!");
  EXPECT_EQ(list->Count(), 1);
  EXPECT_TRUE(list->LoadAppSettings(writeTempFile("x.xml", "<settings/>")));
  EXPECT_EQ(AGPVars().ProjErr, "Brindlework: Project file is invalid!");
  EXPECT_EQ(list->Count(), 0);
}

TEST_F(SideFilesTest, FilterGroupsAndOptionsMatchWithoutRegardToCase) {
  auto filter = make<AGPFilter>();
  filter->Load();
  EXPECT_EQ(filter->GroupCount(), 0);
  EXPECT_EQ(filter->OptionName("Dates", 1), "");
  filter->AddOption("Dates", "Today", "[d] = Date()", 1);
  filter->AddOption("dates", "Yesterday", "[d] = Date() - 1", 2);
  filter->AddOption("Amounts", "Large", "[a] > 1000", 1);
  EXPECT_EQ(filter->GroupCount(), 2);
  EXPECT_EQ(filter->GroupName(2), "Amounts");
  EXPECT_EQ(filter->GroupName(3), "");
  EXPECT_EQ(filter->OptionCount("DATES"), 2);
  EXPECT_EQ(filter->Expression("Dates", 2), "[d] = Date() - 1");
  EXPECT_EQ(filter->OptionName("amounts", 1), "Large");
  EXPECT_EQ(filter->OptionName("amounts", 2), "");
}

}  // namespace
}  // namespace bw
