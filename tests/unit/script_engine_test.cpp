#include "template/script_engine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/properties.h"
#include "core/super_collection.h"
#include "platform/clock.h"
#include "support/engine_test.h"
#include "template/dictionary.h"
#include "template/duktape_engine.h"

namespace bw {
namespace {

using Strings = std::vector<std::string>;

// An automation object with a member of each kind.
class Thing : public Dispatch {
 public:
  explicit Thing(std::string name = "thing") : name_(std::move(name)) {}

  std::string Name() const { return name_; }
  void setName(const std::string& name) { name_ = name; }
  bool Flag() const { return true; }
  std::int32_t Twice(std::int32_t n) const { return 2 * n; }
  std::string Greet(const std::string& who) const { return name_ + " greets " + who; }
  Ref<Thing> Child() {
    if (!child_) child_ = make<Thing>("child");
    return child_;
  }
  Ref<Thing> NewThing() const { return make<Thing>("new"); }
  Variant Letters() const { return Variant::array({Variant("a"), Variant("b"), Variant("c")}); }
  Variant Echo(const Variant& value) {
    received = value;
    return value;
  }
  void Fail() const { throw AutomationError(1234, "Thing failed"); }

  const MemberTable& members() const override {
    static const MemberTable table{
        property<&Thing::Name, &Thing::setName>("Name"),
        property<&Thing::Flag>("Flag"),
        method<&Thing::Twice>("Twice"),
        asDefault(property<&Thing::Greet>("Greet")),
        property<&Thing::Child>("Child"),
        method<&Thing::NewThing>("NewThing"),
        method<&Thing::Letters>("Letters"),
        method<&Thing::Echo>("Echo"),
        method<&Thing::Fail>("Fail"),
    };
    return table;
  }
  std::string_view typeName() const override { return "Thing"; }

  Variant received;

 private:
  std::string name_;
  Ref<Thing> child_;
};

// Runs a procedure in the engine that calls it, as the script host's own
// members may.
class Reentry : public Dispatch {
 public:
  explicit Reentry(ScriptEngine& engine) : engine_(engine) {}

  Variant Run(const std::string& procedure) {
    Variant result;
    engine_.run(procedure, {}, result);
    return result;
  }

  const MemberTable& members() const override {
    static const MemberTable table{method<&Reentry::Run>("Run")};
    return table;
  }
  std::string_view typeName() const override { return "Reentry"; }

 private:
  ScriptEngine& engine_;
};

std::string describe(const ScriptError& e) {
  return e.source + " " + std::to_string(e.number) + " line " + std::to_string(e.line) + ": " +
         e.description;
}

class ScriptEngineTest : public testing::EngineTest {
 protected:
  void add(const std::string& code) {
    ASSERT_TRUE(engine->addCode(code)) << describe(engine->error());
  }
  Variant run(std::string_view procedure, std::vector<Variant> args = {}) {
    Variant result;
    EXPECT_TRUE(engine->run(procedure, args, result)) << describe(engine->error());
    return result;
  }
  // The value of a script expression, evaluated inside a function.
  Variant eval(const std::string& expression) {
    add("function evaluate() { return " + expression + "; }");
    return run("evaluate");
  }
  // Runs a procedure that must fail and gives the error.
  ScriptError failure(std::string_view procedure) {
    Variant ignored;
    EXPECT_FALSE(engine->run(procedure, {}, ignored));
    return engine->error();
  }

