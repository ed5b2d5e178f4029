#include "core/colors/name_search.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/colors/names.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

// Behind every name that begins with the text before it, in the order of names.
constexpr std::string_view kPastAll = "\U0010FFFF";

std::string TableText(const Session& session, NameKind whose, std::string_view database = {}) {
  return session.QuotedTable(whose == NameKind::Formulas ? schema::Mix : schema::Basic, database);
}

std::string_view Condition(NameKind whose) {
  return whose == NameKind::Additives ? " AND Additive <> 0" : "";
}

Statement BeginningWith(const Session& session, NameKind whose, std::size_t limit, std::string_view database) {
  return session.File().Prepare(
      fmt::format("SELECT Color_Name FROM {} WHERE Color_Name >= ?1 AND Color_Name < ?2{} ORDER BY Color_Name LIMIT {}",
                  TableText(session, whose, database), Condition(whose), limit));
}

void BindBeginning(Statement& row, std::string_view prefix, std::string_view typed) {
  const std::string begin = std::string(prefix).append(typed);
  row.Bind(1, begin).Bind(2, begin + std::string(kPastAll));
}

}  // namespace

std::string CompleteName(const Session& session, NameKind whose, std::string_view typed, std::string_view database) {
  if (typed.empty()) return {};
  Statement row = BeginningWith(session, whose, 1, database);
  for (const std::string_view prefix : {kPantonePrefix, std::string_view()}) {
    BindBeginning(row, prefix, typed);
    if (row.Step()) return row.Text(0);
    row.Reset();
  }
  return {};
}

std::vector<std::string> NamesFrom(const Session& session, NameKind whose, std::string_view typed, std::size_t limit,
                                   std::string_view database) {
  std::vector<std::string> names;
  Statement row = BeginningWith(session, whose, limit, database);
  for (const std::string_view prefix : {kPantonePrefix, std::string_view()}) {
    BindBeginning(row, prefix, typed);
    while (names.size() < limit && row.Step()) {
      // A few typed letters of the prefix find the same names twice.
      std::string name = row.Text(0);
      if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
    }
    row.Reset();
  }
  return names;
}

std::string NextName(const Session& session, NameKind whose, std::string_view name) {
  return session.File()
      .Scalar(fmt::format("SELECT Color_Name FROM {} WHERE Color_Name > ?{} ORDER BY Color_Name LIMIT 1",
                          TableText(session, whose), Condition(whose)),
              {name})
      .Text();
}

std::string PreviousName(const Session& session, NameKind whose, std::string_view name) {
  // Behind everything stands no name, so that the last one is before it.
  const std::string_view from = name.empty() ? kPastAll : name;
  return session.File()
      .Scalar(fmt::format("SELECT Color_Name FROM {} WHERE Color_Name < ?{} ORDER BY Color_Name DESC LIMIT 1",
                          TableText(session, whose), Condition(whose)),
              {from})
      .Text();
}

}  // namespace vellumark
