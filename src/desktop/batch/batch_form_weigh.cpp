// How the rows of the Batch Window are weighed and sent to a dispenser, and how a weight changes them.

#include <algorithm>
#include <utility>

#include "core/batch/bench.h"
#include "core/batch/dispense.h"
#include "core/scale/scale_setup.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/batch_form_took.h"
#include "desktop/batch/rows_panel.h"

namespace vellumark::desktop {
namespace {

WeighTolerance ToleranceOf(const ScaleSetup& setup) {
  return {setup.WeighTolerance, setup.WeighToleranceInPercent};
}

}  // namespace

void BatchForm::cmdWeigh_Click() {
  if (!FieldsEntered()) return;
  Arguments arguments{{"Bench", static_cast<WeighBench*>(this)}, {"Owner", static_cast<QObject*>(this)}};
  if (const auto row = std::exchange(weighFrom_, std::nullopt)) arguments.Set("Row", *row);
  Window* scale = windows.OpenForm("BatchScaleWeighForm", arguments);
  if (scale == nullptr) return;
  // Over what the pour does not need, so that the rows stay in sight.
  const QPoint corner = mapToGlobal(QPoint(width() - scale->frameGeometry().width(), 0));
  scale->move(std::max(corner.x(), 0), corner.y());
}

std::optional<WeighTicket> BatchForm::NextRow(std::optional<std::size_t> wanted) {
  const ScaleSetup setup = ReadScaleSetup(session);
  const auto next = NextWeighing(session, record_, wanted, ToleranceOf(setup), setup.WeighHeaviestFirst);
  if (!Took(next)) return std::nullopt;
  rows_->FocusAmount(static_cast<int>(next->row));
  return *next;
}

std::size_t BatchForm::RowsLeft() const {
  const ScaleSetup setup = ReadScaleSetup(session);
  return RowsToWeigh(record_, ToleranceOf(setup), setup.WeighHeaviestFirst).size();
}

bool BatchForm::TakeWeight(const WeighTicket& ticket, double weight) {
  const WeighTolerance tolerance = ToleranceOf(ReadScaleSetup(session));
  const auto taken = TakePour(session, record_, ticket, weight, tolerance);
  Show();
  if (!Took(taken)) return false;
  PrintChange(taken->overpour);
  // Another amount than the recipe's comes from somewhere, reformulated or not.
  const bool other =
      ComparePour(weight, ticket.target, tolerance.Of(ticket.target, ticket.UMF)) != PourEnd::OnTarget;
  if (other && session.InvLotTracking != 0 && record_.work.Rows.at(taken->row).lotLink)
    LotsClicked(static_cast<int>(taken->row));
  return true;
}

void BatchForm::cmdDispense_Click() {
  if (!FieldsEntered() || !Took(CheckDispense(record_))) return;
  const auto chosen = windows.RunDialog("DispenserSelector");
  if (chosen) Took(Dispense(session, record_, chosen->Get<DispenseChoice>("Choice")));
}

void BatchForm::WeighingEnds() {
  window()->activateWindow();
  save_->setFocus();
}

}  // namespace vellumark::desktop
