// System code and validation modules: the shipped files, their assembly
// from a list file, and ConvertSystemTemplate.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "core/registry.h"
#include "core/status.h"
#include "platform/files.h"
#include "platform/text.h"
#include "project/agp.h"
#include "support/engine_test.h"
#include "template/list_enumerator.h"
#include "template/script_host.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

// A stand-in for the database definition, with what the shipped system code
// and validation modules read of it: tables and fields with names and
// variable names, lists with a current item and enumeration.
class FakeList;

class FakeItem : public Dispatch {
 public:
  FakeItem(std::string name, std::string var);
  std::string Name() const { return name_; }
  std::string Var() const { return var_; }
  Ref<FakeList> Fields() const { return fields_; }

  const MemberTable& members() const override {
    static const MemberTable table{
        property<&FakeItem::Name>("TblName"),  property<&FakeItem::Var>("TblVar"),
        property<&FakeItem::Name>("FldName"),  property<&FakeItem::Var>("FldVar"),
        property<&FakeItem::Fields>("Fields"),
    };
    return table;
  }
  std::string_view typeName() const override { return "FakeItem"; }

 private:
  std::string name_, var_;
  Ref<FakeList> fields_;
};

class FakeList : public Dispatch {
 public:
  Ref<FakeItem> add(const std::string& name, const std::string& var) {
    items_.push_back(make<FakeItem>(name, var));
    return items_.back();
  }
  std::string curName() const { return curName_; }
  void setCurName(const std::string& name) { curName_ = name; }
  Ref<FakeItem> Item(const std::string& name) const {
    for (const Ref<FakeItem>& item : items_)
      if (item->Name() == name) return item;
    throw AutomationError(9, "Subscript out of range");
  }
  Ref<EnumVariant> newEnum() override {
    std::vector<Variant> values;
    for (const Ref<FakeItem>& item : items_) values.emplace_back(Ref<Dispatch>(item));
    return make<ListEnumerator>(std::move(values));
  }

  const MemberTable& members() const override {
    static const MemberTable table{
        property<&FakeList::curName, &FakeList::setCurName>("curName"),
        asDefault(method<&FakeList::Item>("Item")),
    };
    return table;
  }
  std::string_view typeName() const override { return "FakeList"; }

 private:
  std::vector<Ref<FakeItem>> items_;
  std::string curName_;
};

FakeItem::FakeItem(std::string name, std::string var)
    : name_(std::move(name)), var_(std::move(var)), fields_(make<FakeList>()) {}

class FakeDatabase : public Dispatch {
 public:
  std::string DBName() const { return "shop.db"; }
  Ref<FakeList> Tables() const { return tables_; }

  const MemberTable& members() const override {
    static const MemberTable table{
        property<&FakeDatabase::DBName>("DBName"),
        property<&FakeDatabase::Tables>("Tables"),
    };
    return table;
  }
  std::string_view typeName() const override { return "FakeDatabase"; }

 private:
  Ref<FakeList> tables_ = make<FakeList>();
};

class SystemCodeTest : public testing::EmptySettingsTest {
 protected:
  void SetUp() override {
    EmptySettingsTest::SetUp();
    std::filesystem::create_directories(tempPath("out"));
    AGPVars().Destination = tempPath("out");
  }
  void TearDown() override {
    EmptySettingsTest::TearDown();
  }

  static std::string takeError() { return std::exchange(AGPVars().ProjErr, {}); }
  const std::vector<HostMessage>& messages() { return host().messages; }

  void initialize(AGScript& script, const std::string& langid = "C#", Ref<Dispatch> db = nullptr) {
    script.Initialize(project, db, nullptr, nullptr, nullptr, nullptr, langid, nullptr, nullptr);
  }

  // A share of the test's own whose syscode folder holds `files`.
  void useShare(const std::vector<std::pair<std::string, std::string>>& files) {
    std::filesystem::create_directories(tempPath("share/syscode"));
    for (const auto& [name, content] : files) writeTempFile("share/syscode/" + name, content);
    ::setenv("BRINDLEWORK_SHARE", tempPath("share").c_str(), 1);
  }

