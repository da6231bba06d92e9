// The automation layer: late-bound access to engine objects by member name.
//
// Every public class derives from Dispatch and declares its members once, in
// a static MemberTable: name, kind and a thunk that takes and returns
// Variants. The script engine, the CLI and tests reach objects through these
// tables alone; no class is bound to a script engine by hand.
//
// Names match without regard to case. The kind keeps a distinction that
// scripts depend on: a Property without arguments is a value
// (`TABLE.TblGen`), a Property with arguments is callable (`coll.Item(1)`), a
// Method is a function (`coll.Count()`).
//
// Declaring members:
//
//   const MemberTable& AGPKeyword::members() const {
//     static const MemberTable table{
//         property<&AGPKeyword::Count>("Count"),
//         property<&AGPKeyword::curIndex, &AGPKeyword::setCurIndex>("curIndex"),
//         method<&AGPKeyword::Load>("Load"),
//     };
//     return table;
//   }
//
// Parameters of type bool, int16_t, int32_t, float, double, std::string,
// Variant and Ref<T> are converted from the caller's Variants by the Basic
// rules; std::optional<T> marks an optional trailing parameter.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/automation_error.h"
#include "core/ref.h"
#include "core/variant.h"
#include "platform/text.h"

namespace bw {

using Args = std::span<const Variant>;
class Dispatch;
class EnumVariant;

struct Member {
  enum class Kind : std::uint8_t { Property, Method };
  using Getter = Variant (*)(Dispatch& self, const Member& member, Args args);
  using Putter = void (*)(Dispatch& self, const Member& member, Args args, const Variant& value);

  std::string name;
  Kind kind = Kind::Property;
  std::uint8_t minArgs = 0;  // of the get or the call
  std::uint8_t maxArgs = 0;
  Getter get = nullptr;      // property read or method call
  Putter put = nullptr;      // property write; null when read-only
  std::intptr_t data = 0;    // free for generated members (an attribute's slot, say)
  bool isDefault = false;    // the member used when the object itself is called

  bool takesArguments() const { return maxArgs > 0; }
  bool isCallable() const { return kind == Kind::Method || takesArguments(); }
};

class MemberTable {
 public:
  MemberTable(std::initializer_list<Member> members);
  // A derived class's table: its own members first, then the base's.
  MemberTable(std::initializer_list<Member> members, const MemberTable& base);

  // Adds a member unless one of that name exists already.
  void add(Member member);

  const Member* find(std::string_view name) const;
  const Member* defaultMember() const { return default_; }
  const std::vector<Member>& all() const { return members_; }

 private:
  std::vector<Member> members_;
  std::unordered_map<std::string, std::size_t, text::CaseInsensitiveHash, text::CaseInsensitiveEqual>
      index_;
  const Member* default_ = nullptr;
  void reindex();
};

class Dispatch : public RefCounted {
 public:
  virtual const MemberTable& members() const = 0;
  virtual std::string_view typeName() const = 0;

  // Collections return an enumerator; other objects return null.
  virtual Ref<EnumVariant> newEnum() { return {}; }

  // Late-bound calls. `get` reads a property or calls a method; `put`
  // writes a property. Both raise AutomationError 438 for an unknown member
  // and 450 for a wrong number of arguments.
  Variant get(std::string_view name, Args args = {});
  void put(std::string_view name, const Variant& value, Args args = {});

  const Member& member(std::string_view name) const;  // raises 438 if absent
};

// The enumerator behind `For Each` and `new Enumerator(coll)`.
class EnumVariant : public Dispatch {
 public:
  // Fetches the next item; false at the end of the walk.
  virtual bool next(Variant& item) = 0;
  virtual void reset() = 0;
  virtual bool skip(std::int32_t count);
  virtual Ref<EnumVariant> clone() = 0;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "Enumerator"; }
};

// ---------------------------------------------------------------------------
// Conversions between Variants and C++ parameter and result types.

