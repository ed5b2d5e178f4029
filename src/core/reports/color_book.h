#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/reports/by_name.h"
#include "core/reports/definition.h"

namespace vellumark {

/// What reports tell of a colour that is named in a Batch or a job.
struct BookColor {
  std::string name;
  std::string Color_Code;
  bool Additive = false;
  std::int64_t PurchaseCost = 0;  ///< in units of DecimalPlaces
  std::int64_t BasicCost = 0;     ///< of a formula; of a Basic Color its purchase cost
  std::optional<DateTime> last;   ///< last consumed, or last produced
};

/// The colours of a Database by kind and name, read at once.
class ColorBook {
 public:
  ColorBook(const ReportContext& context, const std::string& database);
  /// A colour that is no longer on file has no code and costs nothing.
  const BookColor& Of(ColorKind kind, std::string_view name) const;

 private:
  ByName<BookColor> basics_;
  ByName<BookColor> mixes_;
  BookColor none_;
};

/// "Basic", "Additive" or "Formula".
std::string ColorTypeText(ColorKind kind, bool additive);

}  // namespace vellumark
