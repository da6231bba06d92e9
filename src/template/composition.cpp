#include "template/composition.h"

#include "core/agp_vars.h"
#include "core/status.h"
#include "platform/text.h"
#include "template/parser.h"

namespace bw {

const ScriptTokens& ScriptTokens::of(std::string_view language) {
  static const ScriptTokens kJScript{true, "[", "]", ";", "\"\\r\\n\"", "+", "//"};
  static const ScriptTokens kVBScript{false, "(", ")", "", "vbCrLf", "&", "'"};
  return language == "JScript" ? kJScript : kVBScript;
}

namespace {

// A line of literal text as the inside of a string literal.
std::string escapeLine(const ScriptTokens& t, std::string_view line) {
  if (!t.jscript) return text::replaceAll(line, "\"", "\"\"");
  return text::replaceAll(text::replaceAll(line, "\\", "\\\\"), "\"", "\\\"");
}

}  // namespace

std::string TextLiteral(std::string_view language, std::string_view textIn,
                        std::string_view indentVar) {
  if (textIn.empty()) return {};
  const ScriptTokens& t = ScriptTokens::of(language);
  const std::vector<std::string> lines = text::split(textIn, text::kCrLf);
  std::string out;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (!out.empty()) out += t.concat;
    out += '"';
    out += escapeLine(t, lines[k]);
    out += '"';
    if (k + 1 == lines.size()) continue;
    out += t.concat;
    out += t.lineEnd;
    if (!indentVar.empty()) {
      out += t.concat;
      out += indentVar;
    }
  }
  return out;
}

std::string TrimLeadingBlankLines(std::string_view textIn) {
  std::size_t start = 0;
  for (std::size_t k = 0; k < textIn.size(); ++k) {
    const char c = textIn[k];
    if (c == '\r' || c == '\n')
      start = k + 1;
    else if (c != ' ' && c != '\t')
      break;
  }
  return std::string(textIn.substr(start));
}

// ---------------------------------------------------------------------------
// TidyOutput

namespace {

class Tidier {
 public:
  explicit Tidier(std::string kind) : kind_(std::move(kind)) {}

  void line(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos) return;
    const std::string_view rest = line.substr(first);
    if (std::string_view mark = commentMark(rest); !mark.empty()) {
      if (mark == "/*" || (mark == "//" && marker_ != mark)) commentRun_ = 0;
      marker_ = mark;
      if (commentRun_ == 0 && lines_ >= 1) add("");
      ++commentRun_;
      codeRun_ = 0;
    } else if (isDeclaration(rest)) {
      if (commentRun_ == 0) add("");
      commentRun_ = 0;
      codeRun_ = 0;
    } else {
      if (codeRun_ == 0 && commentRun_ > 1) add("");
      commentRun_ = 0;
      ++codeRun_;
    }
    add(line);
  }

  std::string take() { return std::move(out_); }

 private:
  std::string_view commentMark(std::string_view rest) const {
    if (kind_ == "vb") return text::startsWith(rest, "'") ? "'" : "";
    if (text::startsWith(rest, "//")) return "//";
    if (text::startsWith(rest, "/*")) return "/*";
    return "";
  }

  static bool isDeclaration(std::string_view rest) {
    for (std::string_view word : {"Class", "Private", "Public", "Property", "Function", "Sub"}) {
      if (rest.size() > word.size() && rest[word.size()] == ' ' &&
          text::iequals(rest.substr(0, word.size()), word))
        return true;
    }
    return false;
  }

  void add(std::string_view line) {
    out_.append(line);
    out_.append(text::kCrLf);
    ++lines_;
  }

  std::string kind_;
  std::string out_;
  std::string_view marker_;
  int codeRun_ = 0;
  int commentRun_ = 0;
  int lines_ = 0;
};

std::string textKind(std::string_view ext) {
  const std::string lower = text::toLower(ext);
  if (lower == "js") return "js";
  if (lower == "cs") return "c#";
  if (lower == "vb") return "vb";
  return text::toLower(AGPVars().ProgramLanguage) == "vb" ? "vb" : "c#";
}

// Replaces every "</head>", found without regard to case, by `tag` + "</head>".
std::string insertBeforeHeadEnd(std::string_view textIn, std::string_view tag) {
  std::string out;
  std::size_t pos = 0;
  for (std::size_t hit; (hit = text::ifindAscii(textIn, "</head>", pos)) != std::string_view::npos;
       pos = hit + 7) {
    out.append(textIn.substr(pos, hit - pos));
    out.append(tag);
    out.append(textIn.substr(hit, 7));
  }
  out.append(textIn.substr(pos));
  return out;
}

}  // namespace

