#pragma once

#include <string>
#include <string_view>

#include "core/colors/amounts.h"

namespace vellumark {

/// What the window of a colour holds: the record as it was loaded, with what was set since, and its figures as they
/// stand in the fields. A colour with the row number 0 is a new one.
template <class Color>
struct ColorWork : Color {
  using Record = Color;
  TypedTexts typed;
  TypedTexts loaded;  ///< what has changed since needs a right
};

/// The figures of the record into the fields, as loaded.
template <class Color>
void ShowFigures(const Session& session, const FieldMap<Color>& fields, ColorWork<Color>& work) {
  work.loaded = work.typed = FigureTexts(session, fields, static_cast<const Color*>(&work));
}

/// A new record of the name and what was typed: figures checked (see ReadFigures), texts as they are stored.
template <class Color>
Result<Color> ReadTyped(const Session& session, const FieldMap<Color>& fields, const ColorWork<Color>& work);

/// Notes as they are saved: blanks at the ends go, then line ends one by one, so that a note ends in no empty line.
std::string TrimmedNotes(std::string_view notes);

/// What a save writes of a colour that is there.
inline constexpr std::initializer_list<FieldUse> kSavedUses{FieldUse::Key, FieldUse::Typed};

}  // namespace vellumark
