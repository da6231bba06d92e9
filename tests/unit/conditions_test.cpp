#include "template/conditions.h"

#include <gtest/gtest.h>

#include "core/agp_vars.h"
#include "core/automation_error.h"
#include "core/generation_error.h"
#include "support/engine_test.h"
#include "template/controls.h"

namespace bw {
namespace {

Ref<AGProperties> newBag() {
  static const Ref<const PropertyLayout> layout = PropertyLayout::create({
      {"Foo", "String"},
      {"Bar", "String"},
      {"Num", "Long"},
      {"Flag", "Boolean"},
      {"Other", "Boolean"},
  });
  return make<AGProperties>(layout);
}

class ConditionsTest : public testing::EngineTest {
 protected:
  bool eval(std::string_view cond) { return EvalCondition(cond, context); }

  // Evaluates a condition that must stop the run, and gives the error text.
  std::string failure(std::string_view cond) {
    try {
      EvalCondition(cond, context);
    } catch (const GenerationError& e) {
      return e.what();
    }
    ADD_FAILURE() << "no run-time failure for " << cond;
    return {};
  }

  void useControl(const std::string& id) {
    auto control = make<AGPControl>();
    control->CtrlID = id;
    ASSERT_TRUE(controls->AddControl(control));
    ASSERT_TRUE(controls->Item(Variant(id)));
  }

