#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/changes.h"
#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// What a typed text leads to.
struct QuickHit {
  /// In the order in which equally good ones stand.
  enum class Kind { Command, Formula, Basic, Batch, Job, Lot, Design };
  Kind kind = Kind::Command;
  std::string name;                    ///< as people read it
  std::string detail;                  ///< code, colour, job: what tells it from others
  std::int32_t number = 0;             ///< of a Batch, or the place of a command in what was given
  ColorKind color = ColorKind::Basic;  ///< of a lot, whose colour is `owner`
  std::string owner{};
};

/// Everything that has a name in the current Database (colours, formulas, Batches, Jobs, lots, Designs) and the
/// commands of whoever shows it, in memory, so that an answer is there with each key. It is read in pieces and follows
/// the changes; the session must outlive it.
class QuickIndex {
 public:
  explicit QuickIndex(Session& session);

  /// A name and what is said about it for each command, whose number is its place.
  void SetCommands(const std::vector<std::pair<std::string, std::string>>& commands);
  /// What has changed is to be read anew; until that is done the old answers stand.
  void Begin();
  /// Reads for so long at most; false when all is there.
  bool ReadOn(std::chrono::milliseconds atMost);

  /// Those in which each word of the text stands, in any case: of that very name first, then those that begin with it,
  /// then those with a word that does, at most `most` of each kind. Empty for an empty text.
  std::vector<QuickHit> Find(std::string_view typed, std::size_t most = 6) const;
  std::size_t Size() const;

 private:
  struct Entry {
    std::string name;
    std::string detail;
    std::int32_t number = 0;
    ColorKind color = ColorKind::Basic;
    std::string owner;
  };
  /// The entries of a kind, and in capitals what is searched of each, one line after the other.
  struct Part {
    std::vector<Entry> entries;
    std::string text = "\n";
    std::vector<std::uint32_t> starts;

    void Add(Entry entry, std::string_view searched);
    std::string_view TextOf(std::size_t entry) const;
  };
  /// Appends a piece; false when none is left.
  using Reading = std::function<bool(Part& part)>;
  static constexpr std::size_t kKinds = 7;

  static std::size_t Place(QuickHit::Kind kind) { return static_cast<std::size_t>(kind); }
  Reading ReadingOf(QuickHit::Kind kind) const;
  void Hear(const std::vector<Change>& changes);
  void FindIn(QuickHit::Kind kind, const std::vector<std::string>& words, std::size_t most,
              std::vector<std::pair<int, QuickHit>>& hits) const;

  const Session& session_;
  std::string database_;
  std::array<Part, kKinds> parts_;
  std::array<Part, kKinds> next_;
  std::array<Reading, kKinds> readings_;
  std::array<bool, kKinds> stale_;
  Changes::Subscription subscription_;
};

}  // namespace vellumark
