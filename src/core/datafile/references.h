#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"

namespace vellumark {

// Tables refer to each other by name. This file knows every place, outside the recipes themselves, where the name of a
// colour or a lot stands.

/// Names as one search text: "<A><B>", nothing for an empty name.
std::string NameSet(const std::vector<std::string>& names);
/// The pattern that finds the whole item "<name>" in such a text, for LIKE ? ESCAPE '\'.
std::string NameSetPattern(std::string_view name);

/// Writes the new name wherever the old one stands as that kind of colour of that Database: lots, measurements, Batches
/// and their lots, Job Records, Additive Sets (a Basic Color only) and Designs, in this order. The colour's own row and
/// the recipes are the caller's. Call it inside the caller's transaction.
void RenameReferences(Database& file, std::string_view database, ColorKind kind, std::string_view oldName,
                      std::string_view newName);

/// A colour's name before and after a rename.
struct Renaming {
  std::string oldName;
  std::string newName;
};
/// The same for many colours at once, each table walked once however many they are. Every cell is renamed once, also
/// where a new name is another's old one. `goOn` hears how much is done, in percent, and may stop the work: then false
/// comes back and the caller has to roll back.
bool RenameReferences(Database& file, std::string_view database, ColorKind kind, const std::vector<Renaming>& names,
                      const std::function<bool(double percent)>& goOn = {});

/// The colours of that kind of this Database that some Design has, in capitals.
std::unordered_set<std::string> ColorsInDesigns(Database& file, std::string_view database, ColorKind kind);
/// True when a Design has this colour of this Database among its ingredients.
bool UsedByDesign(Database& file, std::string_view database, ColorKind kind, std::string_view name);
/// The DesignIDs of those Designs, in order.
std::vector<std::string> DesignsUsing(Database& file, std::string_view database, ColorKind kind, std::string_view name);

/// A lot as other tables name it: references repeat, and others are of another lot.
struct LotName {
  std::int32_t LotRefID = 0;
  std::string_view LotNumber;
};
/// What they repeat of it.
struct LotCopy {
  std::string_view LotNumber;
  std::string_view LotLoc;
  std::string_view LotContID;
  std::optional<DateTime> LotDate;
};
/// Rewrites the copies of a colour's lot: its number on the Batch that made it (a formula's), all of it on the lines of
/// Batches and Job Records that took from it. Within the caller's transaction.
void RewriteLotCopies(Database& file, std::string_view database, ColorKind kind, std::string_view name,
                      const LotName& lot, const LotCopy& now);

/// The colour's lot bears this reference from now on, and what names it follows.
void MoveLotCopies(Database& file, std::string_view database, ColorKind kind, std::string_view name, const LotName& lot,
                   std::int32_t ref);

/// Removes the lot rows and measurements that belong to the colour.
void DeleteLotsAndMeasurements(Database& file, std::string_view database, ColorKind kind, std::string_view name);

}  // namespace vellumark
