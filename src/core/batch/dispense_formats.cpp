#include "core/batch/dispense_formats.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"

namespace vellumark {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kEnd = "\r\n";

std::string OneLine(std::string text) {
  std::ranges::replace_if(text, [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text;
}

std::string DateText(const DateTime& now) {
  return fmt::format("{:02}-{:02}-{:04}", now.day, now.month, now.year);
}
std::string TimeText(const DateTime& now) {
  return fmt::format("{}:{}:{}", now.hour, now.minute, now.second);
}

std::string DatabaseText(const Session& session) {
  return session.CurrentDatabase + " Database";
}
std::string Notes(const BatchRecord& record) {
  return OneLine(record.fields.Notes) + " - " + OneLine(record.work.formula.Notes);
}

// What stands under "Recipe", the date in the form of the format.
Pairs RecipeOf(const BatchRecord& record, const DispenseJob& job, const std::string& date) {
  return {{"ProtocolVersion", "1"},
          {"Type", "Basic"},
          {"ID", OneLine(record.work.Color_Name)},
          {"Info", OneLine(record.fields.ShortNote)},
          {"Date", date},
          {"UseLeftOvers", job.UseLeftOvers ? "YES" : "NO"},
          {"Quantity", Fixed(job.DispensedTotal, 3)},
          {"AddInkQuantityFactor", ""},
          {"IFT", Fixed(100.0, 5)},
          {"WeightPerArea", Fixed(100.0, 5)}};
}

Pairs ComponentOf(const DispenseLine& line) {
  return {{"ID", OneLine(line.ID)}, {"Info", OneLine(line.Info)}, {"Part", ShortestText(line.Part)}};
}

std::string JsonText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    if (static_cast<unsigned char>(c) < 0x20) {
      quoted += fmt::format("\\u{:04x}", static_cast<int>(c));
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

// Writes objects whose indentation is part of the format.
class JsonWriter {
 public:
  JsonWriter() { Line(0, "{"); }
  void Open(int indent, std::string_view key) { Line(indent, JsonText(key) + " : {"); }
  void Close(int indent, bool last) { Line(indent, last ? "}" : "},"); }
  void Values(int indent, const Pairs& pairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i)
      Line(indent, JsonText(pairs[i].first) + " : " + JsonText(pairs[i].second) + (i + 1 < pairs.size() ? "," : ""));
  }
  void Section(std::string_view key, const Pairs& pairs, bool last = false) {
    Open(5, key);
    Values(10, pairs);
    Close(5, last);
  }
  std::string Done() {
    Line(0, "}");
    return std::move(text_);
  }

 private:
  void Line(int indent, std::string_view line) {
    text_.append(static_cast<std::size_t>(indent), ' ').append(line).append(kEnd);
  }
  std::string text_;
};

std::string PlainLines(const Session& session, const BatchRecord& record, const DispenseJob& job) {
  std::string text;
  const auto line = [&text](std::string_view value) { text.append(value).append(kEnd); };
  for (const std::string& value :
       {std::string("1"), DatabaseText(session), std::string("-"), OneLine(record.work.Color_Name), std::string("STAMM"),
        std::string("G"), std::to_string(job.lines.size()), ShortestText(job.DispensedTotal)})
    line(value);
  for (const DispenseLine& one : job.lines) {
    line(OneLine(one.ID));
    line(Fixed(one.Amount, 3));
    line("--");
  }
  line("");
  return text;
}

// No field is quoted, so that a comma inside one would begin another.
std::string Csv(const Session& session, const BatchRecord& record, const DispenseJob& job) {
  std::string text;
  const auto row = [&text](std::vector<std::string> fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      std::string field = OneLine(std::move(fields[i]));
      std::ranges::replace(field, ',', ' ');
      text += (i == 0 ? "" : ",") + field;
    }
    text += kEnd;
  };
  std::string unit(UnitName(record.work.UMF));
  if (unit.ends_with('.')) unit.pop_back();
  const std::string today = DateText(session.clock.Now());
  row({"*", "Material", "plant", "Ord Type", "Order#", "Description"});
  row({"COR1_H00", record.work.formula.Color_Code, "", "", std::to_string(record.BatchNo), record.work.Color_Name});
  row({"*", "Tot ord qty", "UOM", "Finish dt", "Ord start dt"});
  row({"COR1_H01", ShortestText(job.DispensedTotal), unit, today, today});
  row({"*", "Ingredient-Material", "Ingredient-desc", "req. qty", "UOM", "Item Cat", "Ind.revelancy", "St.Loc",
       "Batch#", "Backflush ind.", "Plant", "Operation#"});
  for (const DispenseLine& line : job.lines)
    row({"COR1_D00", line.Info, line.ID, Fixed(line.Amount, 3), unit, "L", "X", "1", "", "X", "", ""});
  row({"*"});
  return text;
}

}  // namespace

std::string ExportDataTo_GFI_SPEC(const Session& session, const BatchRecord& record, const DispenseJob& job) {
  std::string text;
  const auto line = [&text](std::string_view value) { text.append(value).append(kEnd); };
  const auto values = [&](const Pairs& pairs) {
    for (const auto& [key, value] : pairs) line(key + "=" + (key == "AddInkQuantityFactor" ? "" : "\t" + value));
  };
  const DateTime now = session.clock.Now();
  line("[Recipe]");
  values(RecipeOf(record, job, DateText(now) + "\t" + TimeText(now)));
  line("");
  line("[Assortment]");
  values({{"ID", DatabaseText(session)}, {"Info", Notes(record)}});
  line("");
  for (std::size_t k = 0; k < job.lines.size(); ++k) {
    line(fmt::format("[Component{}]", k + 1));
    values(ComponentOf(job.lines[k]));
    line("");
  }
  line("[MeasValue]");
  line("M_Cond=");
  line("Remission=");
  line("");
  line("[ActRecipe]");
  line("M_Cond=");
  line("Remission=");
  return text;
}

std::string ExportDataTo_JSON(const Session& session, const BatchRecord& record, const DispenseJob& job) {
  const Pairs conditions{{"M_Cond=", ""}, {"Remission=", ""}};
  const DateTime now = session.clock.Now();
  JsonWriter json;
  json.Section("Recipe", RecipeOf(record, job, DateText(now) + "_" + TimeText(now)));
  json.Section("Assortment", {{"ID", DatabaseText(session)}, {"Info", Notes(record)}});
  json.Open(5, "Components");
  for (std::size_t k = 0; k < job.lines.size(); ++k) {
    json.Open(10, fmt::format("Component{}", k + 1));
    json.Values(15, ComponentOf(job.lines[k]));
    json.Close(10, k + 1 == job.lines.size());
  }
  json.Close(5, false);
  json.Section("MeasValue", conditions);
  json.Section("ActRecipe", conditions, true);
  return json.Done();
}

std::string DispenseText(const Session& session, const BatchRecord& record, const DispenseJob& job,
                         std::string_view format) {
  if (format == "FGI" || format == "SPK") return ExportDataTo_GFI_SPEC(session, record, job);
  if (format == "JSON" || format == "JSON txt") return ExportDataTo_JSON(session, record, job);
  if (format == "NFL") return PlainLines(session, record, job);
  if (format == "XNI") return Csv(session, record, job);
  throw Failure("Dispenser", fmt::format("has a format that is not known: {}", format));
}

}  // namespace vellumark
