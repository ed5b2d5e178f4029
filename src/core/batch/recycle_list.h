#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/batch/batch_work.h"

namespace vellumark {

/// Fills RecycleList and FormulaRecycleList with every formula whose ingredients all stand in this one's, this one
/// included, in table order. Reads the rows that qualify and no others.
void BuildRecycleList(Session& session, BatchWork& work);

/// The formulas whose Color_Set is contained in `formulaSet`.
struct ContainedFormulas {
  std::vector<std::int64_t> rows;  ///< row numbers, in table order
  int mostItems = 0;               ///< of the longest set among them
};
ContainedFormulas FindContainedFormulas(Session& session, std::string_view formulaSet);

/// A formula as a colour of the list, all its stock usable, with what a chosen colour needs; its shares are not
/// counted. Nothing when there is none of that name.
std::optional<RecycleColor> ReadRecycleColor(Session& session, const BatchWork& work, std::string_view name);

/// Reads what only a chosen colour needs: code, notes, costs, emissions, reorder point.
void ReadChosenColor(Session& session, int unit, RecycleColor& color);

/// After a calculation or a change by hand: takes the chosen colours out of RecycleList and brings `Recycle_Percent`
/// and the order of the rest up to date. Builds the list first when it was never built.
void RefreshRecycleList(Session& session, BatchWork& work);

// ---- The panel that shows the list

enum class RecycleColumn { Name, Recycle, Inventory };

/// How the panel is sorted and filtered. Without a column the order is that of the list, largest share first.
struct RecycleListView {
  bool inventoryOnly = false;  ///< "Show Inv. Recycles"
  bool sorted = false;
  RecycleColumn column = RecycleColumn::Recycle;
  bool reversed = false;
};

struct RecycleListRow {
  std::string Color_Name;
  float Recycle_Percent = 0;  ///< the share, 0.25 for 25.00%, four decimals
  float Inventory = 0;
  bool highlighted = false;  ///< in stock and to be recycled
  std::size_t place = 0;     ///< in RecycleList
};

/// A click on a header sorts by its column, A to Z or largest first; a second click reverses it.
void ClickHeader(RecycleListView& view, RecycleColumn column);
/// Name, share and stock, in the order of RecycleColumn, under captions that tell how the list is sorted.
TableOf<RecycleListRow> RecycleListColumns(const RecycleListView& view, int unit);
/// The colours of which the recipe can take something.
std::vector<RecycleListRow> RecycleListRows(const BatchWork& work, const RecycleListView& view);

}  // namespace vellumark
