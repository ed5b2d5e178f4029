#pragma once

#include <vector>

#include "core/base/sheet.h"
#include "core/batch/adjust.h"
#include "core/batch/record.h"

namespace vellumark {

// What is printed of a Batch. The session must outlive what is made here.

/// A line of the Batch on its ticket; `note` marks a recycled colour of which less is used than could be, and an
/// addition.
struct TicketRow {
  std::string name;
  double amount = 0;  ///< as it is shown, in the Batch's unit
  std::string unit;
  std::string note;
};
TableOf<TicketRow> TicketColumns();
std::vector<TicketRow> TicketRows(const BatchWork& work);

/// The Batch ticket with the blocks that the settings choose; costs only for those who may see them. Refused while the
/// rows are not those of the quantity, and without any.
Result<Sheet> BatchTicket(Session& session, const BatchRecord& record);

/// After an over-pour: what became of the amounts.
Sheet ChangeSheet(const BatchRecord& record, std::vector<AmountChange> changes);

/// The Recycle List, less what the settings leave out. Refused while the rows are not those of the quantity.
Result<Sheet> RecycleListSheet(const Session& session, const BatchWork& work);

}  // namespace vellumark
