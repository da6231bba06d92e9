#include "persistence/master_details.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "support/engine_test.h"
#include "template/script_engine.h"

namespace bw {
namespace {

using Pair = std::pair<std::string, std::string>;

class MasterDetailTest : public testing::EngineTest {
 protected:
  // Adds the pairs in order and gives a list whose Dirty flag is clear again.
  AGPMasterDetails& listOf(const std::vector<Pair>& pairs) {
    for (const auto& [master, detail] : pairs) EXPECT_TRUE(list.Add(master, detail));
    AGPVars().Dirty = false;
    return list;
  }
  // "master/detail:seq" of each definition in collection order.
  std::vector<std::string> numbering() const {
    std::vector<std::string> out;
    for (const AGPMasterDetail* item : list.items())
      out.push_back(item->MasterTable() + "/" + item->DetailTable() + ":" +
                    std::to_string(item->Seq()));
    return out;
  }
  std::vector<std::string> cursors() const {
    return {list.curMasterTable, list.curDetailTable, std::to_string(list.curSeq)};
  }

  Ref<AGPMasterDetails> owned = make<AGPMasterDetails>();
  AGPMasterDetails& list = *owned;
};

using Strings = std::vector<std::string>;

// ---------------------------------------------------------------------------
// Add, Delete and the numbering

TEST_F(MasterDetailTest, AddNumbersInOrderAndMovesTheCursors) {
  listOf({{"Orders", "Lines"}, {"Customers", "Orders"}});
  EXPECT_EQ(numbering(), (Strings{"Orders/Lines:1", "Customers/Orders:2"}));
  EXPECT_EQ(cursors(), (Strings{"Customers", "Orders", "2"}));
  EXPECT_EQ(list.Count(), 2);
}

TEST_F(MasterDetailTest, AddRefusesEmptyNamesAndExistingPairs) {
  listOf({{"Orders", "Lines"}, {"Customers", "Orders"}});
  EXPECT_FALSE(list.Add("", "Lines"));
  EXPECT_FALSE(list.Add("Orders", ""));
  EXPECT_EQ(cursors(), (Strings{"Customers", "Orders", "2"})) << "a refused name moves nothing";

  EXPECT_FALSE(list.Add("Orders", "Lines"));
  EXPECT_EQ(cursors(), (Strings{"Orders", "Lines", "2"}))
      << "the names point at the existing pair, curSeq stays";
  EXPECT_EQ(list.Count(), 2);
}

TEST_F(MasterDetailTest, AddOfAPairDifferingOnlyInCaseMeetsAKeyInUse) {
  listOf({{"Orders", "Lines"}});
  EXPECT_FALSE(list.MasterDetailExist("orders", "LINES"));
  try {
    list.Add("orders", "LINES");
    FAIL() << "Add gave no error";
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), 457);
  }
  EXPECT_EQ(list.Count(), 1);
}

TEST_F(MasterDetailTest, DeleteClosesTheGapInTheNumbering) {
  listOf({{"A", "B"}, {"C", "D"}, {"E", "F"}});
  EXPECT_TRUE(list.Delete("C", "D"));
  EXPECT_EQ(numbering(), (Strings{"A/B:1", "E/F:2"}));
  EXPECT_TRUE(AGPVars().Dirty) << "lowering a Seq is a change";

  list.items()[0]->setSeq(2);
  list.items()[1]->setSeq(1);
  EXPECT_TRUE(list.Delete("A", "B"));
  EXPECT_EQ(numbering(), (Strings{"E/F:1"})) << "numbers below the gap stay";
}

TEST_F(MasterDetailTest, DeleteRefusesEmptyNamesAndMissingOrDifferentlyCasedPairs) {
  listOf({{"A", "B"}});
  EXPECT_FALSE(list.Delete("", "B"));
  EXPECT_FALSE(list.Delete("A", ""));
  EXPECT_FALSE(list.Delete("A", "C"));
  EXPECT_FALSE(list.Delete("a", "b"));
  EXPECT_EQ(list.Count(), 1);
  EXPECT_FALSE(AGPVars().Dirty);
}

