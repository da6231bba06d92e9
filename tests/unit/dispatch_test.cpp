#include "core/dispatch.h"

#include <gtest/gtest.h>

namespace bw {
namespace {

class Counter : public Dispatch {
 public:
  std::int32_t Count() const { return count_; }
  void setCount(std::int32_t v) { count_ = v; }
  std::string Item(const Variant& index) const { return "item " + index.toText(); }
  std::int32_t Add(std::int16_t by, std::optional<std::int16_t> times) {
    count_ += by * times.value_or(1);
    return count_;
  }
  bool Flag() const { return true; }

  const MemberTable& members() const override {
    static const MemberTable table{
        property<&Counter::Count, &Counter::setCount>("Count"),
        asDefault(property<&Counter::Item>("Item")),
        method<&Counter::Add>("Add"),
        property<&Counter::Flag>("Flag"),
    };
    return table;
  }
  std::string_view typeName() const override { return "Counter"; }

 private:
  std::int32_t count_ = 0;
};

void expectError(std::int32_t number, const std::function<void()>& call) {
  try {
    call();
    ADD_FAILURE() << "expected error " << number;
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), number) << e.description();
  }
}

TEST(Dispatch, MembersAreFoundWithoutRegardToCaseAndConvertArguments) {
  auto c = make<Counter>();
  c->put("count", Variant("41"));
  EXPECT_EQ(c->get("COUNT").lng(), 41);
  Variant args[] = {Variant("2"), Variant(3)};
  EXPECT_EQ(c->get("add", args).lng(), 47);
  Variant one[] = {Variant(1)};
  EXPECT_EQ(c->get("Add", one).lng(), 48);
  EXPECT_EQ(c->get("item", one).string(), "item 1");
  EXPECT_EQ(c->members().defaultMember()->name, "Item");
}

TEST(Dispatch, KindsTellValuesFromCallables) {
  auto c = make<Counter>();
  EXPECT_FALSE(c->member("Flag").isCallable());
  EXPECT_TRUE(c->member("Item").isCallable());
  EXPECT_TRUE(c->member("Add").isCallable());
}

TEST(Dispatch, BadCallsRaiseBasicErrors) {
  auto c = make<Counter>();
  expectError(basic_error::kObjectDoesNotSupport, [&] { c->get("Nope"); });
  expectError(basic_error::kObjectDoesNotSupport, [&] { c->put("Flag", Variant(true)); });
  expectError(basic_error::kWrongArgumentCount, [&] { c->get("Add"); });
  Variant bad[] = {Variant("x")};
  expectError(basic_error::kTypeMismatch, [&] { c->get("Add", bad); });
  Variant big[] = {Variant(70000)};
  expectError(basic_error::kTypeMismatch, [&] { c->get("Add", big); });
}

}  // namespace
}  // namespace bw
