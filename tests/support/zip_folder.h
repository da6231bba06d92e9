// ZipFolder: a template package zipped from its folder, through libzip.
// Free of the test framework, so that benchmarks make packages with it too;
// failures throw.
#pragma once

#include <zip.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace bw::testing {

// Zips every regular file below `folder`, named relative to it with '/',
// so that a package's control.xml stands at the root of the zip. Replaces
// any file at `zipPath`. libzip reads the files only when the archive is
// closed, so they must stay in place until this returns. Throws
// std::runtime_error with libzip's message; a failed run leaves no zip.
inline void ZipFolder(const std::filesystem::path& folder, const std::string& zipPath) {
  int code = 0;
  std::unique_ptr<zip_t, void (*)(zip_t*)> archive(
      zip_open(zipPath.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code), zip_discard);
  if (!archive) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const std::string message = zip_error_strerror(&error);
    zip_error_fini(&error);
    throw std::runtime_error("cannot create " + zipPath + ": " + message);
  }
  const auto fail = [&](const std::string& what) {
    throw std::runtime_error(what + ": " + zip_strerror(archive.get()));
  };
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    if (!item.is_regular_file()) continue;
    const std::string name = item.path().lexically_relative(folder).generic_string();
    // A length of -1 takes the file to its end, whatever its size at close.
    zip_source_t* source = zip_source_file(archive.get(), item.path().c_str(), 0, -1);
    if (!source) fail("cannot read " + item.path().string());
    if (zip_file_add(archive.get(), name.c_str(), source, ZIP_FL_ENC_UTF_8) < 0) {
      zip_source_free(source);
      fail("cannot add " + name);
    }
  }
  if (zip_close(archive.get()) != 0) fail("cannot write " + zipPath);
  archive.release();  // zip_close freed it
}

}  // namespace bw::testing
