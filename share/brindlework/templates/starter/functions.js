// Script functions of the Starter template package. They run at
// generation time: they decide which fields a page shows and write the
// bits of C# or VB.NET that differ per field.

function IsVb() {
  return String(PROJ.ProgramLanguage) == "VB";
}

// A string literal of the site's language.
function Lit(value) {
  return SYSTEMFUNCTIONS.StringLiteral(value == null ? "" : String(value));
}

// A list of literals, for an array initializer.
function LitList(values) {
  var out = [];
  for (var i = 0; i < values.length; i++) out.push(Lit(values[i]));
  return out.join(", ");
}

// The array expression of a list of literals in the site's language.
function LitArray(values) {
  return IsVb() ? "New String() {" + LitList(values) + "}" : "new string[] { " + LitList(values) + " }";
}

function PageExt() {
  return IsVb() ? "vbhtml" : "cshtml";
}

// The file name that the engine gives a table's page of control `ctrlId`.
function PageName(table, ctrlId) {
  var kind = String(PROJ.OutputNameType).toLowerCase();
  var affix = String(PROJ.OutputNameExt);
  var base = String(table.TblVar);
  var name;
  if (kind == "prefix") name = affix + base + ctrlId;
  else if (kind == "infix") name = base + affix + ctrlId;
  else if (kind == "suffix") name = base + ctrlId + affix;
  else name = base + ctrlId;
  name += "." + PageExt();
  return zt_IsTrue(PROJ.OutputNameLCase) ? name.toLowerCase() : name;
}

// Whether the site has the page of control `ctrlId` for the table: the
// conditions of control.xml, and a key for pages that find one record.
function HasPage(table, ctrlId) {
  if (table == null || !zt_IsTrue(table.TblGen)) return false;
  switch (ctrlId) {
    case "list": return zt_IsTrue(table.TblList);
    case "add": return zt_IsTrue(table.TblAdd) && IsUpdatable(table);
    case "view": return zt_IsTrue(table.TblView) && KeyFields(table).length > 0;
    case "edit": return zt_IsTrue(table.TblEdit) && IsUpdatable(table) && KeyFields(table).length > 0;
    case "delete": return zt_IsTrue(table.TblDelete) && IsUpdatable(table) && KeyFields(table).length > 0;
  }
  return false;
}

function IsUpdatable(table) {
  return String(table.TblType) == "TABLE" && zt_IsTrue(table.TblUpdatable);
}

function FindTable(name) {
  for (var e = new Enumerator(DB.Tables); !e.atEnd(); e.moveNext())
    if (String(e.item().TblName) == String(name)) return e.item();
  return null;
}

function FindField(table, name) {
  for (var e = new Enumerator(table.Fields); !e.atEnd(); e.moveNext())
    if (String(e.item().FldName) == String(name)) return e.item();
  return null;
}

// Binary data has no place on these pages.
function IsBinary(field) {
  var type = Number(field.FldType);
  return type == 128 || type == 204 || type == 205;
}

// The generated fields of a table that have `flag` set, in field order.
function Fields(table, flag) {
  var out = [];
  for (var e = new Enumerator(table.Fields); !e.atEnd(); e.moveNext()) {
    var f = e.item();
    if (zt_IsTrue(f.FldGenerate) && !IsBinary(f) && (flag == "" || zt_IsTrue(f[flag]))) out.push(f);
  }
  return out;
}

function KeyFields(table) {
  var out = [];
  for (var e = new Enumerator(table.Fields); !e.atEnd(); e.moveNext())
    if (zt_IsTrue(e.item().FldIsPrimaryKey)) out.push(e.item());
  return out;
}

function Names(fields) {
  var out = [];
  for (var i = 0; i < fields.length; i++) out.push(String(fields[i].FldName));
  return out;
}

// How the site converts and shows a field's values.
function ValueKind(field) {
  switch (Number(field.FldType)) {
    case 2: case 3: case 16: case 17: case 18: case 19: case 20: case 21:
      return "int";
    case 4: case 5: case 6: case 14: case 131: case 139:
      return "num";
    case 11:
      return "bool";
    case 7: case 133:
      return "date";
    case 134:
      return "time";
    case 135:
      return "datetime";
  }
  return "text";
}