  static std::string shipped(const std::string& name) {
    return files::readTextFile(sourceShare() + "/syscode/" + name);
  }

  // Writes the list file "sys/list.xml" with `entries` below its root and
  // names it, with the folder in backslash form, in SYSCODE.
  std::string useSystemList(const std::string& entries) {
    writeTempFile("sys/list.xml",
                  "<?xml version=\"1.0\"?>\r\n<syscode>\r\n" + entries + "</syscode>\r\n");
    const std::string path = tempPath("sys") + "\\list.xml";
    setGeneral("SYSCODE", path);
    return path;
  }
  void usePrefixAndSuffix() {
    setGeneral("SYSCODEPREFIX",
               writeTempFile("sys/prefix.txt", "// <name>(<parm>) begins, <name>"));
    setGeneral("SYSCODESUFFIX", writeTempFile("sys/suffix.txt", "// <name> ends\r\n"));
  }
  // A `file` element of a system function.
  static std::string functionEntry(const std::string& value, const std::string& id,
                                   const std::string& parm, bool override = false) {
    return "  <file value=\"" + value + "\" function=\"true\" id=\"" + id + "\" parm=\"" + parm +
           "\" override=\"" + (override ? "true" : "false") +
           "\" multiline=\"false\" indent=\"false\"/>\r\n";
  }
  static std::string plainEntry(const std::string& value) {
    return "  <file value=\"" + value +
           "\" function=\"false\" id=\"ignored\" parm=\"x\" override=\"false\" multiline=\"false\" "
           "indent=\"false\"/>\r\n";
  }

  std::string dump(const std::string& name) const {
    return files::readTextFile(tempPath("out/" + name));
  }

  Ref<AGP> project = make<AGP>();
};

// --- GetSysCode ----------------------------------------------------------------

TEST_F(SystemCodeTest, SystemCodeIsTheSharedPartTheLanguagesPartAndThePrelude) {
  for (const std::string code : {"C#", "VB"}) {
    EXPECT_EQ(
        Status().GetSysCode(code).toText(),
        shipped("common.js") + "\r\n" + shipped(code + ".js") + "\r\n" + shipped("prelude.js"))
        << code;
  }
  EXPECT_EQ(Status().GetSysCode("VL").toText(), shipped("VL.js"));
  EXPECT_EQ(SystemCodePrelude(), shipped("prelude.js"));
  EXPECT_EQ(Status().GetSysCode("C#Sharp").toText(), Status().GetSysCode("C#").toText());
  EXPECT_EQ(Status().GetSysCode("").toText(), "");
}

TEST_F(SystemCodeTest, CodesArePaddedWithBlanksToTwoCharacters) {
  useShare({{"V .js", "var padded = 1;"}, {"\xC3\x84\xC3\x96.js", "var umlauts = 1;"}});
  EXPECT_EQ(Status().GetSysCode("V").toText(), "\r\nvar padded = 1;\r\n");
  // Two characters, not two bytes.
  EXPECT_EQ(Status().GetSysCode("\xC3\x84\xC3\x96\xC3\x9C").toText(), "\r\nvar umlauts = 1;\r\n");
}

TEST_F(SystemCodeTest, TheTextEndsAtTheFirstNulAndAtAMillionCharacters) {
  useShare({{"VL.js", std::string("function a() {}\0trailing", 24)}});
  EXPECT_EQ(Status().GetSysCode("VL").toText(), "function a() {}");

  std::string big;
  for (int k = 0; k < 1'000'010; ++k) big += "\xC3\xA9";  // two bytes each
  useShare({{"VL.js", big}});
  const std::string cut = Status().GetSysCode("VL").toText();
  EXPECT_EQ(text::countChars(cut), 1'000'000u);
  EXPECT_EQ(cut.size(), 2'000'000u) << "no character is split";
}

// --- The shipped system code ------------------------------------------------------

