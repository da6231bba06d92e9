// AGPControl, AGPControls: the table of contents of a template package.
//
// control.xml in the package's root lists what generation produces, one
// `control` element each, in document order:
//
//   <Brindlework_Template date="..." version="12.0" desc="..." author="...">
//     <control id="list" type="table" ofile="{PROJ.ProjVar}_list" oext="cshtml"
//              ifiles="list.htm" ifolder="/pages" cond="table/TblGen/eq/1">
//       <session type="key" value="header" />
//     </control>
//   </Brindlework_Template>
//
// The root's local name must begin with the product key, in any case; the
// rest of it is free. Attribute and element names are compared in lower
// case, and attributes of other names are ignored. An extension's control
// file has the same form and is merged into the template's list.
//
// Project values are substituted into `ofile` and `ofolder` while the file
// loads, so the project must be loaded first.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "template/sessions.h"

namespace pugi {
class xml_node;
}

namespace bw {

class AGPControl : public Dispatch {
 public:
  AGPControl();

  std::string CtrlID;                 // the key, together with CtrlTagExt
  std::string CtrlType;               // "table", "field", "other", "copy", "function", ...
  std::string CtrlOFile;              // output file name without extension
  std::string CtrlOExt;               // output extension; also the text kind for tidying
  std::string CtrlOFolder;            // output sub folder
  std::string CtrlOFolderID;          // the `folder` control that is the output's base
  std::string CtrlIFiles;             // template file, or several separated by commas
  std::string CtrlIFolder;            // below the template folder, ending in "\"
  std::string CtrlCond;               // condition, see EvalCondition
  std::string CtrlTagExt;             // makes a second control of the same id distinct
  std::string CtrlParm;               // free parameter for scripts and conditions
  bool CtrlSpace = true;              // tidy the output, not only drop leading blank lines
  bool CtrlGen = false;               // run time: the cached script is stale
  bool CtrlSkipHeaderFooter = false;  // run time: the host's choice
  std::string CtrlExt;                // extension that brought the control
  std::string CtrlAction;             // what a merge does: "add", "change" or "delete"
  bool CtrlOverwrite = true;          // an existing output file may be replaced
  std::string CtrlRemark;             // description for the host

  Ref<AGPSessions> Sessions() const { return sessions_; }

  // True when an "include" session brings a header or footer ("header",
  // "footer", "rptheader" or "rptfooter" in any case).
  bool CtrlHasHeaderFooter() const;

  // Takes the attributes of a `control` element and appends its sessions.
  // `ifolder` is normalised to "a\b\" and the project tokens in `ofile` and
  // `ofolder` are substituted. A boolean attribute whose text is not a
  // boolean ("true", "false" or a number) keeps the default. For the C++
  // loader only: scripts hold no XML element to pass.
  void Load(const pugi::xml_node& xmlControl);

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPControl"; }

 private:
  void setAttribute(std::string_view lowerName, std::string_view value);

  Ref<AGPSessions> sessions_;
};

class AGPControls : public Dispatch {
 public:
  const std::string& ProdDate() const { return prodDate_; }
  const std::string& ProdVersion() const { return prodVersion_; }
  const std::string& ProdDesc() const { return prodDesc_; }
  const std::string& ProdAuthor() const { return prodAuthor_; }

  // Replaces the list with the controls of `file`. False when the file does
  // not load as XML (AGPVars().ExtensionLoadError = 1, the list stays) or its
  // root is not named after the product key (ExtensionLoadError = 2, the list
  // and the root attributes are empty afterwards).
  bool LoadControls(const Variant& file);

  std::int32_t Count() const { return static_cast<std::int32_t>(controls_.size()); }

  // A number in 1..Count gives that control; a string the first control
  // whose CtrlID is exactly that text. Either sets curIndex to the control's
  // number. Anything else gives null and leaves curIndex alone.
  Ref<AGPControl> Item(const Variant& Index);

  // The number of the control last fetched by Item; `ctrl` terms of
  // conditions read that control.
  std::int16_t curIndex() const { return curIndex_; }
  // The control at curIndex, or null before the first Item.
  AGPControl* current() const;

  // True when a control has the same CtrlID and CtrlTagExt.
  bool ControlExist(const Ref<AGPControl>& Ctrl) const;

  // Appends a copy of `Ctrl` unless ControlExist; the copy's sessions are
  // added with SessExt set to CtrlExt, on the sessions of `Ctrl` as well.
  // False for a duplicate or a null control.
  bool AddControl(const Ref<AGPControl>& Ctrl);

  // Removes the first control with the same CtrlID, CtrlType and
  // CtrlTagExt; false when there is none.
  bool DeleteControl(const Ref<AGPControl>& Ctrl);

  // The controls in order, for walks from C++.
  const std::vector<Ref<AGPControl>>& items() const { return controls_; }

  // The controls in order, each fetched through Item as the loop reaches
  // it, so that curIndex, and with it the `ctrl` terms of conditions and
  // CONTROLS.curIndex in scripts, is the control at hand:
  //   for (const Ref<AGPControl>& ctrl : controls.walk()) ...
  class Walk {
   public:
    struct iterator {
      AGPControls* list;
      std::int32_t position;
      Ref<AGPControl> operator*() const { return list->Item(Variant(position)); }
      iterator& operator++() {
        ++position;
        return *this;
      }
      bool operator!=(const iterator& other) const { return position != other.position; }
    };
    explicit Walk(AGPControls& list) : list_(list) {}
    iterator begin() const { return {&list_, 1}; }
    iterator end() const { return {&list_, list_.Count() + 1}; }

   private:
    AGPControls& list_;
  };
  Walk walk() { return Walk(*this); }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPControls"; }

 private:
  void clear();
  void readRootAttributes(const pugi::xml_node& root);

  std::vector<Ref<AGPControl>> controls_;
  std::int16_t curIndex_ = 0;
  std::string prodDate_;
  std::string prodVersion_;
  std::string prodDesc_;
  std::string prodAuthor_;
};

// The caller's words for a failed LoadControls, by
// AGPVars().ExtensionLoadError: "<product>: Control file is invalid! ..."
// for 2, "<product>: Load control file failed! ..." otherwise.
std::string ControlFileErrorMessage(std::int16_t extensionLoadError);

// The prefix of the generated page classes: the setting
// WebPageClassNamePrefix, or DefaultWebPageClassPrefix of this version.
std::string WebPageClassPrefix();

// "Brindlework" + major version + "_"; version 13 is written "2016".
std::string DefaultWebPageClassPrefix(int majorVersion);

}  // namespace bw
