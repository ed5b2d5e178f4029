#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/inventory/lots.h"

namespace vellumark {

/// What is in stock of one colour, in the inventory unit.
struct ColorStock {
  ColorKind kind = ColorKind::Basic;
  std::string Color_Name;
  float Inventory = 0;
  std::vector<LotRow> lots;  ///< by `LotNumber`; empty while Lotted Inventory is off
  float lotted = 0;          ///< sum of the lots, three decimals
  float total = 0;
};

/// The stock of the current Database's colours by name, Basic Colors first, one at a time, until `take` answers false;
/// only those of a name or a kind when given.
void ForEachStock(const Session& session, std::optional<std::string_view> name, std::optional<ColorKind> wanted,
                  const std::function<bool(const ColorStock& stock)>& take);
std::vector<ColorStock> ListStock(const Session& session, std::optional<std::string_view> name = {},
                                  std::optional<ColorKind> wanted = {});

/// A colour whose total stock is below its reorder point.
struct LowStock {
  ColorKind kind = ColorKind::Basic;
  std::string Color_Name;
  float total = 0;
  float Reorder = 0;
};

/// Those of the current Database by name, Basic Colors first. Without a reorder point a colour is among them only when
/// its stock is below zero.
std::vector<LowStock> ColorsBelowReorder(const Session& session);

}  // namespace vellumark
