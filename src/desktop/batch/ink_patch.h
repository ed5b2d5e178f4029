#pragma once

#include <QColor>
#include <QWidget>
#include <optional>

#include "core/batch/ink.h"

namespace vellumark::desktop {

inline QColor ColorOf(const Ink& ink) {
  return {ink.Red, ink.Green, ink.Blue};
}

/// Of a colour that has a swatch.
inline std::optional<QColor> InkColor(const Session& session, ColorKind kind, const std::string& name) {
  const std::optional<Ink> ink = InkOf(session, kind, name);
  return ink ? std::optional(ColorOf(*ink)) : std::nullopt;
}

/// A small patch of ink beside a name; its place stays empty while the colour has no swatch.
class InkPatch : public QWidget {
  Q_OBJECT

 public:
  InkPatch(const QString& name, int size);
  void Show(const std::optional<Ink>& ink);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<Ink> ink_;
};

}  // namespace vellumark::desktop
