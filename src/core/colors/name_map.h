#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "core/base/text.h"

namespace vellumark {

// Names as keys, compared as the Data File compares them: without regard to the case of A to Z.

struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const {
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char c : name) {
      const char folded = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
      hash = (hash ^ static_cast<unsigned char>(folded)) * 1099511628211ULL;
    }
    return static_cast<std::size_t>(hash);
  }
};

struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return a.size() == b.size() && EqualNoCase(a, b); }
};

template <class T>
using NameMap = std::unordered_map<std::string, T, NameHash, NameEqual>;
using NamesOnce = std::unordered_set<std::string, NameHash, NameEqual>;

}  // namespace vellumark
