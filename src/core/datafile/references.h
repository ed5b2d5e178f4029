#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"

namespace vellumark {

// Tables refer to each other by name. This file knows every place, outside the recipes themselves, where the name of a
// colour stands.

/// Names as one search text: "<A><B>", nothing for an empty name.
std::string NameSet(const std::vector<std::string>& names);
/// The pattern that finds the whole item "<name>" in such a text, for LIKE ? ESCAPE '\'.
std::string NameSetPattern(std::string_view name);

/// Writes the new name wherever the old one stands as that kind of colour of that Database: lots, measurements, Batches
/// and their lots, Job Records, Additive Sets (a Basic Color only) and Designs, in this order. The colour's own row and
/// the recipes are the caller's. Call it inside the caller's transaction.
void RenameReferences(Database& file, std::string_view database, ColorKind kind, std::string_view oldName,
                      std::string_view newName);

/// True when a Design has this colour of this Database among its ingredients.
bool UsedByDesign(Database& file, std::string_view database, ColorKind kind, std::string_view name);
/// The DesignIDs of those Designs, in order.
std::vector<std::string> DesignsUsing(Database& file, std::string_view database, ColorKind kind, std::string_view name);

/// Removes the lot rows and measurements that belong to the colour.
void DeleteLotsAndMeasurements(Database& file, std::string_view database, ColorKind kind, std::string_view name);

}  // namespace vellumark