std::string TidyOutput(std::string_view ext, std::string_view textIn) {
  Tidier tidier(textKind(ext));
  // Lines end at CR (with a following LF taken along) or at a lone LF.
  std::size_t start = 0;
  while (start < textIn.size()) {
    std::size_t end = textIn.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = textIn.size();
    if (end > start) tidier.line(textIn.substr(start, end - start));
    start = end + 1;
    if (end < textIn.size() && textIn[end] == '\r' && start < textIn.size() && textIn[start] == '\n')
      ++start;
  }
  const std::string meta = "<meta name=\"generator\" content=\"" + AGPVars().ProductName + " v" +
                           AppVersionText() + "\" />" + std::string(text::kCrLf);
  return insertBeforeHeadEnd(tidier.take(), meta);
}

// ---------------------------------------------------------------------------
// Composer

Composer::Composer(std::string language)
    : language_(std::move(language)), tokens_(&ScriptTokens::of(language_)) {}

void Composer::reset() {
  textCount_ = 0;
  textDefs_.Clear();
  bodyCode_.Clear();
}

void Composer::appendBodyLine(std::string_view line) {
  bodyCode_.Append(Variant(line));
  bodyCode_.Append(Variant(text::kCrLf));
}

void Composer::emitStatement(std::string_view statement) {
  appendBodyLine(std::string(statement) + std::string(tokens_->statementEnd));
}

void Composer::emitText(std::string_view value) {
  const std::string literal = TextLiteral(language_, value, "");
  if (literal.empty()) return;
  const std::string item = "ztAr" + std::string(tokens_->indexOpen) + std::to_string(++textCount_) +
                           std::string(tokens_->indexClose);
  textDefs_.Append(Variant(item + " = " + literal + std::string(tokens_->statementEnd) +
                           std::string(text::kCrLf)));
  emitStatement("ztSB.Append(" + item + ")");
}

void Composer::composeBlocks(std::string_view source) {
  AGParser parser;
  parser.Parse(std::string(source));
  if (!AGPVars().ProjErr.empty()) return;
  const ScriptTokens& t = *tokens_;
  const std::string quote = t.jscript ? "\\\"" : "\"\"";
  for (std::int32_t id = 1; id <= parser.Count(); ++id) {
    Status().Refresh();  // a long template must not freeze the status display
    parser.setBlockID(id);
    switch (parser.BlockType()) {
      case block_type::kCode:
        appendBodyLine(parser.BlockValue());
        break;
      case block_type::kIndentedOutput:
        emitStatement("zt_IndentWrk = \"" + parser.BlockIndent() + "\"");
        emitStatement("ztSB.Append(" + std::string(t.lineEnd) + std::string(t.concat) +
                      "zt_IndentWrk)");
        [[fallthrough]];
      case block_type::kOutput:
        emitStatement("ztSB.Append(" + parser.BlockName() + ")");
        break;
      case block_type::kPhrase:
        emitStatement("ztSB.Append(\"@Html.Raw(Language.Phrase(" + quote + parser.BlockName() +
                      quote + "))\")");
        break;
      case block_type::kPhraseExpression:
        // The phrase id is computed by the script; no statement end here.
        appendBodyLine("ztSB.Append(\"@Html.Raw(Language.Phrase(" + quote + "\" " +
                       std::string(t.concat) + " " + parser.BlockName() + " " +
                       std::string(t.concat) + " \"" + quote + "))\")");
        break;
      case block_type::kText:
        emitText(parser.BlockValue());
        break;
    }
  }
}

std::string Composer::functionText(std::string_view id, FunctionForm form, bool showTimeIn) {
  const bool control = form == FunctionForm::Control;
  const bool showTime = control && showTimeIn;
  funcCode_.Clear();
  auto line = [this](std::string_view l) {
    funcCode_.Append(Variant(l));
    funcCode_.Append(Variant(text::kCrLf));
  };
  const std::string name(id);
  if (tokens_->jscript) {
    line("function " + name + "() {");
    if (showTime) line("var ztStartTime = new Date();");
    line(" try {");
    line("var ztAr = new Array();");
    line("var ztSB = new StringBuilder();");
    if (control) line("zt_SetLocale();");
    if (control) line("zt_LoadCurrent();");
    line(textDefs());
    line(bodyCode());
    line("return ztSB.ToString();");
    line(" } catch(e) {");
    line("  throw e;");
    line(" }");
    line("}");
  } else {
    line("Function " + name + "()");
    line("If bHandleTemplateError Then On Error Resume Next");
    if (showTime) line("Dim ztStartTime, ztStopTime");
    if (showTime) line("ztStartTime = Timer");
    line("Dim ztAr(" + std::to_string(textCount_) + ")");
    line("Dim ztSB");
    line("Set ztSB = New StringBuilder");
    if (control) line("Call zt_SetLocale()");
    line("Dim SYSTEMFUNCTIONS");
    line("Set SYSTEMFUNCTIONS = New cSystemFunctions");
    if (control) line("Call zt_LoadCurrent()");
    line(textDefs());
    line(bodyCode());
    line(name + " = ztSB.ToString()");
    line("Set SYSTEMFUNCTIONS = Nothing");
    line("End Function");
  }
  return funcCode_.ToString().toText();
}

}  // namespace bw
