#pragma once

#include <QCoreApplication>
#include <array>

#include "core/labels/label_data.h"

namespace vellumark::desktop {

/// What the nine pictograms of hazard labels stand for, in the order of their numbers.
constexpr std::array<const char*, kPictograms> kPictogramNames{
    QT_TRANSLATE_NOOP("Pictograms", "Explosive"),   QT_TRANSLATE_NOOP("Pictograms", "Flammable"),
    QT_TRANSLATE_NOOP("Pictograms", "Oxidizing"),   QT_TRANSLATE_NOOP("Pictograms", "Gas under pressure"),
    QT_TRANSLATE_NOOP("Pictograms", "Corrosive"),   QT_TRANSLATE_NOOP("Pictograms", "Toxic"),
    QT_TRANSLATE_NOOP("Pictograms", "Irritant"),    QT_TRANSLATE_NOOP("Pictograms", "Health hazard"),
    QT_TRANSLATE_NOOP("Pictograms", "Environment")};

inline QString PictogramName(std::size_t place) {
  return QCoreApplication::translate("Pictograms", kPictogramNames.at(place));
}

}  // namespace vellumark::desktop
