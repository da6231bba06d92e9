#include "template/dictionary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace bw {
namespace {

void expectError(std::int32_t number, std::string_view description,
                 const std::function<void()>& call) {
  try {
    call();
    ADD_FAILURE() << "expected error " << number;
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), number) << e.description();
    EXPECT_EQ(e.description(), description);
  }
}

std::vector<std::string> texts(const Variant& array) {
  std::vector<std::string> out;
  for (const Variant& v : array.items()) out.push_back(v.toText());
  return out;
}

class Thing : public Dispatch {
 public:
  const MemberTable& members() const override {
    static const MemberTable table{};
    return table;
  }
  std::string_view typeName() const override { return "Thing"; }
};

using Strings = std::vector<std::string>;

// --- keys ----------------------------------------------------------------------

TEST(Dictionary, DuplicateKeyIsRefusedWithTheCollectionError) {
  Dictionary d;
  d.Add("a", 1);
  expectError(457, "This key is already associated with an element of this collection",
              [&] { d.Add("a", 2); });
  EXPECT_EQ(d.Item("a").lng(), 1);
  EXPECT_EQ(d.Count(), 1);
}

TEST(Dictionary, NumbersAndStringsAreDifferentKeys) {
  Dictionary d;
  d.Add(1, "number");
  d.Add("1", "string");
  EXPECT_EQ(d.Count(), 2);
  EXPECT_EQ(d.Item(1).string(), "number");
  EXPECT_EQ(d.Item("1").string(), "string");
}

TEST(Dictionary, NumbersCompareByValueWhateverTheirType) {
  Dictionary d;
  d.Add(1, "one");
  EXPECT_TRUE(d.Exists(1.0));
  EXPECT_TRUE(d.Exists(std::int16_t{1}));
  EXPECT_TRUE(d.Exists(Variant::byte(1)));
  EXPECT_TRUE(d.Exists(1.0f));
  EXPECT_FALSE(d.Exists(1.5));
  expectError(457, "This key is already associated with an element of this collection",
              [&] { d.Add(1.0, "again"); });
  d.Add(0.0, "zero");
  EXPECT_TRUE(d.Exists(-0.0));
}

TEST(Dictionary, BooleansDatesEmptyAndNullAreKeysOfTheirOwn) {
  Dictionary d;
  d.Add(true, "true");
  d.Add(Variant::date(1.0), "date");
  d.Add(Variant(), "empty");
  d.Add(Variant::null(), "null");
  EXPECT_FALSE(d.Exists(-1));
  EXPECT_FALSE(d.Exists(1.0));
  EXPECT_FALSE(d.Exists(0));
  EXPECT_FALSE(d.Exists(""));
  EXPECT_EQ(d.Item(Variant::date(1.0)).string(), "date");
  EXPECT_EQ(d.Item(Variant()).string(), "empty");
  EXPECT_EQ(d.Item(Variant::null()).string(), "null");
  EXPECT_EQ(d.Count(), 4);
}

TEST(Dictionary, ObjectsAreKeysByIdentity) {
  Dictionary d;
  Ref<Thing> a = make<Thing>(), b = make<Thing>();
  d.Add(Variant(a), "a");
  EXPECT_TRUE(d.Exists(Variant(a)));
  EXPECT_FALSE(d.Exists(Variant(b)));
  d.Add(Variant(b), "b");
  EXPECT_EQ(d.Item(Variant(b)).string(), "b");
}

TEST(Dictionary, ArraysCannotBeKeys) {
  Dictionary d;
  EXPECT_THROW(d.Add(Variant::array({Variant(1)}), 1), AutomationError);
  EXPECT_EQ(d.Count(), 0);
}

// --- items ---------------------------------------------------------------------

TEST(Dictionary, ReadingAMissingKeyAddsItEmpty) {
  Dictionary d;
  EXPECT_TRUE(d.Item("ghost").isEmpty());
  EXPECT_TRUE(d.Exists("ghost"));
  EXPECT_EQ(d.Count(), 1);
  EXPECT_FALSE(d.Exists("other"));  // Exists itself adds nothing
  EXPECT_EQ(d.Count(), 1);
}