TEST_F(MasterDetailTest, CheckSequenceKeepsEarlierNumbersAndFillsTheLowestGaps) {
  listOf({{"A", "B"}, {"C", "D"}, {"E", "F"}, {"G", "H"}});
  const std::vector<AGPMasterDetail*> items = list.items();
  items[0]->setSeq(3);
  items[1]->setSeq(3);   // contested: the earlier item keeps 3
  items[2]->setSeq(9);   // out of range
  items[3]->setSeq(-1);  // out of range
  list.CheckSequence();
  EXPECT_EQ(numbering(), (Strings{"A/B:3", "C/D:1", "E/F:2", "G/H:4"}));
}

// ---------------------------------------------------------------------------
// Lookups

TEST_F(MasterDetailTest, ExistenceCountsCaseWhileItemFindsTheKey) {
  listOf({{"Orders", "Lines"}, {"Customers", "Orders"}});
  EXPECT_TRUE(list.MasterDetailExist("Orders", "Lines"));
  EXPECT_FALSE(list.MasterDetailExist("ORDERS", "Lines"));
  EXPECT_FALSE(list.MasterDetailExist("Lines", "Orders"));

  Ref<AGPMasterDetail> item = list.Item("ORDERS", "lines");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->DetailTable(), "Lines");
  EXPECT_EQ(cursors(), (Strings{"Orders", "Lines", "1"})) << "the item's own names";

  EXPECT_FALSE(list.Item("Orders", "Notes"));
  EXPECT_EQ(cursors(), (Strings{"Orders", "Lines", "1"})) << "a miss leaves the cursors";
}

TEST_F(MasterDetailTest, SeqFindsByNumberAndLeavesTheCursors) {
  listOf({{"A", "B"}, {"C", "D"}});
  list.items()[0]->setSeq(2);
  list.items()[1]->setSeq(1);
  list.Item("A", "B");
  EXPECT_EQ(list.Seq(1)->MasterTable(), "C");
  EXPECT_EQ(list.Seq(2)->MasterTable(), "A");
  EXPECT_FALSE(list.Seq(3));
  EXPECT_FALSE(list.Seq(0));
  EXPECT_EQ(cursors(), (Strings{"A", "B", "2"}));
}

// ---------------------------------------------------------------------------
// Relations

class MasterDetailRelationTest : public MasterDetailTest {
 protected:
  std::vector<std::string> relations() const {
    std::vector<std::string> out;
    for (std::int16_t i = 1; i <= md->FieldCount(); ++i)
      out.push_back(md->MasterField(i) + "=" + md->DetailField(i));
    return out;
  }

  Ref<AGPMasterDetail> md = make<AGPMasterDetail>();
};

TEST_F(MasterDetailRelationTest, AddRelationAppendsDistinctPairsOnly) {
  EXPECT_TRUE(md->AddRelation("Id", "OrderId").sameAs(Variant(true)));
  EXPECT_TRUE(md->AddRelation("Id", "OrderRef").sameAs(Variant(true)))
      << "the same master field with another detail field";
  EXPECT_TRUE(md->AddRelation("Id", "OrderId").isEmpty());
  EXPECT_TRUE(md->AddRelation("", "OrderId").isEmpty());
  EXPECT_TRUE(md->AddRelation("Id", "").isEmpty());
  EXPECT_EQ(relations(), (Strings{"Id=OrderId", "Id=OrderRef"}));
  EXPECT_EQ(md->CurrentField(), 2);
}

TEST_F(MasterDetailRelationTest, FieldsOutsideTheRangeAreEmpty) {
  md->AddRelation("Id", "OrderId");
  EXPECT_EQ(md->MasterField(0), "");
  EXPECT_EQ(md->DetailField(0), "");
  EXPECT_EQ(md->MasterField(2), "");
  EXPECT_EQ(md->DetailField(-1), "");
}

