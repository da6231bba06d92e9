// AGPMenus: the fields of an item by name, and what deleting an item takes
// with it.
#include "persistence/menus.h"

#include <gtest/gtest.h>

#include "language/phrase_store.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class MenusTest : public testing::EngineTest {
 protected:
  Ref<AGPMenu> addItem(std::int32_t id, std::int32_t parent = -1) {
    auto item = make<AGPMenu>();
    item->MenuId = id;
    item->MenuParentId = parent;
    Menus().append(item);
    return item;
  }
};

TEST_F(MenusTest, MenuAttReadsTheThirteenFieldsAsText) {
  Ref<AGPMenu> item = addItem(12);
  item->MenuText = "Orders";
  item->MenuGroup = true;
  item->MenuAnonymous = -1;
  EXPECT_TRUE(item->MenuAttExist("menutext"));
  EXPECT_TRUE(item->MenuAttExist("MENUDISPLAYORDER"));
  EXPECT_FALSE(item->MenuAttExist("MenuAtt")) << "a member, not a field";
  EXPECT_FALSE(item->MenuAttExist("TblCaption"));
  EXPECT_EQ(item->MenuAtt("MenuText"), "Orders");
  EXPECT_EQ(item->MenuAtt("menuid"), "12");
  EXPECT_EQ(item->MenuAtt("MenuParentId"), "-1");
  EXPECT_EQ(item->MenuAtt("MenuAnonymous"), "-1");
  EXPECT_EQ(item->MenuAtt("MenuGroup"), "True");
  EXPECT_EQ(item->MenuAtt("MenuShow"), "False");
  EXPECT_EQ(item->MenuAtt("Caption"), "");
}

TEST_F(MenusTest, DeletingAnItemTakesItsPhrasesAndFreesItsChildren) {
  addItem(3);
  Ref<AGPMenu> child = addItem(4, 3);
  Language().SetMenuPhrase("de", "3", "MenuText", "Bestellungen");
  Language().SetMenuPhrase("fr", "3", "MenuText", "Commandes");
  Language().SetMenuPhrase("de", "4", "MenuText", "Posten");

  EXPECT_FALSE(Menus().DeleteMenu(9));
  EXPECT_EQ(Language().MenuCount(), 3) << "an unknown id changes nothing";
  EXPECT_TRUE(Menus().DeleteMenu(3));
  EXPECT_EQ(Menus().Count(), 1);
  EXPECT_EQ(child->MenuParentId, -1);
  ASSERT_EQ(Language().MenuCount(), 1);
  EXPECT_EQ(Language().MenuItem(1)->MenuId, "4");
}

}  // namespace
}  // namespace bw
