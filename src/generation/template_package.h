// Template packages on disk: the working folders of a template and its
// extensions, unpacking a package zip into them, and the cache record of
// the files a run has unpacked.
//
//   <user folder>\Templates\<zip name>\      TemplateBaseFolder
//       Script\  (or the sub folder with control.xml)   TemplateFolder
//       extensions\<name>\                   ExtensionsFolder, ExtensionFolder
//       cache\   composed "tpl" files, cache.xml        CacheFolder
//       bootstrap\                           BootstrapFolder
//
// The folders are kept between runs: a template used again finds its
// unpacked files and composed functions, and a second template beside it
// finds its own.
#pragma once

#include <cstdint>
#include <string>

namespace bw {

// The folder of an unpacked package; "" for an empty `file`. Unpacks when
// `extract` and either `force` or the folder holds no control.xml yet; the
// old folder is removed first. Unpacking errors are not reported here: a
// package that did not unpack has no control.xml, which the caller reports.
std::string PrepareTemplatePackage(const std::string& file, const std::string& kind,
                                   bool isExtension, bool extract, bool force);

// Sets and makes the folders of a package (see above) and gives the folder
// it unpacks into; "" for an empty base name, or for an extension before a
// template has set the extensions folder.
std::string PrepareTemplateFolders(const std::string& baseName, const std::string& kind,
                                   bool isExtension);

// Deletes each file of the folder with this extension, in any case.
void DeleteFilesByExtension(const std::string& folder, const std::string& extension);

// The file against the run's cache record (AGPVars().Cache): -1 when the
// file does not exist, else 0 same date and size, 1 different, 2 no record.
std::int16_t CheckFileCache(const std::string& group, const std::string& key,
                            const std::string& path);
// Records the file's date and size, if it exists.
void AddFileCache(const std::string& group, const std::string& key, const std::string& path);

}  // namespace bw