TEST(Dictionary, WritingAnItemReplacesInPlaceOrAddsLast) {
  Dictionary d;
  d.Add("a", 1);
  d.Add("b", 2);
  d.setItem("a", 10);
  d.setItem("c", 3);
  EXPECT_EQ(texts(d.Keys()), (Strings{"a", "b", "c"}));
  EXPECT_EQ(texts(d.Items()), (Strings{"10", "2", "3"}));
}

TEST(Dictionary, KeysAndItemsFollowInsertionOrderAcrossRemovals) {
  Dictionary d;
  for (const char* k : {"z", "m", "a", "q"}) d.Add(k, std::string(k) + "!");
  d.Remove("m");
  d.Add("m", "again");
  EXPECT_EQ(texts(d.Keys()), (Strings{"z", "a", "q", "m"}));
  EXPECT_EQ(texts(d.Items()), (Strings{"z!", "a!", "q!", "again"}));
}

TEST(Dictionary, RemoveOfAMissingKeyIsElementNotFound) {
  Dictionary d;
  d.Add("a", 1);
  expectError(32811, "Element not found", [&] { d.Remove("b"); });
  d.RemoveAll();
  EXPECT_EQ(d.Count(), 0);
  EXPECT_FALSE(d.Exists("a"));
  d.Add("a", 2);  // the index was emptied with the list
  EXPECT_EQ(d.Item("a").lng(), 2);
}

// --- renaming ------------------------------------------------------------------

TEST(Dictionary, RenamingKeepsThePositionAndTheItem) {
  Dictionary d;
  d.Add("a", 1);
  d.Add("b", 2);
  d.Add("c", 3);
  d.renameKey("b", "B2");
  EXPECT_EQ(texts(d.Keys()), (Strings{"a", "B2", "c"}));
  EXPECT_FALSE(d.Exists("b"));
  EXPECT_EQ(d.Item("B2").lng(), 2);
}

TEST(Dictionary, RenamingAMissingKeyOrOntoAnotherKeyFails) {
  Dictionary d;
  d.Add("a", 1);
  d.Add("b", 2);
  expectError(32811, "Element not found", [&] { d.renameKey("x", "y"); });
  expectError(457, "This key is already associated with an element of this collection",
              [&] { d.renameKey("a", "b"); });
  EXPECT_EQ(texts(d.Keys()), (Strings{"a", "b"}));
}

TEST(Dictionary, RenamingToAnotherSpellingOfTheSameKeyUnderTextCompare) {
  Dictionary d;
  d.setCompareMode(1);
  d.Add("name", 1);
  d.renameKey("NAME", "Name");
  EXPECT_EQ(texts(d.Keys()), (Strings{"Name"}));
  EXPECT_EQ(d.Count(), 1);
}

// --- compare mode --------------------------------------------------------------

TEST(Dictionary, BinaryCompareTellsCaseApart) {
  Dictionary d;
  d.Add("Key", 1);
  d.Add("KEY", 2);
  EXPECT_EQ(d.Count(), 2);
  EXPECT_FALSE(d.Exists("key"));
}

TEST(Dictionary, TextCompareIgnoresCaseBeyondAscii) {
  Dictionary d;
  d.setCompareMode(1);
  d.Add("Émile", 1);
  EXPECT_TRUE(d.Exists("éMILE"));
  expectError(457, "This key is already associated with an element of this collection",
              [&] { d.Add("ÉMILE", 2); });
  EXPECT_EQ(texts(d.Keys()), (Strings{"Émile"}));  // the first spelling stays
}

TEST(Dictionary, CompareModeChangesOnlyWhileEmptyAndOnlyToZeroOrOne) {
  Dictionary d;
  expectError(5, "Invalid procedure call or argument", [&] { d.setCompareMode(2); });
  d.Add("a", 1);
  expectError(5, "Invalid procedure call or argument", [&] { d.setCompareMode(1); });
  EXPECT_EQ(d.CompareMode(), 0);
  d.RemoveAll();
  d.setCompareMode(1);
  EXPECT_EQ(d.CompareMode(), 1);
}

