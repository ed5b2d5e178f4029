#pragma once

#include "desktop/kit/name_box.h"

namespace vellumark::desktop {

/// A field for a Design ID, completed as the name of a colour is. An ID may be longer than names may, and hold more.
class DesignBox : public NameBox {
  Q_OBJECT

 public:
  DesignBox(const QString& name, const Session& session);
  /// Offers the Designs as they are now.
  void ListIDs();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  const Session& session_;
};

}  // namespace vellumark::desktop
