// CreateLanguageFile: the site's copy of a language file, with its global
// texts normalised and its project section rebuilt from the project and the
// phrase store. Most cases call it directly over the demo database; the last
// runs a whole generation with two language files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "core/agp_vars.h"
#include "core/control_items.h"
#include "core/fields.h"
#include "core/registry.h"
#include "core/tables.h"
#include "generation/generation.h"
#include "language/phrase_store.h"
#include "persistence/menus.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/xml.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/controls.h"

namespace bw {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kGerman = R"(<?xml version="1.0" encoding="utf-8"?>
<language id="de" desc="Deutsch" version="12.0.0"><global><phrase id="Save" value="Speichern"/></global></language>)";

void setGeneral(const char* name, const std::string& value) {
  WriteSetting("HKCU", AGPVars().RegGeneral, name, 1, Variant(value));
}

class LanguageFileOutputTest : public testing::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    project = make<AGP>();
    project->AddProj("demo");
    project->LoadDB(Variant("demo"), Variant("SQLITE"), Variant(""), Variant(""), Variant(false),
                    Variant(""), Variant(""),
                    Variant(std::string("Data Source=") + BRINDLEWORK_DEMO_DB + ";"), Variant(""));
    ASSERT_EQ(AGPVars().ProjErr, "");
    project->setDestination(tempPath("site"));
    setGeneral("LanguageProjectAttributes", "BodyTitle, FooterText");
    setGeneral("LanguageMenuAttributes", "MenuText");
    setGeneral("LanguageTableAttributes", "TblCaption");
    setGeneral("LanguageFieldAttributes", "FldCaption,FldTagCaption%n");
    Menus().clear();
  }

  // Writes `source` as the language folder's file, registers its header as
  // a run does, and makes the site's copy; false when none was made.
  bool create(const std::string& source, bool multiLanguage, bool check = false) {
    const std::string path = writeTempFile("lang/german.xml", source);
    Language().ResetFiles();
    EXPECT_TRUE(Language().Load(path));
    Generation generation(*project, project->projectTemplate());
    return generation.CreateLanguageFile("@lang_german.xml", "Creating language file german.xml...",
                                         "Create language file", path, "lang", "german.xml", check,
                                         multiLanguage, false);
  }

  std::string output() const {
    return files::readFile(tempPath("site/lang/german.xml")).value_or("<missing>");
  }

  // The output, parsed; the test fails when it does not parse.
  pugi::xml_document& parsed() {
    EXPECT_TRUE(xml::loadText(doc_, output(), xml::LineEnds::Keep)) << output();
    return doc_;
  }

  // The value of the first attribute that `xpath` selects, or "<none>".
  std::string valueAt(const std::string& xpath) {
    const pugi::xpath_node found = parsed().select_node(xpath.c_str());
    return found ? found.attribute().value() : "<none>";
  }
  std::size_t countOf(const std::string& xpath) {
    return parsed().select_nodes(xpath.c_str()).size();
  }

  AGPTable& table(const std::string& name) { return *project->DB()->Tables()->table(name); }
  AGPField& field(const std::string& tableName, const std::string& name) {
    return *table(tableName).Fields()->field(name);
  }

  Ref<AGP> project;

 private:
  pugi::xml_document doc_;
};

// ---------------------------------------------------------------------------
// The source's own content

