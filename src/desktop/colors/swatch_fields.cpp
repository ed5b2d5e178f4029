#include "desktop/colors/swatch_fields.h"

#include "core/colors/swatch.h"
#include "desktop/kit/record_fields.h"

namespace vellumark::desktop {

SwatchFields::SwatchFields(FormHost& host, Form& form, SwatchView& ink) : QObject(&host.Self()), ink_(ink) {
  const auto part = [&](const char* name, const char* column, const QString& caption) {
    NumberField* field = form.Number(name, 0, tr("0 to 255"), 4);
    field->Means(column);
    field->setAccessibleName(caption);
    connect(field, &QLineEdit::textChanged, this, &SwatchFields::ShowInk);
    return field;
  };
  parts_ = {part("txtRed", "Red", tr("Red")), part("txtGreen", "Green", tr("Green")),
            part("txtBlue", "Blue", tr("Blue"))};
  form.Row(tr("Swatch: red"), {parts_[0], form.Hint(tr("green")), parts_[1], form.Hint(tr("blue")), parts_[2]});
}

void SwatchFields::Show(const BookData& book, bool keepTyped) {
  guide_ = book.Color_Guide;
  const std::array values{book.Red, book.Green, book.Blue};
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    Put(*parts_[i], std::to_string(values[i]), keepTyped);
    parts_[i]->setReadOnly(!book.Color_Guide.empty());
  }
  ShowInk();
}

void SwatchFields::Clear() {
  guide_.clear();
  for (NumberField* part : parts_) Put(*part, "", false);
  ShowInk();
}

void SwatchFields::Take(ColorAttachments& attachments) const {
  if (parts_[0]->IsDirty()) attachments.Red = parts_[0]->Text();
  if (parts_[1]->IsDirty()) attachments.Green = parts_[1]->Text();
  if (parts_[2]->IsDirty()) attachments.Blue = parts_[2]->Text();
}

void SwatchFields::ShowInk() {
  const auto red = ReadSwatchPart("Red", parts_[0]->Text());
  const auto green = ReadSwatchPart("Green", parts_[1]->Text());
  const auto blue = ReadSwatchPart("Blue", parts_[2]->Text());
  if (!red || !green || !blue) return ink_.Show(std::nullopt);
  const BookData book{.Color_Guide = guide_, .Red = *red, .Green = *green, .Blue = *blue};
  ink_.Show(book.HasSwatch() ? std::optional(QColor(*red, *green, *blue)) : std::nullopt);
}

}  // namespace vellumark::desktop
