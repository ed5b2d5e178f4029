#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/cloud/shared_accounts.h"

namespace vellumark {

/// What is asked of the stock of other shops.
struct CloudStockWish {
  std::string color{};  ///< this one alone
  bool showBasics = true;
  bool showMixes = true;
  bool inStockOnly = false;                       ///< no colour that has nothing, loose or in lots
  int consignment = 0;                            ///< 0 all stock, 1 what is owned, 2 what is on consignment
  std::vector<std::string> databases{};           ///< "account/Database"; empty: all
  std::function<bool(std::string_view)> reads{};  ///< which of a shop's Databases, by its name; empty: all
};

/// A figure of another shop's stock: what is unlotted of a colour, or a lot. Quantities and prices are in the unit of
/// this installation where the other shop tells its own.
struct CloudStockRow {
  ShareRow share;
  std::string Database;
  std::string Color_Name;
  std::string Color_Type;
  std::string Color_Code;
  double Reorder = 0;
  std::string Inv_Note;
  bool inLot = false;  ///< else it is the colour's unlotted stock
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
  double LotQty = 0;
  double LotPrice = 0;
  bool Consignment = false;
};

/// Gives what lies here of one account, colour by colour, each with its lots behind it, until `take` says false; then
/// false too. Throws Failure of a file that cannot be read.
bool ReadShareStock(const Session& session, const ShareRow& share, const CloudStockWish& wish,
                    const std::function<bool(const CloudStockRow&)>& take);

struct CloudStock {
  std::vector<CloudStockRow> rows;  ///< by account, Database, kind and name
  std::vector<std::string> faults;  ///< of files that cannot be read, a line each
};
/// Reads what lies here of the accounts of the list; it was fetched before. Refused: nobody in the list, and when
/// nothing is found.
Result<CloudStock> ReadCloudStock(Session& session, const CloudStockWish& wish);
/// Without prices for a user who may not see them.
ListTable CloudStockTable(const Session& session, std::vector<CloudStockRow> rows);

}  // namespace vellumark
