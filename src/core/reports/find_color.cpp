#include "core/reports/find_color.h"

#include <fmt/format.h>

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::string_view kGuide = "PANTONE ";

// The name as it is on file.
std::optional<std::string> NameOnFile(const Session& session, ColorKind kind, const std::string& database,
                                      std::string_view typed) {
  for (const std::string& name : {std::string(typed), std::string(kGuide) + std::string(typed)}) {
    const Value found = session.File().Scalar(
        fmt::format("SELECT Color_Name FROM {} WHERE Color_Name = ?1", session.QuotedTable(ColorTable(kind), database)),
        {name});
    if (!found.IsNull()) return found.Text();
  }
  return std::nullopt;
}

// A Job's item is of one kind; what Batches took of a name is told of all that bears it.
bool IsOfOneKind(const ReportDefinition& report) {
  return report.subject == ReportSubject::Formula || report.group.find("Jobs") != std::string::npos;
}

bool WantsFormula(const ReportContext& context, const std::string& database, const std::string& name) {
  return context.session.prompt.Ask(
      "Show Master Formula Job Usage Report?",
      fmt::format(
          "The {0} database contains both a Master Formula {1} and a Basic Color {1}. \n\nClick Yes to show the "
          "Master Formula's Job Usage Report, Click No to show the Basic Color's Job Usage Report.",
          database, name));
}

}  // namespace

Result<std::pair<std::string, std::optional<ColorKind>>> FindReportColor(const ReportContext& context,
                                                                         std::string_view typed,
                                                                         std::optional<ColorKind> wanted) {
  using Found = std::pair<std::string, std::optional<ColorKind>>;
  const std::string name = Trim(typed);
  if (context.report.subject == ReportSubject::Formula) wanted = ColorKind::Mix;
  for (const std::string& database : context.databases) {
    if (name.empty()) break;
    std::optional<std::string> basic;
    std::optional<std::string> mix;
    if (wanted != ColorKind::Mix) basic = NameOnFile(context.session, ColorKind::Basic, database, name);
    if (wanted != ColorKind::Basic) mix = NameOnFile(context.session, ColorKind::Mix, database, name);
    if (!basic && !mix) continue;
    // What is called exactly so goes before what is called so behind "PANTONE ".
    if (basic && mix && !EqualNoCase(*basic, *mix)) (EqualNoCase(*basic, name) ? mix : basic).reset();
    const std::string& found = mix ? *mix : *basic;
    if (!wanted && !IsOfOneKind(context.report)) return Found{found, std::nullopt};
    if (basic && mix) return Found{found, WantsFormula(context, database, found) ? ColorKind::Mix : ColorKind::Basic};
    return Found{found, mix ? ColorKind::Mix : ColorKind::Basic};
  }
  return Refuse("Color Not Found", "This Color could not be found", "cmbColorName");
}

std::vector<std::string> CompleteReportColor(const Session& session, std::string_view typed, std::size_t most) {
  std::vector<std::string> names;
  for (const std::string& begin : {std::string(kGuide) + Upper(typed), Upper(typed)}) {
    Statement rows = session.File().Prepare(
        fmt::format("SELECT Color_Name FROM {} WHERE Color_Name LIKE ?1 ESCAPE '\\' ORDER BY Color_Name LIMIT ?2",
                    session.QuotedTable(schema::Mix)));
    rows.Bind(1, LikeLiteral(begin) + "%").Bind(2, static_cast<std::int64_t>(most));
    while (rows.Step()) names.push_back(rows.Text(0));
    if (!names.empty()) break;
  }
  return names;
}

}  // namespace vellumark
