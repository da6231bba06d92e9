#include "template/code_base.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/agp_vars.h"
#include "support/engine_test.h"
#include "template/script_engine.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

class CodeBaseTest : public testing::EngineTest {
 protected:
  // A code base file with the given `code` elements under the right root.
  std::string codeBaseFile(const std::string& codes, const std::string& name = "a.codebase") {
    return writeTempFile(name, "<?xml version='1.0'?>\n<Brindlework.CodeBase>\n" + codes +
                                   "</Brindlework.CodeBase>\n");
  }
  // "type|codetype|name|language|text" of each record.
  Strings records() const {
    Strings out;
    for (const CodeRecord& r : codeBase->records())
      out.push_back(r.CodeScriptType + "|" + r.CodeCodeType + "|" + r.CodeName + "|" +
                    r.CodeLanguage + "|" + r.CodeText);
    return out;
  }

  Ref<AGPCodeBase> codeBase = make<AGPCodeBase>();
};

// ---------------------------------------------------------------------------
// Reading the file

TEST_F(CodeBaseTest, CodeElementsBecomeRecordsInDocumentOrder) {
  ASSERT_TRUE(codeBase->Load(codeBaseFile(
      "  <code scripttype='template' codetype='Table' name='list_load' language='C#'>"
      "<![CDATA[// list]]></code>\n"
      "  <!-- a remark -->\n"
      "  <other scripttype='template' codetype='Table' name='x' language='C#'>no</other>\n"
      "  <CODE ScriptType='server' CodeType='Field' Name='edit' Language='VB' extra='1'>"
      "<![CDATA[' edit]]><more/></CODE>\n"
      "  <code name='plain'>text <b>bold</b></code>\n")));
  EXPECT_EQ(records(), (Strings{"template|Table|list_load|C#|// list",
                                "server|Field|edit|VB|' edit", "||plain||text "}));
  EXPECT_EQ(codeBase->Count(), 3);
  EXPECT_EQ(codeBase->curIndex(), 3);
  EXPECT_EQ(codeBase->error(), "");
}

TEST_F(CodeBaseTest, APlaceNamedAgainTakesTheLaterText) {
  ASSERT_TRUE(codeBase->Load(codeBaseFile(
      "<code scripttype='t' codetype='Table' name='a' language='C#'><![CDATA[first]]></code>"
      "<code scripttype='t' codetype='Table' name='b' language='C#'><![CDATA[other]]></code>"
      "<code scripttype='T' codetype='TABLE' name='A' language='c#'><![CDATA[second]]></code>")));
  EXPECT_EQ(records(), (Strings{"t|Table|a|C#|second", "t|Table|b|C#|other"}))
      << "the first spelling stays";
  EXPECT_EQ(codeBase->curIndex(), 1);
}

TEST_F(CodeBaseTest, ALoadReplacesTheRecordsOfTheLastOne) {
  codeBase->Load(codeBaseFile("<code name='a'>1</code><code name='b'>2</code>"));
  ASSERT_TRUE(codeBase->Load(codeBaseFile("<code name='c'>3</code>", "b.codebase")));
  EXPECT_EQ(records(), (Strings{"||c||3"}));
  ASSERT_TRUE(codeBase->Load(codeBaseFile("")));
  EXPECT_EQ(codeBase->Count(), 0);
  EXPECT_EQ(codeBase->curIndex(), 0);
}

TEST_F(CodeBaseTest, TheRootIsTheProductKeyWithoutBlanksOrSlashes) {
  AGPVars().ProductKey = "Brindle Work/Pro";
  EXPECT_TRUE(codeBase->Load(writeTempFile("a.codebase",
                                           "<brindleworkpro.CODEBASE><code name='a'>1</code>"
                                           "</brindleworkpro.CODEBASE>")));
  EXPECT_EQ(codeBase->error(), "");
  EXPECT_EQ(codeBase->Count(), 1);
}

// ---------------------------------------------------------------------------
// Failures keep what was loaded

