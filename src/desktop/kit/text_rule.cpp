#include "desktop/kit/text_rule.h"

#include <QLocale>

#include "core/base/text.h"
#include "core/colors/names.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

std::optional<QChar> TextRule::Key(QChar typed) const {
  switch (kind_) {
    case Kind::Any:
      return typed;
    case Kind::Upper: {
      // The capital that the core would make, so that a field never shows another one.
      const QString upper = Q(vellumark::Upper(U8(QString(typed))));
      return upper.isEmpty() ? typed : upper.front();
    }
    case Kind::DatabaseName:
      if (typed == '.') return std::nullopt;
      [[fallthrough]];
    case Kind::Name:
    case Kind::ScannedName: {
      const auto key = NameKey(typed.unicode(), kind_ == Kind::ScannedName ? NameKeys::Scanned : NameKeys::Plain);
      return key ? std::optional(QChar(static_cast<unsigned char>(*key))) : std::nullopt;
    }
    case Kind::Digits:
      return typed >= '0' && typed <= '9' ? std::optional(typed) : std::nullopt;
    case Kind::Number: {
      if ((typed >= '0' && typed <= '9') || typed == '-') return typed;
      const QString point = QLocale().decimalPoint();
      if (typed == '.' || QString(typed) == point) return point.front();
      return std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace vellumark::desktop
