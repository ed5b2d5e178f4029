#pragma once

#include <QString>
#include <QWidget>

#include "core/session/session.h"

class QLabel;

namespace vellumark::desktop {

/// The band at the top of the windows that tell of the program: icon, name and version on the ground of the icon, its
/// lower edge a calm wave of ink. It looks the same in both themes.
class BrandBand : public QWidget {
  Q_OBJECT

 public:
  explicit BrandBand(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Who answers for what, in the program's own words.
QString WarrantyText();
/// The notices that came with the guides of the current Database; empty when there are none.
QString DatabaseNotices(const Session& session);
/// Text of any length to be read in `width` pixels; beyond a few lines it scrolls.
QWidget* ReadingText(const QString& text, const QString& name, int width);

}  // namespace vellumark::desktop
