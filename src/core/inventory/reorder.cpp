#include "core/inventory/reorder.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/inventory/adjust.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Adjust Reorder Point";

std::unexpected<Refusal> NotFound(const Session& session) {
  return Refuse(std::string(kTitle) + " - Color not found",
                fmt::format("This color was not found in the {} database.", session.CurrentDatabase), "Color_Name");
}

}  // namespace

Result<ColorKind> ChooseReorderColor(const Session& session, const std::string& name, std::optional<ColorKind> wanted) {
  const bool basic = wanted != ColorKind::Mix && ColorIsThere(session, ColorKind::Basic, name);
  const bool mix = wanted != ColorKind::Basic && ColorIsThere(session, ColorKind::Mix, name);
  if (!basic && !mix) return NotFound(session);
  if (!basic || !mix) return mix ? ColorKind::Mix : ColorKind::Basic;
  const bool formula = session.prompt.Ask(
      std::string(kTitle) + " - Adjust Master Formula Reorder Point?",
      fmt::format("The {} database contains both a Master Formula {} and a Basic Color {}.\n\nClick Yes to adjust the "
                  "Master Formula's Reorder Point, Click No to adjust the Basic Color's Reorder Point.",
                  session.CurrentDatabase, name, name));
  return formula ? ColorKind::Mix : ColorKind::Basic;
}

Result<float> ReadReorderPoint(std::string_view typed) {
  const auto number = ParseNumber(typed);
  const double value = number ? RoundTo(*number, 3) : -1;
  if (value < 0 || value > static_cast<double>(kLargestQty))
    return Refuse(std::string(kTitle) + " - Invalid Reorder Point",
                  "You must enter a Reorder Point > 0 and < " + Fixed(kLargestQty, 0), "Reorder");
  return static_cast<float>(value);
}

Result<void> SaveReorderPoint(Session& session, ColorKind kind, const std::string& name, std::string_view typed) {
  if (const auto writable = RequireWritable(session); !writable) return writable;
  const auto value = ReadReorderPoint(typed);
  if (!value) return std::unexpected(value.error());
  if (!ColorIsThere(session, kind, name)) return NotFound(session);
  if (*value <= TotalStock(session, kind, name))
    session.prompt.Tell(std::string(kTitle),
                        "This color will not appear on the Reorder Report because\nit's Reorder Point is less than "
                        "it's current Inventory.");
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SaveReorderPoint, fmt::format("Reorder point of {}", name));
  session.File()
      .Prepare(fmt::format("UPDATE {} SET Reorder = ?1 WHERE Color_Name = ?2", session.QuotedTable(ColorTable(kind))))
      .Bind(1, *value)
      .Bind(2, name)
      .Run();
  transaction.Note({ChangeKind(kind), session.CurrentDatabase, name, Change::What::Updated, ""});
  step.Keep();
  transaction.Commit();
  return {};
}

}  // namespace vellumark
