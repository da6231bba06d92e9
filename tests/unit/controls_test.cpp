#include "template/controls.h"

#include <gtest/gtest.h>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "core/registry.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class ControlsTest : public testing::EngineTest {
 protected:
  bool load(const std::string& xml) {
    return controls->LoadControls(Variant(writeTempFile("control.xml", xml)));
  }

  // A control file of one control with the given attributes.
  const AGPControl& loadOne(const std::string& attributes) {
    EXPECT_TRUE(load("<BrindleworkTemplate><control " + attributes + "/></BrindleworkTemplate>"));
    return *controls->items().at(0);
  }

  static Ref<AGPControl> control(const std::string& id, const std::string& tagExt = "",
                                 const std::string& type = "other") {
    auto c = make<AGPControl>();
    c->CtrlID = id;
    c->CtrlTagExt = tagExt;
    c->CtrlType = type;
    return c;
  }

  Ref<AGPControls> controls = make<AGPControls>();
};

constexpr const char* kTwoControls =
    "<?xml version='1.0'?>\r\n"
    "<BrindleworkTemplate Date='2024-05-01' VERSION='12.0' desc='Starter' author='us' x='?'>"
    "  <control id='list' type='table' ofile='list' oext='cshtml' ifiles='list.htm'"
    "           cond='table/TblGen/eq/1' parm='p' remark='List page'>"
    "    <session type='key' value='header'/>"
    "    <session type='key' value='body'/>"
    "  </control>"
    "  <!-- comment --><folder id='ignored'/>"
    "  <CONTROL ID='list' TagExt='.x' Type='Table' Space='false' Overwrite='0'"
    "           Extension='ext' Action='add' OFolderID='root' unknown='?'/>"
    "</BrindleworkTemplate>";

TEST_F(ControlsTest, LoadReadsRootAttributesAndTheControlsInDocumentOrder) {
  ASSERT_TRUE(load(kTwoControls));
  EXPECT_EQ(controls->ProdDate(), "2024-05-01");
  EXPECT_EQ(controls->ProdVersion(), "12.0");
  EXPECT_EQ(controls->ProdDesc(), "Starter");
  EXPECT_EQ(controls->ProdAuthor(), "us");
  ASSERT_EQ(controls->Count(), 2);

  const AGPControl& list = *controls->items()[0];
  EXPECT_EQ(list.CtrlID, "list");
  EXPECT_EQ(list.CtrlType, "table");
  EXPECT_EQ(list.CtrlOFile, "list");
  EXPECT_EQ(list.CtrlOExt, "cshtml");
  EXPECT_EQ(list.CtrlIFiles, "list.htm");
  EXPECT_EQ(list.CtrlCond, "table/TblGen/eq/1");
  EXPECT_EQ(list.CtrlParm, "p");
  EXPECT_EQ(list.CtrlRemark, "List page");
  EXPECT_EQ(list.CtrlIFolder, "");
  EXPECT_TRUE(list.CtrlSpace);
  EXPECT_TRUE(list.CtrlOverwrite);
  EXPECT_FALSE(list.CtrlGen);
  EXPECT_EQ(list.Sessions()->Count(), 2);

  const AGPControl& tagged = *controls->items()[1];
  EXPECT_EQ(tagged.CtrlID, "list");
  EXPECT_EQ(tagged.CtrlTagExt, ".x");
  EXPECT_FALSE(tagged.CtrlSpace);
  EXPECT_FALSE(tagged.CtrlOverwrite);
  EXPECT_EQ(tagged.CtrlExt, "ext");
  EXPECT_EQ(tagged.CtrlAction, "add");
  EXPECT_EQ(tagged.CtrlOFolderID, "root");
  EXPECT_EQ(tagged.Sessions()->Count(), 0);
}

TEST_F(ControlsTest, BooleanAttributesReadTrueFalseAndNumbersAndKeepTheDefaultOtherwise) {
  EXPECT_FALSE(loadOne("space='False'").CtrlSpace);
  EXPECT_TRUE(loadOne("space='-1'").CtrlSpace);
  EXPECT_FALSE(loadOne("overwrite=' 0 '").CtrlOverwrite);
  EXPECT_TRUE(loadOne("overwrite='maybe'").CtrlOverwrite);
}

TEST_F(ControlsTest, InputFolderGetsBackslashesAndOneAtTheEndOnly) {
  EXPECT_EQ(loadOne("ifolder='/a/b'").CtrlIFolder, "a\\b\\");
  EXPECT_EQ(loadOne("ifolder='a\\b\\'").CtrlIFolder, "a\\b\\");
  EXPECT_EQ(loadOne("ifolder='//a'").CtrlIFolder, "\\a\\");
}