  Ref<AGProperties> project = newBag();
  Ref<AGPControls> controls = make<AGPControls>();
  ConditionContext context{.project = *project, .controls = controls.get()};
};

TEST_F(ConditionsTest, AnEmptyConditionAndTermsOfAnotherShapeHold) {
  EXPECT_TRUE(eval(""));
  EXPECT_TRUE(eval("proj/Foo/eq"));
  EXPECT_TRUE(eval("proj/Foo/eq/1/2"));
  EXPECT_TRUE(eval("function/IsOn/eq/1"));
  EXPECT_TRUE(eval(" , "));
}

TEST_F(ConditionsTest, TermsAreJoinedByAndValuesByOr) {
  project->setValue("Foo", "1");
  project->setValue("Bar", "2");
  EXPECT_TRUE(eval("proj/Foo/eq/1,proj/Bar/eq/2"));
  EXPECT_TRUE(eval(" proj/Foo/eq/1 , proj/Bar/eq/2 "));
  EXPECT_FALSE(eval("proj/Foo/eq/1,proj/Bar/eq/3"));
  EXPECT_TRUE(eval("proj/Foo/eq/2|1"));
  EXPECT_FALSE(eval("proj/Foo/eq/2|3"));
}

TEST_F(ConditionsTest, APercentValueReadsAnotherAttributeOfTheSameBag) {
  project->setValue("Foo", "x");
  project->setValue("Bar", "x");
  EXPECT_TRUE(eval("proj/Foo/eq/%Bar"));
  EXPECT_TRUE(eval("proj/Foo/eq/ %bar "));
  project->setValue("Bar", "y");
  EXPECT_FALSE(eval("proj/Foo/eq/%Bar"));
  EXPECT_EQ(failure("proj/Foo/eq/%Missing"), "");
}

TEST_F(ConditionsTest, NumbersCompareAsNumbersAndStringsExactly) {
  project->setValue("Num", 10);
  EXPECT_TRUE(eval("proj/Num/gt/9"));
  EXPECT_FALSE(eval("proj/Num/gt/10"));
  EXPECT_TRUE(eval("proj/Num/ge/10"));
  EXPECT_TRUE(eval("proj/Num/lt/11"));
  EXPECT_TRUE(eval("proj/Num/le/10"));
  EXPECT_FALSE(eval("proj/Num/ne/10"));
  EXPECT_TRUE(eval("proj/Num/eq/ 10 "));

  project->setValue("Foo", "abc");
  EXPECT_FALSE(eval("proj/Foo/eq/ABC"));
  EXPECT_TRUE(eval("proj/Foo/eq/'abc'"));
  EXPECT_TRUE(eval("proj/Foo/lt/abd"));
  EXPECT_TRUE(eval("proj/Foo/gt/ABC"));
}

TEST_F(ConditionsTest, InAndNiLookForTheValueWithoutRegardToCase) {
  project->setValue("Foo", "Orders,Customers");
  EXPECT_TRUE(eval("proj/Foo/in/CUSTOMER"));
  EXPECT_FALSE(eval("proj/Foo/ni/customer"));
  EXPECT_TRUE(eval("proj/Foo/ni/Products"));
}

TEST_F(ConditionsTest, AnUnknownOperatorOrObjectHolds) {
  project->setValue("Foo", "a");
  EXPECT_TRUE(eval("proj/Foo/zz/b"));
  EXPECT_TRUE(eval("menu/Foo/eq/b"));
  EXPECT_TRUE(eval("PROJ/Foo/EQ/a"));
  EXPECT_FALSE(eval("PROJ/Foo/EQ/b"));
}

TEST_F(ConditionsTest, TwoBooleansCompareAsOneAndZero) {
  project->setValue("Flag", true);
  EXPECT_TRUE(eval("proj/Flag/eq/1"));
  EXPECT_TRUE(eval("proj/Flag/eq/True"));
  EXPECT_TRUE(eval("proj/Flag/eq/-1"));
  EXPECT_FALSE(eval("proj/Flag/eq/0"));
  // As numbers True (-1) is below False; as "1" and "0" it is above.
  EXPECT_TRUE(eval("proj/Flag/gt/false"));
  project->setValue("Other", true);
  EXPECT_TRUE(eval("proj/Flag/eq/%Other"));
}

TEST_F(ConditionsTest, NoComparisonWithNullHolds) {
  project->setValue("Foo", Variant::null());
  EXPECT_FALSE(eval("proj/Foo/eq/x"));
  EXPECT_FALSE(eval("proj/Foo/ne/x"));
  EXPECT_FALSE(eval("proj/Foo/lt/x"));
}

TEST_F(ConditionsTest, AValueThatDoesNotConvertStopsTheRunWithTheStandingError) {
  AGPVars().ProjErr = "standing";
  EXPECT_EQ(failure("proj/Num/eq/many"), "standing");
  EXPECT_EQ(failure("proj/Flag/eq/"), "standing");
  EXPECT_EQ(AGPVars().ProjErr, "standing");
}

TEST_F(ConditionsTest, ACustomSettingIsReadThroughGetVAndComparedAsText) {
  std::string asked;
  context.getV = [&](const std::string& name) {
    asked = name;
    return Variant(5);
  };
  EXPECT_TRUE(eval("proj/MySetting/eq/5"));
  EXPECT_EQ(asked, "MySetting");
  EXPECT_TRUE(eval("proj/MySetting/eq/'5'"));
  EXPECT_FALSE(eval("proj/MySetting/eq/5.0"));

  context.getV = nullptr;
  EXPECT_TRUE(eval("proj/MySetting/eq/"));
}

TEST_F(ConditionsTest, TableTermsHoldWithoutATableAndOtherBagsMustExist) {
  EXPECT_TRUE(eval("table/Foo/eq/x"));
  EXPECT_EQ(failure("db/Foo/eq/x"), "");
  EXPECT_EQ(failure("field/Foo/eq/x"), "");

  auto table = newBag();
  table->setValue("Foo", "x");
  context.table = table.get();
  EXPECT_TRUE(eval("table/Foo/eq/x"));
  EXPECT_FALSE(eval("table/Foo/eq/y"));
  EXPECT_EQ(failure("table/TblMissing/eq/x"), "");
}

TEST_F(ConditionsTest, DatabaseAndFieldTermsReadTheirBags) {
  auto database = newBag();
  auto field = newBag();
  database->setValue("Num", 3);
  field->setValue("Foo", "id");
  context.database = database.get();
  context.field = field.get();
  EXPECT_TRUE(eval("db/Num/eq/3,field/Foo/eq/id"));
  EXPECT_FALSE(eval("db/Num/eq/3,field/Foo/eq/name"));
}

TEST_F(ConditionsTest, CtrlTermsReadTheControlLastFetched) {
  useControl("list");
  EXPECT_TRUE(eval("ctrl/ctrlid/in/ist"));
  EXPECT_TRUE(eval("ctrl/CtrlID/eq/\"list\""));
  EXPECT_TRUE(eval("ctrl/ctrlspace/eq/True"));
  EXPECT_TRUE(eval("ctrl/ctrlgen/eq/0"));
  EXPECT_TRUE(eval("ctrl/ctrlremark/eq/anything"));

  useControl("edit");
  EXPECT_FALSE(eval("ctrl/ctrlid/eq/list"));
}

TEST_F(ConditionsTest, ACtrlTermWithoutAControlStopsTheRun) {
  EXPECT_EQ(failure("ctrl/ctrlid/eq/list"), "");
  context.controls = nullptr;
  EXPECT_EQ(failure("ctrl/ctrlid/eq/list"), "");
}

TEST_F(ConditionsTest, FunctionTermsCompareTheModuleResultAsItsType) {
  std::vector<std::string> ran;
  Variant result = Variant("true");
  context.runModule = [&](const std::string& module) {
    ran.push_back(module);
    return result;
  };
  EXPECT_TRUE(eval("function/IsOn/Boolean/eq/True"));
  EXPECT_TRUE(eval("FUNCTION/ IsOn/Boolean/eq/1"));
  EXPECT_EQ(ran, (std::vector<std::string>{"IsOn", "IsOn"}));
  result = Variant(false);
  EXPECT_FALSE(eval("function/IsOn/Boolean/eq/True"));
  result = Variant("12");
  EXPECT_TRUE(eval("function/Count/Long/gt/9"));
  result = Variant("many");
  EXPECT_EQ(failure("function/Count/Long/gt/9"), "");
}

TEST_F(ConditionsTest, WithoutAScriptHostTheModuleResultIsEmptyText) {
  EXPECT_TRUE(eval("function/IsOn/String/eq/"));
  EXPECT_FALSE(eval("function/IsOn/Boolean/eq/True"));
}

TEST_F(ConditionsTest, AnErrorOfTheModuleStopsTheRunWithTheStandingError) {
  context.runModule = [](const std::string&) -> Variant {
    AGPVars().ProjErr = "script failed";
    throw AutomationError(5, "boom");
  };
  EXPECT_EQ(failure("function/IsOn/Boolean/eq/True"), "script failed");

  context.runModule = [](const std::string&) -> Variant { throw GenerationError("inner"); };
  AGPVars().ProjErr = "outer";
  EXPECT_EQ(failure("function/IsOn/Boolean/eq/True"), "outer");
}

TEST_F(ConditionsTest, EvaluationStopsAtTheFirstTermThatFails) {
  int runs = 0;
  context.runModule = [&](const std::string&) {
    ++runs;
    return Variant(true);
  };
  EXPECT_FALSE(eval("proj/Foo/eq/never,function/IsOn/Boolean/eq/True"));
  EXPECT_EQ(runs, 0);
}

TEST(CompareVariants, AStringBesideATypedValueIsReadAsThatTypeOrComparedAsText) {
  EXPECT_TRUE(is_eq(CompareVariants(Variant(), Variant(""))));
  EXPECT_TRUE(is_eq(CompareVariants(Variant(), Variant(0))));
  EXPECT_TRUE(is_gt(CompareVariants(Variant(10), Variant("9"))));
  EXPECT_TRUE(is_lt(CompareVariants(Variant("9"), Variant(10))));
  EXPECT_TRUE(is_eq(CompareVariants(Variant(true), Variant("true"))));
  EXPECT_TRUE(is_eq(CompareVariants(Variant(true), Variant("1"))));
  EXPECT_TRUE(is_eq(CompareVariants(Variant(10), Variant("10"))));
  EXPECT_TRUE(is_lt(CompareVariants(Variant(10), Variant("x"))));  // "10" < "x"
  EXPECT_TRUE(is_gt(CompareVariants(Variant("2024/01/02"), Variant::date(0.0))));
}

}  // namespace
}  // namespace bw