TEST_F(LanguageFileOutputTest, GlobalIdsAreLoweredImagesExpandedAndTheRestPassesUnchanged) {
  auto images = make<AGPControl>();
  images->CtrlID = "_images";
  images->CtrlType = "folder";
  images->CtrlOFolder = "img";
  ASSERT_TRUE(project->ControlList()->AddControl(images));
  ASSERT_TRUE(create(R"(<language id="de" version="12.0.0" date="2001/01/01"><global>)"
                     R"(<locale id="LocaleId" Value="de-DE"/>)"
                     R"(<phrase id="SaveBtn" value="Speichern" imageurl="{_images}/save.png"/>)"
                     R"(<phrase id="Gone" value="Weg" imageurl="{_nowhere}x.png"/>)"
                     R"(<phrase id="Plain" value="Klar" imageurl=""/></global>)"
                     R"(<other Id="KeepMe"><phrase id="Inner"/></other></language>)",
                     false));
  EXPECT_EQ(valueAt("//global/locale/@id"), "localeid");
  EXPECT_EQ(valueAt("//global/locale/@Value"), "de-DE");
  EXPECT_EQ(valueAt("//global/phrase[1]/@id"), "savebtn");
  EXPECT_EQ(valueAt("//global/phrase[1]/@value"), "Speichern");
  EXPECT_EQ(valueAt("//global/phrase[1]/@imageurl"), "img/save.png");
  EXPECT_EQ(valueAt("//global/phrase[2]/@imageurl"), "x.png");
  EXPECT_EQ(valueAt("//global/phrase[3]/@imageurl"), "");
  EXPECT_EQ(valueAt("//other/@Id"), "KeepMe");
  EXPECT_EQ(valueAt("//other/phrase/@id"), "Inner") << "only global phrases are normalised";

  const std::tm today = clock::localNow();
  EXPECT_EQ(valueAt("/language/@date"), std::to_string(today.tm_year + 1900) + "/" +
                                            std::to_string(today.tm_mon + 1) + "/" +
                                            std::to_string(today.tm_mday));
  EXPECT_EQ(output().substr(0, 3), "\xEF\xBB\xBF") << "written with a byte order mark";
}

TEST_F(LanguageFileOutputTest, AnOldProjectSectionGoesEvenWhenTheNewOneStaysEmpty) {
  for (const char* name : {"LanguageProjectAttributes", "LanguageMenuAttributes",
                           "LanguageTableAttributes", "LanguageFieldAttributes"})
    setGeneral(name, "");
  ASSERT_TRUE(create(R"(<language id="de"><global><project><phrase id="inner"/></project></global>)"
                     R"(<project><phrase id="old" value="x"/></project></language>)",
                     true));
  EXPECT_EQ(countOf("//project"), 1u);
  EXPECT_EQ(countOf("//project/*"), 0u);
  EXPECT_THAT(output(), EndsWith("<global/><project/>\r\n</language>"));
}

// ---------------------------------------------------------------------------
// Merging attributes with phrases

TEST_F(LanguageFileOutputTest, ASingleLanguageSiteWritesTheValueAMultiLanguageOneThePhrase) {
  project->setAttr("BodyTitle", Variant("Shop"));
  project->setAttr("FooterText", Variant(""));
  Language().SetProjectPhrase("de", "BodyTitle", "Laden");
  Language().SetProjectPhrase("de", "FooterText", "Fußzeile");
  Language().SetProjectPhrase("fr", "BodyTitle", "Boutique");
  const std::string tblName = table("Categories").TblName();
  table("Categories").setAttr("TblCaption", Variant("Categories"));
  Language().SetTablePhrase("de", tblName, "TblCaption", "Kategorien");
  field("Categories", "CategoryName").setAttr("FldCaption", Variant(""));
  Language().SetFieldPhrase("de", tblName, "CategoryName", "FldCaption", "Name");

  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(valueAt("//project/phrase[@id='bodytitle']/@value"), "Shop");
  EXPECT_EQ(valueAt("//project/phrase[@id='footertext']/@value"), "Fußzeile");
  EXPECT_EQ(valueAt("//table[@id='categories']/phrase[@id='tblcaption']/@value"), "Categories");
  EXPECT_EQ(valueAt("//table[@id='categories']/field[@id='categoryname']/phrase/@value"), "Name");

  ASSERT_TRUE(create(kGerman, true));
  EXPECT_EQ(valueAt("//project/phrase[@id='bodytitle']/@value"), "Laden");
  EXPECT_EQ(valueAt("//project/phrase[@id='footertext']/@value"), "Fußzeile");
  EXPECT_EQ(valueAt("//table[@id='categories']/phrase[@id='tblcaption']/@value"), "Kategorien");
}

