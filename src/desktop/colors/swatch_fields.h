#pragma once

#include <QObject>
#include <array>

#include "core/colors/attachments.h"
#include "desktop/kit/form.h"
#include "desktop/kit/swatch_view.h"

namespace vellumark::desktop {

/// Red, green and blue of a colour's swatch, set by hand unless a guide gives them, and the ink that they make.
class SwatchFields : public QObject {
  Q_OBJECT

 public:
  /// A row of `form`; `ink` shows the colour.
  SwatchFields(FormHost& host, Form& form, SwatchView& ink);

  void Show(const BookData& book, bool keepTyped);
  void Clear();
  /// What is shown while the colour has no swatch of its own.
  void Estimate(const std::optional<Ink>& ink);
  /// What was typed.
  void Take(ColorAttachments& attachments) const;

 private:
  std::optional<Ink> Typed() const;
  void ShowInk();
  void Pick();

  SwatchView& ink_;
  std::string guide_;
  std::optional<Ink> estimate_;
  std::array<NumberField*, 3> parts_{};
  CommandButton* pick_ = nullptr;
};

}  // namespace vellumark::desktop