namespace automation {

[[noreturn]] void raise(std::int32_t number);

template <typename T>
struct IsOptional : std::false_type {};
template <typename T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <typename T>
struct IsRef : std::false_type {};
template <typename T>
struct IsRef<Ref<T>> : std::true_type {
  using Target = T;
};

template <typename T>
T fromVariant(const Variant& v) {
  auto need = [](auto&& opt) {
    if (!opt) raise(basic_error::kTypeMismatch);
    return *opt;
  };
  if constexpr (std::is_same_v<T, Variant>) {
    return v;
  } else if constexpr (std::is_same_v<T, bool>) {
    return need(v.toBoolean());
  } else if constexpr (std::is_same_v<T, std::int16_t>) {
    return need(v.toInteger());
  } else if constexpr (std::is_same_v<T, std::int32_t>) {
    return need(v.toLong());
  } else if constexpr (std::is_same_v<T, float>) {
    return need(v.toSingle());
  } else if constexpr (std::is_same_v<T, double>) {
    return need(v.toDouble());
  } else if constexpr (std::is_same_v<T, std::string>) {
    if (v.isNull()) raise(basic_error::kInvalidUseOfNull);
    if (v.isObject() || v.isArray()) raise(basic_error::kTypeMismatch);
    return v.toText();
  } else if constexpr (IsRef<T>::value) {
    using Target = typename IsRef<T>::Target;
    if (v.isEmpty() || (v.isObject() && !v.object())) return T();
    auto* target = dynamic_cast<Target*>(v.object());
    if (!target) raise(basic_error::kTypeMismatch);
    return T(target);
  } else {
    static_assert(sizeof(T) == 0, "no conversion from Variant to this parameter type");
  }
}

template <typename T>
Variant toVariant(T&& value) {
  using D = std::decay_t<T>;
  if constexpr (std::is_same_v<D, Variant>) {
    return std::forward<T>(value);
  } else if constexpr (std::is_same_v<D, std::int64_t> || std::is_same_v<D, std::size_t>) {
    return Variant(static_cast<std::int32_t>(value));
  } else if constexpr (IsRef<D>::value) {
    return Variant(Ref<Dispatch>(value));
  } else {
    return Variant(std::forward<T>(value));
  }
}

template <typename P>
decltype(auto) argAt(Args args, std::size_t i) {
  using D = std::decay_t<P>;
  if constexpr (IsOptional<D>::value) {
    using Inner = typename D::value_type;
    if (i >= args.size()) return D();
    return D(fromVariant<Inner>(args[i]));
  } else {
    return fromVariant<D>(args[i]);
  }
}

// Parameters up to the first std::optional are required.
template <typename... P>
constexpr std::uint8_t requiredCount() {
  constexpr bool optional[] = {IsOptional<std::decay_t<P>>::value..., false};
  std::uint8_t n = 0;
  while (n < sizeof...(P) && !optional[n]) ++n;
  return n;
}

template <typename F>
struct FnTraits;
template <typename C, typename R, typename... P>
struct FnTraits<R (C::*)(P...)> {
  using Class = C;
  using Result = R;
  static constexpr std::uint8_t kMin = requiredCount<P...>();
  static constexpr std::uint8_t kMax = sizeof...(P);
  template <auto Fn>
  static Variant call(Dispatch& self, Args args) {
    return invoke<Fn>(static_cast<C&>(self), args, std::index_sequence_for<P...>{});
  }
  template <auto Fn, std::size_t... I>
  static Variant invoke(C& obj, [[maybe_unused]] Args args, std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
      (obj.*Fn)(argAt<P>(args, I)...);
      return Variant();
    } else {
      return toVariant((obj.*Fn)(argAt<P>(args, I)...));
    }
  }
};
template <typename C, typename R, typename... P>
struct FnTraits<R (C::*)(P...) const> : FnTraits<R (C::*)(P...)> {
  template <auto Fn>
  static Variant call(Dispatch& self, Args args) {
    return invoke<Fn>(static_cast<const C&>(self), args, std::index_sequence_for<P...>{});
  }
  template <auto Fn, std::size_t... I>
  static Variant invoke(const C& obj, [[maybe_unused]] Args args, std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
      (obj.*Fn)(argAt<P>(args, I)...);
      return Variant();
    } else {
      return toVariant((obj.*Fn)(argAt<P>(args, I)...));
    }
  }
};

// Setter traits: the last parameter is the value, the ones before it are
// the property's arguments.
template <typename F>
struct SetterTraits;
template <typename C, typename... P>
struct SetterTraits<void (C::*)(P...)> {
  template <auto Fn>
  static void call(Dispatch& self, Args args, const Variant& value) {
    invoke<Fn>(static_cast<C&>(self), args, value, std::make_index_sequence<sizeof...(P) - 1>{});
  }
  template <auto Fn, std::size_t... I>
  static void invoke(C& obj, [[maybe_unused]] Args args, const Variant& value,
                     std::index_sequence<I...>) {
    using Tuple = std::tuple<P...>;
    using ValueType = std::tuple_element_t<sizeof...(P) - 1, Tuple>;
    (obj.*Fn)(argAt<std::tuple_element_t<I, Tuple>>(args, I)..., fromVariant<std::decay_t<ValueType>>(value));
  }
};

template <typename F>
struct FieldTraits;
template <typename C, typename T>
struct FieldTraits<T C::*> {
  using Class = C;
  using Type = T;
};

}  // namespace automation

// A method: a function in scripts, whatever its arguments.
template <auto Fn>
Member method(std::string name) {
  using T = automation::FnTraits<decltype(Fn)>;
  return Member{std::move(name), Member::Kind::Method, T::kMin, T::kMax,
                [](Dispatch& self, const Member&, Args args) { return T::template call<Fn>(self, args); },
                nullptr};
}

// A read-only property; with arguments it is callable.
template <auto Getter>
Member property(std::string name) {
  using T = automation::FnTraits<decltype(Getter)>;
  return Member{std::move(name), Member::Kind::Property, T::kMin, T::kMax,
                [](Dispatch& self, const Member&, Args args) {
                  return T::template call<Getter>(self, args);
                },
                nullptr};
}

// A read and write property.
template <auto Getter, auto Setter>
Member property(std::string name) {
  Member m = property<Getter>(std::move(name));
  m.put = [](Dispatch& self, const Member&, Args args, const Variant& value) {
    automation::SetterTraits<decltype(Setter)>::template call<Setter>(self, args, value);
  };
  return m;
}

// A plain data member exposed as a read and write property.
template <auto Field>
Member field(std::string name) {
  return Member{std::move(name), Member::Kind::Property, 0, 0,
                [](Dispatch& self, const Member&, Args) {
                  using Traits = automation::FieldTraits<decltype(Field)>;
                  return automation::toVariant(static_cast<typename Traits::Class&>(self).*Field);
                },
                [](Dispatch& self, const Member&, Args, const Variant& value) {
                  using Traits = automation::FieldTraits<decltype(Field)>;
                  static_cast<typename Traits::Class&>(self).*Field =
                      automation::fromVariant<typename Traits::Type>(value);
                }};
}

// Marks a member as the default one of its object (`coll(1)` is `coll.Item(1)`).
inline Member asDefault(Member m) {
  m.isDefault = true;
  return m;
}

}  // namespace bw
