// Text rules of the language files that a generated site reads: how a
// project's attribute and its phrase become one text, the folder tokens of
// image addresses, the quoted value lists of fixed-value fields, and the
// numbered attribute names of the attribute list settings.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bw {

// The text written for an attribute that may also have a phrase. A
// multi-language site wants the translation first and falls back to the
// attribute; a single-language site wants what the user set on the
// attribute and falls back to the phrase.
std::string ChooseText(const std::string& attributeValue, const std::string& phrase,
                       bool multiLanguage);

// Replaces each "{id}" token by the folder of that folder control, as
// `folderOf` gives it; an unknown id gives "" and the token vanishes. Each
// token found is replaced wherever its text occurs, comparing exactly.
//
//   ExpandFolderTokens("{_images}/flag.png", folders)   // "img/flag.png"
using FolderLookup = std::function<std::string(const std::string& folderId)>;
std::string ExpandFolderTokens(const std::string& text, const FolderLookup& folderOf);

// Reads a comma-separated list of double-quoted items, a doubled quote
// standing for one quote:
//
//   ParseQuotedList(R"("1","One ""A""")")   // {"1", "One \"A\""}
//
// Empty items are dropped, so the items behind them move up. Text that
// breaks the form (an unquoted item, a missing closing quote, anything but
// a comma after one) gives an empty list; empty text gives no list at all.
std::optional<std::vector<std::string>> ParseQuotedList(std::string_view text);

// The n-th name of a numbered attribute family: "%n", found without regard
// to case, replaced by n. HasNumberMark tells such an entry.
bool HasNumberMark(std::string_view entry);
std::string NumberedName(std::string_view entry, int n);

// The entries of an attribute list setting: split at commas, blanks round an
// entry removed, empty entries left out.
std::vector<std::string> AttributeList(std::string_view setting);

}  // namespace bw
