#include <fmt/format.h>

#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/exchange/table_builder.h"

namespace vellumark {
namespace {

bool IsBlank(std::string_view cell) {
  return TrimView(cell).empty();
}

std::string ReadMfeRow(const RowCutter& rows, const TableBuilder& builder, SourceColor& formula,
                       std::vector<std::string_view>& amounts) {
  const std::vector<std::string>& cells = rows.Cells();
  if (std::string fault = builder.TakeName(cells[0], "the formula", formula.name); !fault.empty()) return fault;
  if (cells.size() == 1) return "the formula has no recipe";
  if (cells.size() % 2 == 0) return "an ingredient has no amount";
  if (const std::size_t count = cells.size() / 2; count > schema::kIngredientSlots)
    return fmt::format("the formula has {} ingredients, the limit is {}", count, schema::kIngredientSlots);
  for (std::size_t i = 1; i < cells.size(); i += 2) {
    if (IsBlank(cells[i]) && IsBlank(cells[i + 1])) continue;
    if (std::string fault = builder.TakePart(cells[i], cells[i + 1], formula.recipe); !fault.empty()) return fault;
    amounts.push_back(cells[i + 1]);
  }
  return {};
}

}  // namespace

void ReadMfeRows(RowCutter& rows, TableBuilder& builder) {
  if (!rows.Next()) return;
  builder.Table().database = Upper(TrimView(rows.Cells()[0]));
  if (rows.Cells().size() > 1) builder.Bad(rows.Line(), rows.Raw(), "the first row is the name of the Database alone");
  std::vector<std::string_view> amounts;
  while (rows.Next()) {
    SourceColor formula;
    formula.line = rows.Line();
    amounts.clear();
    std::string fault = ReadMfeRow(rows, builder, formula, amounts);
    if (fault.empty() && !rows.Ended() && LooksCut(builder.Table(), formula.recipe, amounts))
      fault = "the file ends in the middle of this row";
    if (fault.empty()) {
      builder.TakeFormula(std::move(formula), rows.Raw());
    } else {
      builder.Bad(rows.Line(), rows.Raw(), std::move(fault));
    }
  }
}

}  // namespace vellumark