// The input of a field on the add and edit pages: what FldHtmlTag asks
// for, with sensible choices where it is empty.
function InputKind(field) {
  var tag = String(field.FldHtmlTag).toUpperCase();
  if (tag == "" || tag == "TEXT") {
    if (ValueKind(field) == "bool") return "CHECKBOX";
    if (Number(field.FldType) == 201 || Number(field.FldType) == 203) return "TEXTAREA";
    return HasOptions(field) ? "SELECT" : "TEXT";
  }
  return tag;
}

function HasLookup(field) {
  return String(field.FldTagLnkTbl) != "" && String(field.FldTagLnkFld) != "";
}

function HasOptions(field) {
  return HasLookup(field) || String(field.FldTagValues) != "";
}

// The site-side variable that holds a field's option list.
function OptionsVar(field) {
  return "options_" + String(field.FldParm);
}

// "value","caption" lines of FldTagValues as [value, caption] pairs; a line
// that does not quote its value is left out.
function TagValuePairs(field) {
  var pairs = [];
  var lines = String(field.FldTagValues).split(/\r?\n/);
  for (var i = 0; i < lines.length; i++) {
    var items = QuotedItems(lines[i]);
    if (items.length > 0) pairs.push([items[0], items.length > 1 ? items[1] : items[0]]);
  }
  return pairs;
}

// The items of a comma-separated list of double-quoted texts, a doubled
// quote standing for one; [] when the text is not such a list.
function QuotedItems(text) {
  var items = [];
  var re = /^"((?:[^"]|"")*)"\s*(,\s*|$)/;
  var rest = zt_Trim(text);
  while (rest != "") {
    var m = re.exec(rest);
    if (m == null) return [];
    items.push(m[1].replace(/""/g, "\""));
    rest = rest.substr(m[0].length);
  }
  return items;
}

// The expression that builds a field's option list in the site.
function OptionsExpr(field) {
  if (HasLookup(field)) {
    var display = String(field.FldTagLnkDisplay) || String(field.FldTagLnkFld);
    var order = String(field.FldTagLnkOrderBy) || display;
    var sql = "SELECT " + QuoteName(field.FldTagLnkFld) + ", " + QuoteName(display) + " FROM " +
      QuoteName(field.FldTagLnkTbl) + " ORDER BY " + QuoteName(order);
    return "Db.Options(" + Lit(sql) + ")";
  }
  var flat = [];
  var pairs = TagValuePairs(field);
  for (var i = 0; i < pairs.length; i++) flat.push(pairs[i][0], pairs[i][1]);
  return "Site.Options(" + LitArray(flat) + ")";
}

// A name quoted for the project's database.
function QuoteName(name) {
  return String(DB.DBQuoteS) + String(name) + String(DB.DBQuoteE);
}

// Ids of the project section of the language files.
function TableId(table) {
  return String(table.TblVar).toLowerCase();
}
function FieldId(field) {
  return String(field.FldParm).toLowerCase();
}

// Captions come from the site's language file, with the project's own
// caption for a file that lacks the phrase.
function TableCaptionExpr(table) {
  return "Language.TablePhrase(" + Lit(TableId(table)) + ", \"tblcaption\", " + Lit(table.TblCaption) + ")";
}
function FieldCaptionExpr(table, field) {
  return "Language.FieldPhrase(" + Lit(TableId(table)) + ", " + Lit(FieldId(field)) +
    ", \"fldcaption\", " + Lit(field.FldCaption) + ")";
}

function RecPerPage(table) {
  var n = Number(table.TblRecPerPage);
  if (!(n > 0)) n = Number(PROJ.RecPerPage);
  return n > 0 ? n : 20;
}

// The master/detail definitions in which the table is the master, and
// those in which it is the detail, as {master, detail, pairs} with
// pairs [masterField, detailField].
function Relations(table, asMaster) {
  var out = [];
  for (var k = 1; k <= MASTERDETAILS.Count(); k++) {
    var md = MASTERDETAILS.Seq(k);
    if (md == null) continue;
    var mine = String(asMaster ? md.MasterTable : md.DetailTable) == String(table.TblName);
    var master = FindTable(md.MasterTable), detail = FindTable(md.DetailTable);
    if (!mine || master == null || detail == null) continue;
    var pairs = [];
    for (var i = 1; i <= Number(md.FieldCount); i++) pairs.push([String(md.MasterField(i)), String(md.DetailField(i))]);
    out.push({ master: master, detail: detail, pairs: pairs });
  }
  return out;
}

