#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/labels/label_layouts.h"

namespace vellumark {

/// A field of the label window: its item of a layout, its control, the scan tag of its bar code, how much can be typed.
struct LabelField {
  std::string_view item;     ///< "Color Name"
  std::string_view control;  ///< "txtColorName"
  std::string_view tag;      ///< "<CN>"
  std::size_t longest = 30;
  std::string_view run;  ///< its name in a run of "Misc Bar Code Data", "CN"; empty: it cannot be in one
  bool title = false;    ///< a caption can stand before it
  bool lot = false;      ///< only while Lotted Inventory is in use
};
inline constexpr std::size_t kLabelFields = 17;
/// Color Name to Misc Text 4, then the two of Misc Bar Code Data. Misc Text 4 has the tag of Misc Text 3, as labels
/// always had.
std::span<const LabelField, kLabelFields> LabelFields();
/// By the item or by its name without blanks, underlines and signs, in any case: "ColorName", "color_name", "BatchID".
std::optional<std::size_t> FindLabelField(std::string_view name);

/// What a label is filled with.
struct LabelData {
  std::array<std::string, kLabelFields> texts;
  std::string Health;
  std::string Fire;
  std::string Reactivity;
  /// What only the square code says, where it is known: which of two colours of a name, which of the lots of a number.
  std::optional<ColorKind> kind{};
  std::int32_t LotRefID = 0;

  std::string& operator[](std::string_view item);
};

/// What a layout itself says: the misc texts and the hazard numbers.
LabelData DataOfLayout(const Session& session, std::string_view layout);
LabelData DataOfDesign(const LabelDesign& design);
/// The same and what is on file of a formula or Basic Color of the current Database: name, code, its first lot, today,
/// who is logged in. Nothing for a name that is not on file.
std::optional<LabelData> DataOfColor(const Session& session, const LabelDesign& design, std::string_view name);
/// Fills the two fields of Misc Bar Code Data whose run in the layout is not empty. Refused, naming the field, when the
/// parts are together longer than the field; where the layout does not show that code the field is
/// empty.
Result<void> CombineMiscBarCodes(const Session& session, std::string_view layout, LabelData& data);
Result<void> CombineMiscBarCodes(const LabelDesign& design, LabelData& data);

/// A run such as "CNLN" as the fields that it names, unknown pairs left out; and back.
std::vector<std::size_t> FieldsOfRun(std::string_view run);
std::string RunOfFields(const std::vector<std::size_t>& fields);

/// What the bar code of a field says: the tag, where identifiers are wanted, then the text without its first "®". Empty
/// for an empty text.
std::string BarCodeText(std::size_t field, std::string_view text, bool identifiers);

inline constexpr std::size_t kPictograms = 9;
/// What a hazard or formula label is filled with, by item.
struct SmallLabelData {
  std::vector<std::pair<std::string, std::string>> texts;
  /// Which pictograms are wanted; where it is not told, those that the layout shows.
  std::optional<std::array<bool, kPictograms>> pictograms{};
  std::string Of(std::string_view item) const;
};
/// The items of a hazard label, and of a formula label.
std::span<const std::string_view> HazardItems();
std::span<const std::string_view> FormulaItems();
/// Name, code, today and a line for each ingredient of a formula, of the current Database unless another one is named.
/// Refused for a name that is none.
Result<SmallLabelData> FormulaLabelData(const Session& session, std::string_view name, std::string_view database = {});

}  // namespace vellumark
