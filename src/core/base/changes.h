#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vellumark {

/// What one committed write did, for whoever shows it.
struct Change {
  enum class Kind { Basic, Mix, AdditiveSet, Batch, Job, Design, DatabaseList, Settings };
  enum class What { Added, Updated, Deleted, Renamed, All };
  Kind kind = Kind::Basic;
  std::string database;
  std::string name;  ///< empty with What::All
  What what = What::Updated;
  std::string newName;  ///< with What::Renamed
  bool operator==(const Change&) const = default;
};

/// Where committed changes are told. A subscription lasts as long as the object that Subscribe returned.
class Changes {
 public:
  using Listener = std::function<void(const std::vector<Change>&)>;
  class Subscription {
   public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    ~Subscription() { Reset(); }
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
      if (this != &other) {
        Reset();
        end_ = std::exchange(other.end_, nullptr);
      }
      return *this;
    }
    void Reset() {
      if (const auto end = std::exchange(end_, nullptr)) end();
    }

   private:
    std::function<void()> end_;
  };

  [[nodiscard]] Subscription Subscribe(Listener listener);
  /// Tells every listener that is subscribed at this moment; called by a commit, once.
  void Tell(const std::vector<Change>& changes) const;

 private:
  using Map = std::map<std::uint64_t, Listener>;
  std::shared_ptr<Map> listeners_ = std::make_shared<Map>();
  std::uint64_t next_ = 1;
};

}  // namespace vellumark
