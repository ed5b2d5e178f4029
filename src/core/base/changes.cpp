#include "core/base/changes.h"

namespace vellumark {

Changes::Subscription Changes::Subscribe(Listener listener) {
  const std::uint64_t id = next_++;
  listeners_->emplace(id, std::move(listener));
  return Subscription([weak = std::weak_ptr<Map>(listeners_), id] {
    if (const auto map = weak.lock()) map->erase(id);
  });
}

void Changes::Tell(const std::vector<Change>& changes) const {
  if (changes.empty()) return;
  // A listener may close its window, and so end subscriptions, while being told.
  std::vector<std::uint64_t> ids;
  for (const auto& [id, listener] : *listeners_) ids.push_back(id);
  for (const std::uint64_t id : ids) {
    const auto found = listeners_->find(id);
    if (found == listeners_->end()) continue;
    const Listener listener = found->second;
    listener(changes);
  }
}

}  // namespace vellumark
