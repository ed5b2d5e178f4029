#pragma once

#include <QIcon>
#include <QString>

namespace vellumark::desktop {

/// A picture of data/icons by its name ("Batch", "low-stock"), in the colours of the theme that is in force when it is
/// painted, sharp at any size. A name that has no file is the caller's mistake: std::logic_error.
QIcon Icon(const QString& name);
bool HasIcon(const QString& name);

}  // namespace vellumark::desktop
