// The prelude ends the system code: it lets user code change the output of
// a system function without replacing it. Each member function f of
// SYSTEMFUNCTIONS gets `code` and `result`, a list of modifiers, `replace`
// and `concat` to add to that list, and `modify`, which applies the list to
// what a call built:
//
//   SYSTEMFUNCTIONS.Comment.replace(/TODO/g, "NOTE");
//
// Modifiers live as long as the engine.
(function () {
  var _toString = function () { return "function() {\n [native code]\n}"; };
  function setupFunction(f) {
    f.toString = _toString;
    f.code = "";
    f.result = "";
    f.modifiers = [];
    f.replace = function (re, txt) {
      f.modifiers.push(function () { this.result = this.result.replace(re, txt); });
    };
    f.concat = function () {
      var parts = arguments;
      f.modifiers.push(function () {
        for (var i = 0; i < parts.length; i++) this.result += parts[i];
      });
    };
    f.modify = function () {
      f.result = f.code;
      for (var i = 0; i < f.modifiers.length; i++) f.modifiers[i].call(f);
    };
    f.replace.toString = _toString;
    f.concat.toString = _toString;
    f.modify.toString = _toString;
  }
  for (var name in SYSTEMFUNCTIONS) {
    if (typeof SYSTEMFUNCTIONS[name] == "function") setupFunction(SYSTEMFUNCTIONS[name]);
  }
})();
