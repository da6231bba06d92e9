// A synthetic template for benchmarks: the lines real templates hold (HTML,
// output blocks inside attributes and cells, code blocks on their own
// lines, indented output and phrase blocks, non-ASCII text, CR LF line
// ends), picked from a fixed seed so that runs compare.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace bench {

inline const std::vector<std::string> kLines = {
    "<!--## for (var i = 0; i < TABLE.Fields.Count(); i++) { ##-->",
    "<!--## var fld = TABLE.Fields.Seq(i); if (!fld.FldList) continue; ##-->",
    "<tr id=\"r_<!--##=fld.FldParm##-->\" class=\"<!--##=rowClass##-->\">",
    "    <td class=\"caption\"><!--##@FieldCaption##--></td>",
    "    <!--##~SYSTEMFUNCTIONS.FieldView(fld)##-->",
    "\t\t<!--##~SYSTEMFUNCTIONS.FieldEdit(fld, \"x_\" + fld.FldParm)##-->",
    "    <td title=\"<!--##$fld.FldTitlePhrase##-->\">Größe: <!--##= fld.FldSize ##--></td>",
    "</tr>",
    "<!--## } ##-->",
    "<div class=\"form-group\"><label for=\"x_name\">Straße / Café / 名前</label></div>",
    "<script>var f = document.forms[0]; f.action = \"list.cshtml\"; f.submit();</script>",
    "@{ var db = Database.Open(\"<!--##=DB.DBVar##-->\"); var rows = db.Query(sql); }",
    "<p>Plain text line with <b>markup</b> &amp; entities, and nothing to parse in it.</p>",
    "<!--## if (TABLE.TblType == \"VIEW\") { ##--><em>read only</em><!--## } ##-->",
};

inline std::string makeTemplate(std::size_t bytes) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<std::size_t> pick(0, kLines.size() - 1);
  std::string text;
  text.reserve(bytes + 256);
  while (text.size() < bytes) {
    text += kLines[pick(random)];
    text += "\r\n";
  }
  return text;
}

}  // namespace bench
