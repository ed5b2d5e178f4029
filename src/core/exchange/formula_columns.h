#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/exchange/text_rows.h"
#include "core/session/session.h"

namespace vellumark {

/// What a column of a grid of formulas holds.
enum class SourceField : std::uint8_t {
  NoField,
  ColorName,
  ColorType,
  ColorCode,
  Reorder,
  Inventory,
  UnlottedInv,
  InventoryNote,
  PurchaseCost,
  UnitCost,
  Recyclable,
  Notes,
  VOC,
  HAP,
  Ingredient,  ///< of the pair `place`; without one the file has a row for each ingredient
  Parts,
  BasicColor,  ///< the caption is the name of a Basic Color, the cells are its parts
};

struct SourceColumn {
  std::string caption;
  SourceField field = SourceField::NoField;
  int place = -1;  ///< of Ingredient and Parts
};

/// "Color Name", "Ingredient 3", "Parts", "Basic Color"; "NoField" for one that is passed over.
std::string FieldText(const SourceColumn& column);
/// Gives the column the field of that name, in any case; false for no such name.
bool TakeFieldText(SourceColumn& column, std::string_view text);
/// The names that `TakeFieldText` knows, for a person to choose from.
std::vector<std::string> SourceFieldNames();

/// Which captions stand for which fields beside the fields' own names: a shop's own columns, told once.
struct ColumnMapping {
  std::vector<SourceColumn> columns;
  const SourceColumn* Find(std::string_view caption) const;
  /// Replaces what was told of a caption before.
  void Set(SourceColumn column);
};
/// A caption that the settings can hold.
bool CanBeTold(std::string_view caption);
/// Reads "CAPTION=FIELD" into the mapping. Refused: no such field, a caption that cannot be kept.
Result<void> TakeMapping(ColumnMapping& mapping, std::string_view text);

/// What the person at this machine told last.
ColumnMapping RememberedColumns(const Session& session);
void RememberColumns(Session& session, const ColumnMapping& mapping);

/// The columns of a heading as they will be read: by the mapping, else by the fields' own names. A unit behind a
/// caption in parentheses is told in `unit`.
std::vector<SourceColumn> ColumnsOfHeading(const std::vector<std::string>& heading, const ColumnMapping& mapping,
                                           std::optional<int>& unit);

/// The mark between the cells of a grid: tab, semicolon or comma, whichever parts its first row most.
char SeparatorOf(std::string_view text);

/// The heading of a file and its first rows: what a person sees who maps its columns.
struct GridHead {
  std::vector<SourceColumn> columns;
  std::vector<std::vector<std::string>> rows;
};
GridHead ReadGridHead(const std::filesystem::path& path, const ColumnMapping& mapping, std::size_t rows = 5);

}  // namespace vellumark
