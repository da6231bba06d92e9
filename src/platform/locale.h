// The system's code page and its charset name.
#pragma once

#include <string>
#include <string_view>

namespace bw::locale {

// The code page of the process's locale as decimal text: a UTF-8 locale
// gives "65001", ISO-8859-1 "28591", and so on.
std::string systemCodePage();

// The charset name of a code page given as decimal text ("65001" gives
// "utf-8"); NUL characters and surrounding blanks are ignored; an unknown
// code page gives "".
std::string charsetForCodePage(std::string_view codePage);

}  // namespace bw::locale
