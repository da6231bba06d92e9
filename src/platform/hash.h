// Message digests of a text, as upper-case hexadecimal.
#pragma once

#include <string>
#include <string_view>

namespace bw::hash {

std::string sha1Hex(std::string_view data);
std::string md5Hex(std::string_view data);

}  // namespace bw::hash
