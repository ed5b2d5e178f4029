#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/datafile/color_kind.h"
#include "core/datafile/engine.h"

namespace vellumark {

/// What the stock history says stands in stock: its lines added up in the order of writing, through all renames. Holds
/// a few figures for each colour that has lines, however many lines there are.
class StockBalance {
 public:
  /// Reads the whole history; `goOn` hears how many lines were read and may stop the work.
  explicit StockBalance(Database& file, const std::function<bool(std::int64_t lines)>& goOn = {});

  /// The figure of a colour's `Inventory`, or of a lot when `ref` is not 0.
  double Of(std::string_view database, ColorKind kind, std::string_view name, std::int32_t ref) const;
  /// Those that are not 0; `ref` is 0 of Unlotted Inventory.
  void ForEach(const std::function<void(const std::string& database, ColorKind kind, const std::string& name,
                                        std::int32_t ref, double quantity)>& take) const;

 private:
  // Whole units of the ninth decimal, in which the changes are written: their sums are exact.
  using Quantity = long double;
  struct Color {
    std::string name;
    Quantity unlotted = 0;
    std::map<std::int32_t, Quantity> lots;
  };
  using Colors = std::unordered_map<std::string, Color>;  // by the name in one case
  struct Stock {
    std::string name;
    Colors of[2];
  };

  Stock& StockOf(std::string_view database);
  Color& At(std::string_view database, ColorKind kind, std::string_view name);
  void Rename(std::string_view database, ColorKind kind, std::string_view oldName, std::string_view newName);
  void RenameDatabase(std::string_view oldName, std::string_view newName);

  std::map<std::string, Stock> databases_;
};

}  // namespace vellumark
