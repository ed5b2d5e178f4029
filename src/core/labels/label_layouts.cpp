#include "core/labels/label_layouts.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <tuple>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/text.h"
#include "core/labels/barcodes.h"
#include "core/session/settings.h"
#include "core/settings/label_defaults.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

const Setting<std::string>& ListOf(LabelKind kind) {
  switch (kind) {
    case LabelKind::Hazard:
      return setting::GH_LabelLayoutList;
    case LabelKind::Formula:
      return setting::Formula_LabelLayoutList;
    case LabelKind::Label:
      break;
  }
  return setting::LabelLayoutList;
}

SupportFile& FileOf(const Session& session, LabelKind kind) {
  switch (kind) {
    case LabelKind::Hazard:
      return session.support->hazardLabel;
    case LabelKind::Formula:
      return session.support->formulaLabel;
    case LabelKind::Label:
      break;
  }
  return session.support->label;
}

std::vector<SupportRecord> DefaultsOf(LabelKind kind, std::string_view layout) {
  switch (kind) {
    case LabelKind::Hazard:
      return DefaultHazardLabel(layout);
    case LabelKind::Formula:
      return DefaultFormulaLabel(layout);
    case LabelKind::Label:
      break;
  }
  return DefaultLabel(layout);
}

void TellLayouts(Session& session, LabelKind kind, const std::vector<std::string>& names) {
  StoreSettings(session, {ListOf(kind).To(JoinMarked(names, '|'))});
}

// Positions, sizes and counts of labels are whole numbers from 0; these keys tell how many at most.
constexpr int kMostTwips = 200 * 1440;
constexpr int kMostLabels = 100;
constexpr int kLargestFont = 400;

bool IsWholeBetween(std::string_view value, const LabelBounds& bounds) {
  const auto number = ParseNumber(value);
  return number && *number == static_cast<int>(*number) && *number >= bounds.least && *number <= bounds.most;
}

// What the key can be, where the value is not that.
std::string WhatKeyShouldBe(std::string_view key, std::string_view value) {
  const auto oneOf = [&](std::initializer_list<std::string_view> choices) {
    if (std::ranges::find(choices, value) != choices.end()) return std::string();
    return fmt::format("one of \"{}\"", fmt::join(choices, "\", \""));
  };
  if (const auto bounds = BoundsOfLabelKey(key))
    return IsWholeBetween(value, *bounds) ? std::string()
                                          : fmt::format("a whole number from {} to {}", bounds->least, bounds->most);
  if (key == "Label_UOM") return oneOf({"in.", " mm."});
  if (key == "Picto Size") return oneOf({"2", "1.75", "1.50", "1.25", "1", ".75", ".50", ".25"});
  if (key == "Label BC Type")
    return oneOf({SymbologyName(Symbology::NotUsing), SymbologyName(Symbology::Code39),
                  SymbologyName(Symbology::Code39Check), SymbologyName(Symbology::Code128)});
  if (key.ends_with(" FontBold")) return oneOf({"True", "False"});
  return {};
}

// A design with every key of a new layout, under its name.
std::vector<SupportRecord> Completed(LabelKind kind, std::string_view name, const std::vector<SupportRecord>& design) {
  std::vector<SupportRecord> records = DefaultsOf(kind, name);
  for (SupportRecord& record : records) {
    const auto found = std::ranges::find(design, record.key, &SupportRecord::key);
    if (found == design.end()) continue;
    // What an older layout lacks reads as empty, which most keys cannot be.
    if (!found->value.empty() || WhatKeyShouldBe(record.key, {}).empty()) record.value = found->value;
  }
  return records;
}

Result<void> CheckDesign(const std::vector<SupportRecord>& records) {
  for (const SupportRecord& record : records)
    if (auto checked = CheckLabelValue(record.key, record.value); !checked) return checked;
  return {};
}

constexpr std::string_view kPictureKey = "Picture Image Location";

// Copies a picture from elsewhere to the pictures of labels; the name that it has there, and the file if it is new.
Result<std::pair<std::string, std::filesystem::path>> KeepPicture(const Session& session,
                                                                  const std::filesystem::path& picture) {
  const std::filesystem::path folder = PicturesOfLabels(session);
  if (picture.parent_path() == folder) return std::pair{picture.filename().string(), std::filesystem::path()};
  std::error_code error;
  if (!std::filesystem::is_regular_file(picture, error))
    return Refuse("Picture Selection", picture.string() + " is no longer there.", std::string(kPictureKey));
  const std::string bytes = ReadFileBytes(picture, kLargestLabelPicture + 1);
  if (bytes.size() > kLargestLabelPicture)
    return Refuse("Picture Selection", picture.string() + " is too large for a picture of a label.",
                  std::string(kPictureKey));
  MakeFolder(folder);
  const std::string stem = picture.stem().string();
  const std::string ending = picture.extension().string();
  for (int number = 1;; ++number) {
    const std::string name = number == 1 ? stem + ending : fmt::format("{} {}{}", stem, number, ending);
    const std::filesystem::path target = folder / name;
    if (std::filesystem::exists(target, error)) {
      if (ReadFileBytes(target, kLargestLabelPicture + 1) == bytes) return std::pair{name, std::filesystem::path()};
      continue;
    }
    ReplaceFile(target, bytes);
    return std::pair{name, target};
  }
}

