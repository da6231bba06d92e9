// TextStream: a text file opened by a script for reading, writing or
// appending.
//
// Text is UTF-8. A reading stream takes the whole file at once (template
// packages read files of a few kilobytes) and drops a UTF-8 byte order mark;
// lines end at CR LF or LF, and a lone CR is part of its line. A writing
// stream writes through as the script goes; WriteLine ends lines with CR LF.
// A "Unicode" stream (format -1, or CreateTextFile's unicode flag) is UTF-8
// that starts with a byte order mark, so that editors take the file as
// Unicode; the default and "ASCII" formats are UTF-8 without one.
//
// Line and Column count from 1 in characters (code points), for reading and
// writing alike.
//
// Errors: 54 for reading a writing stream, writing a reading one, or using a
// closed one; 62 for reading at the end.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "core/dispatch.h"

namespace bw {

enum class IOMode : std::int32_t { ForReading = 1, ForWriting = 2, ForAppending = 8 };

// The mode and format numbers of a script's call; anything else raises 5.
IOMode ioModeFromNumber(std::int32_t mode);
// True for -1 (Unicode); false for 0 (ASCII) and -2 (the system default).
bool isUnicodeFormat(std::int32_t format);

class TextStream : public Dispatch {
 public:
  // Opens an existing file, or creates it when `create` is set. A missing
  // file gives 53, a missing folder 76, a folder or a read-only file opened
  // for writing 70.
  static Ref<TextStream> open(const std::filesystem::path& path, IOMode mode, bool create,
                              bool unicode);
  // Creates a file for writing; an existing one is replaced only if
  // `overwrite` is set (58 otherwise).
  static Ref<TextStream> create(const std::filesystem::path& path, bool overwrite, bool unicode);

  std::string ReadLine();
  std::string ReadAll();
  std::string Read(std::int32_t characters);
  void Skip(std::int32_t characters);
  void SkipLine();
  bool AtEndOfStream() const;
  bool AtEndOfLine() const;

  void Write(const std::string& text);
  void WriteLine(std::optional<std::string> text);
  void WriteBlankLines(std::int32_t lines);

  void Close();
  std::int32_t Line() const { return line_; }
  std::int32_t Column() const { return column_; }

  const MemberTable& members() const override;
  std::string_view typeName() const override { return "TextStream"; }

 private:
  static Ref<TextStream> openForReading(const std::filesystem::path& path);
  static Ref<TextStream> openForWriting(const std::filesystem::path& path, bool append,
                                        bool unicode);
  explicit TextStream(std::string content);
  TextStream(std::ofstream output, bool startWithMark);

  void requireOpenFor(bool reading) const;
  void requireInput() const;
  std::size_t bytesOfCharacters(std::int32_t characters) const;
  std::string consume(std::size_t bytes);
  void track(std::string_view text);

  bool reading_;
  bool closed_ = false;
  std::string input_;
  std::size_t position_ = 0;  // byte offset into input_
  std::ofstream output_;
  std::int32_t line_ = 1;
  std::int32_t column_ = 1;
};

}  // namespace bw