TEST_F(SystemCodeTest, ShippedSystemCodeDefinesWhatComposedFunctionsCall) {
  for (const std::string langid : {"C#", "VB"}) {
    AGScript script;
    initialize(script, langid);
    ASSERT_EQ(takeError(), "") << langid;
    EXPECT_EQ(script.BuildNewCode(
                  "f",
                  "function f() {\r\n"
                  "  var sb = new StringBuilder();\r\n"
                  "  sb.Append('a').Append(1).Append(null);\r\n"
                  "  return [sb.ToString(), typeof zt_SetLocale, typeof zt_LoadCurrent,\r\n"
                  "    '[' + zt_IndentWrk + ']', zt_ProgramLanguage].join();\r\n"
                  "}",
                  0, 0),
              "a1,function,function,[]," + langid);
    EXPECT_EQ(script.RunModule("f").toText(), "a1,function,function,[]," + langid)
        << "RunModule calls zt_LoadCurrent first";
    EXPECT_EQ(takeError(), "") << langid;
  }
}

TEST_F(SystemCodeTest, SystemFunctionsWriteTheTargetLanguage) {
  struct Case {
    std::string call, csharp, vb;
  };
  const Case cases[] = {
      {"SYSTEMFUNCTIONS.StringLiteral('say \"hi\"\\r\\nc:\\\\')", "\"say \\\"hi\\\"\\r\\nc:\\\\\"",
       "\"say \"\"hi\"\"\" & vbCrLf & \"c:\\\""},
      {"SYSTEMFUNCTIONS.BoolLiteral('True')", "true", "True"},
      {"SYSTEMFUNCTIONS.BoolLiteral(0)", "false", "False"},
      {"SYSTEMFUNCTIONS.Null()", "null", "Nothing"},
      {"SYSTEMFUNCTIONS.Concat('a', 'b', 'c')", "a + b + c", "a & b & c"},
      {"SYSTEMFUNCTIONS.Comment('one\\r\\ntwo')", "// one\r\n  // two", "' one\r\n  ' two"},
      {"Language.Phrase('a\\\\b \"c\"')", "@Html.Raw(Language.Phrase(\"a\\\\b \\\"c\\\"\"))",
       "@Html.Raw(Language.Phrase(\"a\\b \"\"c\"\"\"))"},
  };
  for (const std::string langid : {"C#", "VB"}) {
    AGScript script;
    initialize(script, langid);
    script.BuildNewCode("indent", "zt_IndentWrk = '  ';\r\nfunction indent() { return ''; }", 0, 0);
    for (const Case& c : cases) {
      EXPECT_EQ(script.BuildNewCode("f", "function f() { return " + c.call + "; }", 0, 0),
                langid == "C#" ? c.csharp : c.vb)
          << langid << " " << c.call;
    }
    EXPECT_EQ(takeError(), "");
  }
}

TEST_F(SystemCodeTest, ModifiersChangeEveryLaterCallOfASystemFunction) {
  AGScript script;
  initialize(script);
  EXPECT_EQ(script.BuildNewCode("setup",
                                "function setup() {\r\n"
                                "  SYSTEMFUNCTIONS.Null.replace(/nu(ll)/, 'fu$1');\r\n"
                                "  SYSTEMFUNCTIONS.Null.concat('!', '?');\r\n"
                                "  SYSTEMFUNCTIONS.Null.replace(/\\?/, '.');\r\n"
                                "  return SYSTEMFUNCTIONS.Null();\r\n"
                                "}",
                                0, 0),
            "full!.");
  EXPECT_EQ(
      script.BuildNewCode("again", "function again() { return SYSTEMFUNCTIONS.Null(); }", 0, 0),
      "full!.")
      << "the modifiers apply to each call's own text, not to the last result";
  EXPECT_EQ(script.BuildNewCode(
                "other", "function other() { return SYSTEMFUNCTIONS.BoolLiteral(1); }", 0, 0),
            "true");
  // Scripts cannot read the source of a system function.
  EXPECT_EQ(script.BuildNewCode("source",
                                "function source() {\r\n"
                                "  var f = SYSTEMFUNCTIONS.Null;\r\n"
                                "  return [String(f), String(f.replace), String(f.concat), "
                                "String(f.modify)].join('|');\r\n"
                                "}",
                                0, 0),
            "function() {\n [native code]\n}|function() {\n [native code]\n}|"
            "function() {\n [native code]\n}|function() {\n [native code]\n}");
  EXPECT_EQ(takeError(), "");
}

