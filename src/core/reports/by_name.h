#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/text.h"
#include "core/colors/name_map.h"

namespace vellumark {

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
  NameMap<Record> records_;
};

}  // namespace vellumark
