#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/datafile/jet/jet_file.h"

namespace vellumark::jet {

// How the program that reads Jet files speaks with the one that asks it. It is asked by its arguments,
//   definitions FILE PAGE...
//   rows FILE DEFINITION FROM_PAGE FROM_ROW quick|careful listed|stray
// and answers on its standard output with what follows here. An answer without its End was broken off.

inline constexpr std::string_view kReaderProgram = "vellumark-jet-reader";

enum class Tells : std::uint8_t {
  At = 'A',      ///< what it turns to now, so that it is known if it dies of it: page, row
  Table = 'T',   ///< a definition
  Damage = 'D',  ///< what could not be read
  Row = 'R',
  End = 'E',
};

/// The answer ended too early, or is none.
class BrokenStream : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class StreamWriter {
 public:
  explicit StreamWriter(std::FILE* file) : file_(file) {}

  void At(std::uint32_t page, int row);
  void Table(const JetTable& table);
  void Damage(const JetDamage& damage);
  void Row(const JetRow& row);
  void End();

 private:
  template <class T>
  void Put(T value);
  void Put(std::string_view text);
  void Put(const Value& value);
  void Flush();

  std::FILE* file_;
};

class StreamReader {
 public:
  /// The next bytes; 0 at the end.
  using Source = std::function<std::size_t(char* buffer, std::size_t size)>;
  explicit StreamReader(Source source) : source_(std::move(source)), buffer_(kBuffer, '\0') {}

  Tells Next();
  void At(std::uint32_t& page, int& row);
  JetTable Table();
  JetDamage Damage();
  /// Into a row that is used again; its values are as many as there are columns.
  void Row(JetRow& row);

 private:
  static constexpr std::size_t kBuffer = std::size_t{256} * 1024;

  template <class T>
  T Get();
  std::string Text();
  void Bytes(char* to, std::size_t size);

  Source source_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
};

}  // namespace vellumark::jet
