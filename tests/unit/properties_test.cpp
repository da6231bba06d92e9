#include "core/properties.h"

#include "core/agp_vars.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class PropertiesTest : public testing::EngineTest {
 protected:
  Ref<AGProperties> newBag() {
    static const Ref<const PropertyLayout> layout = PropertyLayout::create({
        {"FldName", "String", false, 0, true, false},
        {"FldReq", "Boolean", true, 1, true, true},
        {"FldSync", "Boolean", false, 0, false, false},
    });
    return make<AGProperties>(layout);
  }
};

TEST_F(PropertiesTest, ItemFindsWithoutRegardToCaseAndCreatesUnknownAttributes) {
  auto bag = newBag();
  EXPECT_EQ(bag->Item(Variant("fldname"))->Name(), "FldName");
  EXPECT_EQ(bag->Count(), 3);

  Ref<AGProperty> created = bag->Item(Variant("Extra"));
  EXPECT_EQ(bag->Count(), 4);
  EXPECT_EQ(created->DataType(), "String");
  EXPECT_TRUE(created->FileSave());
  EXPECT_TRUE(created->Sync());
  EXPECT_FALSE(created->RegSave());
  EXPECT_TRUE(created->Value().isEmpty());
  // An integer index is a key like any other, not a position.
  bag->Item(Variant(1));
  EXPECT_TRUE(bag->PropertyExist(Variant("1")));
}

TEST_F(PropertiesTest, WritesMakeTheProjectDirtyOnlyWhenTheSavedTextChanges) {
  auto bag = newBag();
  bag->setValue("FldName", Variant("1"));
  EXPECT_TRUE(AGPVars().Dirty);

  AGPVars().Dirty = false;
  bag->setValue("FldName", Variant(1));  // same text in another type
  EXPECT_FALSE(AGPVars().Dirty);
  EXPECT_EQ(bag->value("FldName").type(), VarType::Long);  // the tag is kept

  bag->setValue("FldSync", Variant(true));  // not saved to the file
  EXPECT_FALSE(AGPVars().Dirty);
  bag->Item(Variant("FldReq"))->setValue(Variant(false));
  EXPECT_TRUE(AGPVars().Dirty);  // "" to "False"
}

TEST_F(PropertiesTest, ChangeRekeysOnlyWhenTheNewNameIsFree) {
  auto bag = newBag();
  bag->Add("a", std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt);
  bag->Add("b", std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt);
  EXPECT_TRUE(bag->Change("a", "A"));
  EXPECT_EQ(bag->Item(Variant("a"))->Name(), "A");
  EXPECT_FALSE(bag->Change("A", "b"));
  EXPECT_TRUE(bag->PropertyExist(Variant("A")));
  EXPECT_FALSE(bag->Change("", "b"));
  EXPECT_FALSE(bag->Change("missing", "c"));
  EXPECT_TRUE(bag->Change("b", "b"));
  EXPECT_TRUE(bag->Change("b", "c"));
  EXPECT_FALSE(bag->PropertyExist(Variant("b")));
  EXPECT_TRUE(bag->PropertyExist(Variant("C")));
}

TEST_F(PropertiesTest, AddAndDeleteReportWhatHappened) {
  auto bag = newBag();
  EXPECT_FALSE(bag->Add("", std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt));
  EXPECT_FALSE(bag->Add("FLDNAME", std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt));
  EXPECT_TRUE(bag->Delete(Variant("fldreq")).boolean());
  EXPECT_FALSE(bag->Delete(Variant("fldreq")).boolean());
  EXPECT_FALSE(bag->Delete(Variant("")).boolean());
  EXPECT_EQ(bag->Count(), 2);
  EXPECT_EQ(bag->defAt(1).name, "FldSync");  // order kept
}

TEST_F(PropertiesTest, BagsShareTheirLayoutUntilOneOfThemChangesIt) {
  auto a = newBag();
  auto b = newBag();
  a->setValue("Extra", Variant("x"));
  b->setValue("Extra", Variant("y"));
  EXPECT_EQ(a->layout(), b->layout()) << "same additions share one derived layout";

  a->Item(Variant("FldReq"))->setDataType("String");
  EXPECT_NE(a->layout(), b->layout());
  EXPECT_EQ(b->Item(Variant("FldReq"))->DataType(), "Boolean");
  EXPECT_EQ(a->Item(Variant("FldReq"))->DataType(), "String");
  EXPECT_EQ(b->value("Extra").string(), "y");
}

TEST_F(PropertiesTest, EnumerationYieldsAttributesInRegistrationOrder) {
  auto bag = newBag();
  bag->setValue("Zeta", Variant(""));
  std::vector<std::string> names;
  Ref<EnumVariant> e = bag->NewEnum_prp();
  for (Variant item; e->next(item);) names.push_back(item.object()->get("Name").toText());
  EXPECT_EQ(names, (std::vector<std::string>{"FldName", "FldReq", "FldSync", "Zeta"}));
}

TEST_F(PropertiesTest, ScriptsReachAttributesThroughTheDefaultMembers) {
  auto bag = newBag();
  Variant key[] = {Variant("fldname")};
  Variant prop = bag->get("Item", key);
  prop.object()->put("Value", Variant("CustomerID"));
  EXPECT_EQ(bag->value("FldName").string(), "CustomerID");
  prop.object()->put("Key", Variant("FieldName"));
  EXPECT_TRUE(bag->PropertyExist(Variant("FieldName")));
  EXPECT_FALSE(bag->PropertyExist(Variant("FldName")));
}

}  // namespace
}  // namespace bw
