#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/basics.h"
#include "core/colors/color_work.h"
#include "core/colors/lab.h"

namespace vellumark {

/// What the Basic Color window holds of one colour.
using BasicWork = ColorWork<BasicColor>;

/// What leaving the name field led to.
struct NameEntry {
  enum class Kind {
    Empty,      ///< beep, the focus stays
    Found,      ///< the record of that name is shown
    New,        ///< a new record begins
    Abandoned,  ///< the operator did not want the new record
  };
  Kind kind = Kind::Empty;
  std::string name;
};

/// Leaving the name field: finds the colour, or leads into a new one through the question and the refusals.
Result<NameEntry> EnterBasicName(Session& session, std::string_view typed);
/// What may refuse a new name, wherever a Basic Color or an Additive is made of it: the right to add, the rule for
/// names, and the guides' prefix.
Result<void> CheckNewBasicName(const Session& session, const std::string& name, std::string_view field = "Color_Name");
/// The question before a new item, worded differently when a Master Formula has the name; true for Yes.
bool AskNewBasic(Session& session, const std::string& name);

/// A new colour's fields with their defaults, and a stored colour's fields.
BasicWork NewBasicWork(const Session& session, std::string name);
BasicWork LoadBasicWork(const Session& session, const BasicColor& color);

/// Work left undone elsewhere on the window, asked about before a save.
enum class UnfinishedWork { None, Inventory, Measurement };
/// The first that the operator wants to complete; None when the save may go on. `adjustText` is what stands in the
/// adjust field, `measurementFilled` tells that a measurement is filled in and not yet listed.
UnfinishedWork AskUnfinishedWork(Session& session, std::string_view adjustText, bool measurementFilled);

/// Validates in the order Reorder, PurchaseCost, VOC, HAP and writes the row. A new colour goes to the end of the
/// weighing order. Changed figures set the session's flags. On success `work` holds the row as stored.
Result<void> SaveBasic(Session& session, BasicWork& work);

/// An item of an Additive Set must stay an Additive: what unchecking the box asks first.
Result<void> RequireFreeOfAdditiveSets(const Session& session, std::string_view name);

/// Why a Basic Color cannot be deleted; with `requiredBy` filled, a list of formulas is shown instead of a message.
struct BasicDeleteRefusal : Refusal {
  std::vector<std::string> requiredBy;  ///< in Color_Name order
};
/// True when deleted, false when the question was answered with No. Lots and measurements go with it and the weighing
/// order closes up; Job Records and Batches keep the name.
std::expected<bool, BasicDeleteRefusal> DeleteBasic(Session& session, const std::string& name);

}  // namespace vellumark
