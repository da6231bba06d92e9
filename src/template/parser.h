// AGParser: cuts template text into blocks, and fetches a template session
// with its includes resolved.
//
// A command of the template language stands between "<!--##" and "##-->";
// the character right behind the opening mark tells the kind of block:
//
//   Hello <!--##=TABLE.TblName##-->!<!--## if (x) { ##-->
//   [text ][output         ][text][code          ]
//
// Everything outside the marks is a text block. The parser knows nothing of
// what blocks mean; composition turns them into script statements.
//
// A block holds its value as a byte range of the source, so parsing copies
// no text; BlockValue cuts the value out on demand. Parsing is one forward
// scan with one look-ahead search per block.
//
// Usage:
//
//   AGParser parser;
//   parser.Parse(text);
//   if (!AGPVars().ProjErr.empty()) return;
//   for (std::int32_t id = 1; id <= parser.Count(); ++id) {
//     parser.setBlockID(id);
//     ... parser.BlockType(), parser.BlockName(), parser.BlockValue() ...
//   }
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

namespace bw {

// Values of AGParser::BlockType.
namespace block_type {
inline constexpr std::int32_t kNone = 0;              // no current block
inline constexpr std::int32_t kCode = 1;              // <!--## statements ##-->
inline constexpr std::int32_t kOutput = 2;            // <!--##=expression##-->
inline constexpr std::int32_t kIndentedOutput = 3;    // <!--##~expression##-->
inline constexpr std::int32_t kPhrase = 4;            // <!--##@phrase id##-->
inline constexpr std::int32_t kPhraseExpression = 5;  // <!--##$expression##-->
inline constexpr std::int32_t kText = 6;              // literal text
}  // namespace block_type

class AGParser : public Dispatch {
 public:
  // Replaces the source and the block list and cuts `sSrc` into blocks.
  // A nested or an unterminated block stops the scan with a message in
  // ProjErr (which Parse does not clear beforehand); the blocks found up to
  // there stay. Afterwards BlockID is the number of blocks found.
  void Parse(std::string sSrc);

  std::int32_t Count() const { return static_cast<std::int32_t>(blocks_.size()); }

  // The current block, from 1 to Count. Other values are ignored.
  std::int32_t BlockID() const { return blockId_; }
  void setBlockID(std::int32_t id);

  // The current block's fields; kNone and "" without a current block.
  std::int32_t BlockType() const;
  std::string BlockName() const;    // marker blocks: the value without outer blanks
  std::string BlockValue() const;   // the text between the marks, exactly
  std::string BlockIndent() const;  // indented output blocks: the blanks before them

  // The session's text from the shared file cache, with every
  // "<!--##include file/session##-->" replaced by that session's text,
  // recursively: an array Variant of string pieces, in order.
  Variant GetSession(const std::string& sFileID, const std::string& sSessID);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGParser"; }

  // Deeper includes are taken for a session that includes itself.
  static constexpr int kMaxIncludeDepth = 32;

 private:
  struct Block {
    std::int32_t type;
    std::size_t start;   // byte offset of the value in the source
    std::size_t length;  // in bytes
  };

  const Block* current() const;
  std::string_view valueOf(const Block& block) const;
  void scanBlocks();
  void addText(std::size_t start, std::size_t end);
  void addCommandBlock(std::size_t open, std::size_t close);
  void reportBlockError(std::string_view fault, std::size_t at);
  void reportNestedBlock(std::size_t at);

  bool ExpandIncludes(std::string_view text, int depth, std::vector<Variant>& pieces);
  bool LoadIncluded(std::string_view file, std::string_view session, int depth,
                    std::vector<Variant>& pieces);

  std::string source_;
  std::vector<Block> blocks_;
  std::int32_t blockId_ = 0;
};

}  // namespace bw
