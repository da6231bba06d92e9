#include "template/sessions.h"

#include <gtest/gtest.h>

#include "core/automation_error.h"
#include "platform/text.h"
#include "platform/xml.h"
#include "support/engine_test.h"

namespace bw {
namespace {

class SessionsTest : public testing::EngineTest {
 protected:
  static Ref<AGPSession> session(const std::string& value, const std::string& type = "key") {
    auto s = make<AGPSession>();
    s->SessType = type;
    s->SessValue = value;
    return s;
  }

  // The values of the list, in order, joined by ",".
  std::string values() const {
    std::vector<std::string> out;
    for (const Ref<AGPSession>& s : sessions->items()) out.push_back(s->SessValue);
    return text::join(out, ",");
  }

  void fill(std::initializer_list<const char*> values) {
    for (const char* value : values) sessions->AddSession(session(value), "", "");
  }

  Ref<AGPSessions> sessions = make<AGPSessions>();
};

TEST_F(SessionsTest, LoadTakesTheListedAttributesInAnyCaseAndKeepsDocumentOrder) {
  pugi::xml_document doc;
  ASSERT_TRUE(xml::loadText(doc,
                            "<control>"
                            "<session TYPE='include' Value='a/b/c' parm='p' ifile='f.htm' cond='c'"
                            " extension='ext' action='add' location='x' loctype='after' other='?'/>"
                            "<note/><Session type='key' value='second'/>"
                            "</control>"));
  sessions->Load(doc.document_element());

  ASSERT_EQ(sessions->Count(), 2);
  const AGPSession& first = *sessions->Item(1);
  EXPECT_EQ(first.SessType, "include");
  EXPECT_EQ(first.SessValue, "a/b/c");
  EXPECT_EQ(first.SessParm, "p");
  EXPECT_EQ(first.SessIFile, "f.htm");
  EXPECT_EQ(first.SessCond, "c");
  EXPECT_EQ(first.SessExt, "ext");
  EXPECT_EQ(first.SessAction, "add");
  EXPECT_EQ(first.SessLocation, "x");
  EXPECT_EQ(first.SessLocType, "after");
  EXPECT_EQ(sessions->Item(2)->SessValue, "second");
}

TEST_F(SessionsTest, AddSessionIntoAnEmptyListPutsTheSessionAtOne) {
  EXPECT_TRUE(sessions->AddSession(session("a"), "missing", "after"));
  EXPECT_EQ(sessions->Count(), 1);
  EXPECT_EQ(sessions->Item(1)->SessValue, "a");
}

TEST_F(SessionsTest, AddSessionGoesBeforeItsNeighbourUnlessTheTypeIsExactlyAfter) {
  fill({"a", "b"});
  sessions->AddSession(session("before-b"), "b", "");
  sessions->AddSession(session("after-a"), "a", "after");
  sessions->AddSession(session("capitals"), "a", "AFTER");
  EXPECT_EQ(values(), "capitals,a,after-a,before-b,b");
}

TEST_F(SessionsTest, AddSessionAppendsForAnUnknownOrEmptyLocation) {
  sessions->AddSession(session("", "control_start"), "", "");
  sessions->AddSession(session("a"), "", "");
  sessions->AddSession(session("b"), "nowhere", "");
  EXPECT_EQ(values(), ",a,b");
}

TEST_F(SessionsTest, AddSessionCopiesAllButParameterAndLocation) {
  auto given = session("v");
  given->SessParm = "p";
  given->SessIFile = "f";
  given->SessCond = "c";
  given->SessExt = "e";
  given->SessAction = "add";
  given->SessLocation = "l";
  given->SessLocType = "after";
  sessions->AddSession(given, "", "");

  const Ref<AGPSession> added = sessions->Item(1);
  EXPECT_NE(added.get(), given.get());
  EXPECT_EQ(added->SessType, "key");
  EXPECT_EQ(added->SessValue, "v");
  EXPECT_EQ(added->SessIFile, "f");
  EXPECT_EQ(added->SessCond, "c");
  EXPECT_EQ(added->SessExt, "e");
  EXPECT_EQ(added->SessAction, "add");
  EXPECT_EQ(added->SessParm, "");
  EXPECT_EQ(added->SessLocation, "");
  EXPECT_EQ(added->SessLocType, "");
}

TEST_F(SessionsTest, ChangeSessionKeepsWhatAnEmptyFileOrConditionWouldRemove) {
  auto original = session("v");
  original->SessIFile = "old.htm";
  original->SessCond = "proj/A/eq/1";
  original->SessExt = "old";
  original->SessAction = "add";
  sessions->AddSession(original, "", "");

  auto change = session("v", "include");
  change->SessExt = "";
  change->SessAction = "change";
  EXPECT_TRUE(sessions->ChangeSession("v", change));
  const AGPSession& changed = *sessions->Item(1);
  EXPECT_EQ(changed.SessIFile, "old.htm");
  EXPECT_EQ(changed.SessCond, "proj/A/eq/1");
  EXPECT_EQ(changed.SessExt, "");
  EXPECT_EQ(changed.SessAction, "change");
  EXPECT_EQ(changed.SessType, "key");

  change->SessIFile = "new.htm";
  change->SessCond = "proj/B/eq/1";
  sessions->ChangeSession("v", change);
  EXPECT_EQ(changed.SessIFile, "new.htm");
  EXPECT_EQ(changed.SessCond, "proj/B/eq/1");
}

TEST_F(SessionsTest, ChangeOrDeleteOfAnUnknownValueChangesNothing) {
  fill({"a"});
  auto change = session("x");
  change->SessAction = "change";
  EXPECT_FALSE(sessions->ChangeSession("A", change));
  EXPECT_EQ(sessions->Item(1)->SessAction, "");
  EXPECT_FALSE(sessions->DeleteSession("A"));
  EXPECT_EQ(sessions->Count(), 1);
}

TEST_F(SessionsTest, EveryOperationActsOnTheFirstOfTwoEqualValues) {
  fill({"x", "dup", "y", "dup"});
  sessions->Item(4)->SessParm = "second";
  auto change = session("dup");
  change->SessCond = "changed";
  sessions->ChangeSession("dup", change);
  EXPECT_EQ(sessions->Item(2)->SessCond, "changed");
  EXPECT_EQ(sessions->Item(4)->SessCond, "");

  sessions->AddSession(session("new"), "dup", "after");
  EXPECT_EQ(values(), "x,dup,new,y,dup");

  EXPECT_TRUE(sessions->DeleteSession("dup"));
  EXPECT_EQ(values(), "x,new,y,dup");
  EXPECT_EQ(sessions->Item(4)->SessParm, "second");
}

TEST_F(SessionsTest, SessionExistComparesExactly) {
  fill({"Foo"});
  EXPECT_TRUE(sessions->SessionExist("Foo"));
  EXPECT_FALSE(sessions->SessionExist("foo"));
  EXPECT_FALSE(sessions->SessionExist("Foo "));
}

TEST_F(SessionsTest, ScriptsReachTheListAndItsSessionsByName) {
  fill({"a"});
  Variant item = sessions->get("item", std::vector<Variant>{Variant(1)});
  ASSERT_TRUE(item.isObject());
  item.object()->put("sessvalue", Variant("renamed"));
  EXPECT_EQ(sessions->Item(1)->SessValue, "renamed");
  EXPECT_TRUE(sessions->get("Count").sameAs(Variant(1)));
  EXPECT_THROW(sessions->Item(2), AutomationError);
  EXPECT_THROW(sessions->Item(0), AutomationError);
}

}  // namespace
}  // namespace bw
