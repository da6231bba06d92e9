// AGPSettings: the user's custom setting file, which GetV falls back on.
//
//   <zt-setting>
//     <section name="Project">
//       <setting id="MyFlag" type="Boolean" value="1"/>
//     </section>
//   </zt-setting>
//
// Names of sections and settings match exactly.
#pragma once

#include <memory>
#include <pugixml.hpp>
#include <string>

#include "core/dispatch.h"

namespace bw {

class AGPSettings : public Dispatch {
 public:
  // Loads the file named by the setting ConfigFile. A file that fails to
  // load is reported in a message box and leaves no document.
  bool LoadSettings();
  std::string LoadSettingType(const std::string& section, const std::string& id) const;
  Variant LoadSettingValue(const std::string& section, const std::string& id) const;

  bool hasDocument() const { return doc_ != nullptr; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPSettings"; }

 private:
  pugi::xml_node findSetting(const std::string& section, const std::string& id) const;

  std::unique_ptr<pugi::xml_document> doc_;
};

// The shared settings file, loaded once when first used.
AGPSettings& Settings();

}  // namespace bw
