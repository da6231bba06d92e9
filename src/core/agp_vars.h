// AGPVars: the engine's shared session state.
//
// One struct holds everything that objects without a reference to the AGP
// object need: the last error text, the dirty flag, product identity, copies
// of a few project attributes, folders, settings paths, and the shared
// singletons, each created on first use by its accessor (Registry(),
// Keywords(), ...). There is one process-wide instance; tests replace it with
// a fresh one through ResetAGPVars(). Nothing else in the engine is global.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/ref.h"
#include "core/variant.h"

namespace bw {

class DefinitionListener;
class Dispatch;
class Host;
class StoredDefaultsCache;
class ProgressSink;
struct RunLogIndex;

struct AGPVarsData {
  AGPVarsData();
  ~AGPVarsData();
  AGPVarsData(const AGPVarsData&) = delete;
  AGPVarsData& operator=(const AGPVarsData&) = delete;

  // Outcome of the last operation: "" means success.
  std::string ProjErr;
  bool Dirty = false;

  // Product identity.
  std::string ProductKey = "Brindlework";
  std::string ProductName = "Brindlework";
  std::string ProductVersion;  // major.minor
  std::string ProjectVersion;
  std::string TemplateVersion;
  std::string ProjectFile;
  std::string ProjectExt = "agx";
  std::string ConvertType = "ASPX";
  Variant PlatformName = "ASP.NET";
  std::string TemplateName;

  // Copies of project attributes, for classes without a reference to AGP.
  std::string ProgramLanguage;
  std::string Destination;
  std::string ProjVar;
  std::string DBVar;
  Variant AppCompatVersion;
  Variant SQLQuote;
  Variant SecDefault;
  std::int16_t DefaultDateFormat = 0;
  std::string DBMSName;
  std::string QuoteStart, QuoteEnd;  // around table and field names in SQL

  // Copies of the project's list and export settings, taken when a database
  // is loaded; the table and field loaders start from them.
  Variant DynamicLoadDB, RptIndent, RecPerPage, RecPerPageList, ExportHtml, ExportWord,
      ExportExcel, ExportXml, ExportCsv, RecPerRow, MultiDelete, SortType, PagerStyle, TopPageLink,
      BottomPageLink, ViewExport, ListExport, LinkOnLeft, InlineDelete, DetailViewPaging,
      RepeatColumns;

  // Script host settings.
  std::string ScriptLanguage = "JScript";
  std::int32_t ScriptEngineTimeout = 0;

  // Synchronization.
  std::string SyncMode;
  std::string SyncPrompt;
  bool SyncKeep = false;

  // Trace text of templates and validation: lines joined by CR LF.
  std::string Trace;

  // Folders.
  std::string DocumentsFolder;
  std::string UserFolder;
  std::string BackupFolder;
  std::string ReportFolder;
  std::string LanguageFolder;
  std::string AppThemesFolder;
  std::string AppDataFolder;

  // Status window.
  std::int32_t ProgressTotal = 0;
  std::int32_t ProgressDone = 0;
  std::string StatusTitle;

  // Settings store paths; see BuildSettingsPaths.
  std::string RegGeneral, RegProject, RegDatabase, RegTable, RegField, RegChart, RegTrendline;
  std::string RegFilters, RegExtensions, ODBCIni, ODBCInstIni;
  std::int32_t RegValueType = 0;  // type found by the last ReadSetting

  // System locale, set by GetSystemCharset.
  std::string CodePage;
  std::string SystemCharset;

  // Shared singletons. Each module's accessor (Registry(), Keywords(),
  // Settings(), FileCache()) creates its object here on first use and casts
  // it back, so that this struct need not know the classes.
  Ref<Dispatch> Registry;
  Ref<Dispatch> Keywords;
  Ref<Dispatch> CodeBase;
  Ref<Dispatch> Settings;
  Ref<Dispatch> FileCache;
  Ref<Dispatch> Status;
  Ref<Dispatch> MasterDetails;
  // The stores that refer to tables and fields by name: Language(), Menus(),
  // Extensions(), CustomScripts(); and who carries renames and deletes of
  // tables and fields into them. Never null.
  Ref<Dispatch> Language;
  Ref<Dispatch> Menus;
  Ref<Dispatch> Extensions;
  Ref<Dispatch> CustomScripts;
  std::shared_ptr<DefinitionListener> definitionListener;

  // The stored defaults of new definitions while a DefinitionBulkLoad runs;
  // null otherwise (see core/definition_object.h).
  std::shared_ptr<StoredDefaultsCache> BulkDefaults;

  // Script hosts and the template cache; null outside the work they serve.
  // Script serves a generation run and GenCheck, ParseScriptHost serves
  // AGP::ParseScript. Their owners set and drop them.
  Ref<Dispatch> Script;
  Ref<Dispatch> ParseScriptHost;
  Ref<Dispatch> Cache;

  // Template folders of the run.
  std::string TemplateBaseFolder;     // <user folder>\Templates\<template name>
  std::string TemplateFolder;         // the unpacked template
  std::string CurrentTemplateFolder;  // the template's or an extension's folder
  std::string CacheFolder;            // composed functions and cache.xml
  std::string ExtensionsFolder;       // the unpacked extensions, one folder each
  std::string ExtensionFolder;        // the extension being unpacked
  std::string BootstrapFolder;        // bootstrap files of the template

  // Set by GenCheck for GenScript: the template zip matches the record of
  // the last unpack, or the user chose to keep the unpacked files.
  bool TemplateUnchanged = false;
  bool TemplateKept = false;  // the user kept the files of a changed zip

  // The run's profiler log; the note waits for the next logged file.
  bool ProfilerOn = false;
  std::string ProfilerFile;
  std::string ProfilerNote;

  // What the last GenScript did, for hosts and benchmarks: controls
  // composed into functions, pages written, and where the time went.
  struct RunStats {
    std::int32_t composed = 0;
    std::int32_t pages = 0;
    std::int64_t composeMs = 0;
    std::int64_t scriptMs = 0;
    std::int64_t outputMs = 0;
  } GenerationStats;

  // The paths listed in the run log, kept by LogGeneratedFile.
  std::shared_ptr<RunLogIndex> RunLog;

  std::string OutputFile;       // the name of the file being generated
  std::string LanguageVersion;  // `version` of the language file last loaded

  // Why the last load of a control file failed: 1 not loadable, 2 not a
  // control file of this product, 3 wrong version.
  std::int16_t ExtensionLoadError = 0;
  std::string ExtensionLoadVersion;  // the version text behind error 3

  // The program that drives the engine, and where status goes. Never null.
  std::shared_ptr<Host> host;
  std::shared_ptr<ProgressSink> progress;
};

AGPVarsData& AGPVars();

// Replaces the shared state with a fresh instance (used by tests and by
// hosts that want a clean engine).
void ResetAGPVars();

// The settings root: "Software\<product key>\<version>\Settings".
std::string SettingsRoot();

// Fills the Reg* paths from the product key and version.
void BuildSettingsPaths(AGPVarsData& vars);

// "Brindlework: text" style messages: the product name followed by `text`,
// which starts with ": ".
std::string ProductMessage(std::string_view text);

// The library's version, major.minor.revision ("12.0.4").
std::string AppVersionText();

// The product key with blanks and "/" removed, as used for folders and the
// root elements of side files.
std::string ProductKeyWord();

}  // namespace bw
