#include "core/colors/color_figure.h"

#include <fmt/format.h>

namespace vellumark {

float ColorFigure(const Session& session, ColorKind kind, std::string_view name, std::string_view field,
                  std::string_view database) {
  return session.File()
      .Scalar(fmt::format("SELECT {} FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1", Quoted(field),
                          session.QuotedTable(ColorTable(kind), database)),
              {name})
      .Single();
}

}  // namespace vellumark
