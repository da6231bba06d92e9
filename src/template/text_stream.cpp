#include "template/text_stream.h"

#include "platform/files.h"
#include "platform/text.h"
#include "template/file_operations.h"
#include "template/scripting_error.h"

namespace bw {
namespace fs = std::filesystem;
using namespace scripting_error;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isContinuationByte(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

void createEmptyFile(const fs::path& path) {
  if (!std::ofstream(path, std::ios::binary)) raiseScriptingError(kPermissionDenied);
}

}  // namespace

IOMode ioModeFromNumber(std::int32_t mode) {
  switch (mode) {
    case 1:
    case 2:
    case 8:
      return static_cast<IOMode>(mode);
    default:
      raiseScriptingError(kInvalidArgument);
  }
}

bool isUnicodeFormat(std::int32_t format) {
  if (format != 0 && format != -1 && format != -2) raiseScriptingError(kInvalidArgument);
  return format == -1;
}

// ---------------------------------------------------------------------------
// Opening

Ref<TextStream> TextStream::open(const fs::path& path, IOMode mode, bool create, bool unicode) {
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  if (fs::is_directory(status)) raiseScriptingError(kPermissionDenied);
  const bool exists = fs::exists(status);
  if (!exists && !create) raiseScriptingError(kFileNotFound);
  if (!exists && !fs::is_directory(path.parent_path(), ec)) raiseScriptingError(kPathNotFound);

  if (mode == IOMode::ForReading) {
    if (!exists) createEmptyFile(path);
    return openForReading(path);
  }
  if (exists && file_ops::isReadOnly(status)) raiseScriptingError(kPermissionDenied);
  return openForWriting(path, mode == IOMode::ForAppending, unicode);
}

Ref<TextStream> TextStream::openForReading(const fs::path& path) {
  std::optional<std::string> bytes = files::readFile(path.string());
  if (!bytes) raiseScriptingError(kPermissionDenied);
  if (text::startsWith(*bytes, kByteOrderMark)) bytes->erase(0, kByteOrderMark.size());
  return Ref<TextStream>(new TextStream(std::move(*bytes)));
}

Ref<TextStream> TextStream::openForWriting(const fs::path& path, bool append, bool unicode) {
  std::error_code ec;
  // Appending to text that is there already must not put a mark in its middle.
  const bool startsEmpty = !append || fs::file_size(path, ec) == 0 || ec;
  std::ofstream output(path, std::ios::binary | (append ? std::ios::app : std::ios::trunc));
  if (!output) raiseScriptingError(kPermissionDenied);
  return Ref<TextStream>(new TextStream(std::move(output), unicode && startsEmpty));
}

Ref<TextStream> TextStream::create(const fs::path& path, bool overwrite, bool unicode) {
  std::error_code ec;
  if (!overwrite && fs::exists(fs::symlink_status(path, ec))) raiseScriptingError(kFileExists);
  return open(path, IOMode::ForWriting, true, unicode);
}

TextStream::TextStream(std::string content) : reading_(true), input_(std::move(content)) {}

TextStream::TextStream(std::ofstream output, bool startWithMark)
    : reading_(false), output_(std::move(output)) {
  if (startWithMark) output_ << kByteOrderMark;
}

// ---------------------------------------------------------------------------
// Reading

void TextStream::requireOpenFor(bool reading) const {
  if (closed_ || reading_ != reading) raiseScriptingError(kBadFileMode);
}

void TextStream::requireInput() const {
  requireOpenFor(true);
  if (position_ >= input_.size()) raiseScriptingError(kInputPastEnd);
}

// Bytes from the read position that hold the next `characters` code points,
// or all that is left.
std::size_t TextStream::bytesOfCharacters(std::int32_t characters) const {
  if (characters < 0) raiseScriptingError(kInvalidArgument);
  std::size_t end = position_;
  for (std::int32_t k = 0; k < characters && end < input_.size(); ++k)
    text::decodeUtf8(input_, end);
  return end - position_;
}

std::string TextStream::consume(std::size_t bytes) {
  std::string taken = input_.substr(position_, bytes);
  position_ += taken.size();
  track(taken);
  return taken;
}

std::string TextStream::ReadLine() {
  requireInput();
  const std::size_t lineFeed = input_.find('\n', position_);
  if (lineFeed == std::string::npos) return consume(input_.size() - position_);
  std::string line = consume(lineFeed + 1 - position_);
  line.pop_back();
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::string TextStream::ReadAll() {
  requireInput();
  return consume(input_.size() - position_);
}

std::string TextStream::Read(std::int32_t characters) {
  const std::size_t bytes = bytesOfCharacters(characters);
  requireInput();
  return consume(bytes);
}

void TextStream::Skip(std::int32_t characters) {
  Read(characters);
}

void TextStream::SkipLine() {
  ReadLine();
}

bool TextStream::AtEndOfStream() const {
  requireOpenFor(true);
  return position_ >= input_.size();
}

bool TextStream::AtEndOfLine() const {
  requireOpenFor(true);
  const std::string_view rest = std::string_view(input_).substr(position_);
  return rest.empty() || rest.front() == '\n' || text::startsWith(rest, text::kCrLf);
}

// ---------------------------------------------------------------------------
// Writing

void TextStream::Write(const std::string& text) {
  requireOpenFor(false);
  output_ << text;
  if (!output_) raiseScriptingError(kAccessError);
  track(text);
}

void TextStream::WriteLine(std::optional<std::string> text) {
  Write(text.value_or("").append(text::kCrLf));
}

void TextStream::WriteBlankLines(std::int32_t lines) {
  if (lines < 0) raiseScriptingError(kInvalidArgument);
  std::string text;
  for (std::int32_t k = 0; k < lines; ++k) text += text::kCrLf;
  Write(text);
}

// ---------------------------------------------------------------------------

void TextStream::Close() {
  if (closed_) return;
  closed_ = true;
  input_.clear();
  if (reading_) return;
  output_.close();
  if (!output_) raiseScriptingError(kAccessError);
}

void TextStream::track(std::string_view text) {
  for (char c : text) {
    if (c == '\n') {
      ++line_;
      column_ = 1;
    } else if (!isContinuationByte(c)) {
      ++column_;
    }
  }
}

const MemberTable& TextStream::members() const {
  using T = TextStream;
  static const MemberTable table{
      method<&T::ReadLine>("ReadLine"),
      method<&T::ReadAll>("ReadAll"),
      method<&T::Read>("Read"),
      method<&T::Skip>("Skip"),
      method<&T::SkipLine>("SkipLine"),
      property<&T::AtEndOfStream>("AtEndOfStream"),
      property<&T::AtEndOfLine>("AtEndOfLine"),
      method<&T::Write>("Write"),
      method<&T::WriteLine>("WriteLine"),
      method<&T::WriteBlankLines>("WriteBlankLines"),
      method<&T::Close>("Close"),
      property<&T::Line>("Line"),
      property<&T::Column>("Column"),
  };
  return table;
}

}  // namespace bw