TEST_F(LanguageFileOutputTest, AnEntryThatIsNoAttributeGivesNothingAndNoAttributeIsCreated) {
  setGeneral("LanguageProjectAttributes", "NoSuchTitle");
  Language().SetProjectPhrase("de", "NoSuchTitle", "Titel");
  ASSERT_TRUE(create(kGerman, true));
  EXPECT_EQ(countOf("//project/phrase"), 0u);
  EXPECT_FALSE(project->Properties()->find("NoSuchTitle").has_value());
}

// ---------------------------------------------------------------------------
// Menus, tables and fields

TEST_F(LanguageFileOutputTest, MenuItemsKeepTheirIdsAndTakeTheirTexts) {
  for (const auto& [id, text] : {std::pair{7, "Orders"}, std::pair{12, ""}}) {
    auto item = make<AGPMenu>();
    item->MenuId = id;
    item->MenuText = text;
    Menus().append(item);
  }
  setGeneral("LanguageMenuAttributes", "MenuText, Nonsense");
  Language().SetMenuPhrase("de", "7", "MenuText", "Bestellungen");
  Language().SetMenuPhrase("de", "12", "MenuText", "Kunden");
  Language().SetMenuPhrase("de", "12", "Nonsense", "x");

  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(countOf("//project/menu"), 2u);
  EXPECT_EQ(valueAt("//menu[@id='7']/phrase[@id='menutext']/@value"), "Orders");
  EXPECT_EQ(valueAt("//menu[@id='12']/phrase[@id='menutext']/@value"), "Kunden");
  EXPECT_EQ(countOf("//menu/phrase[@id='nonsense']"), 0u);

  setGeneral("LanguageMenuAttributes", "");
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(countOf("//project/menu"), 0u);
}

TEST_F(LanguageFileOutputTest, TablesAndFieldsAppearAsTheirSettingsAsk) {
  const std::int32_t tableCount = project->DB()->Tables()->Count();
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(countOf("//project/table"), static_cast<std::size_t>(tableCount)) << "loaded or not";
  EXPECT_EQ(countOf("//table[@id='categories']/field"), 4u);
  EXPECT_EQ(valueAt("//table[@id='categories']/field[1]/@id"), "categoryid");
  EXPECT_EQ(valueAt("//table[@id='orderdetails']/@id"), "orderdetails") << "TblVar in lower case";

  setGeneral("LanguageFieldAttributes", "");
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(countOf("//project/table"), static_cast<std::size_t>(tableCount));
  EXPECT_EQ(countOf("//field"), 0u);

  setGeneral("LanguageFieldAttributes", "FldCaption");
  setGeneral("LanguageTableAttributes", "");
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(countOf("//table"), 0u);
}

TEST_F(LanguageFileOutputTest, ANumberedFamilyStopsAtItsFirstGap) {
  setGeneral("LanguageTableAttributes", "TblCaption, TblNote%N");
  table("Categories").setAttr("TblNote1", Variant("one"));
  table("Categories").setAttr("TblNote3", Variant("three"));
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(valueAt("//table[@id='categories']/phrase[@id='tblnote1']/@value"), "one");
  EXPECT_EQ(countOf("//table[@id='categories']/phrase[@id='tblnote3']"), 0u);
}