TEST_F(MasterDetailRelationTest, TheCursorIgnoresWritesOutsideTheRange) {
  EXPECT_EQ(md->CurrentField(), 0);
  md->setCurrentMasterField("Id");
  EXPECT_EQ(md->CurrentMasterField(), "") << "no relation to write into";

  md->AddRelation("Id", "OrderId");
  md->AddRelation("Code", "OrderCode");
  md->setCurrentField(1);
  md->setCurrentField(0);
  md->setCurrentField(3);
  EXPECT_EQ(md->CurrentField(), 1);
  md->setCurrentMasterField("Key");
  md->setCurrentDetailField("OrderKey");
  EXPECT_EQ(relations(), (Strings{"Key=OrderKey", "Code=OrderCode"}));
  EXPECT_EQ(md->CurrentMasterField(), "Key");
  EXPECT_EQ(md->CurrentDetailField(), "OrderKey");
}

TEST_F(MasterDetailRelationTest, DeleteRelationClosesTheGapAndPullsTheCursorBack) {
  md->AddRelation("A", "a");
  md->AddRelation("B", "b");
  md->AddRelation("C", "c");
  md->setCurrentField(2);
  EXPECT_TRUE(md->DeleteRelation("A", "a").sameAs(Variant(true)));
  EXPECT_EQ(relations(), (Strings{"B=b", "C=c"}));
  EXPECT_EQ(md->CurrentField(), 2) << "still within the range";

  EXPECT_TRUE(md->DeleteRelation("C", "c").sameAs(Variant(true)));
  EXPECT_EQ(md->CurrentField(), 1) << "moved to the new last";
  EXPECT_TRUE(md->DeleteRelation("B", "b").sameAs(Variant(true)));
  EXPECT_EQ(md->CurrentField(), 0);
  EXPECT_EQ(md->FieldCount(), 0);
}

TEST_F(MasterDetailRelationTest, DeleteRelationOfNothingGivesEmpty) {
  md->AddRelation("A", "a");
  EXPECT_TRUE(md->DeleteRelation("A", "b").isEmpty());
  EXPECT_TRUE(md->DeleteRelation("a", "a").isEmpty()) << "names compare exactly";
  EXPECT_TRUE(md->DeleteRelation("", "a").isEmpty());
  EXPECT_EQ(md->FieldCount(), 1);
}

// ---------------------------------------------------------------------------
// Dirty

TEST_F(MasterDetailRelationTest, OnlyChangingWritesOfFileValuesMakeTheProjectDirty) {
  auto dirtyAfter = [](auto&& write) {
    AGPVars().Dirty = false;
    write();
    return AGPVars().Dirty;
  };
  EXPECT_FALSE(dirtyAfter([&] { md->AddRelation("Id", "OrderId"); }));
  EXPECT_FALSE(dirtyAfter([&] { md->AddRelation("No", "OrderNo"); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setCurrentField(1); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setCurrentMasterField("Id"); })) << "same value";
  EXPECT_TRUE(dirtyAfter([&] { md->setCurrentMasterField("Key"); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setCurrentDetailField("OrderKey"); }));
  EXPECT_FALSE(dirtyAfter([&] { md->DeleteRelation("No", "OrderNo"); }));

  EXPECT_TRUE(dirtyAfter([&] { md->setSeq(4); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setSeq(4); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setMasterTable("Orders"); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setMasterTable("Orders"); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setDetailTable("Lines"); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setEnforceReferentialIntegrity(true); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setEnforceReferentialIntegrity(true); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setCascadeUpdate(true); }));
  EXPECT_TRUE(dirtyAfter([&] { md->setCascadeDelete(true); }));
  EXPECT_FALSE(dirtyAfter([&] { md->setCascadeDelete(true); }));
}

TEST_F(MasterDetailTest, AddingADefinitionIsAChangeButLookingOneUpIsNot) {
  listOf({{"A", "B"}});
  list.Item("A", "B");
  list.Seq(1);
  list.CheckSequence();
  list.Add("A", "B");
  EXPECT_FALSE(AGPVars().Dirty);
  list.Add("C", "D");
  EXPECT_TRUE(AGPVars().Dirty);
}

