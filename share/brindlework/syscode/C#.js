// System code for C# sites.

var zt_ProgramLanguage = "C#";

// The functions through which templates write language-dependent code.
var SYSTEMFUNCTIONS = {
  // A C# string literal of the text.
  StringLiteral: function (value) {
    var ztOut = "\"" + String(value).replace(/\\/g, "\\\\").replace(/"/g, "\\\"")
      .replace(/\r/g, "\\r").replace(/\n/g, "\\n").replace(/\t/g, "\\t") + "\"";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  BoolLiteral: function (value) {
    var ztOut = zt_IsTrue(value) ? "true" : "false";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Comment: function (value) {
    var ztOut = "// " + String(value).split("\r\n").join("\r\n" + zt_IndentWrk + "// ");
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Concat: function () {
    var parts = [];
    for (var i = 0; i < arguments.length; i++) parts.push(arguments[i]);
    var ztOut = parts.join(" + ");
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  },
  Null: function () {
    var ztOut = "null";
    var fn = arguments.callee; fn.code = ztOut; fn.modify(); ztOut = fn.result;
    return ztOut;
  }
};
