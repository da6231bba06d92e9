// Generation: one check or one run of generation over the open project.
//
//   GenCheck ── unpack the template, load control.xml, start the script
//      │        host, walk the pages in check mode: nothing is written, the
//      │        choices (AGControlItems) are filled and existing targets counted
//      ▼
//   host shows the choices; the user switches items off
//      ▼
//   GenScript ── store the choices, check template, control file and
//               language files, recompose the stale controls into "tpl"
//               files, walk the pages in real mode: each page runs its
//               control's composed function and its output is written
//
// The walk (GeneratePages) is the same code in both modes: every operation
// takes `check` and in check mode only counts and registers. An object of
// this class lives for one GenCheck or GenScript call; what outlives it is
// in AGPVars, the project and the files on disk.
//
// Failures follow the engine's rule: ProjErr holds the reason. A page that
// fails, a cancel and a missing script file raise GenerationError, which
// GenScript turns back into ProjErr for the host.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bw {

class Project;
class ProjectTemplate;
class AGPControl;
class AGPControls;
class AGPDatabase;
class AGPField;
class AGPTable;
class AGControlItem;
class AGControlItems;
namespace schema {
class Connection;
}

class Generation {
 public:
  Generation(Project& project, ProjectTemplate& projectTemplate);

  // The bodies of AGP::GenCheck and AGP::GenScript.
  std::int16_t GenCheck();
  void GenScript();

  // The page walk, in check mode (count existing targets, register
  // choices) or real mode (write the site). The count is only meaningful in
  // check mode.
  std::int16_t GeneratePages(bool check);
  bool ControlAppliesToTable(AGPTable& table, const AGPControl& ctrl);

  // Output names and places.
  std::string OutputFileName(const AGPControl& ctrl, const std::string& baseName,
                             const std::string& parm);
  std::string ComposeOutputName(const std::string& baseName, const std::string& parm,
                                const std::string& core);
  // The folder (under AppRootFolder for "~\" and "~/", else under
  // Destination) joined with the file name; the folder is made unless
  // `noCreate`.
  std::string OutputPath(const std::string& folder, const std::string& fileName, bool noCreate);
  // Where a table's page or a project page of the control goes.
  std::string TablePagePath(AGPTable& table, const AGPControl& ctrl, bool noCreate);
  std::string OtherPagePath(const AGPControl& ctrl, bool noCreate);
  std::string JoinOutputFolder(const std::string& folderId, const std::string& folder);
  // CtrlOFolder of the first "folder" control with this id; "" when none.
  std::string FolderById(const std::string& folderId);
  // <cache folder>\<cs|vb>_<id><tag>_<type>.tpl
  std::string CachedScriptPath(const AGPControl& ctrl);
  // "cs" for a C# project, "vb" otherwise.
  std::string LanguageSuffix();

  // Template staleness: true (and CtrlGen set) when the control's composed
  // function must be made again; stops the run when a source is missing.
  bool IsControlStale(AGPControl& ctrl);
  void LoadControlTemplates(AGPControl& ctrl);

  // Generation choices.
  void BuildControlItems();
  void ApplyGenLists();
  void SaveGenLists();
  void ResetControlItems();
  std::int32_t CountGenerationItems();

  // Gives each table's variables names that do not collide in generated code.
  void MakeVarsUnique(AGPTable& table);

  // Copy operations and the project's own files.
  void PrepareOutputFolders();
  std::int16_t CopyDatabase(bool check);
  std::int16_t CopyControlFiles(bool check);
  bool CopyFileItem(const std::string& id, const std::string& status, const std::string& remark,
                    const std::string& source, const std::string& folder, bool check);
  std::int16_t GenerateProjectConfig(bool check);
  bool WriteProjectConfigXml(const std::string& path);
  bool CreateLanguageFile(const std::string& id, const std::string& status,
                          const std::string& remark, const std::string& source,
                          const std::string& folder, const std::string& fileName, bool check,
                          bool multiLanguage, bool skipSave);

  // Field sizes the generated site's user levels need; may alter the table.
  bool CheckUserLevelFieldSize();
  // Widens the field to 255 characters when it is narrower and the user
  // agrees; false with ProjErr set when the run must stop.
  bool EnsureFieldSize(schema::Connection& cnn, const std::string& sqlName,
                       const std::string& tableName, const std::string& fieldName);

