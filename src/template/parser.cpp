#include "template/parser.h"

#include <optional>

#include "core/agp_vars.h"
#include "platform/host.h"
#include "platform/text.h"
#include "template/file_cache.h"
#include "template/marks.h"

namespace bw {
namespace {

constexpr auto npos = std::string_view::npos;

// The characters right behind the opening mark that make a block other than
// code, in the order of their types from block_type::kOutput on. They are
// compared exactly: "<!--## =x##-->" is code.
constexpr std::string_view kMarkers = "=~@$";

// Found without regard to case.
constexpr std::string_view kIncludeMark = "<!--##include";

// A block error shows this many source lines, the block's own the last.
constexpr std::size_t kErrorLineCount = 11;

// The run of tabs and blanks at the very end of `text`. It stops at the
// first other character, which in a template is the line end before, so the
// indentation of a block alone on its line is the white space in front of it.
std::string_view TrailingBlank(std::string_view text) {
  const std::size_t last = text.find_last_not_of(" \t");
  return last == npos ? text : text.substr(last + 1);
}

// The ProjErr text of a block error whose mark starts at byte `at`: where it
// is, as line and column in characters (only CR LF ends a line), and the
// last lines of the source through the mark's "<", so that the user can find
// the place in the template.
std::string blockErrorText(std::string_view fault, std::string_view source, std::size_t at) {
  const std::vector<std::string> lines = text::split(source.substr(0, at + 1), text::kCrLf);
  std::string out = "***" + std::string(fault) + " at line " + std::to_string(lines.size()) +
                    " column " + std::to_string(text::countChars(lines.back())) +
                    "! Generation failed!\r\nError lines:";
  const std::size_t first = lines.size() > kErrorLineCount ? lines.size() - kErrorLineCount : 0;
  for (std::size_t k = first; k < lines.size(); ++k) {
    out += text::kCrLf;
    out += lines[k];
  }
  return out;
}

// The first opening mark at or behind `from`. It is found by its "##",
// which is rare in HTML, where a search for its "<" would stop at every tag.
std::size_t findOpenMark(std::string_view text, std::size_t from) {
  constexpr std::size_t kLead = kBlockOpen.size() - 2;  // "<!--" before the "##"
  for (std::size_t hashes = text.find("##", from + kLead); hashes != npos;
       hashes = text.find("##", hashes + 1))
    if (text.compare(hashes - kLead, kBlockOpen.size(), kBlockOpen) == 0) return hashes - kLead;
  return npos;
}

// An include names "file/session"; anything else names nothing.
struct IncludeTarget {
  std::string_view file;
  std::string_view session;
};

std::optional<IncludeTarget> includeTarget(std::string_view inner) {
  inner = text::trimBlanks(inner);
  const std::size_t slash = inner.find('/');
  if (slash == npos || inner.find('/', slash + 1) != npos) return std::nullopt;
  return IncludeTarget{text::trimBlanks(inner.substr(0, slash)),
                       text::trimBlanks(inner.substr(slash + 1))};
}

}  // namespace

void AGParser::Parse(std::string sSrc) {
  source_ = std::move(sSrc);
  blocks_.clear();
  scanBlocks();
  blockId_ = Count();
}

// One forward scan. For each opening mark the end mark is looked for first,
// then the next opening mark: one that comes before the end mark is nested.
// An error ends the scan and keeps the blocks found so far.
void AGParser::scanBlocks() {
  const std::string_view src = source_;
  std::size_t last = 0;  // the first byte not yet claimed by a block
  for (std::size_t open = findOpenMark(src, 0); open != npos;) {
    addText(last, open);
    const std::size_t close = src.find(kBlockClose, open);
    if (close == npos) return reportBlockError("Incomplete Block", open);
    const std::size_t next = findOpenMark(src, open + kBlockOpen.size());
    if (next < close) return reportNestedBlock(next);
    addCommandBlock(open, close);
    last = close + kBlockClose.size();
    open = next;
  }
  addText(last, src.size());
}

void AGParser::setBlockID(std::int32_t id) {
  if (id >= 1 && id <= Count()) blockId_ = id;
}

std::int32_t AGParser::BlockType() const {
  const Block* block = current();
  return block ? block->type : block_type::kNone;
}

std::string AGParser::BlockName() const {
  const Block* block = current();
  if (!block || block->type < block_type::kOutput || block->type > block_type::kPhraseExpression)
    return {};
  return std::string(text::trimBlanks(valueOf(*block)));
}

std::string AGParser::BlockValue() const {
  const Block* block = current();
  return block ? std::string(valueOf(*block)) : std::string();
}

// The indentation is that of the text block right before; behind another
// block there is none.
std::string AGParser::BlockIndent() const {
  const Block* block = current();
  if (!block || block->type != block_type::kIndentedOutput || block == blocks_.data()) return {};
  const Block& before = block[-1];
  if (before.type != block_type::kText) return {};
  return std::string(TrailingBlank(valueOf(before)));
}

const AGParser::Block* AGParser::current() const {
  return blockId_ >= 1 && blockId_ <= Count() ? &blocks_[blockId_ - 1] : nullptr;
}

std::string_view AGParser::valueOf(const Block& block) const {
  return std::string_view(source_).substr(block.start, block.length);
}

// Adds no empty text block, so adjacent commands have nothing between them.
void AGParser::addText(std::size_t start, std::size_t end) {
  if (end > start) blocks_.push_back({block_type::kText, start, end - start});
}

// The block between the opening mark at `open` and the end mark at `close`.
// The end mark may overlap the opening one ("<!--##-->"); the value is then
// empty.
void AGParser::addCommandBlock(std::size_t open, std::size_t close) {
  // An end mark follows, so the character behind the opening mark exists.
  std::size_t start = open + kBlockOpen.size();
  const std::size_t marker = kMarkers.find(source_[start]);
  std::int32_t type = block_type::kCode;
  if (marker != npos) {
    type = block_type::kOutput + static_cast<std::int32_t>(marker);
    ++start;
  }
  blocks_.push_back({type, start, close > start ? close - start : 0});
}

void AGParser::reportBlockError(std::string_view fault, std::size_t at) {
  AGPVars().ProjErr = blockErrorText(fault, source_, at);
}

// A nested block is a broken template that the user must see at once, with
// the whole text, before the run stops.
void AGParser::reportNestedBlock(std::size_t at) {
  AGPVars().host->showMessage("Nested Block: " + source_, AGPVars().ProductName, MessageIcon::None);
  reportBlockError("Nested Blocks found", at);
}

Variant AGParser::GetSession(const std::string& sFileID, const std::string& sSessID) {
  std::vector<Variant> pieces;
  LoadIncluded(sFileID, sSessID, 0, pieces);
  return Variant::array(std::move(pieces));
}

// Appends the session's pieces with its includes expanded. False when the
// includes nest too deep; ProjErr then says where, and the caller stops too,
// so that a session including itself twice cannot branch on for ever.
bool AGParser::LoadIncluded(std::string_view file, std::string_view session, int depth,
                            std::vector<Variant>& pieces) {
  if (depth > kMaxIncludeDepth) {
    AGPVars().ProjErr =
        ProductMessage(": Includes nested more than " + std::to_string(kMaxIncludeDepth) +
                       " levels deep at session \"" + std::string(session) + "\" of file \"" +
                       std::string(file) + "\"; a session includes itself!");
    return false;
  }
  return ExpandIncludes(FileCache().sessionText(file, session), depth, pieces);
}

// The text around each include is one piece (an empty one where two meet);
// the included session's pieces go in between. A malformed include vanishes;
// an unterminated one stays as text.
bool AGParser::ExpandIncludes(std::string_view text, int depth, std::vector<Variant>& pieces) {
  std::size_t pos = 0;
  for (std::size_t open = text::ifindAscii(text, kIncludeMark); open != npos;
       open = text::ifindAscii(text, kIncludeMark, pos)) {
    pieces.emplace_back(text.substr(pos, open - pos));
    const std::size_t innerStart = open + kIncludeMark.size();
    const std::size_t close = text.find(kBlockClose, innerStart);
    if (close == npos) {
      pos = open;
      break;
    }
    const auto target = includeTarget(text.substr(innerStart, close - innerStart));
    if (target && !LoadIncluded(target->file, target->session, depth + 1, pieces)) return false;
    pos = close + kBlockClose.size();
  }
  pieces.emplace_back(text.substr(pos));
  return true;
}

const MemberTable& AGParser::members() const {
  static const MemberTable table{
      method<&AGParser::Parse>("Parse"),
      property<&AGParser::Count>("Count"),
      property<&AGParser::BlockID, &AGParser::setBlockID>("BlockID"),
      property<&AGParser::BlockType>("BlockType"),
      property<&AGParser::BlockName>("BlockName"),
      property<&AGParser::BlockValue>("BlockValue"),
      property<&AGParser::BlockIndent>("BlockIndent"),
      method<&AGParser::GetSession>("GetSession"),
  };
  return table;
}

}  // namespace bw
