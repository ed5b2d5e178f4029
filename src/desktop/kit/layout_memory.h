#pragma once

#include <QMap>
#include <QString>
#include <QVariantMap>
#include <QWidget>

#include "core/session/session.h"

namespace vellumark::desktop {

/// Under what key something of the user who is logged in is remembered.
QString KeyOfUser(const Session& session, const QString& key);

/// A grid whose window keeps its layout in the settings of the Database bears this property; nobody else keeps it.
inline constexpr const char* kLayoutInSettings = "layoutInSettings";

/// What the operator makes of the inside of a window: the widths that he drags, his sort, the columns that he chooses,
/// the sides of a splitter; by the names of grids, columns and splitters.
class LayoutMemory {
 public:
  /// Makes a window, or a page of it that is there only now, as it was left.
  void Begin(const QWidget& part, const QString& key);
  /// Remembers what differs from how the window made itself.
  void Keep(const QWidget& window) const;

 private:
  QString key_;
  QVariantMap kept_;
  QMap<QString, QVariantMap> plain_;  ///< the grids as the window made them
};

}  // namespace vellumark::desktop
