// System code for VB.NET sites.

var zt_ProgramLanguage = "VB";

// The functions through which templates write language-dependent code.
var SYSTEMFUNCTIONS = {
  // A VB.NET string literal of the text; line ends become vbCrLf pieces.
  StringLiteral: function (value) {
    var lines = String(value).replace(/"/g, "\"\"").split("\r\n");
    var ztOut = "\"" + lines.join("\" & vbCrLf & \"") + "\"";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  BoolLiteral: function (value) {
    var ztOut = zt_IsTrue(value) ? "True" : "False";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Comment: function (value) {
    var ztOut = "' " + String(value).split("\r\n").join("\r\n" + zt_IndentWrk + "' ");
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Concat: function () {
    var parts = [];
    for (var i = 0; i < arguments.length; i++) parts.push(arguments[i]);
    var ztOut = parts.join(" & ");
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Null: function () {
    var ztOut = "Nothing";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  }
};
