#include "template/activex.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/automation_expect.h"
#include "support/engine_test.h"

namespace bw {
namespace {

using Values = std::vector<Variant>;
using Strings = std::vector<std::string>;

// Everything here goes through member names, as the script engine calls.
class ActiveXTest : public testing::EngineTest {
 protected:
  static Ref<Dispatch> call(const Ref<Dispatch>& object, std::string_view name, Values args = {}) {
    return Ref<Dispatch>(object->get(name, args).object());
  }
  Ref<Dispatch> fso = CreateActiveXObject("Scripting.FileSystemObject");
};

TEST(ActiveX, ProgIdsMatchWithoutRegardToCaseAndOthersGiveNull) {
  EXPECT_EQ(CreateActiveXObject("scripting.filesystemobject")->typeName(), "FileSystemObject");
  EXPECT_EQ(CreateActiveXObject("SCRIPTING.DICTIONARY")->typeName(), "Dictionary");
  EXPECT_FALSE(CreateActiveXObject("Example.Unknown"));
}

TEST_F(ActiveXTest, AScriptWritesAndReadsATextFile) {
  const std::string name = tempPath("out") + "\\page.txt";
  fso->get("CreateFolder", Values{tempPath("out")});
  Ref<Dispatch> out = call(fso, "createtextfile", {name});
  out->get("WriteLine", Values{"first"});
  out->get("Write", Values{42});
  out->get("Close");
  Ref<Dispatch> in = call(fso, "OpenTextFile", {name, 1, false, 0});
  Strings lines;
  while (!in->get("AtEndOfStream").boolean()) lines.push_back(in->get("ReadLine").toText());
  EXPECT_EQ(lines, (Strings{"first", "42"}));
  Ref<Dispatch> files = call(call(fso, "GetFolder", {tempPath("out")}), "Files");
  const std::string item = files->members().defaultMember()->name;
  EXPECT_EQ(call(files, item, {"page.txt"})->get("Size").lng(), 9);
  testing::expectError(53, [&] { fso->get("GetFile", Values{tempPath("none")}); });
}

// Scripts read values without parentheses (`if (f.Size)`, `while (!ts.AtEndOfStream)`); as
// functions they would always be true.
TEST_F(ActiveXTest, ValuesAreDeclaredAsPropertiesAndActionsAsMethods) {
  writeTempFile("d/f.txt", "x");
  Ref<Dispatch> folder = call(fso, "GetFolder", {tempPath("d")});
  Ref<Dispatch> file = call(fso, "GetFile", {tempPath("d/f.txt")});
  struct Expectation {
    Ref<Dispatch> object;
    Strings values, callables;
  };
  const Expectation expectations[] = {
      {file,
       {"Name", "Path", "Size", "Type", "DateLastModified", "DateCreated", "ParentFolder"},
       {"Delete", "Copy", "Move", "OpenAsTextStream"}},
      {folder,
       {"Name", "Path", "Size", "Files", "SubFolders", "ParentFolder", "IsRootFolder"},
       {"Delete", "Copy", "Move", "CreateTextFile"}},
      {call(folder, "Files"), {"Count"}, {"Item"}},
      {call(file, "OpenAsTextStream"),
       {"AtEndOfStream", "AtEndOfLine", "Line", "Column"},
       {"ReadLine", "ReadAll", "Read", "Skip", "SkipLine", "Write", "WriteLine", "Close"}},
      {CreateActiveXObject("Scripting.Dictionary"),
       {"Count", "CompareMode"},
       {"Item", "Key", "Add", "Exists", "Keys", "Items", "Remove", "RemoveAll"}},
      {fso, {}, {"FileExists", "GetTempName", "BuildPath", "GetBaseName"}},
  };
  for (const Expectation& e : expectations) {
    for (const std::string& name : e.values)
      EXPECT_FALSE(e.object->member(name).isCallable()) << e.object->typeName() << "." << name;
    for (const std::string& name : e.callables)
      EXPECT_TRUE(e.object->member(name).isCallable()) << e.object->typeName() << "." << name;
  }
  EXPECT_EQ(file->members().defaultMember()->name, "Path");
}

}  // namespace
}  // namespace bw
