// A language file of the project's site: the file of the language folder,
// written into the site's language folder for the generated pages to read.
//
// This build writes the file with its `date` set to the day of the output.
// Normalising the ids of its global phrases and rebuilding its `project`
// section from the phrase store are not done yet: the site gets the
// language folder's file as it stands.
#include <ctime>
#include <pugixml.hpp>

#include "core/agp.h"
#include "core/status.h"
#include "generation/control_items.h"
#include "generation/generation.h"
#include "generation/output_files.h"
#include "persistence/project_files.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/xml.h"

namespace bw {
namespace {

// The day without padding, such as 2014/3/7.
std::string unpaddedDate() {
  const std::tm local = clock::localNow();
  return std::to_string(local.tm_year + 1900) + "/" + std::to_string(local.tm_mon + 1) + "/" +
         std::to_string(local.tm_mday);
}

}  // namespace

bool Generation::CreateLanguageFile(const std::string& id, const std::string& status,
                                    const std::string& remark, const std::string& source,
                                    const std::string& folder, const std::string& fileName,
                                    bool check, bool /*multiLanguage*/, bool skipSave) {
  if (source.empty() || !files::fileExists(source)) return false;
  const std::string target = OutputPath(folder, fileName, check);
  if (check) {
    addProjectItem(id, fileName, remark);
    return files::fileExists(target);
  }
  const AGControlItem* item = projectItem(id);
  const bool gen = !item || item->ItemGen;
  if (!gen) return false;
  Status().DispStatus(status);
  pugi::xml_document doc;
  if (!xml::loadFile(doc, source, xml::LineEnds::Keep)) return gen;
  pugi::xml_node root = doc.document_element();
  pugi::xml_attribute date = root.attribute("date");
  (date ? date : root.append_attribute("date")) = unpaddedDate().c_str();
  if (!skipSave) {
    files::removeFile(target);
    WriteUtf8File(target, xml::outerXml(doc));
    StepProgress();
  }
  return gen;
}

}  // namespace bw
