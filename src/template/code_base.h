// AGPCodeBase: the default text of each place where a user may put code of
// his own into the generated application.
//
// The code base is a file of the template package. Its root is named after
// the product key (blanks and "/" removed) followed by ".codebase", in any
// case; each `code` child is one place, keyed by four attributes, with its
// text in the element's first child, normally a CDATA section:
//
//   <Brindlework.codebase>
//     <code scripttype="template" codetype="Table" name="list_page_load"
//           language="C#"><![CDATA[// Write your code here.
//   ]]></code>
//   </Brindlework.codebase>
//
// Element and attribute names are compared in lower case, the four keys
// without regard to case. The text is kept with the line ends the file has;
// CodeSource then writes every LF as CR LF, so a file with CR LF line ends
// gives CR CR LF.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/dispatch.h"

namespace pugi {
class xml_node;
}

namespace bw {

struct CodeRecord {
  std::string CodeScriptType;
  std::string CodeCodeType;
  std::string CodeName;
  std::string CodeLanguage;
  std::string CodeText;
};

class AGPCodeBase : public Dispatch {
 public:
  std::int32_t Count() const { return static_cast<std::int32_t>(records_.size()); }
  // The record, numbered from 1, that the last Load wrote last; 0 if none.
  std::int32_t curIndex() const { return curIndex_; }
  void setCurIndex(std::int32_t index) { curIndex_ = index; }

  // Replaces the records with those of a code base file. False, with
  // "Load code base file failed!" in error(), if the file does not load as
  // XML. A file with another root gives true, keeps the records and leaves
  // "Code base file is invalid!" in error().
  bool Load(const Variant& file);
  // Whether a record has these four keys, compared without regard to case.
  bool CodeExist(const std::string& scriptType, const std::string& codeType,
                 const std::string& name, const std::string& language) const;
  // The first matching record's text with CR LF line ends, or "".
  std::string CodeSource(const std::string& scriptType, const std::string& codeType,
                         const std::string& name, const std::string& language) const;

  // The last Load's error text; "" after a good load.
  const std::string& error() const { return error_; }
  // Record i is records()[i - 1].
  const std::vector<CodeRecord>& records() const { return records_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPCodeBase"; }

 private:
  const CodeRecord* find(const std::string& scriptType, const std::string& codeType,
                         const std::string& name, const std::string& language) const;
  void takeCode(const pugi::xml_node& code);

  std::vector<CodeRecord> records_;
  std::string error_;
  std::int32_t curIndex_ = 0;
};

// The shared code base, created empty on first use; whoever needs it loads
// the file that the setting CodeBase names.
AGPCodeBase& CodeBase();

}  // namespace bw
