#include "core/super_collection.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/text.h"
#include "support/automation_expect.h"

namespace bw {
namespace {

using namespace collection_error;

using testing::expectError;

// A collection of Longs 1..n keyed "k1".."kn".
Ref<CSuperCollection> numbered(int n, std::int32_t base = 1) {
  auto c = make<CSuperCollection>();
  c->setBaseIndex(base);
  for (int k = 1; k <= n; ++k) c->add(Variant(k), "k" + std::to_string(k));
  return c;
}

std::vector<int> contents(const CSuperCollection& c) {
  std::vector<int> out;
  for (const Variant& v : c.values()) out.push_back(v.lng());
  return out;
}

std::vector<int> walk(EnumVariant& e, const std::function<void(int)>& onItem = {}) {
  std::vector<int> seen;
  for (Variant v; e.next(v);) {
    seen.push_back(v.lng());
    if (onItem) onItem(v.lng());
  }
  return seen;
}

// An object with a Key property, like the definition objects kept in lists.
class Named : public Dispatch {
 public:
  explicit Named(bool keyWritable) : keyWritable_(keyWritable) {}
  std::string Key() const { return key_; }
  void setKey(const std::string& key) { key_ = key; }

  const MemberTable& members() const override {
    static const MemberTable writable{property<&Named::Key, &Named::setKey>("Key")};
    static const MemberTable readOnly{property<&Named::Key>("Key")};
    return keyWritable_ ? writable : readOnly;
  }
  std::string_view typeName() const override { return "Named"; }

