#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

/// Whose names are searched.
enum class NameKind { Basics, Additives, Formulas };

// All of these are answered from the index of names, whatever the number of rows. They search the current Database
// unless another one is named.

/// What the typed text completes to while a name is typed: the first name that begins with it, tried behind "PANTONE "
/// first. Empty when there is none.
std::string CompleteName(const Session& session, NameKind whose, std::string_view typed,
                         std::string_view database = {});
/// The names that begin with the typed text, those behind "PANTONE " first, at most `limit`.
std::vector<std::string> NamesFrom(const Session& session, NameKind whose, std::string_view typed, std::size_t limit,
                                   std::string_view database = {});

/// The names beside this one in Color_Name order, whether or not it is on file; beside an empty name the first or the
/// last. Empty past either end.
std::string NextName(const Session& session, NameKind whose, std::string_view name);
std::string PreviousName(const Session& session, NameKind whose, std::string_view name);

}  // namespace vellumark
