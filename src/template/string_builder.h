// AGPStringBuilder: collects script text without quadratic copying.
//
// Composition produces a function as thousands of small statements. Adding
// them to one string would copy the text so far on every append; instead each
// Append fills one slot of an array, and ToString joins the slots once:
//
//   slots  [0] "var a = 1;"  [1] "\r\n"  [2] "ztSB.Append(...)"  ...  [1000]
//   pos    3                 the next free slot
//
// The array starts with 1001 slots and grows by 1000 when an Append finds it
// full, so a text of n statements costs about n / 1000 reallocations.
//
//   AGPStringBuilder sb;
//   sb.Append(Variant("a"));
//   sb.Append(Variant(1));
//   sb.ToString();  // -> "a1"
#pragma once

#include <cstddef>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPStringBuilder : public Dispatch {
 public:
  static constexpr std::size_t kChunkSize = 1000;

  AGPStringBuilder();

  void Clear();
  // Adds the value as it reads in text ("True", "12", ...).
  void Append(const Variant& strValue);
  // All appended values joined with nothing between them, as a string.
  Variant ToString() const;

  // Slots allocated so far; the array grows by kChunkSize when full.
  std::size_t slotCount() const { return slots_.size(); }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPStringBuilder"; }

 private:
  // Every used slot holds a String, so ToString can size the result from
  // the slots before copying any text.
  std::vector<Variant> slots_;
  std::size_t position_ = 0;
};

}  // namespace bw