TEST_F(CodeBaseTest, AWrongRootIsReportedAndKeepsTheRecords) {
  codeBase->Load(codeBaseFile("<code name='a'>1</code>"));
  EXPECT_TRUE(codeBase->Load(writeTempFile(
      "wrong.xml", "<Brindlework.keyword><code name='b'>2</code></Brindlework.keyword>")));
  EXPECT_EQ(codeBase->error(), "Code base file is invalid!");
  EXPECT_EQ(records(), (Strings{"||a||1"}));
  EXPECT_TRUE(codeBase->CodeExist("", "", "A", ""));
}

TEST_F(CodeBaseTest, AFileThatDoesNotLoadGivesFalseAndKeepsTheRecords) {
  codeBase->Load(codeBaseFile("<code name='a'>1</code>"));
  EXPECT_FALSE(codeBase->Load(tempPath("missing.codebase")));
  EXPECT_EQ(codeBase->error(), "Load code base file failed!");
  EXPECT_FALSE(codeBase->Load(writeTempFile("broken.codebase", "<Brindlework.codebase><code>")));
  EXPECT_EQ(codeBase->error(), "Load code base file failed!");
  EXPECT_EQ(records(), (Strings{"||a||1"}));

  EXPECT_TRUE(codeBase->Load(codeBaseFile("<code name='b'>2</code>")));
  EXPECT_EQ(codeBase->error(), "") << "the text describes the last load";
}

// ---------------------------------------------------------------------------
// Lookups

TEST_F(CodeBaseTest, LookupsIgnoreCaseAndTakeTheFirstMatch) {
  codeBase->Load(codeBaseFile(
      "<code scripttype='template' codetype='Table' name='list_load' language='C#'>list</code>"
      "<code scripttype='template' codetype='Field' name='list_load' language='C#'>field</code>"));
  EXPECT_TRUE(codeBase->CodeExist("TEMPLATE", "table", "List_Load", "c#"));
  EXPECT_EQ(codeBase->CodeSource("TEMPLATE", "field", "List_Load", "c#"), "field");
  EXPECT_FALSE(codeBase->CodeExist("template", "Table", "list_load", "VB"));
  EXPECT_EQ(codeBase->CodeSource("template", "Table", "list_load", "VB"), "");
  EXPECT_FALSE(codeBase->CodeExist("", "", "", ""));
}

TEST_F(CodeBaseTest, SourceWritesEveryLineFeedAsCarriageReturnLineFeed) {
  codeBase->Load(
      codeBaseFile("<code name='lf'><![CDATA[a\nb\n]]></code>"
                   "<code name='crlf'><![CDATA[a\r\nb\r\n]]></code>"));
  EXPECT_EQ(codeBase->CodeSource("", "", "lf", ""), "a\r\nb\r\n");
  EXPECT_EQ(codeBase->CodeSource("", "", "crlf", ""), "a\r\r\nb\r\r\n")
      << "the file's own carriage returns stay";
}

// ---------------------------------------------------------------------------
// Shared instance and scripts

TEST_F(CodeBaseTest, TheSharedCodeBaseStartsEmptyInEachSession) {
  AGPCodeBase& shared = CodeBase();
  shared.Load(codeBaseFile("<code name='a'>1</code>"));
  EXPECT_EQ(AGPVars().CodeBase.get(), &shared);
  ResetAGPVars();
  EXPECT_EQ(CodeBase().Count(), 0);
}

TEST_F(CodeBaseTest, ScriptsLoadAndLookUp) {
  const std::string file = codeBaseFile(
      "<code scripttype='t' codetype='c' name='n' language='l'>"
      "<![CDATA[x\ny]]></code>");
  std::unique_ptr<ScriptEngine> engine = CreateScriptEngine();
  engine->addObject("CB", codeBase);
  ASSERT_TRUE(engine->addCode(
      "function use(file) {\n"
      "  return [CB.Load(file), CB.Count, CB.curIndex, CB.CodeExist('T', 'C', 'N', 'L'),\n"
      "          CB.CodeSource('t', 'c', 'n', 'l')].join('|');\n"
      "}"))
      << engine->error().description;
  Variant result;
  ASSERT_TRUE(engine->run("use", std::vector<Variant>{Variant(file)}, result))
      << engine->error().description;
  EXPECT_EQ(result.toText(), "true|1|1|true|x\r\ny");
}

}  // namespace
}  // namespace bw
