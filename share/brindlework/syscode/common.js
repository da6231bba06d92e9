// System code shared by both target languages. It stands in the script
// engine ahead of every composed function: the output buffer, the current
// table and field, phrases, profiling, and small text helpers.

// Collects output in pieces and joins them once.
function StringBuilder() {
  this.parts = [];
}
StringBuilder.prototype.Append = function (value) {
  if (value !== undefined && value !== null) this.parts.push(String(value));
  return this;
};
StringBuilder.prototype.ToString = function () {
  return this.parts.join("");
};
StringBuilder.prototype.Clear = function () {
  this.parts = [];
};

// Indentation of the second and further lines of an indented output block.
var zt_IndentWrk = "";

// The table and field that the current page is generated for.
var TABLE = null;
var FIELD = null;

// Locale settings of the project that templates format with.
var zt_DateFormat = 0;
var zt_DateSeparator = "/";

function zt_SetLocale() {
  zt_DateFormat = Number(PROJ.defaultDateFormat) || 0;
  zt_DateSeparator = String(PROJ.DateSeparator || "/");
}

// Reads the cursors of the database definition: the table and field that
// the engine made current are the ones a page is generated for.
function zt_LoadCurrent() {
  TABLE = null;
  FIELD = null;
  if (typeof DB == "undefined" || DB == null) return;
  var tables = DB.Tables;
  if (String(tables.curName) == "") return;
  TABLE = tables.Item(tables.curName);
  var fields = TABLE.Fields;
  if (String(fields.curName) != "") FIELD = fields.Item(fields.curName);
}

// Phrases are resolved by the generated application at run time: a phrase
// call writes the expression that looks the phrase up. The id stands in a
// string literal of the site's language (zt_ProgramLanguage comes from the
// language's own part of the system code).
var Language = {
  Phrase: function (id) {
    var text = String(id);
    var literal = zt_ProgramLanguage == "VB"
      ? text.replace(/"/g, "\"\"")
      : text.replace(/\\/g, "\\\\").replace(/"/g, "\\\"");
    return "@Html.Raw(Language.Phrase(\"" + literal + "\"))";
  }
};

// Profiling of composed functions: the time each one took.
var zt_ProfilerStarts = {};
function StartProfiler(id) {
  zt_ProfilerStarts[id] = new Date().getTime();
}
function StopProfiler(id) {
  var started = zt_ProfilerStarts[id];
  var elapsed = started === undefined ? 0 : new Date().getTime() - started;
  return id + ": " + elapsed + " ms\r\n";
}

// Text helpers.
function zt_HtmlEncode(value) {
  return String(value).replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;")
    .replace(/"/g, "&quot;");
}

// Indents every line after the first with `indent`.
function zt_IndentLines(value, indent) {
  return String(value).split("\r\n").join("\r\n" + indent);
}

function zt_Trim(value) {
  return String(value).replace(/^\s+|\s+$/g, "");
}

// Values of attributes come as text, numbers or Booleans; templates test
// them with this.
function zt_IsTrue(value) {
  if (typeof value == "boolean") return value;
  var s = String(value).toLowerCase();
  return s == "true" || s == "1" || s == "-1" || s == "yes";
}