// Writes values, one of which may be the location of a picture: one elsewhere is kept and named by its new name, unless
// the write fails.
Result<void> WriteWithPicture(const Session& session, std::string* location, const std::function<void()>& write) {
  std::filesystem::path made;
  if (location != nullptr && std::filesystem::path(*location).is_absolute()) {
    auto kept = KeepPicture(session, *location);
    if (!kept) return std::unexpected(kept.error());
    std::tie(*location, made) = *std::move(kept);
  }
  try {
    write();
  } catch (...) {
    std::error_code error;
    if (!made.empty()) std::filesystem::remove(made, error);
    throw;
  }
  return {};
}

Result<void> WriteDesign(Session& session, LabelKind kind, std::vector<SupportRecord> records) {
  if (auto checked = CheckDesign(records); !checked) return checked;
  const auto picture = std::ranges::find(records, kPictureKey, &SupportRecord::key);
  auto written = WriteWithPicture(session, picture == records.end() ? nullptr : &picture->value, [&] {
    FileOf(session, kind).Change([&](SupportRecords& file) {
      file.RemoveRecords(records.front().layout);
      for (const SupportRecord& record : records) file.Append(record.layout, record.key, record.value);
    });
  });
  if (written) session.changes.Tell({{Change::Kind::Settings, "", "", Change::What::All, ""}});
  return written;
}

constexpr std::size_t kLongestName = 60;

Result<std::string> ReadLayoutName(std::string_view typed) {
  std::string name = Trim(typed);
  if (name.empty()) return Refuse("Label Layout", "Please enter a name for this Label Layout.", "txtLabelName");
  if (CharCount(name) > kLongestName || name.find_first_of("|\"\r\n") != std::string::npos || !FitsCp1252(name))
    return Refuse(
        "Label Layout",
        fmt::format("The name of a Label Layout has up to {} characters, and none of | and \".", kLongestName),
        "txtLabelName");
  return name;
}

}  // namespace

int LabelDesign::Number(std::string_view key) const {
  return LeadingInteger(Text(key));
}

LabelDesign ReadLabelDesign(const Session& session, LabelKind kind, std::string_view layout) {
  return {kind, std::string(layout), LabelRecords(session, kind, layout)};
}

LabelDesign NewLabelDesign(LabelKind kind) {
  return {kind, std::string(DefaultLayoutName), DefaultsOf(kind, DefaultLayoutName)};
}

std::filesystem::path PicturesOfLabels(const Session& session) {
  return session.DataFolder / "Label Images";
}

std::optional<LabelBounds> BoundsOfLabelKey(std::string_view key) {
  if (key == "Labels Across" || key == "Labels Down") return LabelBounds{1, kMostLabels};
  if (key == "Label Length" || key == "Label Width") return LabelBounds{1, kMostTwips};
  if (key == "Orientation") return LabelBounds{0, 3};
  if (key.ends_with(" Visible") || key.ends_with(" Title") || key.ends_with(" Enabled")) return LabelBounds{0, 1};
  if (key.ends_with(" FontSize")) return LabelBounds{1, kLargestFont};
  if (key.ends_with(" Top") || key.ends_with(" Left") || key.ends_with(" Margin")) return LabelBounds{0, kMostTwips};
  return std::nullopt;
}

Result<void> CheckLabelValue(std::string_view key, std::string_view value) {
  if (const std::string should = WhatKeyShouldBe(key, value); !should.empty())
    return Refuse("Label Layout", fmt::format("{} is {}, not \"{}\".", key, should, value), std::string(key));
  if (HoldsForeignName(key)) return {};
  if (value.find_first_of("\"\r\n") != std::string_view::npos)
    return Refuse("Label Layout", "A text of a Label Layout cannot hold the character \".", std::string(key));
  if (!FitsCp1252(value))
    return Refuse(
        "Label Layout",
        fmt::format("{} cannot hold \"{}\": it has a character that the file of layouts does not know.", key, value),
        std::string(key));
  return {};
}

std::vector<std::string> LabelLayouts(const Session& session, LabelKind kind) {
  return SplitMarked(GetSetting(session, ListOf(kind)), '|');
}

