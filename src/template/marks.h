// The marks of the template language. Every command of a template stands
// between these two, which are HTML comment marks, so that a template opened
// in a browser or an HTML editor shows its commands as comments.
#pragma once

#include <string_view>

namespace bw {

inline constexpr std::string_view kBlockOpen = "<!--##";
inline constexpr std::string_view kBlockClose = "##-->";

}  // namespace bw
