#include "cli/stock_text.h"

namespace vellumark::cli {

void AddKindOption(CLI::App* verb, std::string& kind) {
  verb->add_option("--kind", kind, "Which is meant when both bear the name")
      ->transform(CLI::IsMember({"basic", "formula"}, CLI::ignore_case));
}

std::optional<ColorKind> KindOf(const std::string& option) {
  if (option.empty()) return std::nullopt;
  return option == "formula" ? ColorKind::Mix : ColorKind::Basic;
}

Result<Json> AnswerStock(Context& context, ColorKind kind, const std::string& name) {
  if (context.json) return RowJson(ListColorStock(context.session, name, kind));
  return context.Answer(ListStockLines(context.session, name, kind));
}

}  // namespace vellumark::cli
