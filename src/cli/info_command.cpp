// brindlework info: what a project file defines, for a quick look (text)
// or for scripts (--json). Tables and fields are listed in their sequence
// order, the order in which generation sees them.
#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/project_options.h"
#include "platform/text.h"

namespace bw::cli {
namespace {

constexpr const char* kUsage = "usage: brindlework info PROJECT [--fields] [--json]\n";

struct FieldInfo {
  std::string name;
  std::int16_t type = 0;
  std::string typeName;
  bool primaryKey = false;
  bool autoIncrement = false;
  bool unique = false;
  bool required = false;
  bool generate = false;
  std::string htmlTag;
  std::string caption;
};

struct TableInfo {
  std::string name;
  std::string type;
  std::vector<std::string> key;  // primary key field names, sorted
  std::int32_t fieldCount = 0;
  std::string error;              // why the table could not be read, if it could not
  std::vector<FieldInfo> fields;  // only when asked for
};

struct ProjectInfo {
  std::string name;
  bool hasDatabase = false;
  std::string dbName;
  std::string dbType;
  std::vector<TableInfo> tables;
};

struct InfoRequest {
  std::string projectFile;
  bool fields = false;
  bool json = false;
};

InfoRequest parseRequest(const Arguments& args) {
  InfoRequest request;
  std::vector<std::string> operands;
  for (const std::string& arg : args) {
    if (arg == "--fields")
      request.fields = true;
    else if (arg == "--json")
      request.json = true;
    else if (text::startsWith(arg, "-") && arg != "-")
      throw BadUsage{"unknown option '" + arg + "'"};
    else
      operands.push_back(arg);
  }
  if (operands.size() != 1) throw BadUsage{"give one project file"};
  request.projectFile = operands[0];
  return request;
}

FieldInfo readField(DefinitionObject& field) {
  return FieldInfo{.name = field.attrText("FldName"),
                   .type = field.attrInteger("FldType"),
                   .typeName = field.attrText("FldTypeName"),
                   .primaryKey = field.attrBool("FldIsPrimaryKey"),
                   .autoIncrement = field.attrBool("FldAutoIncrement"),
                   .unique = field.attrBool("FldUniqueIdx"),
                   .required = field.attrBool("FldReq"),
                   .generate = field.attrBool("FldGenerate"),
                   .htmlTag = field.attrText("FldHtmlTag"),
                   .caption = field.attrText("FldCaption")};
}

// The project's definition, read once, so that both printers share one
// walk of the model.
ProjectInfo readProject(AGP& project, bool withFields) {
  ProjectInfo info;
  info.name = project.ProjName();
  Ref<AGPDatabase> db = project.DB();
  if (!db) return info;
  info.hasDatabase = true;
  info.dbName = db->DBName();
  info.dbType = db->attrText("DBType");
  for (DefinitionObject* item : db->Tables()->bySequence()) {
    auto& table = static_cast<AGPTable&>(*item);
    TableInfo t;
    t.name = table.TblName();
    t.type = table.attrText("TblType");
    // TblKey holds the sorted key names one per line.
    for (const std::string& line : text::split(table.attrText("TblKey"), "\r\n"))
      if (!line.empty()) t.key.push_back(line);
    t.fieldCount = table.Fields()->Count();
    t.error = table.attrText("TblError");
    if (withFields)
      for (DefinitionObject* field : table.Fields()->bySequence())
        t.fields.push_back(readField(*field));
    info.tables.push_back(std::move(t));
  }
  return info;
}

// One letter per flag in a fixed place, "-" when unset, so that the flags
// of a table's fields line up: "KA--G" is a generated, auto-incremented
// primary key that is not required.
std::string flagLetters(const FieldInfo& f) {
  return {f.primaryKey ? 'K' : '-', f.autoIncrement ? 'A' : '-', f.unique ? 'U' : '-',
          f.required ? 'R' : '-', f.generate ? 'G' : '-'};
}

std::string typeText(const FieldInfo& f) {
  std::string type = std::to_string(f.type);
  if (!f.typeName.empty()) type += " " + f.typeName;
  return type;
}

// `s` padded with blanks to `width` characters (not bytes: names may be
// in any script).
std::string padded(const std::string& s, std::size_t width) {
  const std::size_t chars = text::countChars(s);
  return chars >= width ? s : s + std::string(width - chars, ' ');
}

void printFields(std::ostream& out, const std::vector<FieldInfo>& fields) {
  std::size_t nameWidth = 0, typeWidth = 0, tagWidth = 0;
  for (const FieldInfo& f : fields) {
    nameWidth = std::max(nameWidth, text::countChars(f.name));
    typeWidth = std::max(typeWidth, text::countChars(typeText(f)));
    tagWidth = std::max(tagWidth, text::countChars(f.htmlTag));
  }
  for (const FieldInfo& f : fields) {
    std::string line = "  " + padded(f.name, nameWidth) + "  " + padded(typeText(f), typeWidth) +
                       "  " + flagLetters(f);
    if (tagWidth > 0) line += "  " + padded(f.htmlTag, tagWidth);
    if (!f.caption.empty()) line += "  " + f.caption;
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
  }
}

void printText(std::ostream& out, const ProjectInfo& info, bool withFields) {
  out << "Project:  " << info.name << '\n';
  if (!info.hasDatabase) {
    out << "Database: none\n";
    return;
  }
  out << "Database: " << info.dbName << " (" << info.dbType << "), " << info.tables.size()
      << (info.tables.size() == 1 ? " table" : " tables") << '\n';
  if (withFields)
    out << "Flags:    K primary key, A auto-increment, U unique, R required, G generated; then the "
           "HTML tag\n";
  for (const TableInfo& t : info.tables) {
    out << '\n'
        << t.name << " (" << t.type
        << "), key: " << (t.key.empty() ? "none" : text::join(t.key, ", ")) << ", " << t.fieldCount
        << (t.fieldCount == 1 ? " field" : " fields") << '\n';
    if (!t.error.empty()) out << "  not read: " << t.error << '\n';
    if (withFields) printFields(out, t.fields);
  }
}

void printJson(std::ostream& out, const ProjectInfo& info, bool withFields) {
  JsonWriter json(out);
  json.beginObject();
  json.key("project").string(info.name);
  if (info.hasDatabase) {
    json.key("database").beginObject();
    json.key("name").string(info.dbName);
    json.key("type").string(info.dbType);
    json.endObject();
  } else {
    json.key("database").null();
  }
  json.key("tables").beginArray();
  for (const TableInfo& t : info.tables) {
    json.beginObject();
    json.key("name").string(t.name);
    json.key("type").string(t.type);
    json.key("key").beginArray();
    for (const std::string& k : t.key) json.string(k);
    json.endArray();
    json.key("fieldCount").number(t.fieldCount);
    if (!t.error.empty()) json.key("error").string(t.error);
    if (withFields) {
      json.key("fields").beginArray();
      for (const FieldInfo& f : t.fields) {
        json.beginObject();
        json.key("name").string(f.name);
        json.key("type").number(f.type);
        json.key("typeName").string(f.typeName);
        json.key("primaryKey").boolean(f.primaryKey);
        json.key("autoIncrement").boolean(f.autoIncrement);
        json.key("unique").boolean(f.unique);
        json.key("required").boolean(f.required);
        json.key("generate").boolean(f.generate);
        json.key("htmlTag").string(f.htmlTag);
        json.key("caption").string(f.caption);
        json.endObject();
      }
      json.endArray();
    }
    json.endObject();
  }
  json.endArray();
  json.endObject();
}

}  // namespace

int infoCommand(const Arguments& args) {
  const std::optional<InfoRequest> parsed =
      parseRequestOrExplain("info", kUsage, parseRequest, args);
  if (!parsed) return 2;
  const InfoRequest& request = *parsed;
  Ref<AGP> project = openProject(request.projectFile);
  if (!project) return 1;
  const ProjectInfo info = readProject(*project, request.fields);
  if (request.json)
    printJson(std::cout, info, request.fields);
  else
    printText(std::cout, info, request.fields);
  return 0;
}

}  // namespace bw::cli
