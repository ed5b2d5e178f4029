#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/colors/formulas.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"
#include "core/session/session.h"
#include "core/session/stock_lines.h"
#include "core/settings/support_files.h"
#include "support/scratch.h"
#include "support/sound.h"

namespace vellumark::test {

/// A session on a new Data File with default settings and one empty Database "INK", at noon of 2026-03-10, and helpers
/// that put rows straight into its tables, as the program would: with what follows from them.
struct InkRoom {
  InkRoom();

  /// Whatever the test did, the file is sound at its end.
  ~InkRoom();
  /// A rule of the deep check that the test breaks on purpose.
  void Breaks(std::string_view rule) { sound.Breaks(rule); }

  void Basic(const std::string& name, std::vector<Cell> cells = {});

  /// A formula with its parts as they stand (not normalised) and its Color_Set.
  void Mix(const std::string& name, const std::vector<std::pair<std::string, float>>& parts,
           std::vector<Cell> cells = {});

  std::int64_t AddRow(const Table& table, std::vector<Cell> cells);

  /// The stock of all colours of that kind becomes this, as if it had been so from the beginning.
  void HaveStock(ColorKind kind, float quantity);

  /// The next Batch number is ahead of that of a Batch put in.
  void MoveCounter(const std::vector<Cell>& cells);
  /// What stands in a set is an Additive, with some percentage.
  void MarkAdditives(const std::vector<Cell>& cells);

  /// The line of the history for stock that was there at the beginning.
  void TellStock(ColorKind kind, const std::vector<Cell>& cells, const std::string& name, const std::string& quantity);

  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {});

  void Setting(std::string_view key, std::string_view value);

  ScratchFolder folder;
  ScriptedPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  SoundAtEnd sound;
};

}  // namespace vellumark::test
