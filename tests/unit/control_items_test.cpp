#include "core/control_items.h"

#include <gtest/gtest.h>

namespace bw {
namespace {

TEST(ControlItemsTest, IdsAreUniqueKeysWithoutRegardToCase) {
  auto items = make<AGControlItems>();
  EXPECT_TRUE(items->Add("list", "orderslist.cshtml", true, "List page"));
  EXPECT_FALSE(items->Add("LIST", "other.cshtml", false, std::nullopt));
  EXPECT_FALSE(items->Add("", "x.cshtml", true, std::nullopt));
  EXPECT_TRUE(items->Add("@config", "web.config", false, std::nullopt));
  EXPECT_EQ(items->Count(), 2);

  Ref<AGControlItem> list = items->Item(Variant("List"));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->ItemFn, "orderslist.cshtml");
  EXPECT_TRUE(list->ItemHasHeaderFooter);
  EXPECT_FALSE(list->ItemSkipHeaderFooter);
  EXPECT_EQ(list->ItemRemark, "List page");
  EXPECT_EQ(items->Item(Variant(2))->ItemId, "@config");
  EXPECT_FALSE(items->Item(Variant(3)));
  EXPECT_FALSE(items->Item(Variant("view")));
}

TEST(ControlItemsTest, DeleteByKeyOrPosition) {
  auto items = make<AGControlItems>();
  for (const char* id : {"a", "b", "c"}) items->Add(id, "", true, std::nullopt);
  EXPECT_TRUE(items->Delete(Variant("B")));
  EXPECT_FALSE(items->Delete(Variant("b")));
  EXPECT_TRUE(items->Delete(Variant(1)));
  EXPECT_FALSE(items->Delete(Variant(5)));
  EXPECT_EQ(items->Count(), 1);
  EXPECT_TRUE(items->ItemExist(Variant("c")));
  EXPECT_EQ(items->get("Item", std::vector<Variant>{Variant(1)}).object(), items->Item(Variant("c")).get());
}

}  // namespace
}  // namespace bw
