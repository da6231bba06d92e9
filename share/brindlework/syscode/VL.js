// Validation modules: every global function here runs before generation,
// in this order, and passes by returning true. A module that fails says why
// in PROJ.ProjErr. Helper functions would run as modules too, so there are
// none: each module stands alone.

function zt_ValidateProjectName() {
  if (String(PROJ.ProjName) == "") {
    PROJ.ProjErr = "Brindlework: The project has no name.";
    return false;
  }
  PROJ.AddTrace("Project name: " + PROJ.ProjName);
  return true;
}

function zt_ValidateDatabaseLoaded() {
  if (typeof DB == "undefined" || DB == null) {
    PROJ.ProjErr = "Brindlework: No database is loaded in the project.";
    return false;
  }
  PROJ.AddTrace("Database: " + DB.DBName);
  return true;
}

// Generated code names a class or variable after each table; two tables
// whose variable names differ only in case would collide in VB.NET.
function zt_ValidateTableVarsUnique() {
  if (typeof DB == "undefined" || DB == null) return true;
  var seen = {};
  for (var e = new Enumerator(DB.Tables); !e.atEnd(); e.moveNext()) {
    var table = e.item();
    var key = String(table.TblVar).toLowerCase();
    if (seen.hasOwnProperty(key)) {
      PROJ.ProjErr = "Brindlework: Tables '" + seen[key] + "' and '" + table.TblName +
        "' have the same variable name '" + table.TblVar + "'.";
      return false;
    }
    seen[key] = String(table.TblName);
  }
  return true;
}

function zt_ValidateFieldVarsUnique() {
  if (typeof DB == "undefined" || DB == null) return true;
  for (var t = new Enumerator(DB.Tables); !t.atEnd(); t.moveNext()) {
    var table = t.item();
    var seen = {};
    for (var f = new Enumerator(table.Fields); !f.atEnd(); f.moveNext()) {
      var field = f.item();
      var key = String(field.FldVar).toLowerCase();
      if (seen.hasOwnProperty(key)) {
        PROJ.ProjErr = "Brindlework: Fields '" + seen[key] + "' and '" + field.FldName +
          "' of table '" + table.TblName + "' have the same variable name '" + field.FldVar + "'.";
        return false;
      }
      seen[key] = String(field.FldName);
    }
  }
  return true;
}