Result<std::string> FindLabelLayout(const Session& session, LabelKind kind, std::string_view name) {
  for (std::string& known : LabelLayouts(session, kind))
    if (EqualNoCase(known, TrimView(name))) return std::move(known);
  return Refuse("Label Layout", fmt::format("There is no Label Layout '{}'.", Trim(name)), "cmbLabelName");
}

std::string LabelSetting(const Session& session, LabelKind kind, std::string_view layout, std::string_view key) {
  return FileOf(session, kind).GetSupportValue(layout, key);
}

int LabelNumber(const Session& session, LabelKind kind, std::string_view layout, std::string_view key) {
  return LeadingInteger(LabelSetting(session, kind, layout, key));
}

Result<void> SaveLabelSetting(Session& session, LabelKind kind, std::string_view layout, std::string_view key,
                              std::string_view value) {
  const auto name = FindLabelLayout(session, kind, layout);
  if (!name) return std::unexpected(name.error());
  const std::vector<SupportRecord> defaults = DefaultsOf(kind, *name);
  if (std::ranges::find(defaults, key, &SupportRecord::key) == defaults.end())
    return Refuse("Label Layout", fmt::format("A Label Layout has no key {}.", key), "KEY");
  if (auto checked = CheckLabelValue(key, value); !checked) {
    checked.error().field = "VALUE";
    return checked;
  }
  std::string kept(value);
  return WriteWithPicture(session, key == kPictureKey ? &kept : nullptr, [&] {
    FileOf(session, kind).Change([&](SupportRecords& file) {
      if (!file.Set(*name, key, kept)) file.InsertAfter(*name, key, {{*name, std::string(key), kept}});
    });
  });
}

std::vector<SupportRecord> LabelRecords(const Session& session, LabelKind kind, std::string_view layout) {
  std::vector<SupportRecord> records = DefaultsOf(kind, layout);
  const SupportRecords file = FileOf(session, kind).Read();
  for (SupportRecord& record : records) record.value = file.Get(layout, record.key);
  return records;
}

Result<void> SaveLabelLayout(Session& session, LabelKind kind, std::string_view layout,
                             const std::vector<SupportRecord>& design) {
  const auto name = FindLabelLayout(session, kind, layout);
  if (!name) return std::unexpected(name.error());
  const std::vector<SupportRecord> records = Completed(kind, *name, design);
  if (auto checked = CheckDesign(records); !checked) return checked;
  if (!session.prompt.Ask("Overwrite Label Layout?", fmt::format("Overwrite the existing Label Layout '{}'?", *name),
                          Answer::Yes))
    return Decline("Overwrite Label Layout?");
  return WriteDesign(session, kind, records);
}

Result<void> AddLabelLayout(Session& session, LabelKind kind, std::string_view typed,
                            const std::vector<SupportRecord>& design) {
  auto name = ReadLayoutName(typed);
  if (!name) return std::unexpected(name.error());
  const auto known = FindLabelLayout(session, kind, *name);
  if (known) {
    name = *known;
    if (!session.prompt.Ask("Overwrite Existing Label Layout?",
                            fmt::format("Overwrite existing {} Label Layout?", *name), Answer::No))
      return Decline("Overwrite Existing Label Layout?", "txtLabelName");
  }
  // The records first: a layout of the list has them whatever happens in between.
  if (auto written = WriteDesign(session, kind, Completed(kind, *name, design)); !written) return written;
  if (known) return {};
  std::vector<std::string> names = LabelLayouts(session, kind);
  names.push_back(*name);
  TellLayouts(session, kind, names);
  return {};
}

Result<void> CopyLabelLayout(Session& session, LabelKind kind, std::string_view layout, std::string_view name) {
  const auto from = FindLabelLayout(session, kind, layout);
  if (!from) return std::unexpected(from.error());
  const std::vector<SupportRecord> design = FileOf(session, kind).Read().Records();
  std::vector<SupportRecord> its;
  std::ranges::copy_if(design, std::back_inserter(its), [&](const SupportRecord& r) { return r.layout == *from; });
  return AddLabelLayout(session, kind, name, its);
}

Result<void> DeleteLabelLayout(Session& session, LabelKind kind, std::string_view layout) {
  const auto name = FindLabelLayout(session, kind, layout);
  if (!name) return std::unexpected(name.error());
  std::vector<std::string> names = LabelLayouts(session, kind);
  if (names.size() == 1)
    return Refuse("Delete Label Layout?",
                  "The last Label Layout cannot be deleted: there is nothing to print without one.", "cmbLabelName");
  if (!session.prompt.Ask("Delete Label Layout?",
                          fmt::format("Are you sure you want to permanently delete the Label Layout '{}'?", *name),
                          Answer::No))
    return Decline("Delete Label Layout?");
  std::erase(names, *name);
  TellLayouts(session, kind, names);
  FileOf(session, kind).RemoveRecords(*name);
  return {};
}

}  // namespace vellumark
