#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/base/text.h"
#include "core/datafile/commit_witness.h"
#include "core/datafile/schema.h"

namespace vellumark::test {

/// The kinds of change of which one has to be told when rows of a table are written; none for what no window shows.
inline std::vector<Change::Kind> KindsToTell(const Table& table) {
  using Kind = Change::Kind;
  for (const Table* basic : {&schema::Basic, &schema::BasicLotInv, &schema::BasicLab})
    if (&table == basic) return {Kind::Basic};
  for (const Table* mix : {&schema::Mix, &schema::MixLotInv, &schema::MixLab})
    if (&table == mix) return {Kind::Mix};
  if (&table == &schema::Batch || &table == &schema::BatchScaleResults) return {Kind::Batch};
  // What a Batch holds also moves with the stock of its colours.
  if (&table == &schema::BatchLotInv) return {Kind::Batch, Kind::Basic, Kind::Mix};
  if (&table == &schema::Additives) return {Kind::AdditiveSet};
  if (&table == &schema::JobRecords) return {Kind::Job};
  if (&table == &schema::Designs) return {Kind::Design};
  if (&table == &schema::Dispenser) return {Kind::Settings};
  if (&table == &schema::StockHistory) return {Kind::Basic, Kind::Mix};
  return {};
}

/// Whether what was told covers rows written in a table of `database`; empty for a table beside the Databases. What is
/// told of a Database itself covers all of its rows.
inline bool IsTold(const std::vector<Change>& told, const std::vector<Change::Kind>& kinds, const std::string& database) {
  return std::ranges::any_of(told, [&](const Change& change) {
    const bool here = database.empty() || EqualNoCase(change.database, database) || EqualNoCase(change.newName, database);
    return here && (change.kind == Change::Kind::DatabaseList || std::ranges::find(kinds, change.kind) != kinds.end());
  });
}

/// What a test writes past the rooms while this lasts is told to nobody.
class Arranging {
 public:
  Arranging() { ++depth; }
  ~Arranging() { --depth; }
  Arranging(const Arranging&) = delete;
  Arranging& operator=(const Arranging&) = delete;
  static inline int depth = 0;
};

/// Every commit of every test of this process: what it wrote, windows are told of.
inline void ExpectToldOf(const std::set<std::string>& tables, const std::vector<Change>& told) {
  if (Arranging::depth > 0) return;
  std::vector<const Table*> known = schema::Global();
  known.insert(known.end(), schema::PerDatabase().begin(), schema::PerDatabase().end());
  known.insert(known.end(), {&schema::StockHistory});
  for (const std::string& name : tables) {
    for (const Table* table : known) {
      const bool own = table->name.starts_with('_');
      if (own ? !name.ends_with(table->name) : name != table->name) continue;
      const std::string database = own ? name.substr(0, name.size() - table->name.size()) : "";
      const std::vector<Change::Kind> kinds = KindsToTell(*table);
      if (!kinds.empty() && !IsTold(told, kinds, database))
        ADD_FAILURE() << "a commit wrote rows of " << name << " and tells no window of it";
    }
  }
}

inline const bool kCommitsAreWitnessed = (SetCommitWitness(ExpectToldOf), true);

}  // namespace vellumark::test
