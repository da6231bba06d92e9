#include "template/dictionary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/automation_expect.h"

namespace bw {
namespace {

using testing::expectError;
using Strings = std::vector<std::string>;
constexpr std::string_view kKeyInUse =
    "This key is already associated with an element of this collection";

Strings texts(const Variant& array) {
  Strings out;
  for (const Variant& v : array.items()) out.push_back(v.toText());
  return out;
}

TEST(Dictionary, NumbersMatchByValueAndNoOtherKindOfKey) {
  Dictionary d;
  d.Add(1, "number");
  d.Add("1", "string");
  expectError(457, kKeyInUse, [&] { d.Add(1.0, "again"); });
  for (const Variant& same : {Variant(1.0), Variant(std::int16_t{1}), Variant::byte(1)})
    EXPECT_EQ(d.Item(same).string(), "number");
  d.Add(0.0, "zero");
  EXPECT_TRUE(d.Exists(-0.0));
  d.Add(true, "true");
  d.Add(Variant::date(1.0), "date");
  d.Add(Variant(), "empty");
  d.Add(Variant::null(), "null");
  EXPECT_EQ(d.Count(), 7) << "True, a Date, Empty and Null are keys of their own";
  EXPECT_FALSE(d.Exists(-1) || d.Exists(""));
  expectError(13, [&] { d.Add(Variant::array({Variant(1)}), 1); });
}

TEST(Dictionary, ObjectsAreKeysByIdentity) {
  Dictionary d;
  Ref<Dispatch> a = make<Dictionary>(), b = make<Dictionary>();
  d.Add(a, "a");
  EXPECT_FALSE(d.Exists(b));
  d.Add(b, "b");
  EXPECT_EQ(d.Item(a).string(), "a");
}

TEST(Dictionary, ReadingAMissingKeyAddsItEmpty) {
  Dictionary d;
  EXPECT_TRUE(d.Item("ghost").isEmpty());
  EXPECT_FALSE(d.Exists("other"));
  EXPECT_EQ(texts(d.Keys()), (Strings{"ghost"}));
}

TEST(Dictionary, KeysAndItemsKeepInsertionOrderThroughChanges) {
  Dictionary d;
  for (const char* k : {"z", "m", "a"}) d.Add(k, std::string(k) + "!");
  d.setItem("a", "A");  // in place
  d.setItem("new", "N");
  d.Remove("m");
  d.Add("m", "again");
  d.renameKey("z", "Z");  // in place
  EXPECT_EQ(texts(d.Keys()), (Strings{"Z", "a", "new", "m"}));
  EXPECT_EQ(texts(d.Items()), (Strings{"z!", "A", "N", "again"}));
  EXPECT_FALSE(d.Exists("z"));
  d.RemoveAll();
  d.Add("a", 2);
  EXPECT_EQ(texts(d.Keys()), (Strings{"a"}));
}

TEST(Dictionary, MissingKeysAndRenamesOntoOtherKeysAreRefused) {
  Dictionary d;
  d.Add("a", 1);
  d.Add("b", 2);
  expectError(32811, "Element not found", [&] { d.Remove("x"); });
  expectError(32811, "Element not found", [&] { d.renameKey("x", "y"); });
  expectError(457, kKeyInUse, [&] { d.renameKey("a", "b"); });
  EXPECT_EQ(texts(d.Keys()), (Strings{"a", "b"}));
}

TEST(Dictionary, TextCompareIgnoresCaseBeyondAsciiAndIsChosenWhileEmpty) {
  Dictionary d;
  expectError(5, "Invalid procedure call or argument", [&] { d.setCompareMode(2); });
  d.Add("Key", 1);
  EXPECT_FALSE(d.Exists("KEY"));
  expectError(5, [&] { d.setCompareMode(1); });
  d.RemoveAll();
  d.setCompareMode(1);
  d.Add("Émile", 1);
  EXPECT_TRUE(d.Exists("éMILE"));
  expectError(457, [&] { d.Add("ÉMILE", 2); });
  d.renameKey("émile", "EMILE");  // another spelling of the same key is no clash
  EXPECT_EQ(texts(d.Keys()), (Strings{"EMILE"}));
}

TEST(Dictionary, EnumerationWalksTheKeysAsTheyWereAtTheStart) {
  Dictionary d;
  d.Add("a", 1);
  d.Add(2, "two");
  Ref<EnumVariant> e = d.newEnum();
  d.Remove(2);
  Strings seen;
  for (Variant key; e->next(key);) seen.push_back(key.toText());
  EXPECT_EQ(seen, (Strings{"a", "2"}));
}

TEST(Dictionary, ScriptsReachTheMembersByName) {
  Ref<Dispatch> d = make<Dictionary>();
  using Values = std::vector<Variant>;
  d->get("ADD", Values{"a", 1});
  d->put("Item", Variant(2), Values{"b"});
  d->put("Key", Variant("c"), Values{"b"});
  EXPECT_EQ(d->get(d->members().defaultMember()->name, Values{"c"}).lng(), 2);
  EXPECT_EQ(d->get("count").lng(), 2);
  expectError(438, [&] { d->get("Key", Values{"c"}); });  // Key can only be written
}

}  // namespace
}  // namespace bw