TEST_F(SystemCodeTest, LocaleAndCurrentItemsComeFromTheBoundObjects) {
  auto db = make<FakeDatabase>();
  Ref<FakeItem> orders = db->Tables()->add("Orders", "orders");
  orders->Fields()->add("Id", "id");
  db->Tables()->setCurName("Orders");
  orders->Fields()->setCurName("Id");
  project->setAttr("DateSeparator", ".");

  AGScript script;
  initialize(script, "C#", db);
  ASSERT_EQ(takeError(), "");
  script.BuildNewCode(
      "locale", "function locale() { zt_SetLocale(); return zt_DateFormat + zt_DateSeparator; }", 0,
      0);
  EXPECT_EQ(script.RunModule("locale").toText(), "5.");

  script.BuildNewCode(
      "current",
      "function current() {\r\n"
      "  return (TABLE ? TABLE.TblName : 'none') + '.' + (FIELD ? FIELD.FldName : 'none');\r\n"
      "}",
      2, 0);
  EXPECT_EQ(script.RunModule("current").toText(), "Orders.Id");
  orders->Fields()->setCurName("");
  EXPECT_EQ(script.RunModule("current").toText(), "Orders.none");
  db->Tables()->setCurName("");
  EXPECT_EQ(script.RunModule("current").toText(), "none.none");

  AGScript withoutDatabase;
  initialize(withoutDatabase);
  withoutDatabase.BuildNewCode(
      "current", "function current() { return String(TABLE) + String(FIELD); }", 2, 0);
  EXPECT_EQ(withoutDatabase.RunModule("current").toText(), "nullnull");
  EXPECT_EQ(takeError(), "");
}

TEST_F(SystemCodeTest, ShippedValidationModulesCheckNamesAndDatabase) {
  {
    AGScript script;
    initialize(script);
    EXPECT_EQ(script.validateNames(),
              (Strings{"zt_ValidateProjectName", "zt_ValidateDatabaseLoaded",
                       "zt_ValidateTableVarsUnique", "zt_ValidateFieldVarsUnique"}));
    EXPECT_FALSE(script.Validate());
    EXPECT_EQ(takeError(), "Brindlework: The project has no name.");
  }
  project->setProjName("Shop");
  {
    AGScript script;
    initialize(script);
    EXPECT_FALSE(script.Validate());
    EXPECT_EQ(AGPVars().Trace, "Project name: Shop");
    EXPECT_EQ(takeError(), "Brindlework: No database is loaded in the project.");
  }
  auto db = make<FakeDatabase>();
  Ref<FakeItem> orders = db->Tables()->add("Orders", "Orders");
  orders->Fields()->add("Id", "id");
  orders->Fields()->add("Name", "name");
  {
    AGScript script;
    initialize(script, "C#", db);
    EXPECT_TRUE(script.Validate());
    EXPECT_EQ(AGPVars().Trace, "Project name: Shop\r\nDatabase: shop.db");
  }
  orders->Fields()->add("ID2", "ID");
  {
    AGScript script;
    initialize(script, "C#", db);
    EXPECT_FALSE(script.Validate());
    EXPECT_EQ(
        takeError(),
        "Brindlework: Fields 'Id' and 'ID2' of table 'Orders' have the same variable name 'ID'.");
  }
  db->Tables()->add("orders2", "ORDERS");
  {
    AGScript script;
    initialize(script, "C#", db);
    EXPECT_FALSE(script.Validate());
    EXPECT_EQ(takeError(),
              "Brindlework: Tables 'Orders' and 'orders2' have the same variable name 'ORDERS'.");
  }
}

TEST_F(SystemCodeTest, WithoutValidationCodeThereAreNoModules) {
  useShare({{"C#.js", shipped("C#.js")},
            {"common.js", shipped("common.js")},
            {"prelude.js", shipped("prelude.js")}});
  AGScript script;
  initialize(script);
  EXPECT_TRUE(script.ModuleExist("zt_LoadCurrent"));
  EXPECT_TRUE(script.validateNames().empty());
  EXPECT_TRUE(script.Validate());
  EXPECT_EQ(takeError(), "");
}