 private:
  bool keyWritable_;
  std::string key_ = "original";
};

// --- adding and positions ----------------------------------------------------

TEST(SuperCollectionAdd, InsertModesPlaceTheNewItem) {
  auto c = numbered(3);
  c->add(Variant(10), "", InsertMode::Before, 2);
  EXPECT_EQ(contents(*c), (std::vector<int>{1, 10, 2, 3}));
  c->add(Variant(20), "", InsertMode::After, 4);
  EXPECT_EQ(contents(*c), (std::vector<int>{1, 10, 2, 3, 20}));
  c->add(Variant(30), "", InsertMode::First);
  c->add(Variant(40), "", InsertMode::Last, 2);
  c->add(Variant(50), "", static_cast<InsertMode>(99), 1);
  EXPECT_EQ(contents(*c), (std::vector<int>{30, 1, 10, 2, 3, 20, 40, 50}));
  EXPECT_EQ(c->keyExists("k2"), 4) << "key index follows inserted items";
}

TEST(SuperCollectionAdd, FirstOnAnEmptyCollectionGoesToBaseIndex) {
  for (std::int32_t base : {1, 0}) {
    auto c = numbered(0, base);
    c->add(Variant(7), "only", InsertMode::First);
    EXPECT_EQ(c->itemAt(base).lng(), 7);
    EXPECT_EQ(c->keyExists("only"), base);
  }
  auto c = numbered(0);
  c->add(Variant(7), "", InsertMode::Before, 1);
  EXPECT_EQ(c->count(), 1);
}

TEST(SuperCollectionAdd, RefusedAddsChangeNothing) {
  auto c = numbered(2);
  expectError(kNoPositionSupplied, "No position supplied.",
              [&] { c->add(Variant(9), "x", InsertMode::Before); });
  expectError(kNoPositionSupplied, [&] { c->add(Variant(9), "x", InsertMode::After); });
  expectError(9, [&] { c->add(Variant(9), "x", InsertMode::Last, 3); });
  expectError(9, [&] { c->add(Variant(9), "x", InsertMode::Before, 0); });
  expectError(457, [&] { c->add(Variant(9), "k1"); });
  EXPECT_EQ(contents(*c), (std::vector<int>{1, 2}));
  EXPECT_EQ(c->keyExists("x"), kNoPosition);

  auto empty = numbered(0);
  expectError(9, [&] { empty->add(Variant(9), "", InsertMode::Before, 2); });
  expectError(9, [&] { empty->add(Variant(9), "", InsertMode::After, 1); });
  EXPECT_EQ(empty->count(), 0);
}

TEST(SuperCollectionAdd, ObjectsAreStoredByReference) {
  auto c = numbered(0);
  auto object = make<Named>(true);
  c->add(object, "obj");
  EXPECT_EQ(c->item(Variant("obj")).object(), object.get());
  EXPECT_EQ(object->refCount(), 2);
  c->remove(Variant("obj"));
  EXPECT_EQ(object->refCount(), 1);
}

// --- keys and case -----------------------------------------------------------

TEST(SuperCollectionKeys, EmptyKeysRepeatAndAreNeverFound) {
  auto c = numbered(0);
  c->add(Variant(1));
  c->add(Variant(2), "");
  EXPECT_EQ(c->count(), 2);
  EXPECT_EQ(c->keyExists(""), 268435457);
  expectError(kKeyNotFound, "Key not found.", [&] { c->item(Variant("")); });
  EXPECT_EQ(c->keys()->count(), 0);
}

TEST(SuperCollectionKeys, CompareModeOneIgnoresCaseBeyondAscii) {
  auto c = numbered(0);
  c->setCompareMode(1);
  c->add(Variant(1), "ABC");
  c->add(Variant(2), "Été");
  expectError(457, [&] { c->add(Variant(3), "abc"); });
  EXPECT_EQ(c->keyExists("aBc"), 1);
  EXPECT_EQ(c->itemAt(c->keyExists("éTÉ")).lng(), 2);
  EXPECT_EQ(c->keyAt(1), "ABC") << "the stored spelling stays";
}

TEST(SuperCollectionKeys, KeysListsInKeyOrderWithPositions) {
  auto c = numbered(0, 0);
  for (const char* key : {"pear", "", "apple", "fig"}) c->add(Variant(key), key);
  Ref<CKeys> keys = c->keys();
  ASSERT_EQ(keys->count(), 3);
  EXPECT_EQ(keys->item(0)->name(), "apple");
  EXPECT_EQ(keys->item(0)->associatedIndex(), 2);
  std::vector<std::string> walked;
  auto e = keys->newEnum();
  for (Variant v; e->next(v);) walked.push_back(static_cast<cKey*>(v.object())->name());
  EXPECT_EQ(walked, (std::vector<std::string>{"apple", "fig", "pear"}));
}

// Random adds, removes, moves and key changes, checked after each step
// against a plain list searched from end to end.
class SuperCollectionModel : public ::testing::TestWithParam<std::int32_t> {};

TEST_P(SuperCollectionModel, LookupsAgreeWithALinearSearch) {
  const std::int32_t mode = GetParam();
  const std::vector<std::string> alphabet{"", "a", "b", "A", "B", "ab", "Ab", "b1", "é", "É", "z"};
  auto sameKey = [&](const std::string& a, std::string_view b) {
    return !a.empty() && (mode == 1 ? text::iequals(a, b) : a == b);
  };
  struct Row {
    std::string key;
    int id;
  };
  std::vector<Row> model;
  auto holder = [&](std::string_view key) -> std::optional<std::size_t> {
    for (std::size_t k = 0; k < model.size(); ++k)
      if (sameKey(model[k].key, key)) return k;
    return std::nullopt;
  };
  auto position = [](std::size_t offset) { return static_cast<std::int32_t>(offset + 1); };

  CSuperCollection c;
  c.setCompareMode(mode);
  std::mt19937 random(7);
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  for (int step = 0; step < 600; ++step) {
    const std::string& key = alphabet[pick(alphabet.size())];
    const std::size_t action = model.empty() ? 0 : pick(4);
    if (action == 0) {
      const std::size_t at = pick(model.size() + 1);
      if (holder(key)) {
        expectError(457, [&] { c.add(Variant(step), key); });
      } else if (at == model.size()) {
        c.add(Variant(step), key);
        model.push_back({key, step});
      } else {
        c.add(Variant(step), key, InsertMode::Before, position(at));
        model.insert(model.begin() + at, {key, step});
      }
    } else if (action == 1) {
      const std::size_t at = pick(model.size());
      c.remove(Variant(position(at)));
      model.erase(model.begin() + at);
    } else if (action == 2) {
      const std::size_t from = pick(model.size()), to = pick(model.size());
      c.moveItem(Variant(position(from)), Variant(position(to)));
      Row row = model[from];
      model.erase(model.begin() + from);
      model.insert(model.begin() + to, row);
    } else {
      const std::size_t at = pick(model.size());
      const auto other = holder(key);
      if (other && *other != at) {
        expectError(457, [&] { c.changeKeyAt(position(at), key); });
      } else {
        c.changeKeyAt(position(at), key);
        model[at].key = key;
      }
    }
    ASSERT_EQ(c.count(), static_cast<std::int32_t>(model.size()));
    for (std::size_t k = 0; k < model.size(); ++k) {
      ASSERT_EQ(c.itemAt(position(k)).lng(), model[k].id) << "step " << step;
      ASSERT_EQ(c.keyAt(position(k)), model[k].key) << "step " << step;
    }
    for (const std::string& probe : alphabet) {
      const auto expected = holder(probe);
      ASSERT_EQ(c.keyExists(probe), expected ? position(*expected) : kNoPosition)
          << "step " << step << " key " << probe;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BothCompareModes, SuperCollectionModel, ::testing::Values(0, 1));

// --- settings ----------------------------------------------------------------

TEST(SuperCollectionSettings, BaseIndexZeroCountsFromZero) {
  auto c = numbered(2, 0);
  EXPECT_EQ(c->itemAt(0).lng(), 1);
  EXPECT_EQ(c->keyExists("k2"), 1);
  expectError(9, [&] { c->itemAt(2); });
  EXPECT_EQ(c->moveItem(Variant(1), Variant(0)), 0);
  EXPECT_EQ(contents(*c), (std::vector<int>{2, 1}));
}

TEST(SuperCollectionSettings, BaseIndexAndCompareModeChangeOnlyWhileEmpty) {
  auto c = numbered(0);
  c->setBaseIndex(1);
  c->setBaseIndex(5);
  c->add(Variant(1));
  EXPECT_EQ(c->itemAt(5).lng(), 1);
  expectError(kAlreadyInitialized, "Collection already initialized", [&] { c->setBaseIndex(5); });
  expectError(kAlreadyInitialized, [&] { c->setCompareMode(1); });
  c->clear();
  c->setCompareMode(1);
  expectError(9, [&] { c->setCompareMode(2); });
  EXPECT_EQ(c->compareMode(), 1);
}

// --- errors ------------------------------------------------------------------

TEST(SuperCollectionErrors, IndexTypesChoosePositionOrKey) {
  auto c = numbered(3);
  EXPECT_EQ(c->item(Variant(std::int16_t{2})).lng(), 2);
  EXPECT_EQ(c->item(Variant::byte(3)).lng(), 3);
  EXPECT_EQ(c->item(Variant(1.0f)).lng(), 1);
  EXPECT_EQ(c->item(Variant(2.5)).lng(), 2) << "rounds half to even";
  EXPECT_EQ(c->item(Variant("k3")).lng(), 3);
  for (const Variant& bad : {Variant::date(45000.0), Variant(true), Variant(), Variant::null(),
                             Variant(make<Named>(true))}) {
    expectError(kInvalidDatatype, "Invalid datatype", [&] { c->item(bad); });
    expectError(kInvalidDatatype, [&] { c->remove(bad); });
  }
}

TEST(SuperCollectionErrors, MissingKeysAndPositions) {
  auto c = numbered(2);
  expectError(kKeyNotFound, "Key not found.", [&] { c->item(Variant("nope")); });
  expectError(kKeyNotFound, [&] { c->remove(Variant("nope")); });
  expectError(9, [&] { c->itemAt(0); });
  expectError(9, [&] { c->item(Variant(1e12)); });
  expectError(9, [&] { c->keyAt(3); });
  expectError(9, [&] { c->remove(Variant(3)); });
  EXPECT_EQ(c->find("nope"), nullptr);
  EXPECT_EQ(c->find("k2")->lng(), 2);
}

TEST(SuperCollectionErrors, ItemAssignmentNeedsPermission) {
  auto c = numbered(2);
  expectError(438, [&] { c->setItem(Variant(1), Variant(9)); });
  c->setAllowItemAssignments(true);
  c->setItem(Variant("k2"), Variant(20));
  EXPECT_EQ(contents(*c), (std::vector<int>{1, 20}));
  EXPECT_EQ(c->keyExists("k2"), 2);
}

// --- changing keys -----------------------------------------------------------

TEST(SuperCollectionChangeKey, NewKeyFindsTheItemAndOldDoesNot) {
  auto c = numbered(3);
  c->changeKey("k1", "z");
  EXPECT_EQ(c->keyExists("z"), 1);
  EXPECT_EQ(c->keyExists("k1"), kNoPosition);
  EXPECT_EQ(c->keys()->item(3)->name(), "z") << "sorted to its new place";
  c->changeKey("z", "");
  EXPECT_EQ(c->keys()->count(), 2);
  EXPECT_EQ(c->itemAt(1).lng(), 1);
}

TEST(SuperCollectionChangeKey, OtherSpellingOfTheSameKey) {
  auto folded = numbered(0);
  folded->setCompareMode(1);
  folded->add(Variant(1), "abc");
  folded->changeKey("abc", "ABC");
  EXPECT_EQ(folded->keyAt(1), "ABC");

  auto exact = numbered(0);
  exact->add(Variant(1), "abc");
  exact->add(Variant(2), "ABC");
  expectError(457, [&] { exact->changeKey("abc", "ABC"); });
  EXPECT_EQ(exact->keyExists("abc"), 1);
  EXPECT_EQ(exact->keyExists("ABC"), 2);
}

TEST(SuperCollectionChangeKey, Refusals) {
  auto c = numbered(2);
  expectError(457, [&] { c->changeKey("k1", "k2"); });
  expectError(457, [&] { c->changeKey("missing", "k2"); });
  expectError(kKeyNotFound, "Key not found.", [&] { c->changeKey("missing", "new"); });
  expectError(457, [&] { c->changeKeyAt(1, "k2"); });
  expectError(9, [&] { c->changeKeyAt(3, "new"); });
  EXPECT_EQ(c->keyAt(1), "k1");
  c->changeKeyAt(2, "k2");
  EXPECT_EQ(c->keyExists("k2"), 2);
}

TEST(SuperCollectionChangeKey, ObjectsWithAWritableKeyFollow) {
  auto c = numbered(0);
  auto writable = make<Named>(true);
  auto readOnly = make<Named>(false);
  c->add(writable, "w");
  c->add(readOnly, "r");
  c->changeKey("w", "w2");
  c->changeKeyAt(2, "r2");
  EXPECT_EQ(writable->Key(), "w2");
  EXPECT_EQ(readOnly->Key(), "original");
  EXPECT_EQ(c->keyExists("r2"), 2);
}

// --- moving ------------------------------------------------------------------

TEST(SuperCollectionMove, MovesByPositionOrKeyAndKeysFollow) {
  auto c = numbered(5);
  EXPECT_EQ(c->moveItem(Variant(1), Variant(4)), 4);
  EXPECT_EQ(contents(*c), (std::vector<int>{2, 3, 4, 1, 5}));
  EXPECT_EQ(c->moveItem(Variant("k5"), Variant("k3")), 2);
  EXPECT_EQ(contents(*c), (std::vector<int>{2, 5, 3, 4, 1}));
  for (int k = 1; k <= 5; ++k) {
    EXPECT_EQ(c->itemAt(c->keyExists("k" + std::to_string(k))).lng(), k);
  }
}

TEST(SuperCollectionMove, BadArguments) {
  auto c = numbered(2);
  expectError(kInvalidDatatype, [&] { c->moveItem(Variant::date(1.0), Variant(1)); });
  expectError(kInvalidDatatype, [&] { c->moveItem(Variant(1), Variant(true)); });
  expectError(kKeyNotFound, [&] { c->moveItem(Variant("k1"), Variant("nope")); });
  expectError(9, [&] { c->moveItem(Variant(1), Variant(3)); });
  EXPECT_EQ(contents(*c), (std::vector<int>{1, 2}));
}

TEST(SuperCollectionMove, RefusedWhileAnEnumeratorIsOpen) {
  auto c = numbered(3);
  {
    auto e = c->newEnum();
    auto copy = e->clone();
    e = nullptr;
    EXPECT_EQ(c->openEnumerators(), 1);
    expectError(kMoveInLoop, "Move not allowed while in For...Each loop.",
                [&] { c->moveItem(Variant(1), Variant(3)); });
  }
  EXPECT_EQ(c->openEnumerators(), 0);
  EXPECT_EQ(c->moveItem(Variant(1), Variant(3)), 3);
}

// --- live enumeration --------------------------------------------------------

TEST(SuperCollectionEnumeration, RemovingTheCurrentItemKeepsWalking) {
  auto c = numbered(5);
  auto e = c->newEnum();
  EXPECT_EQ(walk(*e, [&](int id) { c->remove(Variant("k" + std::to_string(id))); }),
            (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_EQ(c->count(), 0);
}

TEST(SuperCollectionEnumeration, RandomChangesDuringAWalkLoseAndRepeatNothing) {
  constexpr int kOriginal = 200;
  CSuperCollection c;
  for (int id = 0; id < kOriginal; ++id) c.add(Variant(id));
  std::mt19937 random(11);
  std::set<int> visited, removed;
  int nextId = kOriginal;
  auto e = c.newEnum();
  for (Variant v; e->next(v);) {
    ASSERT_TRUE(visited.insert(v.lng()).second) << "visited twice: " << v.lng();
    ASSERT_FALSE(removed.count(v.lng())) << "visited after removal: " << v.lng();
    if (c.count() == 0) continue;
    const auto position = std::uniform_int_distribution<std::int32_t>(1, c.count())(random);
    if (random() % 2) {
      removed.insert(c.itemAt(position).lng());
      c.remove(Variant(position));
    } else {
      c.add(Variant(nextId++), "", InsertMode::Before, position);
    }
  }
  for (int id = 0; id < kOriginal; ++id) {
    EXPECT_TRUE(visited.count(id) || removed.count(id)) << "lost: " << id;
  }
}

TEST(SuperCollectionEnumeration, AddedItemsAheadAreVisitedOthersNot) {
  auto c = numbered(3);
  auto e = c->newEnum();
  auto seen = walk(*e, [&](int id) {
    if (id == 2) {
      c->add(Variant(10), "", InsertMode::First);
      c->add(Variant(20));
      c->add(Variant(30), "", InsertMode::After, c->keyExists("k2"));
    }
  });
  EXPECT_EQ(seen, (std::vector<int>{1, 2, 30, 3, 20}));
}

TEST(SuperCollectionEnumeration, ClearEndsTheWalk) {
  auto c = numbered(3);
  auto e = c->newEnum();
  EXPECT_EQ(walk(*e, [&](int) { c->clear(); }), (std::vector<int>{1}));
}

TEST(SuperCollectionEnumeration, CloneResetAndSkip) {
  auto c = numbered(4);
  auto e = c->newEnum();
  EXPECT_TRUE(e->skip(1));
  auto copy = e->clone();
  EXPECT_EQ(walk(*e), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(walk(*copy), (std::vector<int>{2, 3, 4}));
  e->reset();
  EXPECT_FALSE(e->skip(5));
  e->reset();
  EXPECT_EQ(walk(*e), (std::vector<int>{1, 2, 3, 4}));
}

TEST(SuperCollectionEnumeration, TheCollectionLivesAsLongAsItsWalk) {
  auto c = numbered(2);
  auto e = c->newEnum();
  c = nullptr;
  EXPECT_EQ(walk(*e), (std::vector<int>{1, 2}));

  std::optional<CSuperCollection> byValue(std::in_place);
  byValue->add(Variant(1));
  auto orphan = byValue->newEnum();
  byValue.reset();
  EXPECT_EQ(walk(*orphan), std::vector<int>{}) << "a collection held by value ends its walks";
}

// --- the automation interface ------------------------------------------------

TEST(SuperCollectionAutomation, ScriptsReachEveryMember) {
  auto c = make<CSuperCollection>();
  c->put("compareMode", Variant(1));
  Variant first[] = {Variant(1), Variant("One")};
  Variant second[] = {Variant(2), Variant("two"), Variant(3)};
  c->get("Add", first);
  c->get("ADD", second);
  EXPECT_EQ(c->get("Count").lng(), 2);
  EXPECT_FALSE(c->member("Count").isCallable());
  EXPECT_TRUE(c->member("Clear").isCallable());
  EXPECT_EQ(c->members().defaultMember()->name, "Item");

  Variant one[] = {Variant("ONE")};
  EXPECT_EQ(c->get("Item", one).lng(), 1);
  EXPECT_EQ(c->get("KeyExists", one).lng(), 2);
  expectError(438, [&] { c->put("Item", Variant(9), one); });
  c->put("AllowItemAsignments", Variant(true));
  c->put("Item", Variant(9), one);
  EXPECT_EQ(c->itemAt(2).lng(), 9);

  Variant byText[] = {Variant("1"), Variant("deux")};
  c->get("ChangeKeyForIndex", byText);
  EXPECT_EQ(c->keyAt(1), "deux");
  Variant position[] = {Variant(1)};
  EXPECT_EQ(c->get("Key", position).string(), "deux");

  Variant keys = c->get("Keys");
  EXPECT_EQ(keys.object()->get("Count").lng(), 2);
  Variant firstKey = keys.object()->get("Item", position);
  EXPECT_EQ(firstKey.object()->get("Name").string(), "deux");
  EXPECT_EQ(firstKey.object()->get("AssociatedIndex").lng(), 1);

  auto e = c->get("NewEnum");
  ASSERT_NE(dynamic_cast<cEnumerationObject*>(e.object()), nullptr);
  EXPECT_TRUE(c->get("Clear").isEmpty());
  EXPECT_EQ(c->count(), 0);
}

}  // namespace
}  // namespace bw
