// ArchiveWriter: zip archives made entry by entry in tests, through libzip.
// ZipFolder, which zips a whole folder, comes with it.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

#include <deque>
#include <string>

#include "support/zip_folder.h"

namespace bw::testing {

// Writes a zip archive through libzip. libzip reads entry bytes only at
// close, so the writer keeps them until then.
class ArchiveWriter {
 public:
  explicit ArchiveWriter(const std::string& path) {
    int code = 0;
    archive_ = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    EXPECT_NE(archive_, nullptr) << "zip_open error " << code;
  }
  ~ArchiveWriter() {
    if (archive_) zip_discard(archive_);
  }

  zip_uint64_t file(const std::string& name, const std::string& content) {
    const std::string& bytes = contents_.emplace_back(content);
    zip_source_t* source = zip_source_buffer(archive_, bytes.data(), bytes.size(), 0);
    zip_int64_t index = zip_file_add(archive_, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
      zip_source_free(source);
      ADD_FAILURE() << "cannot add " << name << ": " << zip_strerror(archive_);
    }
    return static_cast<zip_uint64_t>(index);
  }
  void folder(const std::string& name) {
    EXPECT_GE(zip_dir_add(archive_, name.c_str(), ZIP_FL_ENC_UTF_8), 0) << zip_strerror(archive_);
  }
  void symlink(const std::string& name, const std::string& linkTarget) {
    zip_uint64_t index = file(name, linkTarget);
    EXPECT_EQ(zip_file_set_external_attributes(archive_, index, 0, ZIP_OPSYS_UNIX,
                                               zip_uint32_t{S_IFLNK | 0777} << 16),
              0);
  }
  // Keeps the bytes as they are, so that a test can find and damage them.
  void stored(zip_uint64_t index) {
    EXPECT_EQ(zip_set_file_compression(archive_, index, ZIP_CM_STORE, 0), 0);
  }
  void close() {
    EXPECT_EQ(zip_close(archive_), 0) << zip_strerror(archive_);
    archive_ = nullptr;
  }

 private:
  zip_t* archive_ = nullptr;
  std::deque<std::string> contents_;
};

}  // namespace bw::testing