// The code of the custom script at the place `name` of the current page,
// or "". Table places belong to the current table.
function CustomScript(codeType, name, ctrlId) {
  var l1 = codeType == "Table" && TABLE != null ? String(TABLE.TblName) : "";
  var language = String(PROJ.ProgramLanguage);
  if (!CUSTOMSCRIPTS.ScriptExist("template", codeType, name, language, ctrlId, l1, "")) return "";
  return String(CUSTOMSCRIPTS.ScriptItem("template", codeType, name, language, ctrlId, l1, "").ScriptCode);
}

// The database access of the site, by the DBMS of the project.
function DbmsKind() {
  var name = String(DB.DBDBMSName);
  if (/sqlite/i.test(name) || String(DB.DBType).toUpperCase() == "SQLITE") return "sqlite";
  if (/microsoft/i.test(name) && /sql/i.test(name)) return "sqlserver";
  return "odbc";
}

// The connection string of the generated site. A SQLite or Access file is
// copied into the site's data folder, so the site names it there.
function ConnectionString() {
  if (String(DB.DBDotNetConnectionString) != "") return String(DB.DBDotNetConnectionString);
  if (DbmsKind() == "sqlite") {
    var path = String(DB.DBPhyPath).replace(/\\/g, "/");
    return "Data Source=|DataDirectory|" + path.substr(path.lastIndexOf("/") + 1);
  }
  return String(DB.DBConnstr);
}

// The tables that the menu lists.
function MenuTables() {
  var out = [];
  for (var e = new Enumerator(DB.Tables); !e.atEnd(); e.moveNext())
    if (HasPage(e.item(), "list")) out.push(e.item());
  return out;
}

// The language files of the site: the default file first.
function LanguageFiles() {
  var out = [String(PROJ.DefaultLanguageFile)];
  if (zt_IsTrue(PROJ.MultiLanguage)) {
    var names = String(PROJ.LanguageFiles).split(",");
    for (var i = 0; i < names.length; i++) {
      var name = zt_Trim(names[i]);
      if (name != "" && name.toLowerCase() != out[0].toLowerCase()) out.push(name);
    }
  }
  return out;
}

// The site folder of the language files: the `_language` folder control.
function LanguageFolderPath() {
  return "lang/";
}

// The fields of an add or edit form: those with `flag` that take input.
// Key fields are not edited, since the key finds the record.
function FormFields(table, flag) {
  var out = [];
  var fields = Fields(table, flag);
  for (var i = 0; i < fields.length; i++) {
    var f = fields[i];
    if (InputKind(f) == "NO") continue;
    if (flag == "FldEdit" && zt_IsTrue(f.FldIsPrimaryKey)) continue;
    out.push(f);
  }
  return out;
}

// The text fields that the basic search looks through.
function SearchableNames(fields) {
  var out = [];
  for (var i = 0; i < fields.length; i++) {
    var f = fields[i];
    if (ValueKind(f) == "text" && (zt_IsTrue(f.FldBasicSearch) || zt_IsTrue(f.FldSearch))) out.push(String(f.FldName));
  }
  return out;
}

// A column of the record `row` of a page, and a query string value.
function RowValue(name) {
  return IsVb() ? "row(" + Lit(name) + ")" : "row[" + Lit(name) + "]";
}
function QueryValue(name) {
  return IsVb() ? "Request.QueryString(" + Lit(name) + ")" : "Request.QueryString[" + Lit(name) + "]";
}

// Arguments of Site.Url that find the record `row` by its key.
function KeyQueryArgs(keys) {
  var args = [];
  for (var k = 0; k < keys.length; k++) args.push(Lit(keys[k].FldName), RowValue(keys[k].FldName));
  return args.join(", ");
}

// Arguments of Site.Url for the detail list of the master record `row`.
function DetailQueryArgs(rel) {
  var args = ["\"showmaster\"", Lit(rel.master.TblName)];
  for (var p = 0; p < rel.pairs.length; p++) args.push(Lit("fk_" + rel.pairs[p][0]), RowValue(rel.pairs[p][0]));
  return args.join(", ");
}

