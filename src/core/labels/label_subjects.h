#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/changes.h"
#include "core/inventory/lots.h"
#include "core/labels/label_data.h"

namespace vellumark {

// What a label says of something on file: the whole texts, whatever can be typed into a field of the label window.

/// Name, code and Database of a colour, today and who is logged in. An empty Database name means the current one.
/// Nothing when there is no such colour.
std::optional<LabelData> LabelOfColor(const Session& session, ColorKind kind, std::string_view name,
                                      std::string_view database = {});
/// The same with number, location and container of one of its lots.
std::optional<LabelData> LabelOfLot(const Session& session, ColorKind kind, std::string_view name, const LotRow& lot,
                                    std::string_view database = {});
/// What a stored Batch has made: its number, day, lot, short note and who made it, and its job where it has only one.
std::optional<LabelData> LabelOfBatch(Session& session, std::int32_t batchNo);

/// What the operator chooses to make a label of.
struct LabelChoice {
  std::string database;
  ColorKind kind = ColorKind::Mix;
  std::string name;  ///< as typed
  std::string job;
  std::string lotNumber;
  std::string container;  ///< which of the containers of that lot; empty where it has one
};
/// The name as it is on file: as typed, or behind "PANTONE ". Refused for one that the Database does not have.
Result<std::string> FindLabelColor(const Session& session, const LabelChoice& choice);
Result<LabelData> LabelOfChoice(const Session& session, const LabelChoice& choice);
/// Refused for what has no recipe to print.
Result<void> CheckFormulaLabel(const LabelChoice& choice);

}  // namespace vellumark