TEST_F(ControlsTest, ProjectTokensInOutputNamesAreSubstitutedInAnyCase) {
  AGPVars().ProjVar = "Shop";
  AGPVars().DBVar = "ShopDb";
  AGPVars().AppCompatVersion = Variant(3);
  const AGPControl& c = loadOne(
      "ofile='{proj.projvar}_{DB.DBVAR}_v{Proj.AppCompatVersion}' "
      "ofolder='{PROJ.ProjVar}/{projclassname}' ifiles='{PROJ.ProjVar}.htm'");
  EXPECT_EQ(c.CtrlOFile, "Shop_ShopDb_v3");
  EXPECT_EQ(c.CtrlOFolder, "Shop/" + DefaultWebPageClassPrefix(BRINDLEWORK_VERSION_MAJOR) + "Shop");
  EXPECT_EQ(c.CtrlIFiles, "{PROJ.ProjVar}.htm");
}

TEST_F(ControlsTest, TheClassNamePrefixComesFromTheSettingWhenItIsSet) {
  AGPVars().ProjVar = "Shop";
  WriteSetting("HKCU", AGPVars().RegGeneral, "WebPageClassNamePrefix", 1, "My_");
  EXPECT_EQ(loadOne("ofile='{ProjClassName}'").CtrlOFile, "My_Shop");
}

TEST_F(ControlsTest, TheDefaultClassNamePrefixWritesVersionThirteenAsItsYear) {
  EXPECT_EQ(DefaultWebPageClassPrefix(12), "Brindlework12_");
  EXPECT_EQ(DefaultWebPageClassPrefix(13), "Brindlework2016_");
  EXPECT_EQ(DefaultWebPageClassPrefix(14), "Brindlework14_");
}

TEST_F(ControlsTest, AnyRootThatBeginsWithTheProductKeyIsAccepted) {
  for (const char* root :
       {"BrindleworkTemplate", "brindlework", "BRINDLEWORK2016x", "t:BrindleworkT"})
    EXPECT_TRUE(load(std::string("<") + root + " xmlns:t='urn:t'><control id='a'/></" + root + ">"))
        << root;
}

TEST_F(ControlsTest, AWrongRootEmptiesTheListAndGivesErrorTwo) {
  ASSERT_TRUE(load(kTwoControls));
  EXPECT_FALSE(load("<Template version='1'><control id='a'/></Template>"));
  EXPECT_EQ(AGPVars().ExtensionLoadError, 2);
  EXPECT_EQ(controls->Count(), 0);
  EXPECT_EQ(controls->ProdVersion(), "");
  EXPECT_EQ(controls->ProdDate(), "");
}

TEST_F(ControlsTest, AFileThatDoesNotLoadGivesErrorOneAndKeepsTheList) {
  ASSERT_TRUE(load(kTwoControls));
  EXPECT_FALSE(load("<BrindleworkTemplate><control id='a'>"));
  EXPECT_EQ(AGPVars().ExtensionLoadError, 1);
  EXPECT_EQ(controls->Count(), 2);

  AGPVars().ExtensionLoadError = 0;
  EXPECT_FALSE(controls->LoadControls(Variant(tempPath("missing.xml"))));
  EXPECT_EQ(AGPVars().ExtensionLoadError, 1);
  EXPECT_FALSE(load(""));
  EXPECT_FALSE(load("just text"));
}

TEST_F(ControlsTest, CallersGetTheMessageOfTheLoadError) {
  EXPECT_EQ(ControlFileErrorMessage(2),
            "Brindlework: Control file is invalid! Please check if the correct template file is "
            "in use!");
  EXPECT_EQ(ControlFileErrorMessage(1),
            "Brindlework: Load control file failed! Please check if the correct template file is "
            "in use!");
}

TEST_F(ControlsTest, HeaderAndFooterComeOnlyFromIncludeSessions) {
  ASSERT_TRUE(
      load("<BrindleworkTemplate>"
           "<control id='a'><session type='include' value='RptFooter'/></control>"
           "<control id='b'><session type='key' value='header'/></control>"
           "<control id='c'><session type='include' value='shared/header/x'/></control>"
           "<control id='d'><session type='Include' value='header'/></control>"
           "</BrindleworkTemplate>"));
  EXPECT_TRUE(controls->items()[0]->CtrlHasHeaderFooter());
  EXPECT_FALSE(controls->items()[1]->CtrlHasHeaderFooter());
  EXPECT_FALSE(controls->items()[2]->CtrlHasHeaderFooter());
  EXPECT_FALSE(controls->items()[3]->CtrlHasHeaderFooter());
}

