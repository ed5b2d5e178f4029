#include "core/upgrade/upgrade_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

#include "core/base/number.h"

namespace vellumark {
namespace {

constexpr std::int64_t kGroup = 1'000'000'000;
constexpr std::size_t kDigits = 9;

std::int64_t NumberOf(std::string_view digits) {
  std::int64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

std::string HeadLine(const UpgradeReport& report) {
  return fmt::format("{} of file version {} {} {}.", report.source.string(), report.fromVersion,
                     report.dryRun ? "would be brought up to version" : "was brought up to version", report.toVersion);
}

std::string SumLine(const UpgradeSum& sum) {
  return sum.Same() ? fmt::format("{}: {}, before and after", sum.What, sum.Before)
                    : fmt::format("{}: {} before, {} after", sum.What, sum.Before, sum.After);
}

std::string TableLine(const UpgradeTable& table) {
  std::string text = fmt::format("{}: {} read, {} written", table.Table, table.Read, table.Written);
  if (table.Made > 0) text += fmt::format(", {} made", table.Made);
  if (table.Left > 0) text += fmt::format(", {} left out", table.Left);
  if (table.Mended > 0) text += fmt::format(", {} mended", table.Mended);
  return text;
}

std::string LineText(const StepLine& line) {
  return fmt::format("{}{}{}: {}{}", line.Step, line.Table.empty() ? "" : ", ", line.Table, line.What,
                     line.Count == 1 ? "" : fmt::format(" ({})", line.Count));
}

struct Section {
  const char* heading;
  const char* outcome;
  const std::vector<StepLine>* lines;
};

std::vector<Section> SectionsOf(const UpgradeReport& report) {
  return {{"What could not be read", "Damaged", &report.damaged},
          {"What did not come in", "Refused", &report.refused},
          {"Names that were changed", "Renamed", &report.names},
          {"What to look at", "To look at", &report.left},
          {"What was changed", "Changed", &report.changes}};
}

std::string Verdict(const UpgradeReport& report) {
  if (report.Balanced()) return "Every row is accounted for, and the sums are the same to the last digit.";
  return "Not every sum is the same: the lines below tell why.";
}

}  // namespace

void ExactSum::Add(double number) {
  if (number == 0) return;
  const auto single = static_cast<float>(number);
  const std::string text = static_cast<double>(single) == number ? ShortestText(single) : ShortestText(number);
  const std::int64_t sign = text.front() == '-' ? -1 : 1;
  const std::string_view digits = std::string_view(text).substr(sign < 0 ? 1 : 0);
  const std::size_t point = std::min(digits.find('.'), digits.size());
  int group = 0;
  for (std::size_t end = point; end > 0;) {
    const std::size_t begin = end > kDigits ? end - kDigits : 0;
    groups_[group++] += sign * NumberOf(digits.substr(begin, end - begin));
    end = begin;
  }
  group = -1;
  for (std::size_t begin = point + 1; begin < digits.size(); begin += kDigits) {
    std::string piece(digits.substr(begin, kDigits));
    piece.resize(kDigits, '0');
    groups_[group--] += sign * NumberOf(piece);
  }
}

std::string ExactSum::Text() const {
  if (groups_.empty()) return "0";
  const int low = std::min(0, groups_.begin()->first);
  const int high = std::max(0, groups_.rbegin()->first) + 2;
  // Each group between 0 and its size; what is left at the top is the sign.
  const auto normal = [&](std::int64_t sign, std::int64_t& top) {
    std::vector<std::int64_t> digits;
    std::int64_t carry = 0;
    for (int group = low; group <= high; ++group) {
      const auto found = groups_.find(group);
      const std::int64_t all = (found == groups_.end() ? 0 : sign * found->second) + carry;
      carry = all >= 0 ? all / kGroup : -((-all + kGroup - 1) / kGroup);
      digits.push_back(all - carry * kGroup);
    }
    top = carry;
    return digits;
  };
  std::int64_t top = 0;
  std::vector<std::int64_t> digits = normal(1, top);
  const bool below = top < 0;
  if (below) digits = normal(-1, top);
  std::string whole;
  std::string fraction;
  for (int group = high; group >= 0; --group) whole += fmt::format("{:09}", digits[static_cast<std::size_t>(group - low)]);
  for (int group = -1; group >= low; --group)
    fraction += fmt::format("{:09}", digits[static_cast<std::size_t>(group - low)]);
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size() - 1));
  fraction.erase(fraction.find_last_not_of('0') + 1);
  const bool nothing = whole == "0" && fraction.empty();
  return (below && !nothing ? "-" : "") + whole + (fraction.empty() ? "" : "." + fraction);
}

