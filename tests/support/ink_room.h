#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"
#include "core/session/session.h"
#include "core/settings/support_files.h"
#include "support/scratch.h"

namespace vellumark::test {

/// A session on a new Data File with default settings and one empty Database "INK", at noon of 2026-03-10, and helpers
/// that put rows straight into its tables.
struct InkRoom {
  InkRoom() {
    session.DataFolder = folder / "VKDat";
    std::filesystem::create_directories(session.DataFolder);
    session.support = std::make_unique<SupportFiles>(session.DataFolder);
    WriteMissingSupportFiles(*session.support);
    const std::filesystem::path path = folder / "Test Data.vkd";
    CreateFile(path);
    session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
    session.DataFileDB->SetChanges(&session.changes);
    session.DataFileName = path.string();
    session.DataFileOpen = true;
    CreateEmptyDatabase(session.File(), "INK");
    session.CurrentDatabase = "INK";
    session.databaseList = {"INK"};
    ReadSettings(session);
  }

  void Basic(const std::string& name, std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(),
                 {{"Color_Name", name}, {"IngSort", session.File().Scalar("SELECT COUNT(*) FROM INK_Basic")}});
    AddRow(schema::Basic, std::move(cells));
  }

  /// A formula with its parts as they stand (not normalised) and its Color_Set.
  void Mix(const std::string& name, const std::vector<std::pair<std::string, float>>& parts,
           std::vector<Cell> cells = {}) {
    std::string set;
    for (std::size_t i = 0; i < schema::kIngredientSlots; ++i) {
      const bool used = i < parts.size();
      cells.emplace_back(schema::Numbered("BC", static_cast<int>(i)), used ? parts[i].first : "");
      cells.emplace_back(schema::Numbered("BQ", static_cast<int>(i)), used ? parts[i].second : 0.0F);
      if (used) set += "<" + parts[i].first + ">";
    }
    cells.emplace_back("Color_Name", name);
    cells.emplace_back("Color_Set", set);
    AddRow(schema::Mix, std::move(cells));
  }

  std::int64_t AddRow(const Table& table, std::vector<Cell> cells) {
    // A cell given later overrides a default given earlier.
    std::vector<Cell> unique;
    for (const Cell& cell : cells) {
      auto found = std::find_if(unique.begin(), unique.end(), [&](const Cell& c) { return c.first == cell.first; });
      if (found == unique.end()) {
        unique.push_back(cell);
      } else {
        found->second = cell.second;
      }
    }
    Transaction transaction(session.File());
    const std::int64_t row = InsertRow(session.File(), table, session.Table(table), unique);
    transaction.Commit();
    return row;
  }

  Value Scalar(std::string_view sql, std::initializer_list<Value> parameters = {}) {
    return session.File().Scalar(sql, parameters);
  }

  void Setting(std::string_view key, std::string_view value) {
    session.support->settings.SetSupportValue(key, value);
    ReadSettings(session);
  }

  ScratchFolder folder;
  ScriptedPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
};

}  // namespace vellumark::test