TEST_F(SystemCodeTest, BrokenSystemCodeIsReportedWithoutAFileName) {
  // Line 1 is the line end between the (here missing) shared part and C#.js.
  useShare(
      {{"C#.js", "var ok = 1;\r\nfunction (\r\n"}, {"VL.js", "function zt_a() { return true; }"}});
  AGScript script;
  initialize(script);
  EXPECT_EQ(takeError(),
            "Brindlework: JScript compilation error (3EA), line 3, column 10\r\n"
            "Description: function name required\r\n"
            "Text: function (");
  EXPECT_TRUE(script.validateNames().empty()) << "Initialize stops";
}

TEST_F(SystemCodeTest, BrokenValidationCodeLeavesNoModules) {
  useShare({{"VL.js", "function zt_a() { return true; }\r\nfunction zt_b( {"}});
  AGScript script;
  initialize(script);
  EXPECT_EQ(takeError(),
            "Brindlework: JScript compilation error (3EA), line 2, column 16\r\n"
            "Description: expected identifier\r\n"
            "Text: function zt_b( {");
  EXPECT_TRUE(script.validateNames().empty());
}

// --- ConvertSystemTemplate ----------------------------------------------------------

TEST_F(SystemCodeTest, EachBlockBecomesAStatementOfTheFunctionBody) {
  const std::string source =
      "<!-- var x = 1; -->A<!--## var n = 2; ##--><!--##=n + 1##--><!--##~ignored##-->"
      "<!--##@ Save ##--><!--##$key##-->";
  AGScript script;
  EXPECT_EQ(script.ConvertSystemTemplate(source, false, false, "f"),
            "ztOut += \"<!-- var x = 1; -->A\";\r\n"
            " var n = 2; \r\n"
            "ztOut += n + 1;\r\n"
            "ztOut += Language.Phrase(\"Save\");\r\n"
            "ztOut += Language.Phrase(key);\r\n");

  AGPVars().ScriptLanguage = "VBScript";
  AGScript vbscript;  // the engine refuses the language; conversion is text alone
  takeError();
  EXPECT_EQ(vbscript.ConvertSystemTemplate(source, false, false, "f"),
            "f = f & \"<!-- var x = 1; -->A\"\r\n"
            " var n = 2; \r\n"
            "f = f & n + 1\r\n"
            "f = f & Language.Phrase(\"Save\")\r\n"
            "f = f & Language.Phrase(key)\r\n");
  EXPECT_EQ(AGPVars().ProjErr, "");
}

TEST_F(SystemCodeTest, PhraseIdsLoseMatchingOuterQuotesAndDoubleInnerOnes) {
  const std::pair<std::string, std::string> cases[] = {
      {"'Save'", "\"Save\""},
      {" \" 'Save' \" ", "\"Save\""},  // pairs come off one after the other
      {"\"Save'", "\"\"\"Save'\""},    // quotes that do not match stay
      {"say \"hi\"", "\"say \"\"hi\"\"\""},
      {"\"", "\"\"\"\""},  // one character is no pair
      {"''", "\"\""},
  };
  AGScript script;
  for (const auto& [id, literal] : cases) {
    EXPECT_EQ(script.ConvertSystemTemplate("<!--##@" + id + "##-->", false, false, "f"),
              "ztOut += Language.Phrase(" + literal + ");\r\n")
        << id;
  }
}

TEST_F(SystemCodeTest, TextBlocksFollowMultilineAndIndent) {
  AGScript script;
  const std::string text = "one\r\n\"two\"\r\nthree";
  EXPECT_EQ(script.ConvertSystemTemplate(text, false, true, "f"),
            "ztOut += \"one\\\"two\\\"three\";\r\n");
  EXPECT_EQ(script.ConvertSystemTemplate(text, true, false, "f"),
            "ztOut += \"one\"+\"\\r\\n\"+\"\\\"two\\\"\"+\"\\r\\n\"+\"three\";\r\n");
  EXPECT_EQ(script.ConvertSystemTemplate(text, true, true, "f"),
            "ztOut += \"one\"+\"\\r\\n\"+zt_IndentWrk+\"\\\"two\\\"\"+\"\\r\\n\"+"
            "zt_IndentWrk+\"three\";\r\n");
  // Literal text of a file that is no function has nowhere to go.
  EXPECT_EQ(script.ConvertSystemTemplate("text<!--##var a;##-->more", true, true, ""),
            "var a;\r\n");
  // A text of line ends alone is nothing once they are removed.
  EXPECT_EQ(script.ConvertSystemTemplate("\r\n<!--##=a##-->\r\n", false, false, "f"),
            "ztOut += a;\r\n");
}