// --- enumeration ---------------------------------------------------------------

TEST(Dictionary, EnumerationWalksTheKeysAsTheyWereAtTheStart) {
  Dictionary d;
  d.Add("a", 1);
  d.Add(2, "two");
  d.Add("c", 3);
  Ref<EnumVariant> e = d.newEnum();
  std::vector<std::string> seen;
  for (Variant key; e->next(key);) {
    seen.push_back(key.toText());
    if (seen.size() == 1) d.Remove("c");
  }
  EXPECT_EQ(seen, (Strings{"a", "2", "c"}));
  EXPECT_TRUE(Variant(2).sameAs(d.Keys().items()[1])) << "keys keep their type";
}

// The list and the hash index must agree after any mix of changes.
TEST(Dictionary, StaysConsistentWithASimpleModelUnderRandomChanges) {
  Dictionary d;
  std::vector<std::pair<int, int>> model;  // key, item in insertion order
  std::mt19937 random(7);
  auto find = [&](int key) {
    return std::find_if(model.begin(), model.end(), [&](auto& e) { return e.first == key; });
  };
  for (int step = 0; step < 20000; ++step) {
    const int key = static_cast<int>(random() % 500);
    switch (random() % 4) {
      case 0:
        d.setItem(key, step);
        if (auto it = find(key); it != model.end())
          it->second = step;
        else
          model.emplace_back(key, step);
        break;
      case 1:
        if (auto it = find(key); it != model.end()) {
          d.Remove(key);
          model.erase(it);
        }
        break;
      case 2:
        if (auto it = find(key); it != model.end() && find(key + 1000) == model.end()) {
          d.renameKey(key, key + 1000.0);
          it->first = key + 1000;
        }
        break;
      default:
        ASSERT_EQ(d.Exists(key), find(key) != model.end());
    }
  }
  const Variant keys = d.Keys(), items = d.Items();
  ASSERT_EQ(keys.items().size(), model.size());
  for (std::size_t k = 0; k < model.size(); ++k) {
    EXPECT_EQ(keys.items()[k].toDouble(), model[k].first);
    EXPECT_EQ(items.items()[k].lng(), model[k].second);
  }
}

// --- late-bound access ---------------------------------------------------------

TEST(DictionaryMembers, ScriptsReachEveryMemberByNameWithTheirKinds) {
  Ref<Dispatch> d = make<Dictionary>();
  d->get("ADD", std::vector<Variant>{"a", 1});
  d->put("Item", Variant(2), std::vector<Variant>{"b"});
  d->put("Key", Variant("c"), std::vector<Variant>{"b"});
  EXPECT_EQ(d->get("count").lng(), 2);
  EXPECT_EQ(texts(d->get("Keys")), (Strings{"a", "c"}));
  EXPECT_EQ(texts(d->get("Items")), (Strings{"1", "2"}));
  EXPECT_TRUE(d->get("Exists", std::vector<Variant>{"c"}).boolean());
  EXPECT_EQ(d->members().defaultMember()->name, "Item");
  EXPECT_EQ(d->get("item", std::vector<Variant>{"c"}).lng(), 2);

  EXPECT_FALSE(d->member("Count").isCallable());
  EXPECT_FALSE(d->member("CompareMode").isCallable());
  EXPECT_TRUE(d->member("Item").isCallable());
  EXPECT_TRUE(d->member("Keys").isCallable());
  EXPECT_THROW(d->get("Key", std::vector<Variant>{"c"}), AutomationError);  // write-only

  d->get("RemoveAll");
  d->put("CompareMode", Variant(1));
  d->get("Add", std::vector<Variant>{"X", 1});
  EXPECT_TRUE(d->get("Exists", std::vector<Variant>{"x"}).boolean());
  d->get("Remove", std::vector<Variant>{"x"});
  EXPECT_EQ(d->get("Count").lng(), 0);
}

}  // namespace
}  // namespace bw