TEST_F(ControlsTest, ItemFindsByNumberOrExactIdAndMovesCurIndex) {
  ASSERT_TRUE(
      load("<BrindleworkTemplate><control id='a'/><control id='b'/><control id='b'/>"
           "</BrindleworkTemplate>"));
  EXPECT_EQ(controls->Item(Variant(2))->CtrlID, "b");
  EXPECT_EQ(controls->curIndex(), 2);
  EXPECT_EQ(controls->Item(Variant("a")).get(), controls->items()[0].get());
  EXPECT_EQ(controls->curIndex(), 1);
  EXPECT_EQ(controls->Item(Variant("b")).get(), controls->items()[1].get());
  EXPECT_EQ(controls->curIndex(), 2);

  for (const Variant& miss : {Variant("B"), Variant(0), Variant(4), Variant(true), Variant()})
    EXPECT_FALSE(controls->Item(miss));
  EXPECT_EQ(controls->curIndex(), 2);
  EXPECT_EQ(controls->current(), controls->items()[1].get());
}

TEST_F(ControlsTest, ControlsOfOneIdAreDistinctByTheirTag) {
  ASSERT_TRUE(load(kTwoControls));
  EXPECT_TRUE(controls->ControlExist(control("list", ".x")));
  EXPECT_FALSE(controls->ControlExist(control("list", ".y")));
  EXPECT_FALSE(controls->AddControl(control("list", ".x")));
  EXPECT_EQ(controls->Count(), 2);
  EXPECT_TRUE(controls->AddControl(control("list", ".y")));
  EXPECT_EQ(controls->Count(), 3);
}

TEST_F(ControlsTest, AddControlAppendsACopyWhoseSessionsCarryTheExtension) {
  ASSERT_TRUE(
      load("<BrindleworkTemplate><control id='new' type='other' ifiles='n.htm' ifolder='x'"
           " ofile='n' oext='htm' ofolder='o' ofolderid='f' cond='c' tagext='.t' parm='p'"
           " space='0' extension='Ext' action='add' overwrite='0' remark='r'>"
           "<session type='key' value='s1' parm='sp' extension='other'/><session value='s2'/>"
           "</control></BrindleworkTemplate>"));
  const Ref<AGPControl> source = controls->items()[0];
  source->CtrlGen = true;
  auto target = make<AGPControls>();
  ASSERT_TRUE(target->AddControl(source));

  const AGPControl& copy = *target->items()[0];
  EXPECT_NE(&copy, source.get());
  for (const char* name : {"CtrlID", "CtrlType", "CtrlIFiles", "CtrlIFolder", "CtrlOFile",
                           "CtrlOExt", "CtrlOFolder", "CtrlOFolderID", "CtrlCond", "CtrlTagExt",
                           "CtrlParm", "CtrlSpace", "CtrlExt", "CtrlAction", "CtrlOverwrite"})
    EXPECT_TRUE(const_cast<AGPControl&>(copy).get(name).sameAs(source->get(name))) << name;
  EXPECT_EQ(copy.CtrlRemark, "");
  EXPECT_FALSE(copy.CtrlGen);

  ASSERT_EQ(copy.Sessions()->Count(), 2);
  EXPECT_EQ(copy.Sessions()->Item(1)->SessValue, "s1");
  EXPECT_EQ(copy.Sessions()->Item(1)->SessExt, "Ext");
  EXPECT_EQ(copy.Sessions()->Item(1)->SessParm, "");
  EXPECT_EQ(copy.Sessions()->Item(2)->SessValue, "s2");
  EXPECT_EQ(source->Sessions()->Item(1)->SessExt, "Ext");
}

TEST_F(ControlsTest, DeleteControlAlsoMatchesTheType) {
  ASSERT_TRUE(load(kTwoControls));
  EXPECT_FALSE(controls->DeleteControl(control("list", "", "Table")));
  EXPECT_TRUE(controls->DeleteControl(control("list", "", "table")));
  ASSERT_EQ(controls->Count(), 1);
  EXPECT_EQ(controls->items()[0]->CtrlTagExt, ".x");
  EXPECT_FALSE(controls->DeleteControl(Ref<AGPControl>()));
}

TEST_F(ControlsTest, ScriptsSeeFieldsAsPropertiesAndComputedOnesReadOnly) {
  ASSERT_TRUE(load(kTwoControls));
  Variant item = controls->get("Item", std::vector<Variant>{Variant("list")});
  ASSERT_TRUE(item.isObject());
  Dispatch& list = *item.object();
  list.put("ctrlofile", Variant("renamed"));
  EXPECT_EQ(controls->items()[0]->CtrlOFile, "renamed");
  EXPECT_TRUE(list.get("CtrlSpace").sameAs(Variant(true)));
  EXPECT_TRUE(list.get("Sessions").isObject());
  EXPECT_THROW(list.put("CtrlHasHeaderFooter", Variant(true)), AutomationError);
  EXPECT_THROW(controls->put("curIndex", Variant(1)), AutomationError);
  EXPECT_TRUE(controls->get("Count").sameAs(Variant(2)));
}

}  // namespace
}  // namespace bw
