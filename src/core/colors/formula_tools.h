#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/progress_run.h"
#include "core/colors/additive_sets.h"
#include "core/colors/formulas.h"
#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

// What the bulk tools of a Database share: the right to use them, the rows that a selection names, and work that the
// operator may stop. Each tool is one transaction: all of it or nothing.

/// Refused in an archive view, and to a user without the right to the Database Tools.
Result<void> RequireTools(const Session& session);

/// Each name once, in the order given and in any case.
std::vector<std::string> DistinctNames(const std::vector<std::string>& names);

/// The formulas of a selection, each once. `database` empty means the current one. A name that is not there is refused.
Result<std::vector<MixColor>> SelectedFormulas(const Session& session, const std::vector<std::string>& names,
                                               std::string_view database = {});

/// A colour in a list to choose from.
struct ListedColor {
  std::int64_t key = 0;
  std::string Color_Name;
};
/// All colours of a kind in the order of their names, read from the index of names alone. `database` empty means the
/// current one.
std::vector<ListedColor> ListColors(const Session& session, ColorKind kind, std::string_view database = {});

/// The Additive Sets by name, each read once: most formulas of a Database share a few.
class AdditiveSetsOnFile {
 public:
  explicit AdditiveSetsOnFile(const Session& session) : session_(session) {}
  /// Null for an empty name and for a set that is not on file. Valid as long as this object.
  const AdditiveSet* Find(const std::string& name);

 private:
  const Session& session_;
  std::map<std::string, std::optional<AdditiveSet>> sets_;
};

/// Steps of long work that can be stopped: shows how far it is, and whether the operator asked to end it. The caller
/// then leaves its transaction without a commit and answers Stopped.
class BulkSteps {
 public:
  BulkSteps(Session& session, std::string_view text, std::size_t all)
      : session_(session), run_(session.progress, text), all_(all) {}
  /// One more piece is done; false when the work is to stop.
  bool Next();
  static std::unexpected<Refusal> Stopped(std::string title);

 private:
  Session& session_;
  ProgressRun run_;
  std::size_t done_ = 0;
  std::size_t all_;
};

}  // namespace vellumark
