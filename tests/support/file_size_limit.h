// FileSizeLimit: makes the file system refuse writes while it lives.
//
// Writing a regular file beyond the limit fails with EFBIG, even for root,
// which makes it the dependable way to test a store that cannot write. Keep
// test assertions outside its scope: their output may go to a file too.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace bw::testing {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &saved_);
    savedHandler_ = std::signal(SIGXFSZ, SIG_IGN);  // fail the write, don't kill the process
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, savedHandler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit saved_{};
  void (*savedHandler_)(int) = nullptr;
};

}  // namespace bw::testing