TEST_F(SystemCodeTest, ATemplateErrorGivesTheTextBackUnchanged) {
  AGScript script;
  const std::string source = "ok<!--##=unterminated";
  EXPECT_EQ(script.ConvertSystemTemplate(source, false, false, "f"), source);
  EXPECT_TRUE(text::startsWith(takeError(), "***"));
}

// --- System code from a list file ---------------------------------------------------

TEST_F(SystemCodeTest, ListedFunctionsAreJoinedIntoTheSystemFunctionsObject) {
  usePrefixAndSuffix();
  writeTempFile("sys/hello.tpl", "Hello, <!--##=shout(who)##-->!");
  writeTempFile("sys/helpers.js",
                "<!--##\r\n"
                "var Language = { Phrase: function (id) { return '[' + id + ']'; } };\r\n"
                "function shout(s) { return String(s).toUpperCase(); }\r\n"
                "##-->text outside blocks is dropped");
  writeTempFile("sys/bye.tpl", "Bye<!--##@ Later ##-->");
  // Bye may be overridden, which in JScript changes nothing.
  useSystemList(functionEntry("hello.tpl", " Hello ", " who ") + plainEntry("helpers.js") +
                functionEntry("bye.tpl", "Bye", "", true));
  AGScript script;
  initialize(script);
  ASSERT_EQ(takeError(), "");

  const std::string plain =
      "\r\n"
      "var Language = { Phrase: function (id) { return '[' + id + ']'; } };\r\n"
      "function shout(s) { return String(s).toUpperCase(); }\r\n"
      "\r\n";
  const std::string hello =
      "\r\n"
      "// Hello\r\n"
      "Hello: function(who) {\r\n"
      "var ztOut = \"\";\r\n"
      "// Hello(who) begins, Hello\r\n"
      "ztOut += \"Hello, \";\r\n"
      "ztOut += shout(who);\r\n"
      "ztOut += \"!\";\r\n"
      "// Hello ends\r\n"
      "\r\n"
      "var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;\r\n"
      "return ztOut;\r\n"
      "}";
  const std::string bye =
      "\r\n"
      "// Bye\r\n"
      "Bye: function() {\r\n"
      "var ztOut = \"\";\r\n"
      "// Bye() begins, Bye\r\n"
      "ztOut += \"Bye\";\r\n"
      "ztOut += Language.Phrase(\"Later\");\r\n"
      "// Bye ends\r\n"
      "\r\n"
      "var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;\r\n"
      "return ztOut;\r\n"
      "}";
  EXPECT_EQ(dump("syscode.txt"), plain + "\r\nvar SYSTEMFUNCTIONS = {\r\n" + "\r\n" + hello +
                                     ",\r\n" + bye + "\r\n};\r\n" + shipped("prelude.js"));

  EXPECT_EQ(
      script.BuildNewCode(
          "f", "function f() { return SYSTEMFUNCTIONS.Hello('ann') + SYSTEMFUNCTIONS.Bye(); }", 0,
          0),
      "Hello, ANN!Bye[Later]");
  EXPECT_TRUE(script.ModuleExist("shout"));
  EXPECT_FALSE(script.validateNames().empty()) << "the shipped validation code follows";
  EXPECT_TRUE(messages().empty());
  EXPECT_EQ(takeError(), "");
}

