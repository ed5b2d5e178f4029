#pragma once

#include <functional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/datafile/field_map.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/form_host.h"

namespace vellumark::desktop {

/// What makes a field the control of a figure.
using FigureMaker = std::function<void(NumberField&, const RecordField&)>;
/// Figures of a colour (see MakeAmountField); `shown` tells that there is a record on screen.
FigureMaker ColorFigures(FormHost& host, std::function<bool()> shown);

/// The controls of a record's fields: a refusal finds them by their columns, and the values go into them and come back
/// in one step each.
class BoundFields {
 public:
  /// `fields` must outlive this.
  BoundFields(const FieldList& fields, FigureMaker makeFigure) : fields_(fields), makeFigure_(std::move(makeFigure)) {}

  using Control = std::variant<TextField*, NumberField*, NoteField*, CheckField*>;
  template <class F>
  F* Bind(std::string_view column, F* control) {
    Add(column, control);
    return control;
  }

  /// What a work of the core holds (see ColorWork); `keepTyped` leaves alone what the operator has changed.
  template <class Work>
  void Put(const Work& work, bool keepTyped) {
    PutFrom(static_cast<const typename Work::Record*>(&work), work.typed, keepTyped);
  }
  template <class Work>
  void Take(Work& work) const {
    TakeInto(static_cast<typename Work::Record*>(&work), work.typed);
  }
  void Clear();

 private:
  void Add(std::string_view column, Control control);
  void PutFrom(const void* record, const TypedTexts& typed, bool keepTyped);
  void TakeInto(void* record, TypedTexts& typed) const;

  const FieldList& fields_;
  FigureMaker makeFigure_;
  std::vector<std::pair<const RecordField*, Control>> controls_;
};

}  // namespace vellumark::desktop
