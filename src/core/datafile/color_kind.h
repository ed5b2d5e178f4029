#pragma once

#include "core/base/changes.h"
#include "core/datafile/schema.h"

namespace vellumark {

/// The item code of a colour: what `ItemType` of a Job Record and `IngType` of a Design hold. Whatever is not a Mix (a
/// Master Formula) is a Basic Color; an Additive is one with a flag, not a code of its own.
enum class ColorKind : int { Basic = 1, Mix = 2 };

inline const Table& ColorTable(ColorKind kind) {
  return kind == ColorKind::Mix ? schema::Mix : schema::Basic;
}
inline const Table& LotTable(ColorKind kind) {
  return kind == ColorKind::Mix ? schema::MixLotInv : schema::BasicLotInv;
}
inline const Table& LabTable(ColorKind kind) {
  return kind == ColorKind::Mix ? schema::MixLab : schema::BasicLab;
}
inline Change::Kind ChangeKind(ColorKind kind) {
  return kind == ColorKind::Mix ? Change::Kind::Mix : Change::Kind::Basic;
}

}  // namespace vellumark
