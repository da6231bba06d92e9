#include "persistence/bag_xml.h"

#include <sstream>

#include "core/agp_vars.h"
#include "core/registry.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class BagXmlTest : public testing::EngineTest {
 protected:
  Ref<AGProperties> fieldBag() {
    static const Ref<const PropertyLayout> layout = PropertyLayout::create({
        {"FldName", "String"},
        {"FldReq", "Boolean"},
        {"FldSize", "Long"},
        {"FldTagValues", "String"},
        {"FldSync", "Boolean", false, 0, false, false},
        {"JS", "String"},
    });
    return make<AGProperties>(layout);
  }

  pugi::xml_node element(const std::string& xml) {
    doc_.load_string(xml.c_str());
    return doc_.document_element();
  }

  std::string written(const AGProperties& bag) {
    std::string text;
    XmlTextWriter out(text);
    out.open("Field");
    WriteBagAttributes(bag, out);
    out.close();
    return text;
  }

  pugi::xml_document doc_;
};

TEST_F(BagXmlTest, UnknownAttributesSurviveALoadAndASave) {
  auto bag = fieldBag();
  LoadBagFromElement(*bag, element("<Field FldName='ID' FldFuture='42' FldReq='1'/>"), false);
  EXPECT_EQ(bag->Item("FldFuture")->DataType(), "String");
  EXPECT_EQ(bag->value("FldFuture").string(), "42");
  EXPECT_TRUE(bag->value("FldReq").sameAs(Variant(true)));
  EXPECT_EQ(written(*bag),
            "<Field FldName=\"ID\" FldReq=\"1\" FldSize=\"\" FldTagValues=\"\" JS=\"\" "
            "FldFuture=\"42\"/>");
}

TEST_F(BagXmlTest, TagValuesLinesAreJoinedWithABarInTheFile) {
  auto bag = fieldBag();
  LoadBagFromElement(*bag, element("<Field FldTagValues='1,Yes|0,No'/>"), false);
  EXPECT_EQ(bag->value("FldTagValues").string(), "1,Yes\r\n0,No");
  EXPECT_NE(written(*bag).find("FldTagValues=\"1,Yes|0,No\""), std::string::npos);
}

TEST_F(BagXmlTest, BooleansAreWrittenAsOneOrZero) {
  auto bag = fieldBag();
  EXPECT_NE(written(*bag).find("FldReq=\"0\""), std::string::npos) << "empty is 0";
  bag->setValue("FldReq", Variant(true));
  EXPECT_NE(written(*bag).find("FldReq=\"1\""), std::string::npos);
  bag->setValue("FldReq", Variant("True"));  // text is no Boolean
  EXPECT_NE(written(*bag).find("FldReq=\"0\""), std::string::npos);
}

TEST_F(BagXmlTest, AttributesNotSavedToTheFileAreNeitherReadNorWritten) {
  auto bag = fieldBag();
  LoadBagFromElement(*bag, element("<Field FldSync='1'/>"), false);
  EXPECT_TRUE(bag->value("FldSync").isEmpty());
  EXPECT_EQ(written(*bag).find("FldSync"), std::string::npos);
}

TEST_F(BagXmlTest, AScriptPathIsTakenOnlyWhenTheFileExists) {
  auto bag = fieldBag();
  LoadBagFromElement(*bag, element("<Field JS='" + tempPath("none.js") + "'/>"), false);
  EXPECT_TRUE(bag->value("JS").isEmpty());
  std::string script = writeTempFile("a.js", "1;");
  LoadBagFromElement(*bag, element("<Field JS='" + script + "'/>"), false);
  EXPECT_EQ(bag->value("JS").string(), script);
}

TEST_F(BagXmlTest, UnknownRootAttributesTakeTheirTypeFromTheCustomSettingFile) {
  WriteSetting("HKCU", AGPVars().RegGeneral, "ConfigFile", 1,
               writeTempFile("s.xml",
                             "<zt-setting><section name='Project'>"
                             "<setting id='PageCount' type='Integer'/></section></zt-setting>"));
  auto bag = fieldBag();
  LoadBagFromElement(*bag, element("<Project PageCount='12' Other=' x '/>"), true);
  EXPECT_TRUE(bag->value("PageCount").sameAs(Variant(std::int16_t{12})));
  EXPECT_EQ(bag->value("Other").string(), "x");
}

}  // namespace
}  // namespace bw