TEST_F(SystemCodeTest, OnlyFileElementsBelowTheRootWithAValueAreRead) {
  usePrefixAndSuffix();
  writeTempFile("sys/a.js", "<!--##function fromA() { return 1; }##-->");
  writeTempFile("sys/b.js", "<!--##function fromB() { return 1; }##-->");
  useSystemList(plainEntry("a.js") + "  <FILE value=\"b.js\" function=\"false\"/>\r\n" +
                "  <script value=\"c.js\" function=\"false\"/>\r\n" +
                "  <file value=\"\" function=\"true\" id=\"Empty\"/>\r\n" +
                "  <group><file value=\"d.js\" function=\"false\"/></group>\r\n");
  AGScript script;
  initialize(script);
  EXPECT_TRUE(script.ModuleExist("fromA"));
  EXPECT_TRUE(script.ModuleExist("fromB")) << "element names compare in lower case";
  // c.js and d.js do not exist: reading them would have shown a message.
  EXPECT_TRUE(messages().empty());
  EXPECT_EQ(takeError(), "");
}

TEST_F(SystemCodeTest, WithoutPrefixOrSuffixNoSystemCodeIsAdded) {
  for (const char* missing : {"SYSCODEPREFIX", "SYSCODESUFFIX"}) {
    usePrefixAndSuffix();
    setGeneral(missing, "");
    writeTempFile("sys/a.js", "<!--##function fromA() { return 1; }##-->");
    useSystemList(plainEntry("a.js"));
    AGScript script;
    initialize(script);
    EXPECT_EQ(takeError(), "") << missing;
    EXPECT_EQ(dump("syscode.txt"), "'missing syscodeprefix or syscodesuffix\r\n") << missing;
    EXPECT_FALSE(script.ModuleExist("fromA")) << missing;
    EXPECT_FALSE(script.validateNames().empty()) << "Initialize goes on";
  }
}

TEST_F(SystemCodeTest, AListFileThatCannotBeLoadedStopsInitialize) {
  usePrefixAndSuffix();
  const std::string path = useSystemList("");
  writeTempFile("sys/list.xml", "<syscode><file value=\"a.js\"></syscode>");
  AGScript script;
  initialize(script);
  EXPECT_EQ(takeError(), "Load syscode file " + path + " failed!");
  EXPECT_TRUE(script.validateNames().empty()) << "validation code is not loaded";

  setGeneral("SYSCODE", tempPath("nowhere.xml"));
  initialize(script);
  EXPECT_EQ(takeError(), "Load syscode file " + tempPath("nowhere.xml") + " failed!");
}

TEST_F(SystemCodeTest, AMissingPieceIsAMessageAndAnEmptyFunction) {
  usePrefixAndSuffix();
  useSystemList(functionEntry("absent.tpl", "Absent", ""));
  AGScript script;
  initialize(script);
  EXPECT_EQ(takeError(), "");
  ASSERT_EQ(messages().size(), 1u);
  EXPECT_EQ(messages()[0].text, "Brindlework: Script file " + tempPath("sys") +
                                    "\\absent.tpl not found! Content not loaded!");
  EXPECT_EQ(script.BuildNewCode(
                "f", "function f() { return '[' + SYSTEMFUNCTIONS.Absent() + ']'; }", 0, 0),
            "[]");
}

TEST_F(SystemCodeTest, ATemplateErrorInAPieceNamesItAndDumpsIt) {
  usePrefixAndSuffix();
  writeTempFile("sys/a.js", "<!--##function fromA() { return 1; }##-->");
  writeTempFile("sys/bad.tpl", "ok<!--##=unterminated");
  useSystemList(plainEntry("a.js") + functionEntry("bad.tpl", "Bad", "x"));
  AGScript script;
  initialize(script);
  const std::string error = takeError();
  EXPECT_TRUE(text::startsWith(error, "bad.tpl: ***")) << error;
  EXPECT_EQ(dump("bad.tpl"),
            "\r\n// Bad\r\nBad: function(x) {\r\nvar ztOut = \"\";\r\n// Bad(x) begins, Bad\r\n"
            "ok<!--##=unterminated// Bad ends\r\n\r\n"
            "var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;\r\n"
            "return ztOut;\r\n}\r\n" +
                error);
  EXPECT_FALSE(script.ModuleExist("fromA")) << "nothing is added to the main engine";
  EXPECT_TRUE(script.validateNames().empty());
}

