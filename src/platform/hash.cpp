#include "platform/hash.h"

#include <openssl/evp.h>

namespace bw::hash {
namespace {

std::string digestHex(const EVP_MD* md, std::string_view data) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  if (!EVP_Digest(data.data(), data.size(), digest, &size, md, nullptr)) return {};
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(size * 2);
  for (unsigned int k = 0; k < size; ++k) {
    out += kHex[digest[k] >> 4];
    out += kHex[digest[k] & 0xF];
  }
  return out;
}

}  // namespace

std::string sha1Hex(std::string_view data) { return digestHex(EVP_sha1(), data); }
std::string md5Hex(std::string_view data) { return digestHex(EVP_md5(), data); }

}  // namespace bw::hash