// ---------------------------------------------------------------------------
// Repair after the tables change

TEST_F(MasterDetailTest, DeleteUnlessDropsEveryDefinitionWithOneUnsoundRelation) {
  listOf({{"Customers", "Orders"}, {"Orders", "Lines"}, {"Orders", "Notes"}});
  list.Item("Customers", "Orders")->AddRelation("Id", "CustomerId");
  list.Item("Orders", "Lines")->AddRelation("Id", "OrderId");
  list.Item("Orders", "Lines")->AddRelation("Gone", "OrderGone");
  list.Item("Orders", "Notes")->AddRelation("Id", "NoteOrder");
  const std::set<std::string> fields{"Customers.Id",  "Orders.Id",       "Orders.CustomerId",
                                     "Lines.OrderId", "Lines.OrderGone", "Notes.NoteOrder"};
  auto sound = [&](const AGPMasterDetail& md) {
    for (std::int16_t i = 1; i <= md.FieldCount(); ++i)
      if (!fields.count(md.MasterTable() + "." + md.MasterField(i)) ||
          !fields.count(md.DetailTable() + "." + md.DetailField(i)))
        return false;
    return true;
  };
  EXPECT_EQ(list.deleteUnless(sound), 1);
  EXPECT_EQ(numbering(), (Strings{"Customers/Orders:1", "Orders/Notes:2"}));
  EXPECT_EQ(list.deleteUnless([](const AGPMasterDetail&) { return false; }), 2);
  EXPECT_EQ(list.Count(), 0);
}

// ---------------------------------------------------------------------------
// Shared instance and scripts

TEST_F(MasterDetailTest, TheSharedListLivesInTheSessionState) {
  AGPMasterDetails& shared = MasterDetails();
  shared.Add("A", "B");
  EXPECT_EQ(&MasterDetails(), &shared);
  EXPECT_EQ(AGPVars().MasterDetails.get(), &shared);
  ResetAGPVars();
  EXPECT_EQ(MasterDetails().Count(), 0);
}

TEST_F(MasterDetailTest, ScriptsWalkInCollectionOrderAndReachEveryMember) {
  listOf({{"Orders", "Lines"}, {"Customers", "Orders"}});
  list.items()[0]->setSeq(2);
  list.items()[1]->setSeq(1);
  std::unique_ptr<ScriptEngine> engine = CreateScriptEngine();
  engine->addObject("MD", refTo(&list));
  ASSERT_TRUE(engine->addCode(
      "function walk() {\n"
      "  var out = [];\n"
      "  for (var e = new Enumerator(MD); !e.atEnd(); e.moveNext())\n"
      "    out.push(e.item().MasterTable + '/' + e.item().DetailTable + ':' + e.item().Seq);\n"
      "  return out.join(' ');\n"
      "}\n"
      "function relate() {\n"
      "  var md = MD('Orders', 'Lines');\n"
      "  md.AddRelation('Id', 'OrderId');\n"
      "  md.CascadeDelete = true;\n"
      "  return [MD.Count(), MD.curSeq, md.FieldCount, md.MasterField(1), md.CurrentDetailField,\n"
      "          md.CascadeDelete, MD.Seq(1).MasterTable, MD.MasterDetailExist('orders', "
      "'lines')]\n"
      "      .join(',');\n"
      "}"))
      << engine->error().description;
  Variant result;
  ASSERT_TRUE(engine->run("walk", {}, result)) << engine->error().description;
  EXPECT_EQ(result.toText(), "Orders/Lines:2 Customers/Orders:1");
  ASSERT_TRUE(engine->run("relate", {}, result)) << engine->error().description;
  EXPECT_EQ(result.toText(), "2,2,1,Id,OrderId,true,Customers,false");
  EXPECT_TRUE(list.Item("Orders", "Lines")->CascadeDelete());
}

}  // namespace
}  // namespace bw
