#pragma once

#include <cstdint>
#include <string>

#include "core/colors/normalise.h"
#include "core/session/session.h"

namespace vellumark {

/// What a merge compares with, and puts back when it is undone.
struct PresentRecipe {
  Recipe recipe;
  std::string AddSetName;
  std::optional<DateTime> LastModified;
};

/// Reads them of any Database of the file, row by row; prepared once for many.
class PresentRecipes {
 public:
  PresentRecipes(const Session& session, std::string_view database);
  /// Without a recipe when the row is gone.
  PresentRecipe Read(std::int64_t key);

 private:
  Statement row_;
};

}  // namespace vellumark
