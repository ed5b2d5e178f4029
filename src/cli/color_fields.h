#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/frame.h"
#include "core/colors/color_work.h"
#include "core/colors/swatch.h"

namespace vellumark::cli {

/// FIELD=VALUE pairs of a command, in their order.
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// A colour's name, as the windows read it. One longer than names may be is refused: cut to the length, as their fields
/// do it before the operator's eyes, it would be another colour's.
Result<std::string> TypedName(const Session& session, std::string_view typed, std::string field = "Color_Name");
/// The same of one on file, as the Database spells it: a colour of a guide is found with and without "PANTONE ".
/// Without a kind it may be of either.
Result<std::string> TypedColor(const Session& session, std::optional<ColorKind> kind, std::string_view typed);
/// The same of a name that is to be given, which holds plain characters only, and those of the name that it is made of.
Result<std::string> NewTypedName(const Session& session, std::string_view typed, std::string field = "Color_Name",
                                 std::string_view from = {});

/// The two names of a rename, OLD and NEW, neither of them empty.
struct RenameNames {
  std::string oldName;
  std::string newName;
};
std::shared_ptr<RenameNames> AddRenameNames(CLI::App* verb, const std::string& newText = "Its new name");

/// Takes "Inventory=QTY" out of `pairs`: stock is no field like the others.
std::optional<std::string> TakeInventory(std::vector<std::string>& pairs, bool exact);
/// Saves a colour and posts the Unlotted Inventory that was typed for it, both or neither.
Result<void> SaveWithInventory(Session& session, ColorKind kind, const std::string& name,
                               const std::optional<std::string>& typed, const std::function<Result<void>()>& saveColor);

bool IsSwatchPart(std::string_view field);
/// Takes the pairs of a swatch ("Red=200") out of `pairs`.
Result<SwatchChange> TakeSwatch(std::vector<std::string>& pairs);

/// A price as its number, or null for a user who may not see prices.
Json Price(const Session& session, float price);
/// A date as "YYYY-MM-DD" with its time when that is not midnight; null when it is absent.
Json DateJson(const std::optional<DateTime>& date);

/// The refusal of a verb whose question was answered with No.
std::unexpected<Refusal> Declined(std::string title, std::string_view name);

}  // namespace vellumark::cli
