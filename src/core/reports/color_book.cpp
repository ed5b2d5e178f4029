#include "core/reports/color_book.h"

#include <fmt/format.h>

#include "core/base/number.h"

namespace vellumark {

ColorBook::ColorBook(const ReportContext& context, const std::string& database) {
  const int decimals = context.session.DecimalPlaces;
  const auto read = [&](ColorKind kind, std::string_view columns, ByName<BookColor>& into) {
    Statement rows =
        context.File().Prepare(fmt::format("SELECT Color_Name, Color_Code, PurchaseCost, {} FROM {}", columns,
                                           context.session.QuotedTable(ColorTable(kind), database)));
    while (rows.Step()) {
      BookColor& color = into.At(rows.TextView(0));
      color.Color_Code = rows.Text(1);
      color.PurchaseCost = WholeUnits(rows.Single(2), decimals);
      color.BasicCost = WholeUnits(rows.Single(3), decimals);
      color.last = rows.Date(4);
      color.Additive = kind == ColorKind::Basic && rows.Bool(5);
    }
  };
  read(ColorKind::Basic, "PurchaseCost, LastConsumed, Additive", basics_);
  read(ColorKind::Mix, "BasicCost, LastProduced, Recycle", mixes_);
}

const BookColor& ColorBook::Of(ColorKind kind, std::string_view name) const {
  const BookColor* color = (kind == ColorKind::Mix ? mixes_ : basics_).Find(name);
  return color == nullptr ? none_ : *color;
}

std::string ColorTypeText(ColorKind kind, bool additive) {
  return kind == ColorKind::Mix ? "Formula" : additive ? "Additive" : "Basic";
}

}  // namespace vellumark