// The URL of a detail list's master record: its view page when the
// relation holds the master's whole key, else the master's list page.
function MasterUrlExpr(rel) {
  var keys = KeyFields(rel.master), args = [];
  for (var k = 0; k < keys.length; k++) {
    for (var p = 0; p < rel.pairs.length; p++)
      if (rel.pairs[p][0] == String(keys[k].FldName)) args.push(Lit(keys[k].FldName), QueryValue("fk_" + rel.pairs[p][0]));
  }
  if (HasPage(rel.master, "view") && args.length == 2 * keys.length)
    return "Site.Url(" + Lit(PageName(rel.master, "view")) + ", " + args.join(", ") + ")";
  if (HasPage(rel.master, "list")) return Lit(PageName(rel.master, "list"));
  return SYSTEMFUNCTIONS.Null();
}

// How a page shows the value of a field of the record `row`: the caption of
// its option, or the value formatted by its kind.
function ShowValue(field) {
  var kind = Lit(ValueKind(field));
  return HasOptions(field)
    ? "@Site.Caption(" + OptionsVar(field) + ", " + RowValue(field.FldName) + ", " + kind + ")"
    : "@Site.Show(" + RowValue(field.FldName) + ", " + kind + ")";
}

// Markup repeated for each `item` of `collection`, an expression of the
// site's language.
function ForEachLoop(item, collection, markup) {
  return IsVb()
    ? "@For Each " + item + " In " + collection + "\r\n    @" + markup + "\r\nNext"
    : "@foreach (var " + item + " in " + collection + ")\r\n{\r\n" + markup + "\r\n}";
}

// Markup repeated for each option `opt` of a field's option list.
function OptionLoop(field, markup) {
  return ForEachLoop("opt", OptionsVar(field), markup);
}

// The code block that opens a page: its layout and its title.
function PageStart(titleExpr) {
  var layout = Lit("~/_layout." + PageExt());
  return IsVb()
    ? "@Code\r\n    Layout = " + layout + "\r\n    Page.Title = " + titleExpr + "\r\nEnd Code"
    : "@{\r\n    Layout = " + layout + ";\r\n    Page.Title = " + titleExpr + ";\r\n}";
}

// The site's title, from the language file or the project.
function BodyTitleExpr() {
  return "Language.ProjectPhrase(\"bodytitle\", " + Lit(PROJ.BodyTitle || PROJ.ProjName) + ")";
}

// Code lines of the site's language, indented for the page's code block.
function CodeLines(lines, indent) {
  var out = [];
  for (var i = 0; i < lines.length; i++) out.push(indent + lines[i] + (IsVb() ? "" : ";"));
  return out.join("\r\n");
}

// Statements that read the record of the key in the query string into `row`.
function FindRecordCode(table) {
  var names = LitArray(Names(KeyFields(table))), find = "Db.Find(" + Lit(table.TblName) + ", keyNames, key)";
  return CodeLines(IsVb()
    ? ["Dim keyNames = " + names, "Dim key = Site.Key(Request, keyNames)",
       "Dim row As Row = If(key Is Nothing, Nothing, " + find + ")"]
    : ["var keyNames = " + names, "var key = Site.Key(Request, keyNames)",
       "var row = key == null ? null : " + find], "    ");
}

// Statements that build the option lists of the fields that have one.
function OptionListsCode(fields) {
  var lines = [];
  for (var i = 0; i < fields.length; i++)
    if (HasOptions(fields[i])) lines.push((IsVb() ? "Dim " : "var ") + OptionsVar(fields[i]) + " = " + OptionsExpr(fields[i]));
  return CodeLines(lines, "    ");
}

// Statements that read the posted form's fields into `form`.
function TakeFormCode(table, fields) {
  var lines = [];
  for (var i = 0; i < fields.length; i++) {
    var f = fields[i];
    lines.push("form.Take(Request, " + Lit(f.FldName) + ", " + Lit(ValueKind(f)) + ", " +
      SYSTEMFUNCTIONS.BoolLiteral(f.FldRequired) + ", " + FieldCaptionExpr(table, f) + ")");
  }
  return CodeLines(lines, "        ");
}

// The page a form goes back to when it is done: the table's list page, or
// the home page when the table has none.
function ReturnPage(table) {
  return Lit(HasPage(table, "list") ? PageName(table, "list") : "default." + PageExt());
}
