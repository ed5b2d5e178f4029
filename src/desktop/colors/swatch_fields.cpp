#include "desktop/colors/swatch_fields.h"

#include <QColorDialog>
#include <algorithm>

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
  pick_ = form.Link("cmdPickSwatch", tr("Pick ..."), [this] { Pick(); });
  pick_->setAccessibleName(tr("Pick the swatch"));
  form.Row(tr("Swatch: red"), {parts_[0], form.Hint(tr("green")), parts_[1], form.Hint(tr("blue")), parts_[2], pick_});
}

void SwatchFields::Show(const BookData& book, bool keepTyped) {
  guide_ = book.Color_Guide;
  const std::array values{book.Red, book.Green, book.Blue};
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    Put(*parts_[i], book.HasSwatch() ? std::to_string(values[i]) : std::string(), keepTyped);
    parts_[i]->setReadOnly(!book.Color_Guide.empty());
  }
  pick_->setEnabled(book.Color_Guide.empty());
  ShowInk();
}

void SwatchFields::Clear() {
  guide_.clear();
  estimate_.reset();
  for (NumberField* part : parts_) Put(*part, "", false);
  pick_->setEnabled(false);
  ShowInk();
}

void SwatchFields::Estimate(const std::optional<Ink>& ink) {
  estimate_ = ink;
  ShowInk();
}

void SwatchFields::Take(ColorAttachments& attachments) const {
  if (std::ranges::none_of(parts_, &NumberField::IsDirty)) return;
  attachments.Red = parts_[0]->Text();
  attachments.Green = parts_[1]->Text();
  attachments.Blue = parts_[2]->Text();
}

// A part that is still blank counts as 0.
std::optional<Ink> SwatchFields::Typed() const {
  if (std::ranges::all_of(parts_, [](const NumberField* part) { return part->Text().empty(); })) return std::nullopt;
  const auto read = [&](std::size_t part, const char* name) {
    const std::string text = parts_[part]->Text();
    return ReadSwatchPart(name, text.empty() ? "0" : text);
  };
  const auto red = read(0, "Red"), green = read(1, "Green"), blue = read(2, "Blue");
  if (!red || !green || !blue) return std::nullopt;
  return Ink{*red, *green, *blue};
}

void SwatchFields::ShowInk() {
  const auto typed = Typed();
  ink_.Show(typed ? typed : estimate_);
}

void SwatchFields::Pick() {
  const auto now = Typed() ? Typed() : estimate_;
  const QColor at = now ? QColor(now->Red, now->Green, now->Blue) : QColor(Qt::white);
  const QColor chosen = QColorDialog::getColor(at, ink_.window(), tr("Swatch"));
  if (!chosen.isValid()) return;
  const std::array values{chosen.red(), chosen.green(), chosen.blue()};
  for (std::size_t i = 0; i < parts_.size(); ++i) parts_[i]->SetText(std::to_string(values[i]));
}

}  // namespace vellumark::desktop
