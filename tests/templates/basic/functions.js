// Script functions of the basic test template, added to the script host
// before any page runs.

function IsVb() {
  return String(PROJ.ProgramLanguage) == "VB";
}

// The control being generated: the generation walk fetches each control
// from CONTROLS before it runs the control's function.
function CurrentControl() {
  var index = CONTROLS.curIndex;
  return index > 0 ? CONTROLS.Item(index) : null;
}

// False when the host chose to generate the page without header and footer.
function ShowHeaderFooter() {
  var ctrl = CurrentControl();
  return ctrl == null || !ctrl.CtrlSkipHeaderFooter;
}

// The names of a table's fields in schema order, as a quoted list.
function FieldNames(table) {
  var names = [];
  for (var e = new Enumerator(table.Fields); !e.atEnd(); e.moveNext())
    names.push("\"" + e.item().FldName + "\"");
  return names.join(", ");
}

function LineComment(text) {
  return (IsVb() ? "' " : "// ") + text;
}

// The fixed session types compose to bare names (a call without arguments
// in the other script language), so in JScript they are getters.
Object.defineProperty(this, "Control_Start", {
  get: function () { return LineComment("Project " + PROJ.ProjName); }
});
Object.defineProperty(this, "Class_Start", {
  get: function () {
    var ctrl = CurrentControl();
    var name = TABLE.TblVar + (ctrl == null ? "" : "_" + ctrl.CtrlID);
    return IsVb() ? "Partial Public Class " + name : "public partial class " + name + " {";
  }
});
Object.defineProperty(this, "Class_End", {
  get: function () { return IsVb() ? "End Class" : "}"; }
});

function Register(name, page, folder) {
  return LineComment("page " + name + ": " + folder + "/" + page);
}