TEST_F(LanguageFileOutputTest, FixedValueLinesGiveValueAndCaptionPhrases) {
  AGPField& name = field("Categories", "CategoryName");
  name.setAttr("FldCaption", Variant(""));
  name.setAttr("FldTagValues", Variant("\"1\",\"One\"\r\n\"2\"\r\n3,\"Three\""));
  const std::string at = "//table[@id='categories']/field[@id='categoryname']/phrase";
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(valueAt(at + "[@id='fldtagvalue1']/@value"), "1");
  EXPECT_EQ(valueAt(at + "[@id='fldtagcaption1']/@value"), "One");
  EXPECT_EQ(valueAt(at + "[@id='fldtagvalue2']/@value"), "2");
  EXPECT_EQ(countOf(at), 3u) << "no caption for a value alone, nothing for an unquoted line";

  // Attributes and phrases come before the line.
  const std::string tblName = table("Categories").TblName();
  name.setAttr("FldTagValue2", Variant("two"));
  name.setAttr("FldTagCaption2", Variant("Two"));
  name.setAttr("FldTagCaption1", Variant("First"));
  Language().SetFieldPhrase("de", tblName, "CategoryName", "FldTagCaption1", "Eins");
  Language().SetFieldPhrase("de", tblName, "CategoryName", "FldTagCaption3", "Drei");
  ASSERT_TRUE(create(kGerman, true));
  EXPECT_EQ(valueAt(at + "[@id='fldtagcaption1']/@value"), "Eins");
  EXPECT_EQ(valueAt(at + "[@id='fldtagvalue2']/@value"), "two");
  EXPECT_EQ(valueAt(at + "[@id='fldtagcaption2']/@value"), "Two");
  EXPECT_EQ(valueAt(at + "[@id='fldtagcaption3']/@value"), "Drei")
      << "a phrase needs no quoted caption";
  EXPECT_EQ(countOf(at + "[@id='fldtagvalue3']"), 0u);
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_EQ(valueAt(at + "[@id='fldtagcaption1']/@value"), "First");

  name.setAttr("FldTagValues", Variant(""));
  ASSERT_TRUE(create(kGerman, true));
  EXPECT_EQ(countOf(at), 0u) << "no lines, no phrases, whatever attributes the field holds";
}

TEST_F(LanguageFileOutputTest, EachNewElementIsFollowedByALineEnd) {
  setGeneral("LanguageProjectAttributes", "BodyTitle");
  setGeneral("LanguageFieldAttributes", "FldCaption");
  project->setAttr("BodyTitle", Variant("Shop"));
  auto item = make<AGPMenu>();
  item->MenuId = 3;
  item->MenuText = "Orders";
  Menus().append(item);
  table("Categories").setAttr("TblCaption", Variant("Groups"));
  field("Categories", "CategoryID").setAttr("FldCaption", Variant("No."));
  field("Categories", "CategoryName").setAttr("FldCaption", Variant(""));
  ASSERT_TRUE(create(kGerman, false));
  EXPECT_THAT(output(),
              HasSubstr("</global><project><phrase id=\"bodytitle\" value=\"Shop\"/>\r\n"
                        "<menu id=\"3\"><phrase id=\"menutext\" value=\"Orders\"/>\r\n</menu>\r\n"
                        "<table id=\"categories\"><phrase id=\"tblcaption\" value=\"Groups\"/>\r\n"
                        "<field id=\"categoryid\"><phrase id=\"fldcaption\" value=\"No.\"/>\r\n"
                        "</field>\r\n<field id=\"categoryname\"/>\r\n"));
  EXPECT_THAT(output(), EndsWith("</table>\r\n</project>\r\n</language>"));
}

// ---------------------------------------------------------------------------
// Modes and choices

TEST_F(LanguageFileOutputTest, CheckModeRegistersTheChoiceAndWritesNothing) {
  EXPECT_FALSE(create(kGerman, false, true)) << "no target yet";
  EXPECT_FALSE(files::fileExists(tempPath("site/lang/german.xml")));
  Ref<AGControlItem> item = project->ControlItems()->Item(Variant("@lang_german.xml"));
  ASSERT_TRUE(item);
  EXPECT_EQ(item->ItemFn, "german.xml");
  EXPECT_EQ(item->ItemRemark, "Create language file");
  EXPECT_FALSE(item->ItemHasHeaderFooter);

  ASSERT_TRUE(create(kGerman, false));
  EXPECT_TRUE(create(kGerman, false, true)) << "the target exists now";

  item->ItemGen = false;
  files::removeFile(tempPath("site/lang/german.xml"));
  EXPECT_FALSE(create(kGerman, false));
  EXPECT_FALSE(files::fileExists(tempPath("site/lang/german.xml")));
}