 private:
  using TemplateFileVisitor = std::function<void(const std::string& name, const std::string& path)>;

  // The check's and the driver's phases (generation_check.cpp,
  // generation_driver.cpp).
  bool unpackTemplate();
  bool loadCheckedControls();
  bool prepareRun();
  void startProfiler();
  void takeRelatedProjectVersion();
  bool checkControlFile(bool& changed);
  bool checkTemplateVersion();
  bool loadLanguageFiles();
  bool useDefaultLanguageFile(const std::string& entry, std::string& list);
  void clearStaleCache(bool controlFileChanged);
  void applyLanguageWildcard();
  bool createScriptHost();
  void composeStaleControls(std::int32_t staleSessions);
  void recordComposedFiles();
  void dropRunObjects();
  void openStatus(const std::string& text);
  void openProgress(const std::string& text);
  void forEachTemplateFile(AGPControl& ctrl, const TemplateFileVisitor& visit);

  // The walk (pages.cpp).
  void prepareTables();
  std::int16_t walkTables(bool check);
  std::int16_t GenerateTablePages(AGPTable& table, bool check);
  std::int16_t GenerateFieldPages(AGPField& field, bool check);
  std::int16_t GenerateOtherPages(bool check, std::string_view typeList);
  void GenerateTableFile(AGPTable& table, const std::string& scriptFile, const std::string& path,
                         AGPControl& ctrl);
  void GenerateFieldFile(AGPField& field, const std::string& scriptFile, const std::string& path,
                         AGPControl& ctrl);
  void GenerateOtherFile(const std::string& scriptFile, const std::string& path, AGPControl& ctrl);
  void runComposedFunction(const std::string& scriptFile, const std::string& path,
                           AGPControl& ctrl, std::int16_t initType, std::string_view missingEnd);
  void makeCurrent(AGPTable* table, AGPField* field = nullptr);
  AGControlItem* projectItem(const std::string& id);
  AGControlItem* tableItem(AGPTable& table, const std::string& id);
  void addProjectItem(const std::string& id, const std::string& fileName, const std::string& remark);
  void failPage(const std::string& context);
  // AppRootFolder, or Destination when the project names no site root.
  std::string siteRoot();

  // Copies and the project's own files (copy_operations.cpp, project_config.cpp).
  bool confirmDatabaseFolder(const std::string& folder);
  bool copyControlFileItems(AGPControl& ctrl, bool check, std::int16_t& count);
  void copyControlFolder(AGPControl& ctrl, bool check, std::int16_t& count);
  void copyDevelopmentServer();
  void copyStyleSheet(bool check, std::int64_t startTick);
  void copyLogo(bool check);
  bool createLanguageFiles(bool check);

  Project& project_;
  ProjectTemplate& template_;
  AGPControls& controls_;
  std::unordered_map<std::string, std::string> composedScripts_;  // by "tpl" path, for the run
};

// Tables that take part in generation: TblGen, or system pages named in
// TblSysGenUnits.
bool IsGeneratedTable(AGPTable& table);
// The generated tables of the database, in sequence order.
std::vector<AGPTable*> GeneratedTables(AGPDatabase& db);

// Engine path helpers of generation.
//
// Trims `path`; a non-empty result that does not end in "\" or "/" gets a "\".
std::string EnsureSep(std::string_view path);
// Makes the folder with its parents; no error when it exists.
void MakeFolder(const std::string& path);

// baseName (with "_" parm), core and affix joined by `kind` ("prefix",
// "infix", "suffix"; anything else leaves the affix out), lower case when
// `lower`.
std::string ComposeName(const std::string& baseName, const std::string& parm,
                        const std::string& core, const std::string& kind,
                        const std::string& affix, bool lower);

// The files named by the include marks of a template text, comma-separated,
// with "*" as `languageSuffix`.
std::string FindIncludes(std::string_view text, std::string_view languageSuffix);

// Dates as cache entries compare them: "yyyy/mm/dd hh:nn:ss" of the file's
// last change; "" when it does not exist.
std::string FileDateText(const std::string& path);

}  // namespace bw
