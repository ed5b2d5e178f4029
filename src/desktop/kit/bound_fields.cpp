#include "desktop/kit/bound_fields.h"

#include "desktop/kit/amount_field.h"
#include "desktop/kit/record_fields.h"

namespace vellumark::desktop {

FigureMaker ColorFigures(FormHost& host, std::function<bool()> shown) {
  return [&host, shown = std::move(shown)](NumberField& control, const RecordField& field) {
    MakeAmountField(host, control, *field.amount, field.Control(), shown);
  };
}

void BoundFields::Add(std::string_view column, Control control) {
  const RecordField& field = fields_[column];
  controls_.emplace_back(&field, control);
  std::visit([&](auto* bound) { bound->Means(field.Control()); }, control);
  if (auto* number = std::get_if<NumberField*>(&control); number != nullptr && field.amount)
    makeFigure_(**number, field);
}

void BoundFields::PutFrom(const void* record, const TypedTexts& typed, bool keepTyped) {
  for (auto& [field, control] : controls_) {
    const Value value = field->ValueIn(record);
    if (auto* check = std::get_if<CheckField*>(&control)) {
      desktop::Put(**check, value.Bool(), keepTyped);
      continue;
    }
    const std::string text = field->amount ? TypedText(typed, field->column) : value.Text();
    if (auto* one = std::get_if<TextField*>(&control)) desktop::Put(**one, text, keepTyped);
    if (auto* number = std::get_if<NumberField*>(&control)) desktop::Put(**number, text, keepTyped);
    if (auto* note = std::get_if<NoteField*>(&control)) desktop::Put(**note, text, keepTyped);
  }
}

void BoundFields::TakeInto(void* record, TypedTexts& typed) const {
  for (const auto& [field, control] : controls_) {
    if (auto* check = std::get_if<CheckField*>(&control)) {
      field->Flag(record) = (*check)->isChecked();
      continue;
    }
    std::string& text = field->amount ? typed[field->column] : field->Text(record);
    if (auto* one = std::get_if<TextField*>(&control)) text = (*one)->Text();
    if (auto* number = std::get_if<NumberField*>(&control)) text = (*number)->Text();
    if (auto* note = std::get_if<NoteField*>(&control)) text = (*note)->Text();
  }
}

void BoundFields::Clear() {
  for (auto& [field, control] : controls_) {
    if (auto* check = std::get_if<CheckField*>(&control)) desktop::Put(**check, false, false);
    if (auto* one = std::get_if<TextField*>(&control)) desktop::Put(**one, "", false);
    if (auto* number = std::get_if<NumberField*>(&control)) desktop::Put(**number, "", false);
    if (auto* note = std::get_if<NoteField*>(&control)) desktop::Put(**note, "", false);
  }
}

}  // namespace vellumark::desktop
