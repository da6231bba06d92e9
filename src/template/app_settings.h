// AGPAppSettings: the application settings a host keeps in an XML file with
// a root "project" and "appsetting" children.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/dispatch.h"

namespace bw {

class AGPAppSetting : public Dispatch {
 public:
  std::string AppSettingID, AppSettingName, AppSettingType, AppSettingValues,
      AppSettingDefaultValue;

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPAppSetting"; }
};

class AGPAppSettings : public Dispatch {
 public:
  // Replaces the list with the file's settings. False if the file does not
  // load; ProjErr then says why and the list stays as it was.
  bool LoadAppSettings(const Variant& file);
  bool AddSetting(const std::string& id, const std::string& name, const std::string& type,
                  const std::string& values, const std::string& defaultValue);
  bool DeleteSetting(const std::string& id);
  bool SettingExist(const std::string& id) const;
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  // By position from 1, or by id; null for anything else.
  Ref<AGPAppSetting> Item(const Variant& index);
  std::int32_t curIndex() const { return curIndex_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "AGPAppSettings"; }

 private:
  std::optional<std::size_t> indexOf(const std::string& id) const;

  std::vector<Ref<AGPAppSetting>> items_;
  std::int32_t curIndex_ = 0;
};

}  // namespace bw