bool UpgradeReport::Balanced() const {
  return std::ranges::all_of(sums, &UpgradeSum::Same) && std::ranges::all_of(tables, [](const UpgradeTable& table) {
           return table.Read + table.Made == table.Written + table.Left;
         });
}

std::vector<StepLineOf> LinesOf(const UpgradeReport& report) {
  std::vector<StepLineOf> lines;
  for (const Section& section : SectionsOf(report))
    for (const StepLine& line : *section.lines) lines.push_back({line, section.outcome});
  return lines;
}

const TableOf<UpgradeTable>& UpgradeTableColumns() {
  using T = UpgradeTable;
  static const TableOf<T> columns = TableOf<T>()
                                        .Add("Table", &T::Table, "Table")
                                        .Width(2600)
                                        .Add("Read", &T::Read, "Rows Read")
                                        .Width(1600)
                                        .Add("Made", &T::Made, "Made")
                                        .Width(1000)
                                        .Add("Left", &T::Left, "Left Out")
                                        .Width(1000)
                                        .Add("Written", &T::Written, "Written")
                                        .Width(1200)
                                        .Add("Mended", &T::Mended, "Mended")
                                        .Width(1300);
  return columns;
}

std::string UpgradeText(const UpgradeReport& report) {
  std::string text = HeadLine(report) + "\n";
  text += fmt::format("{} {}\n", report.dryRun ? "It would stand in" : "It stands in", report.file.string());
  if (report.jet) text += "The file that was read stays as it is.\n";
  text += "\n" + Verdict(report) + "\n";
  text += "\nSums of the file\n";
  for (const UpgradeSum& sum : report.sums) text += "  " + SumLine(sum) + "\n";
  text += "\nRows of the tables\n";
  for (const UpgradeTable& table : report.tables) text += "  " + TableLine(table) + "\n";
  for (const Section& section : SectionsOf(report)) {
    if (section.lines->empty()) continue;
    text += fmt::format("\n{}\n", section.heading);
    for (const StepLine& line : *section.lines) text += "  " + LineText(line) + "\n";
  }
  return text;
}

Sheet UpgradeSheet(const UpgradeReport& report) {
  Sheet sheet{.title = "Data File Update Report", .subtitle = report.file.filename().string()};
  SheetBlock head{.lines = {HeadLine(report), Verdict(report)}};
  sheet.blocks.push_back(std::move(head));
  SheetBlock sums{.heading = "Sums of the file"};
  for (const UpgradeSum& sum : report.sums)
    sums.fields.push_back({sum.What, sum.Same() ? sum.Before : fmt::format("{} before, {} after", sum.Before, sum.After)});
  sheet.blocks.push_back(std::move(sums));
  sheet.blocks.push_back({.heading = "Rows of the tables", .table = UpgradeTableColumns().Of(report.tables)});
  for (const Section& section : SectionsOf(report)) {
    if (section.lines->empty()) continue;
    SheetBlock block{.heading = section.heading};
    for (const StepLine& line : *section.lines) block.lines.push_back(LineText(line));
    sheet.blocks.push_back(std::move(block));
  }
  return sheet;
}

}  // namespace vellumark
