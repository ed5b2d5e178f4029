#pragma once

#include "desktop/kit/name_box.h"

namespace vellumark::desktop {

inline constexpr int kJobNumberLength = 30;

/// A field for a job number, completed as the name of a colour is. What numbers may consist of is wider than names.
class JobBox : public NameBox {
  Q_OBJECT

 public:
  JobBox(const QString& name, const Session& session);
  /// As it would be left now: without scan tag, trimmed and cut.
  std::string Number() const;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

}  // namespace vellumark::desktop
