// Composition: template text compiled into one script function.
//
// A control's template (or its sessions) is cut into blocks; code blocks are
// copied, output blocks become appends to the function's StringBuilder, and
// literal text goes into an array filled at the start of the function, so
// that the logic stays readable and each literal stands once:
//
//   template:  a<!--##=b##-->c
//
//   function ztEx_cs_list() {
//    try {
//   var ztAr = new Array();
//   var ztSB = new StringBuilder();
//   zt_SetLocale();
//   zt_LoadCurrent();
//   ztAr[1] = "a";                     <- text definitions
//   ztAr[2] = "c";
//
//   ztSB.Append(ztAr[1]);              <- body, in template order
//   ztSB.Append(b);
//   ztSB.Append(ztAr[2]);
//
//   return ztSB.ToString();
//    } catch(e) {
//     throw e;
//    }
//   }
//
// Everything exists in a JScript and a VBScript form: the script language
// "JScript" (exactly) selects the first, any other the second. Only JScript
// runs, but both forms are text and are composed alike.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "template/string_builder.h"

namespace bw {

// The tokens that differ between the two script languages.
struct ScriptTokens {
  bool jscript;
  std::string_view indexOpen, indexClose;
  std::string_view statementEnd;
  std::string_view lineEnd;  // a script expression that gives CR LF
  std::string_view concat;
  std::string_view commentMark;

  static const ScriptTokens& of(std::string_view language);
};

// A script expression for literal text: one string per line, joined with
// the line end expression, and with `indentVar` after each line end when it
// is not "". Empty text gives "".
std::string TextLiteral(std::string_view language, std::string_view text,
                        std::string_view indentVar);

// Drops blank lines at the start; the first real line keeps its indentation.
std::string TrimLeadingBlankLines(std::string_view text);

// Drops empty lines, puts one empty line before each declaration and each
// comment block (and after a comment block of more than one line), and adds
// the generator tag before "</head>". `ext` names the kind of text: "js",
// "cs" or "vb"; any other follows the project's language.
std::string TidyOutput(std::string_view ext, std::string_view text);

// The forms of a composed function.
enum class FunctionForm { Control, ParseScript };

// The state of one composition: the text array counter and the builders of
// the text definitions and the function body.
class Composer {
 public:
  explicit Composer(std::string language);

  const std::string& language() const { return language_; }
  const ScriptTokens& tokens() const { return *tokens_; }

  // Starts a new function: no text items, empty definitions and body.
  void reset();

  // Parses `text` and appends its statements. A parse error leaves its
  // message in ProjErr and adds nothing more.
  void composeBlocks(std::string_view text);

  // Appends a line (CR LF added) to the body.
  void appendBodyLine(std::string_view line);

  // The whole function named `id`.
  std::string functionText(std::string_view id, FunctionForm form, bool showTime);

  std::int32_t textCount() const { return textCount_; }
  std::string textDefs() { return textDefs_.ToString().toText(); }
  std::string bodyCode() { return bodyCode_.ToString().toText(); }

 private:
  void emitText(std::string_view value);
  void emitStatement(std::string_view statement);

  std::string language_;
  const ScriptTokens* tokens_;
  std::int32_t textCount_ = 0;
  AGPStringBuilder textDefs_;
  AGPStringBuilder bodyCode_;
  AGPStringBuilder funcCode_;
};

}  // namespace bw
