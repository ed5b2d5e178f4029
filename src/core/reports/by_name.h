#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/base/text.h"

namespace vellumark {

/// Names that differ in case alone are one.
struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : name)
      hash = (hash ^ static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 32 : c)) * 1099511628211U;
    return static_cast<std::size_t>(hash);
  }
};
struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return EqualNoCase(a, b); }
};

/// Records that are added up under a name, which each keeps as `name`.
template <class Record>
class ByName {
 public:
  Record& At(std::string_view name) {
    auto found = records_.find(name);
    if (found == records_.end()) {
      found = records_.emplace(std::string(name), Record{}).first;
      found->second.name = found->first;
    }
    return found->second;
  }
  const Record* Find(std::string_view name) const {
    const auto found = records_.find(name);
    return found == records_.end() ? nullptr : &found->second;
  }
  /// By name.
  std::vector<Record*> InOrder() {
    std::vector<Record*> order;
    for (auto& [name, record] : records_) order.push_back(&record);
    std::ranges::sort(order, [](const Record* a, const Record* b) { return CompareNoCase(a->name, b->name) < 0; });
    return order;
  }

 private:
  std::unordered_map<std::string, Record, NameHash, NameEqual> records_;
};

}  // namespace vellumark
