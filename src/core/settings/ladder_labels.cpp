#include "core/settings/ladder_labels.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "core/base/text.h"
#include "core/settings/label_defaults.h"
#include "core/settings/settings.h"

namespace vellumark {
namespace {

// The records of a default layout that belong to an item: its name, a blank, and what follows.
std::vector<SupportRecord> ItemRecords(const std::vector<SupportRecord>& layout, std::string_view item) {
  std::vector<SupportRecord> records;
  for (const SupportRecord& record : layout)
    if (record.key.starts_with(item) && record.key.substr(item.size()).starts_with(' ')) records.push_back(record);
  return records;
}

}  // namespace

void AddMiscTexts(LadderRun& run) {
  SupportRecords& label = run.Label();
  const std::vector<std::string> layouts = SplitMarked(run.settings.Get(setting::LabelLayoutList.key), '|');
  for (std::size_t i = 1; i < layouts.size(); ++i)
    for (int text = 1; text <= 4; ++text) {
      const std::string item = fmt::format("Misc Text {}", text);
      if (label.Contains(layouts[i], item + " FontBold"))
        AddMissingAfter(label, layouts[i], item + " FontBold", {{{}, item + " Text", ""}});
    }
}

void AddBarCodes(LadderRun& run) {
  SupportRecords& label = run.Label();
  for (const std::string& layout : label.Layouts()) {
    AddMissingAfter(label, layout, "Paper Type ID", {{{}, "Label BC Type", "Not Using"}});
    std::vector<SupportRecord> added;
    for (const std::string_view item : {"Misc Bar Code Data 1", "Misc Bar Code Data 2"})
      for (SupportRecord& record : ItemRecords(DefaultLabel(layout), item))
        if (!record.key.ends_with(" Combined")) added.push_back(std::move(record));
    AddMissingAfter(label, layout, "Pantone Trademark FontBold", std::move(added));
  }
  const std::vector<SupportRecord> records = label.Records();
  for (const SupportRecord& record : records)
    if (record.key.find("BC FontName") != std::string::npos) label.Set(record.layout, record.key, "Code 128");
}

void AddCombinedBarCodes(LadderRun& run) {
  SupportRecords& label = run.Label();
  for (const std::string& layout : label.Layouts())
    for (const std::string item : {"Misc Bar Code Data 1", "Misc Bar Code Data 2"})
      AddMissingAfter(label, layout, item + " FontBold", {{{}, item + " Combined", ""}});
}

void AddLotItems(LadderRun& run) {
  SupportRecords& label = run.Label();
  for (const std::string& layout : label.Layouts()) {
    const std::vector<SupportRecord> whole = DefaultLabel(layout);
    std::vector<SupportRecord> added = ItemRecords(whole, "Lot Location");
    for (SupportRecord& record : ItemRecords(whole, "Lot Cont ID")) added.push_back(std::move(record));
    AddMissingAfter(label, layout, "Lot Number FontBold", std::move(added));
  }
}

void AddHazardRecords(LadderRun& run) {
  SupportRecords& label = run.HazardLabel();
  for (const std::string& layout : label.Layouts())
    for (const SupportRecord& record : DefaultHazardLabel(layout)) {
      constexpr std::string_view enabled = " Enabled";
      constexpr std::string_view bold = " FontBold";
      if (!record.key.ends_with(enabled) && !record.key.ends_with(bold)) continue;
      const std::string item = record.key.substr(0, record.key.rfind(' '));
      AddMissingAfter(label, layout, item + " FontSize", {record});
    }
  run.settings.Set(setting::GH_LabelTemplate_Version.key, "2");
}

void AddFormulaDate(LadderRun& run) {
  SupportRecords& label = run.FormulaLabel();
  for (const std::string& layout : label.Layouts())
    AddMissingAfter(label, layout, "Formula FontBold", ItemRecords(DefaultFormulaLabel(layout), "Date"));
  run.settings.Set(setting::Formula_LabelTemplate_Version.key, "2");
}

}  // namespace vellumark