  std::unique_ptr<ScriptEngine> engine = CreateScriptEngine();
};

// ---------------------------------------------------------------------------
// Code, run and values

TEST_F(ScriptEngineTest, ResultsOfEveryTypeCrossAsVariants) {
  EXPECT_TRUE(eval("undefined").isEmpty());
  EXPECT_TRUE(eval("null").isNull());
  EXPECT_EQ(eval("1 < 2").type(), VarType::Boolean);
  EXPECT_EQ(eval("6 * 7").type(), VarType::Long);
  EXPECT_EQ(eval("6 * 7").lng(), 42);
  EXPECT_EQ(eval("-2147483648").type(), VarType::Long);
  EXPECT_EQ(eval("2147483648").type(), VarType::Double) << "beyond 32 bits";
  EXPECT_DOUBLE_EQ(eval("2.5").dbl(), 2.5);
  EXPECT_EQ(eval("'caf\\u00e9'").string(), "caf\xC3\xA9");

  const Variant date = eval("new Date(2024, 0, 15, 10, 30, 5)");
  ASSERT_EQ(date.type(), VarType::Date);
  const clock::DateParts parts = clock::splitDate(date.dbl());
  EXPECT_EQ(
      (std::vector{parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second}),
      (std::vector{2024, 1, 15, 10, 30, 5}));
  EXPECT_TRUE(eval("new Date(NaN)").isNull());

  const Variant array = eval("[1, 'a', [true]]");
  ASSERT_EQ(array.type(), VarType::Array);
  ASSERT_EQ(array.items().size(), 3u);
  EXPECT_EQ(array.items()[1].string(), "a");
  EXPECT_TRUE(array.items()[2].items()[0].boolean());
}

TEST_F(ScriptEngineTest, AnArrayThatContainsItselfDoesNotCross) {
  add("function loop() { var a = [1]; a.push(a); return a; }");
  Variant result;
  EXPECT_FALSE(engine->run("loop", {}, result));
  EXPECT_EQ(engine->error().number, 28);
  EXPECT_EQ(engine->error().description, "Out of stack space");
}

TEST_F(ScriptEngineTest, ArgumentsArriveAsScriptValues) {
  add("function types() {\n"
      "  var out = [];\n"
      "  for (var k = 0; k < arguments.length; k++)\n"
      "    out.push(arguments[k] instanceof Date ? 'date' : Array.isArray(arguments[k]) ? 'array'\n"
      "             : arguments[k] === null ? 'null' : typeof arguments[k]);\n"
      "  return out.join(',');\n"
      "}\n"
      "function dayOf(d) { return d.getFullYear() + '-' + (d.getMonth() + 1) + '-' + d.getDate() + "
      "' ' + d.getHours(); }");
  const Variant date = Variant::date(clock::makeDate({1999, 12, 31, 23, 0, 0}));
  EXPECT_EQ(run("types", {Variant(), Variant::null(), Variant(true), Variant(std::int16_t{7}),
                          Variant(1.5f), Variant("x"), date, Variant::array({Variant(1)})})
                .toText(),
            "undefined,null,boolean,number,number,string,date,array");
  EXPECT_EQ(run("dayOf", {date}).toText(), "1999-12-31 23");
}

TEST_F(ScriptEngineTest, GlobalsAndFunctionsStayAcrossAddCode) {
  add("var count = 1; function bump() { return ++count; }");
  add("count = 10;");
  EXPECT_EQ(run("bump").lng(), 11);
}

TEST_F(ScriptEngineTest, CodeIsNotStrictAndArgumentsCalleeWorks) {
  add("function factorial(n) { return n <= 1 ? 1 : n * arguments.callee(n - 1); }\n"
      "function sloppy() { undeclared = 5; with ({ a: 2 }) { return a * undeclared; } }");
  EXPECT_EQ(run("factorial", {Variant(5)}).lng(), 120);
  EXPECT_EQ(run("sloppy").lng(), 10);
}

TEST_F(ScriptEngineTest, ScriptObjectsComeBackAsThemselves) {
  auto dictionary = make<Dictionary>();
  engine->addObject("DICT", dictionary);
  add("var kept = { name: 'mine' };\n"
      "function store() { DICT.Add('k', kept); DICT.Add('f', store); }\n"
      "function same() { return DICT.Item('k') === kept && DICT.Item('f') === store; }\n"
      "function isKept(x) { return x === kept; }\n"
      "function give() { return kept; }");
  run("store");
  EXPECT_TRUE(run("same").boolean());
  const Variant held = run("give");
  ASSERT_TRUE(held.isObject());
  EXPECT_TRUE(run("isKept", {held}).boolean());

  // C++ may keep the value longer than the heap lives.
  engine->reset();
  EXPECT_EQ(dictionary->Count(), 2);
  dictionary->RemoveAll();
}

// ---------------------------------------------------------------------------
// Automation objects

TEST_F(ScriptEngineTest, MembersMatchWithoutRegardToCase) {
  engine->addObject("T", make<Thing>("first"));
  EXPECT_EQ(eval("T.name + T.NAME + T.Name").toText(), "firstfirstfirst");
  EXPECT_EQ(eval("T.twice(4) + T.TWICE(1)").lng(), 10);
  EXPECT_TRUE(eval("T.Twice === T.twice").boolean()) << "one function per member";
}

TEST_F(ScriptEngineTest, PropertiesAreValuesAndCallablesAreFunctions) {
  engine->addObject("T", make<Thing>());
  EXPECT_EQ(eval("typeof T.Flag").toText(), "boolean");
  EXPECT_EQ(eval("T.Flag ? 'yes' : 'no'").toText(), "yes");
  EXPECT_EQ(eval("typeof T.Twice").toText(), "function");
  EXPECT_EQ(eval("T.Twice(21)").lng(), 42);
  EXPECT_EQ(eval("T.Greet('you')").toText(), "thing greets you") << "property with arguments";
  EXPECT_EQ(eval("T('me')").toText(), "thing greets me") << "the default member";
  EXPECT_EQ(eval("T.Letters().join('')").toText(), "abc");
}

TEST_F(ScriptEngineTest, AssignmentWritesTheProperty) {
  auto thing = make<Thing>();
  engine->addObject("T", thing);
  add("T.name = 'renamed';");
  EXPECT_EQ(thing->Name(), "renamed");
}

TEST_F(ScriptEngineTest, ObjectsKeepTheirIdentityBothWays) {
  auto thing = make<Thing>();
  engine->addObject("T", thing);
  EXPECT_TRUE(eval("T.Child === T.Child").boolean());
  EXPECT_FALSE(eval("T.NewThing() === T.NewThing()").boolean());
  EXPECT_EQ(eval("T.Child.Name").toText(), "child");
  run("evaluate");
  add("function passOn() { return T.Echo(T.Child); }");
  const Variant back = run("passOn");
  EXPECT_EQ(back.object(), thing->Child().get());
  EXPECT_EQ(thing->received.object(), thing->Child().get());
}

TEST_F(ScriptEngineTest, ObjectsLiveWhileScriptsReferToThem) {
  auto collection = make<CSuperCollection>();
  auto item = make<Thing>("item");
  collection->add(Variant(item), "it");
  engine->addObject("COLL", collection);
  const auto before = item->refCount();
  add("var kept = COLL.Item('it'); COLL.Remove('it');");
  EXPECT_EQ(eval("kept.Name").toText(), "item");
  EXPECT_EQ(item->refCount(), before) << "the collection's reference went, the script's stays";

  engine->reset();
  EXPECT_EQ(item->refCount(), before - 1) << "released with the heap";
}

TEST_F(ScriptEngineTest, UnreachableObjectsAreReleasedByTheCollector) {
  auto thing = make<Thing>();
  engine->addObject("T", thing);
  const auto child = thing->Child();
  const auto before = child->refCount();
  add("function touch() { for (var k = 0; k < 10; k++) T.Child.Name; }");
  run("touch");
  EXPECT_EQ(child->refCount(), before + 1);
  add("Duktape.gc(); Duktape.gc();");
  EXPECT_EQ(child->refCount(), before);
}

TEST_F(ScriptEngineTest, AttributesReadThroughTheBag) {
  auto bag = make<AGProperties>(
      PropertyLayout::create({AttributeDef{"Caption"}, AttributeDef{"Width", "Long"}}));
  bag->setValue("Caption", Variant("Orders"));
  bag->setValue("Width", Variant(120));
  engine->addObject("BAG", bag);
  EXPECT_EQ(eval("BAG.Item('caption').Value").toText(), "Orders");
  EXPECT_EQ(eval("'<' + BAG.Item('Caption') + '>'").toText(), "<Orders>")
      << "an attribute reads as its default value";
  EXPECT_TRUE(eval("BAG('Caption') == 'Orders'").boolean());
  EXPECT_EQ(eval("BAG.Count()").lng(), 2);
  EXPECT_EQ(eval("String(BAG)").toText(), "[object AGProperties]");
  EXPECT_EQ(eval("(function () { var out = []; for (var e = new Enumerator(BAG); !e.atEnd();"
                 " e.moveNext()) out.push(e.item().Name + '=' + e.item().Value); return out; })()"
                 ".join(';')")
                .toText(),
            "Caption=Orders;Width=120");
}

// ---------------------------------------------------------------------------
// Enumerator, VBArray, ActiveXObject

TEST_F(ScriptEngineTest, EnumeratorWalksACollection) {
  auto collection = make<CSuperCollection>();
  for (const char* name : {"a", "b", "c"}) collection->add(Variant(make<Thing>(name)), name);
  engine->addObject("COLL", collection);
  add("function names(c) {\n"
      "  var out = '', e = new Enumerator(c);\n"
      "  for (; !e.atEnd(); e.moveNext()) out += e.item().Name;\n"
      "  e.moveFirst();\n"
      "  return out + '|' + e.item().Name + '|' + typeof new Enumerator([]).item();\n"
      "}");
  EXPECT_EQ(eval("names(COLL)").toText(), "abc|a|undefined");
  EXPECT_EQ(eval("(function () { var s = 0; for (var e = new Enumerator([1, 2, 3]); !e.atEnd();"
                 " e.moveNext()) s += e.item(); return s; })()")
                .lng(),
            6);
}

TEST_F(ScriptEngineTest, EnumeratorOfAnythingElseIsATypeErrorOnTheCallingLine) {
  add("function wrong() {\n  return new Enumerator(5);\n}");
  const ScriptError e = failure("wrong");
  EXPECT_EQ(e.number, script_error::kTypeError);
  EXPECT_EQ(e.line, 2);
  EXPECT_EQ(e.description, "Object is not a collection");
}

TEST_F(ScriptEngineTest, VBArrayWrapsArrays) {
  engine->addObject("T", make<Thing>());
  EXPECT_EQ(eval("new VBArray(T.Letters()).toArray().join('-')").toText(), "a-b-c");
  EXPECT_EQ(eval("(function (v) { return v.lbound() + ':' + v.ubound() + ':' + v.getItem(1); })"
                 "(new VBArray(T.Letters()))")
                .toText(),
            "0:2:b");
}

TEST_F(ScriptEngineTest, ActiveXObjectCreatesKnownObjectsOnly) {
  EXPECT_EQ(eval("(function () { var d = new ActiveXObject('scripting.dictionary');"
                 " d.Add('k', 1); return d.Count; })()")
                .lng(),
            1);
  add("function unknown() {\n  return new ActiveXObject('No.Such');\n}");
  const ScriptError e = failure("unknown");
  EXPECT_EQ(e.number, 429);
  EXPECT_EQ(e.description, "Automation server can't create object");
  EXPECT_EQ(e.line, 2);
}

// ---------------------------------------------------------------------------
// Errors

TEST_F(ScriptEngineTest, SyntaxErrorsTellLineAndText) {
  EXPECT_FALSE(engine->addCode("var a = 1;\r\nvar b = ;\r\nvar c = 3;"));
  const ScriptError& e = engine->error();
  EXPECT_EQ(e.source, "JScript compilation error");
  EXPECT_EQ(e.number, script_error::kSyntax);
  EXPECT_EQ(e.line, 2);
  EXPECT_EQ(e.column, 9);
  EXPECT_EQ(e.text, "var b = ;");
  EXPECT_EQ(e.description.find("(line"), std::string::npos) << e.description;
  EXPECT_FALSE(e.description.empty());

  // The column counts characters, not bytes.
  EXPECT_FALSE(engine->addCode("var s = \"\u00e9\u00e9\" + ;"));
  EXPECT_EQ(engine->error().line, 1);
  EXPECT_EQ(engine->error().column, 16);
}

TEST_F(ScriptEngineTest, RuntimeErrorsTellKindLineAndDescription) {
  add("\n"
      "function missing() {\n"
      "  return nothingHere;\n"
      "}\n"
      "function notCallable() { var x = 1; return x(); }\n"
      "function range() { return new Array(-1); }\n"
      "function plain() { throw 'just text'; }\n"
      "function numbered() { var e = new Error('mine'); e.number = 77; throw e; }");
  ScriptError e = failure("missing");
  EXPECT_EQ(e.source, "JScript runtime error");
  EXPECT_EQ(e.number, script_error::kUndefined);
  EXPECT_EQ(e.line, 3) << "line within the text given to addCode";
  EXPECT_NE(e.description.find("nothingHere"), std::string::npos) << e.description;
  EXPECT_EQ(e.text, "");

  EXPECT_EQ(failure("notCallable").number, script_error::kTypeError);
  EXPECT_EQ(failure("range").number, script_error::kRangeError);
  e = failure("plain");
  EXPECT_EQ(e.number, script_error::kUncaught);
  EXPECT_EQ(e.description, "just text");
  e = failure("numbered");
  EXPECT_EQ(e.number, 77);
  EXPECT_EQ(e.description, "mine");
}

TEST_F(ScriptEngineTest, MemberErrorsKeepTheirNumber) {
  engine->addObject("T", make<Thing>());
  engine->addObject("COLL", make<CSuperCollection>());
  add("function fail() {\n  T.Fail();\n}\n"
      "function caught() { try { T.Fail(); } catch (e) { return e.number + ' ' + e.description +"
      " ' ' + e.message; } }\n"
      "function unknown() { return T.NoSuchMember; }\n"
      "function missingKey() { return COLL.Item('nope'); }");
  ScriptError e = failure("fail");
  EXPECT_EQ(e.number, 1234);
  EXPECT_EQ(e.description, "Thing failed");
  EXPECT_EQ(e.line, 2);
  EXPECT_EQ(run("caught").toText(), "1234 Thing failed Thing failed");
  e = failure("unknown");
  EXPECT_EQ(e.number, basic_error::kObjectDoesNotSupport);
  EXPECT_EQ(e.description, "Object doesn't support this property or method");
  EXPECT_EQ(failure("missingKey").number, collection_error::kKeyNotFound);
}

TEST_F(ScriptEngineTest, RunOfAMissingProcedureFails) {
  add("var notAFunction = 1;");
  ScriptError e = failure("nothing");
  EXPECT_EQ(e.number, script_error::kUndefined);
  EXPECT_EQ(e.description, "'nothing' is undefined");
  e = failure("notAFunction");
  EXPECT_EQ(e.number, script_error::kTypeError);
  EXPECT_EQ(e.description, "'notAFunction' is not a function");
}

TEST_F(ScriptEngineTest, SuccessClearsTheError) {
  EXPECT_FALSE(engine->addCode("+"));
  add("function ok() { return 1; }");
  EXPECT_EQ(engine->error().number, 0);
  EXPECT_EQ(engine->error().description, "");
}

// ---------------------------------------------------------------------------
// Time-out, reset, procedures, language, independence

TEST_F(ScriptEngineTest, AnEndlessLoopStopsAtTheDeadlineAndTheHeapGoesOn) {
  engine->setTimeout(100);
  add("var after = 0;\n"
      "function spin() {\n"
      "  for (;;) { try { for (;;) {} } catch (e) { after++; } }\n"
      "}\n"
      "function ok() { return 'still here ' + after; }");
  const auto start = std::chrono::steady_clock::now();
  const ScriptError e = failure("spin");
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(e.number, script_error::kTimeout);
  EXPECT_EQ(e.description, "Script execution timed out after 100 ms");
  EXPECT_EQ(e.line, 3);
  EXPECT_GE(elapsed, std::chrono::milliseconds(100));
  EXPECT_EQ(run("ok").toText(), "still here 0") << "a catch block cannot swallow the time-out";

  EXPECT_FALSE(engine->addCode("while (true) {}"));
  EXPECT_EQ(engine->error().number, script_error::kTimeout);
  engine->setTimeout(0);
  add("for (var k = 0; k < 1000; k++) {}");
}

TEST_F(ScriptEngineTest, ANestedRunLeavesTheOuterDeadlineInForce) {
  engine->setTimeout(100);
  engine->addObject("HOST", make<Reentry>(*engine));
  add("function inner() { return 'inner'; }\n"
      "function outer() {\n"
      "  var got = HOST.Run('inner');\n"
      "  for (var k = 0; k < 1e9; k++) {}\n"
      "  return got;\n"
      "}");
  const ScriptError e = failure("outer");
  EXPECT_EQ(e.number, script_error::kTimeout) << describe(e);
  EXPECT_EQ(e.line, 4);
}

TEST_F(ScriptEngineTest, ResetDropsCodeGlobalsAndObjects) {
  engine->addObject("T", make<Thing>());
  add("var x = 1; function f() { return x; }");
  engine->reset();
  EXPECT_EQ(failure("f").number, script_error::kUndefined);
  EXPECT_EQ(eval("typeof T + typeof x").toText(), "undefinedundefined");
  EXPECT_EQ(engine->procedures(), Strings{"evaluate"});
}

TEST_F(ScriptEngineTest, ProceduresAreTheScriptsFunctionsInDefinitionOrder) {
  engine->addObject("PROJ", make<Thing>());
  add("function zeta() {}\n"
      "function alpha() {}\n"
      "var value = 1, object = {}, project = PROJ;\n"
      "var assigned = function () {};");
  add("function middle() {}\nfunction zeta() { return 2; }");
  EXPECT_EQ(engine->procedures(), (Strings{"zeta", "alpha", "assigned", "middle"}));
}

TEST_F(ScriptEngineTest, OnlyJScriptIsAccepted) {
  EXPECT_TRUE(engine->setLanguage("JScript"));
  EXPECT_FALSE(engine->setLanguage("VBScript"));
  EXPECT_EQ(engine->error().number, script_error::kUnsupportedLanguage);
  EXPECT_EQ(engine->error().description,
            "Script language 'VBScript' is not supported: only JScript can run");
  EXPECT_FALSE(engine->setLanguage("jscript"));
  EXPECT_EQ(engine->language(), "JScript");
}

TEST_F(ScriptEngineTest, EnginesAreIndependent) {
  auto other = CreateScriptEngine();
  add("var shared = 'first';");
  ASSERT_TRUE(other->addCode("var shared = 'second'; function read() { return shared; }"));
  Variant result;
  ASSERT_TRUE(other->run("read", {}, result));
  EXPECT_EQ(result.toText(), "second");
  EXPECT_EQ(eval("shared").toText(), "first");
  EXPECT_EQ(engine->procedures(), Strings{"evaluate"});
}

}  // namespace
}  // namespace bw
