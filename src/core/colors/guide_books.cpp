#include "core/colors/guide_books.h"

#include <fmt/format.h>

#include "core/base/text.h"

namespace vellumark {

GuideBooks ReadGuideBooks(Database& guides, std::span<const std::string_view> tables) {
  GuideBooks books;
  for (const std::string_view table : tables) {
    if (!guides.TableExists(table)) continue;
    Statement row = guides.Prepare(fmt::format("SELECT Color_Name, {} FROM {}", BookFields().Columns(), Quoted(table)));
    while (row.Step()) {
      BookData book;
      BookFields().Read(row, 1, book);
      books.emplace(Upper(row.TextView(0)), book);
    }
  }
  return books;
}

}  // namespace vellumark
