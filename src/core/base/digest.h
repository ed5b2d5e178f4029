#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vellumark {

/// A number that tells whether a content is what it was, not who made it. Each step is one to one in what was there
/// before and in what comes in, so that no single change of a word is lost.
class Digest {
 public:
  void Add(std::uint64_t word) {
    value_ = (value_ ^ word) * 0x9E3779B97F4A7C15ULL;
    value_ ^= value_ >> 29;
  }
  void Add(std::string_view bytes) { AddRest(AddWords(bytes)); }
  /// The whole words of bytes that come in pieces; what is left of the last piece, fewer than eight, is for AddRest.
  std::string_view AddWords(std::string_view bytes) {
    while (bytes.size() >= sizeof(std::uint64_t)) {
      std::uint64_t word = 0;
      std::memcpy(&word, bytes.data(), sizeof word);
      Add(word);
      bytes.remove_prefix(sizeof word);
    }
    return bytes;
  }
  void AddRest(std::string_view bytes) {
    std::uint64_t last = 0;
    if (!bytes.empty()) std::memcpy(&last, bytes.data(), bytes.size());
    Add(last);
    Add(static_cast<std::uint64_t>(bytes.size()));
  }
  std::uint64_t Value() const { return value_; }

 private:
  std::uint64_t value_ = 0x243F6A8885A308D3ULL;
};

}  // namespace vellumark
