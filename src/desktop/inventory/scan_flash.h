#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>
#include <optional>

#include "core/colors/ink.h"

namespace vellumark::desktop {

/// What the last line of a scan came to, to be seen from the other end of the bench: the whole of it lights up for a
/// moment, and then a bar of the same colour stays beside the word and the ink.
class ScanFlash : public QWidget {
  Q_OBJECT

 public:
  enum class Kind { Idle, Waiting, Good, Bad };

  explicit ScanFlash(const QString& name);
  void Show(Kind kind, const QString& head, const QString& text, const std::optional<Ink>& ink = {});
  Kind Shown() const { return kind_; }
  QString Text() const { return text_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor Signal() const;

  Kind kind_ = Kind::Idle;
  QString head_;
  QString text_;
  std::optional<Ink> ink_;
  QTimer light_;
};

}  // namespace vellumark::desktop
