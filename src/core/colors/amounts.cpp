#include "core/colors/amounts.h"

#include <fmt/format.h>

#include <cmath>

#include "core/base/number.h"
#include "core/colors/names.h"
#include "core/session/acts.h"

namespace vellumark {
namespace {

struct Rule {
  std::string_view title;
  double lowest;
};

Rule RuleOf(AmountKey key) {
  switch (key) {
    case AmountKey::Currency:
      return {"Invalid Purchase Cost", 0};
    case AmountKey::Reorder:
      return {"Invalid Reorder", 0};
    case AmountKey::VOC:
      return {"Invalid VOC", 0};
    case AmountKey::HAP:
      return {"Invalid HAP", 0};
    case AmountKey::AdjInv:
      return {"Invalid Adjust Inv.", -kLargestAmount};
    case AmountKey::Lab:
      return {"Lab Values", -kLargestAmount};
  }
  return {};
}

}  // namespace

int DecimalsOf(const Session& session, AmountKey key) {
  if (key == AmountKey::Currency) return session.DecimalPlaces;
  return key == AmountKey::Lab ? 2 : 3;
}

std::string AmountText(const Session& session, AmountKey key, float value) {
  return Fixed(value, DecimalsOf(session, key));
}

Result<float> ReadAmount(const Session& session, AmountKey key, std::string_view typed, std::string_view field) {
  const Rule rule = RuleOf(key);
  if (const auto number = ParseNumber(typed); number && std::fabs(*number) < 1e15) {
    const int decimals = DecimalsOf(session, key);
    const double rounded = RoundTo(*number, decimals);
    if (rounded >= rule.lowest && rounded <= kLargestAmount) return RoundSingle(rounded, decimals);
  }
  return Refuse(Padded(30, rule.title),
                fmt::format("You must enter {} between\n{} and {}",
                            key == AmountKey::Currency ? "currency" : "an amount", rule.lowest, kLargestAmount),
                std::string(field));
}

TypedTexts FigureTexts(const Session& session, const FieldList& fields, const void* record) {
  TypedTexts texts;
  for (const RecordField& field : fields)
    if (field.amount) texts[field.column] = AmountText(session, *field.amount, field.ValueIn(record).Single());
  return texts;
}

Result<void> ReadFigures(const Session& session, const FieldList& fields, const TypedTexts& typed,
                         const TypedTexts& loaded, void* record) {
  for (const RecordField& field : fields) {
    if (!field.amount) continue;
    const auto value = ReadAmount(session, *field.amount, TypedText(typed, field.column), field.Control());
    if (!value) return std::unexpected(value.error());
    field.Single(record) = *value;
  }
  // The fields drop keys without the right; a caller without fields is stopped here.
  for (const RecordField& field : fields) {
    if (!field.amount) continue;
    if (AmountText(session, *field.amount, field.Single(record)) == TypedText(loaded, field.column)) continue;
    if (auto right = RequireRight(session, *field.amount, field.Control()); !right)
      return std::unexpected(right.error());
  }
  return {};
}

Result<void> RequireRight(const Session& session, AmountKey key, std::string_view field) {
  const auto deny = [&](std::string_view what) {
    return Refuse("Permission Denied",
                  fmt::format("{}, you do not have permission to change {}.", session.CurrentUser, what),
                  std::string(field));
  };
  if (key == AmountKey::Currency && !MayDo(session, Act::EditCosts)) return deny("costs");
  const bool emissions = MayDo(session, Act::EditEmissions);
  if (key == AmountKey::VOC && !emissions) return deny("VOC Values");
  if (key == AmountKey::HAP && !emissions) return deny("HAP Values");
  return {};
}

Result<void> RequireFormulaRight(const Session& session) {
  return RequireCommandRight(session, CommandRight::MasterFormula);
}

}  // namespace vellumark