TEST_F(LanguageFileOutputTest, AMissingOrBrokenSourceIsPassedOverInSilence) {
  Generation generation(*project, project->projectTemplate());
  EXPECT_FALSE(generation.CreateLanguageFile("@lang_x.xml", "", "", "", "lang", "x.xml", false,
                                             false, false));
  EXPECT_FALSE(generation.CreateLanguageFile("@lang_x.xml", "", "", tempPath("lang/x.xml"), "lang",
                                             "x.xml", false, false, false));
  const std::string broken = writeTempFile("lang/x.xml", "<language id=\"x\"");
  EXPECT_FALSE(generation.CreateLanguageFile("@lang_x.xml", "", "", broken, "lang", "x.xml", false,
                                             false, false));
  EXPECT_FALSE(files::fileExists(tempPath("site/lang/x.xml")));
  EXPECT_TRUE(host().messages.empty());
}

// ---------------------------------------------------------------------------
// A whole run with two languages

TEST_F(LanguageFileOutputTest, AMultiLanguageRunWritesEachFileWithItsOwnPhrases) {
  const std::string folder = tempPath("languages");
  writeTempFile(
      "languages/english.xml",
      R"(<language id="en" desc="English" version="12.0.0"><global>)"
      R"(<phrase id="Flag" value="English" imageurl="{_images}/en.png"/></global></language>)");
  writeTempFile("languages/german.xml",
                R"(<language id="de" desc="Deutsch" version="12.0.0"><global>)"
                R"(<phrase id="Flag" value="Deutsch" imageurl="{_images}/de.png"/></global>)"
                R"(<project><phrase id="stale" value="x"/></project></language>)");
  setGeneral("LanguageFolder", folder);
  project->DB()->setAttr("DBPhyPath", Variant(BRINDLEWORK_DEMO_DB));
  project->setAttr("Template", Variant(BRINDLEWORK_TEST_TEMPLATE));
  project->setAttr("MultiLanguage", Variant(true));
  project->setAttr("LanguageFiles", Variant("english.xml, german.xml"));
  const std::string tblName = table("Categories").TblName();
  for (const auto& [language, caption, name] : {std::tuple{"en", "Product groups", "Group name"},
                                                std::tuple{"de", "Warengruppen", "Gruppenname"}}) {
    Language().SetTablePhrase(language, tblName, "TblCaption", caption);
    Language().SetFieldPhrase(language, tblName, "CategoryName", "FldCaption", name);
  }

  project->GenCheck();
  ASSERT_EQ(AGPVars().ProjErr, "");
  project->GenScript();
  ASSERT_EQ(AGPVars().ProjErr, "");

  const auto check = [&](const std::string& file, const std::string& id, const std::string& caption,
                         const std::string& name) {
    SCOPED_TRACE(file);
    pugi::xml_document doc;
    const std::string text = files::readFile(tempPath("site/lang/" + file)).value_or("");
    ASSERT_TRUE(xml::loadText(doc, text));
    const auto at = [&](const char* xpath) {
      const pugi::xpath_node found = doc.select_node(xpath);
      return std::string(found ? found.attribute().value() : "<none>");
    };
    EXPECT_EQ(at("/language/@id"), id);
    EXPECT_EQ(at("//global/phrase/@imageurl"), "img/" + id + ".png");
    EXPECT_EQ(at("//table[@id='categories']/phrase[@id='tblcaption']/@value"), caption);
    EXPECT_EQ(
        at("//table[@id='categories']/field[@id='categoryname']/phrase[@id='fldcaption']/@value"),
        name);
    EXPECT_EQ(doc.select_nodes("//project").size(), 1u);
    EXPECT_THAT(text, Not(HasSubstr("stale")));
  };
  check("english.xml", "en", "Product groups", "Group name");
  check("german.xml", "de", "Warengruppen", "Gruppenname");
}

}  // namespace
}  // namespace bw
