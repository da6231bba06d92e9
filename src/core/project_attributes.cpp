#include "core/project_attributes.h"

#include <array>

namespace bw {
namespace {

enum Store { kNone, kText, kNumber };

struct Row {
  const char* name;
  const char* dataType;
  Store store;
};

// The project's attributes in the order of the project file.
constexpr Row kProjectAttributes[] = {
      {"ProjID", "String", kNone},
      {"ProjName", "String", kNone},
      {"ProjVar", "String", kNone},
      {"MultiLanguage", "Boolean", kText},
      {"DefaultLanguageFile", "String", kText},
      {"LanguageFiles", "String", kText},
      {"SyncLog", "String", kNone},
      {"AppCompatVersion", "Integer", kNumber},
      {"AppRelatedProject", "String", kNone},
      {"SQLQuote", "String", kNone},
      {"CodePage", "Long", kNumber},
      {"LCID", "Long", kNumber},
      {"Cache", "Boolean", kText},
      {"IncFiles", "String", kNone},
      {"IncVirtuals", "String", kNone},
      {"CharSet", "String", kText},
      {"CSS", "String", kText},
      {"OutputNameType", "String", kText},
      {"OutputNameExt", "String", kText},
      {"OutputNameLCase", "Boolean", kText},
      {"BodyTitle", "String", kText},
      {"BodyFont", "String", kText},
      {"BodySize", "String", kText},
      {"BodyBgColor", "String", kText},
      {"BodyTextColor", "String", kText},
      {"BodyLnkColor", "String", kText},
      {"BodyVLnkColor", "String", kText},
      {"BodyALnkColor", "String", kText},
      {"BodyLeftMargin", "Integer", kNumber},
      {"BodyTopMargin", "Integer", kNumber},
      {"DocType", "String", kText},
      {"ApplicationTheme", "String", kText},
      {"HeaderColor", "String", kText},
      {"HeaderLogo", "String", kText},
      {"HeaderHeight", "Integer", kNumber},
      {"MenuColor", "String", kText},
      {"FooterColor", "String", kText},
      {"FooterFontColor", "String", kText},
      {"FooterText", "String", kText},
      {"TblWidth", "String", kText},
      {"TblPadding", "Integer", kNumber},
      {"TblBorder", "Integer", kNumber},
      {"TblSpacing", "Integer", kNumber},
      {"TblBgColor", "String", kText},
      {"TblHdrFontColor", "String", kText},
      {"TblHdrColor", "String", kText},
      {"TblAltColor", "Boolean", kText},
      {"TblAltColor1", "String", kText},
      {"TblAltColor2", "String", kText},
      {"Template", "String", kText},
      {"Destination", "String", kNone},
      {"SecType", "String", kNone},
      {"SecLoginID", "String", kNone},
      {"SecPasswd", "String", kNone},
      {"SecTbl", "String", kNone},
      {"SecLoginIDFld", "String", kNone},
      {"SecPasswdFld", "String", kNone},
      {"SecEmailFld", "String", kNone},
      {"SecForgetPwdPage", "Boolean", kNone},
      {"SecChangePwdPage", "Boolean", kNone},
      {"SecChangeEmail", "Boolean", kNone},
      {"SecRegisterPage", "Boolean", kNone},
      {"RegisterReturnPage", "String", kNone},
      {"RegisterMultiPage", "Boolean", kNone},
      {"SecRegisterConfirm", "Boolean", kText},
      {"SecRegisterCaptcha", "Boolean", kText},
      {"SecLogInOutAuditTrail", "Boolean", kText},
      {"SecLoginCaptcha", "Boolean", kText},
      {"SecForgotPwdCaptcha", "Boolean", kText},
      {"SecChangePwdCaptcha", "Boolean", kText},
      {"SecRegisterActivate", "Boolean", kText},
      {"SecRegisterActivateFld", "String", kNone},
      {"SecRegisterEmail", "Boolean", kNone},
      {"SecRegisterAutoLogin", "Boolean", kNone},
      {"SecSenderEmail", "String", kNone},
      {"SmtpServer", "String", kText},
      {"SmtpServerPort", "Long", kNumber},
      {"SmtpSecureOption", "String", kNone},
      {"MemoCRLFReplace", "Boolean", kText},
      {"SessTimeOut", "Integer", kNumber},
      {"ServerScriptTimeout", "Integer", kNumber},
      {"SessionMode", "String", kText},
      {"StateConnectionString", "String", kText},
      {"StateNetworkTimeout", "Integer", kNumber},
      {"SQLConnectionString", "String", kText},
      {"SessionCookieless", "Boolean", kText},
      {"RequestEncoding", "String", kText},
      {"ResponseEncoding", "String", kText},
      {"FileEncoding", "String", kText},
      {"TraceEnabled", "Boolean", kText},
      {"TraceRequestLimit", "Integer", kNumber},
      {"TracePageOutput", "Boolean", kText},
      {"TraceMode", "String", kText},
      {"TraceLocalOnly", "Boolean", kText},
      {"DebugEnabled", "Boolean", kText},
      {"CustomErrors", "String", kText},
      {"AuthenticateMode", "String", kText},
      {"IdentityImpersonate", "Boolean", kText},
      {"TestWebServer", "Integer", kNumber},
      {"defaultDateFormat", "Integer", kText},
      {"DateSeparator", "String", kText},
      {"SetLocale", "Boolean", kText},
      {"Locale", "String", kText},
      {"StartPage", "String", kNone},
      {"XMLEncoding", "String", kText},
      {"HighlightColor", "String", kText},
      {"SelectColor", "String", kText},
      {"ProgramStyle", "String", kText},
      {"ProgramLanguage", "String", kText},
      {"DotNetFrameworkVersion", "String", kText},
      {"VisualStudioProject", "Boolean", kText},
      {"PasswordFormat", "String", kText},
      {"MessageTextColor", "String", kText},
      {"UseCodeSeparation", "Boolean", kText},
      {"UseASPNetSecurity", "Boolean", kText},
      {"UseASPNetProfile", "Boolean", kText},
      {"DatabaseLayer", "Boolean", kText},
      {"EditBackColor", "String", kText},
      {"EditForeColor", "String", kText},
      {"PagerBackColor", "String", kText},
      {"SelectBackColor", "String", kText},
      {"SelectForeColor", "String", kText},
      {"FooterBackColor", "String", kText},
      {"UploadPath", "String", kText},
      {"UploadAllowedFileExt", "String", kText},
      {"UseCss", "Boolean", kText},
      {"CssStyles", "String", kNone},
      {"WebConfigGen", "Boolean", kText},
      {"WebConfigOverwrite", "Boolean", kText},
      {"AutoSync", "Boolean", kNone},
      {"AutoBrowseURL", "String", kNone},
      {"AutoBrowse", "Boolean", kNone},
      {"OtherGenList", "String", kNone},
      {"OtherGen", "Boolean", kNone},
      {"OtherExpanded", "Boolean", kNone},
      {"DynamicLoadDB", "Boolean", kText},
      {"MD5Password", "Boolean", kText},
      {"CaseSensitivePassword", "Boolean", kText},
      {"ServerValidate", "Boolean", kText},
      {"ClientValidate", "Boolean", kText},
      {"RptIndent", "Integer", kNumber},
      {"RecPerPage", "Integer", kNumber},
      {"RecPerPageList", "String", kText},
      {"PrinterFriendly", "Boolean", kText},
      {"ExportHtml", "Boolean", kText},
      {"ExportWord", "Boolean", kText},
      {"ExportExcel", "Boolean", kText},
      {"ExportXml", "Boolean", kText},
      {"ExportCsv", "Boolean", kText},
      {"ExportEmail", "Boolean", kText},
      {"ExportPDF", "Boolean", kText},
      {"ExportType", "String", kText},
      {"RecPerRow", "Integer", kNumber},
      {"MultiDelete", "Boolean", kText},
      {"SortType", "Integer", kNumber},
      {"PagerStyle", "Integer", kNumber},
      {"TopPageLink", "Boolean", kText},
      {"BottomPageLink", "Boolean", kText},
      {"ViewExport", "Boolean", kText},
      {"ListExport", "Boolean", kText},
      {"LinkOnLeft", "Boolean", kText},
      {"InlineDelete", "Boolean", kText},
      {"DetailViewPaging", "Boolean", kText},
      {"DetailEditPaging", "Boolean", kText},
      {"BasicSearchType", "String", kText},
      {"ModalSearch", "Boolean", kText},
      {"RepeatColumns", "Integer", kNumber},
      {"AppRootFolder", "String", kText},
      {"RootRelativePath", "String", kNone},
      {"EmailComponent", "String", kText},
      {"DeleteUploadedFile", "Boolean", kText},
      {"AuditTrailPath", "String", kText},
      {"RecipientEmail", "String", kText},
      {"SMTPServerUsername", "String", kText},
      {"SMTPServerPassword", "String", kText},
      {"FavIcon", "String", kText},
      {"LoginOption", "String", kText},
      {"BlankPage", "Boolean", kText},
      {"UseButtonsForLinks", "Boolean", kText},
      {"UseDropDownForAction", "Boolean", kText},
      {"UseDropDownForListOptions", "Boolean", kText},
      {"MultiPageType", "String", kText},
      {"UseDropDownForExport", "Boolean", kText},
};

static_assert(std::size(kProjectAttributes) == 183);

AttributeDef toDef(const Row& row) {
  AttributeDef def;
  def.name = row.name;
  def.dataType = row.dataType;
  def.regSave = row.store != kNone;
  def.regFormat = row.store == kText ? 1 : row.store == kNumber ? 4 : 0;
  // ProjVar is derived from ProjName, and SyncLog is the report of the last
  // synchronization: neither is the user's setting nor saved in the file.
  const std::string_view name = row.name;
  const bool derived = name == "ProjVar" || name == "SyncLog";
  def.fileSave = !derived;
  def.sync = !derived;
  return def;
}

}  // namespace

const Ref<const PropertyLayout>& ProjectLayout() {
  static const Ref<const PropertyLayout> layout = [] {
    std::vector<AttributeDef> defs;
    defs.reserve(std::size(kProjectAttributes));
    for (const Row& row : kProjectAttributes) defs.push_back(toDef(row));
    return PropertyLayout::create(std::move(defs));
  }();
  return layout;
}

}  // namespace bw