TEST_F(SystemCodeTest, ASyntaxErrorNamesThePieceWithTheLinesOfThePiece) {
  usePrefixAndSuffix();
  writeTempFile("sys/hello.tpl", "Hello");
  writeTempFile("sys/broken.tpl", "Start\r\n<!--## var = 1; ##-->");
  useSystemList(functionEntry("hello.tpl", "Hello", "") +
                functionEntry("broken.tpl", "Broken", ""));
  AGScript script;
  initialize(script);
  const std::string piece = dump("broken.tpl");
  // Head: an empty line, the comment, the function's head, ztOut, the prefix.
  const Strings lines = text::split(piece, "\r\n");
  ASSERT_GT(lines.size(), 6u);
  EXPECT_EQ(lines[5], "ztOut += \"Start\";");
  EXPECT_EQ(lines[6], " var = 1; ");
  EXPECT_EQ(takeError(),
            "Brindlework (broken.tpl): JScript compilation error (3EA), line 7, column 6\r\n"
            "Description: invalid variable declaration\r\n"
            "Text:  var = 1; ");
  const std::string syscode = dump("syscode.txt");
  EXPECT_TRUE(text::startsWith(syscode, "\r\n\r\n// Hello\r\n")) << syscode;
  EXPECT_TRUE(text::endsWith(syscode, "},\r\n" + piece)) << "what was gathered up to the error";
  EXPECT_TRUE(script.validateNames().empty()) << "Initialize stops";
  EXPECT_EQ(script.BuildNewCode("f", "function f() { return typeof SYSTEMFUNCTIONS; }", 0, 0),
            "undefined");
}

// --- Validation modules from a list file ----------------------------------------------

TEST_F(SystemCodeTest, ValidationModulesComeFromTheListInOrder) {
  writeTempFile("val/a.js",
                "function zt_a() { return zt_helper(); }\r\nfunction zt_helper() { return true; }");
  writeTempFile("val/b.js", "function zt_b() { PROJ.AddTrace('b'); return true; }");
  writeTempFile("val/list.xml",
                "<modules><file value=\"a.js\"/><file value=\"missing.js\"/><file value=\"\"/>"
                "<file value=\"b.js\"/></modules>");
  setGeneral("VALIDATECODE", tempPath("val") + "\\list.xml");
  AGScript script;
  initialize(script);
  EXPECT_EQ(takeError(), "");
  // Every global function is a module, helpers too.
  EXPECT_EQ(script.validateNames(), (Strings{"zt_a", "zt_helper", "zt_b"}));
  EXPECT_EQ(dump("validatecode.txt"),
            "\r\nfunction zt_a() { return zt_helper(); }\r\nfunction zt_helper() { return true; }"
            "\r\n"
            "\r\nfunction zt_b() { PROJ.AddTrace('b'); return true; }");
  ASSERT_EQ(messages().size(), 1u);
  EXPECT_EQ(messages()[0].text, "Brindlework: Script file " + tempPath("val") +
                                    "\\missing.js not found! Content not loaded!");
  EXPECT_TRUE(script.Validate());
  EXPECT_EQ(AGPVars().Trace, "b");
}

TEST_F(SystemCodeTest, ValidationListErrorsStopTheLoad) {
  setGeneral("VALIDATECODE", tempPath("nowhere.xml"));
  {
    AGScript script;
    initialize(script);
    EXPECT_EQ(takeError(), "Load validate file " + tempPath("nowhere.xml") + " failed!");
    EXPECT_TRUE(script.validateNames().empty());
  }
  writeTempFile("val/good.js", "function zt_good() { return true; }");
  writeTempFile("val/bad.js", "function zt_bad() {\r\n  return (;\r\n}");
  writeTempFile("val/list.xml",
                "<modules><file value=\"good.js\"/><file value=\"bad.js\"/></modules>");
  setGeneral("VALIDATECODE", tempPath("val") + "\\list.xml");
  {
    AGScript script;
    initialize(script);
    EXPECT_EQ(takeError(),
              "Brindlework (bad.js): JScript compilation error (3EA), line 2, column 11\r\n"
              "Description: empty expression not allowed\r\n"
              "Text:   return (;");
    EXPECT_TRUE(script.validateNames().empty());
    EXPECT_FALSE(files::fileExists(tempPath("out/validatecode.txt")));
  }
}

}  // namespace
}  // namespace bw
