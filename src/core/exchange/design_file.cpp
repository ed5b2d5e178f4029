#include "core/exchange/design_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <system_error>
#include <unordered_set>

#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/photo_steps.h"
#include "core/datafile/references.h"
#include "core/exchange/text_file.h"
#include "core/exchange/text_rows.h"
#include "core/jobs/design_uses.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLengthUnit = "LengthUnit";
constexpr std::string_view kQtyUnit = "QtyUnit";
constexpr std::string_view kExportTitle = "Export Designs";
constexpr std::string_view kImportTitle = "Design Import";
constexpr double kMostQuantity = 1e9;

fs::path PhotosBeside(const fs::path& file) {
  return fs::absolute(file).parent_path() / "DesignPhotos";
}

std::string CellText(const RecordField& field, const Design& design) {
  const Value value = field.ValueIn(&design);
  if (value.IsNull()) return {};
  if (field.type == RecordField::Type::Date) return value.Date()->ToText();
  if (field.type == RecordField::Type::Single) return ShortestText(value.Single());
  return value.IsText() ? EscapedCell(value.Text()) : std::to_string(value.Whole());
}

std::string RowText(const Session& session, const Design& design) {
  std::string row;
  for (const RecordField& field : DesignFields()) row += CellText(field, design) + "\t";
  return row + "in.\t" + std::string(UnitName(session.UMI)) + "\r\n";
}

std::string HeaderText() {
  std::string row;
  for (const RecordField& field : DesignFields()) row += field.column + "\t";
  return row.append(kLengthUnit).append("\t").append(kQtyUnit).append("\r\n");
}

// The pictures that are to lie beside the file, each with the one in the library. Refused before anything is written.
Result<std::map<fs::path, fs::path>> PhotosToCopy(const Session& session, const std::vector<Design>& designs,
                                                  const fs::path& folder) {
  std::map<fs::path, fs::path> copies;
  std::error_code error;
  for (const Design& design : designs)
    for (const std::string& name : design.Photos()) {
      const auto source = PhotoFile(session, name);
      const fs::path target = folder / name;
      if (!source || fs::equivalent(*source, target, error)) continue;
      if (fs::exists(target, error)) {
        if (ReadFileBytes(target) == ReadFileBytes(*source)) continue;
        return Refuse(std::string(kExportTitle),
                      fmt::format("{} is another picture than the photo of {}.\n\nChoose another folder.",
                                  target.string(), design.DesignID));
      }
      copies.emplace(target, *source);
    }
  return copies;
}

// Reads the cells of a file by the names of their columns.
class RowReader {
 public:
  RowReader(const Session& session, const std::vector<std::string_view>& header) : session_(session) {
    for (std::size_t i = 0; i < header.size(); ++i) places_.emplace(Upper(TrimView(header[i])), i);
    width_ = header.size();
  }

  bool IsOfDesigns() const {
    return std::ranges::all_of(
        std::initializer_list<const char*>{"DESIGNID", "DESCRIPTION", "INGNAME0", "INGQTY0", "INGDB0", "PHOTOSET"},
        [this](const char* name) { return places_.contains(name); });
  }

  Result<Design> Read(const std::vector<std::string_view>& cells) const {
    if (cells.size() != width_) return Bad(fmt::format("it has {} cells in the place of {}", cells.size(), width_));
    Design design;
    for (const RecordField& field : DesignFields()) {
      const auto place = places_.find(Upper(field.column));
      if (place == places_.end()) continue;
      if (auto read = Take(field, UnescapedCell(cells[place->second]), design); !read)
        return std::unexpected(read.error());
    }
    if (auto turned = IntoOwnUnits(design, cells); !turned) return std::unexpected(turned.error());
    if (auto checked = Check(design); !checked) return std::unexpected(checked.error());
    return design;
  }

 private:
  static std::unexpected<Refusal> Bad(std::string why) { return Refuse(std::string(kImportTitle), std::move(why)); }

  static Result<void> Take(const RecordField& field, const std::string& text, Design& design) {
    using Type = RecordField::Type;
    if (field.type == Type::Text) {
      field.Text(&design) = text;
      return {};
    }
    if (TrimView(text).empty()) return {};
    if (field.type == Type::Date) {
      const auto date = ParseDateTime(text);
      if (!date) return Bad(fmt::format("{} of {} is no date", text, field.column));
      (field.column == "Created"    ? design.Created
       : field.column == "LastUsed" ? design.LastUsed
                                    : design.LastModified) = date;
      return {};
    }
    const auto number = ParseNumber(text);
    const bool whole = field.type != Type::Single;
    if (!number || *number < 0 || *number > (whole ? 2147483647.0 : kMostQuantity) ||
        (whole && std::floor(*number) != *number))
      return Bad(fmt::format("{} of {} is no number that it can be", text, field.column));
    if (!whole) {
      field.Single(&design) = static_cast<float>(*number);
    } else if (field.column == "Impressions") {
      design.Impressions = static_cast<std::int32_t>(*number);
    } else {
      const bool type = field.column.starts_with("IngType");
      DesignColor& slot = design.slots.at(static_cast<std::size_t>(field.column.back() - '0'));
      if (*number > (type ? 255 : 100)) return Bad(fmt::format("{} of {} is too much", text, field.column));
      if (type) {
        slot.IngType = static_cast<std::uint8_t>(*number);
      } else {
        slot.IngPercent = static_cast<std::int32_t>(*number);
      }
    }
    return {};
  }

  // A file that tells no units is in inches and in this Data File's own.
  Result<void> IntoOwnUnits(Design& design, const std::vector<std::string_view>& cells) const {
    if (const auto place = places_.find(Upper(kLengthUnit)); place != places_.end()) {
      const auto unit = ParseLengthUnit(cells[place->second]);
      if (!unit) return Bad(fmt::format("{} is no unit of length", cells[place->second]));
      for (float* length : {&design.Length, &design.Width})
        if (*unit != LengthUnit::Inch) *length = static_cast<float>(InInches(*length, *unit));
    }
    if (const auto place = places_.find(Upper(kQtyUnit)); place != places_.end()) {
      const auto unit = ParseUnit(cells[place->second]);
      if (!unit) return Bad(fmt::format("{} is no unit of weight", cells[place->second]));
      for (DesignColor& slot : design.slots)
        if (*unit != session_.UMI)
          slot.IngQty = static_cast<float>(double{slot.IngQty} * double{UnitFactor(*unit, session_.UMI)});
    }
    return {};
  }

  static Result<void> Check(Design& design) {
    design.DesignID = ReadDesignID(design.DesignID);
    if (design.DesignID.empty()) return Bad("it has no DesignID");
    if (design.DesignID == "- SPLIT -") return Bad("- SPLIT - stands for several jobs");
    std::vector<DesignColor> colors;
    for (DesignColor& slot : design.slots) {
      slot.IngName = Upper(TrimView(slot.IngName));
      if (slot.IngName.empty()) continue;
      if (slot.Kind() != ColorKind::Mix) slot.IngType = static_cast<std::uint8_t>(ColorKind::Basic);
      colors.push_back(slot);
    }
    design.SetColors(colors);
    std::vector<std::string> photos;
    for (const std::string& name : design.Photos()) {
      auto read = ReadPhotoName(name);
      if (!read) return Bad(fmt::format("{} cannot be the name of a photo", name));
      if (!ContainsPhoto(photos, *read)) photos.push_back(*std::move(read));
    }
    design.PhotoSet = NameSet(photos);
    // A text that its field cannot hold is refused, never cut.
    try {
      for (const Cell& cell :
           DesignFields().Cells(design, {FieldUse::Key, FieldUse::Typed, FieldUse::Kept, FieldUse::Derived}))
        (void)FittedValue(schema::Designs.fields[static_cast<std::size_t>(schema::Designs.Find(cell.first))],
                          schema::Designs.name, cell.second);
    } catch (const BadValue& bad) {
      return Bad(bad.what());
    }
    return {};
  }

  const Session& session_;
  std::map<std::string, std::size_t> places_;
  std::size_t width_ = 0;
};

// What a file can tell of a Design; LastUsed goes by the jobs of its own Data File.
std::vector<Cell> ComparedCells(const Design& design) {
  auto cells = DesignFields().Cells(design, {FieldUse::Key, FieldUse::Typed, FieldUse::Kept, FieldUse::Derived});
  std::erase_if(cells, [](const Cell& cell) { return cell.first == "LastUsed" || cell.first == "LastModified"; });
  return cells;
}

Result<std::vector<IncomingDesign>> Chosen(std::vector<IncomingDesign> designs, const std::vector<std::string>& ids) {
  if (ids.empty()) return designs;
  for (const std::string& id : ids)
    if (std::ranges::none_of(designs, [&](const auto& d) { return EqualNoCase(d.design.DesignID, ReadDesignID(id)); }))
      return Refuse(std::string(kImportTitle), fmt::format("The file has no Design {}.", ReadDesignID(id)), "DesignID");
  std::erase_if(designs, [&](const IncomingDesign& incoming) {
    return std::ranges::none_of(
        ids, [&](const auto& id) { return EqualNoCase(incoming.design.DesignID, ReadDesignID(id)); });
  });
  return designs;
}

// What becomes of the photos of a Design that comes in: its PhotoSet, and the pictures that are to be written.
class PhotoImport {
 public:
  PhotoImport(const Session& session, const PhotoMaker& maker, fs::path folder, DesignImport& report)
      : session_(session), maker_(maker), folder_(std::move(folder)), report_(report) {}

  Result<void> Take(Design& design, const std::optional<Design>& present) {
    std::vector<std::string> linked;
    if (present) linked = present->Photos();
    const std::vector<std::string> before = linked;
    const std::vector<std::string> wanted = design.Photos();
    for (const std::string& name : wanted) {
      const auto takes = Comes(name);
      if (!takes) return std::unexpected(takes.error());
      if (*takes && !ContainsPhoto(linked, name)) linked.push_back(name);
    }
    for (const std::string& name : before)
      if (!ContainsPhoto(wanted, name)) ++report_.photosKept;
    if (linked.size() > kMostDesignPhotos)
      return Refuse(std::string(kImportTitle), fmt::format("The Design {} would have {} photos; it may have {}.",
                                                           design.DesignID, linked.size(), kMostDesignPhotos));
    design.PhotoSet = NameSet(linked);
    return {};
  }

  void Write(Session& session) const {
    for (const auto& [name, bytes] : pictures_)
      AddPhotoStep(session.File(), {0, PhotoStep::Kind::Put, name, {}, bytes});
  }

 private:
  // Whether the Design may show what stands under the name, now or after the import.
  Result<bool> Comes(const std::string& name) {
    const fs::path file = folder_ / name;
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
      ++report_.photosMissing;
      return false;
    }
    auto jpeg = maker_.Jpeg(ReadFileBytes(file, kMostPhotoBytes), name);
    if (!jpeg) return std::unexpected(jpeg.error());
    const auto here = PhotoFile(session_, name);
    const auto known = pictures_.find(Upper(name));
    if (here ? ReadFileBytes(*here) == *jpeg : known != pictures_.end()) return true;
    if (here) {
      ++report_.photosMatched;
      return false;
    }
    ++report_.photos;
    pictures_.emplace(name, *std::move(jpeg));
    return true;
  }

  struct Less {
    bool operator()(const std::string& a, const std::string& b) const { return CompareNoCase(a, b) < 0; }
  };
  const Session& session_;
  const PhotoMaker& maker_;
  fs::path folder_;
  DesignImport& report_;
  std::map<std::string, std::string, Less> pictures_;
};

}  // namespace

std::string DesignFileName(const Session& session) {
  std::string date = session.clock.Today().DateText();
  std::ranges::replace(date, '-', '_');
  return fmt::format("Job_Design_Export_{}.txt", date);
}

Result<int> ExportDesigns(Session& session, const std::vector<std::string>& ids, const fs::path& path) {
  if (path.filename().empty()) return Refuse("No file name", "Enter a file name", "File");
  std::vector<Design> designs;
  for (const std::string& id : ids.empty() ? DesignIDs(session) : ids) {
    auto design = FindDesign(session, id);
    if (!design) return std::unexpected(design.error());
    designs.push_back(*std::move(design));
  }
  if (designs.empty()) return Refuse("No Selections", "No Designs have been selected");
  std::error_code ignored;
  if (fs::exists(path, ignored) && !session.prompt.Ask("Overwrite File", "OK to overwrite existing file?", Answer::No))
    return Decline("Overwrite File", "File");
  const auto copies = PhotosToCopy(session, designs, PhotosBeside(path));
  if (!copies) return std::unexpected(copies.error());
  ProgressRun progress(session.progress, "Exporting Designs ...");
  std::size_t done = 0;
  for (const auto& [target, source] : *copies) {
    MakeFolder(target.parent_path());
    ReplaceFile(target, ReadFileBytes(source));
    progress.Step(++done, copies->size());
    if (session.progress.Cancelled())
      return Refuse(std::string(kExportTitle), "The export was cancelled. No file was written.");
  }
  std::string text = HeaderText();
  for (const Design& design : designs) text += RowText(session, design);
  WriteTextFile(path, text);
  return static_cast<int>(designs.size());
}

std::string_view ModText(IncomingDesign::Mod mod) {
  return mod == IncomingDesign::Mod::New ? "New" : mod == IncomingDesign::Mod::Modified ? "Modified" : "Same";
}

Result<std::vector<IncomingDesign>> ReadDesignFile(const Session& session, const fs::path& path) {
  const std::string text = DecodeText(ReadFileBytes(path));
  std::vector<std::string_view> lines = Split(text, '\n');
  for (std::string_view& line : lines)
    if (line.ends_with('\r')) line.remove_suffix(1);
  const RowReader reader(session, Split(lines[0], '\t'));
  if (!reader.IsOfDesigns())
    return Refuse(std::string(kImportTitle), "Selected file is not compatible for a Design import", path.string());
  std::string faults;
  if (!lines.back().empty()) faults = fmt::format("\nLine {}: the file was cut off in it", lines.size());
  lines.pop_back();
  std::vector<IncomingDesign> designs;
  std::unordered_set<std::string> seen;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    auto design = reader.Read(Split(lines[i], '\t'));
    if (design && !seen.insert(design->DesignID).second)
      design = Refuse({}, fmt::format("the Design {} stands in the file twice", design->DesignID));
    if (!design) {
      faults += fmt::format("\nLine {}: {}", i + 1, design.error().text);
      continue;
    }
    IncomingDesign incoming{*std::move(design), IncomingDesign::Mod::New, {}};
    if (const auto present = ReadDesign(session, incoming.design.DesignID)) {
      incoming.presentDescription = present->Description;
      incoming.mod = ComparedCells(*present) == ComparedCells(incoming.design) ? IncomingDesign::Mod::Same
                                                                               : IncomingDesign::Mod::Modified;
    }
    designs.push_back(std::move(incoming));
  }
  if (!faults.empty())
    return Refuse(std::string(kImportTitle), "Nothing can be imported from " + path.string() + "\n" + faults,
                  path.string());
  if (designs.empty()) return Refuse("No Selections", "No Designs have been selected", path.string());
  return designs;
}

Result<DesignImport> ImportDesigns(Session& session, const PhotoMaker& maker, const fs::path& path,
                                   const std::vector<std::string>& ids) {
  if (auto allowed = RequireAct(session, Act::Work); !allowed) return std::unexpected(allowed.error());
  auto read = ReadDesignFile(session, path);
  if (!read) return std::unexpected(read.error());
  auto designs = Chosen(*std::move(read), ids);
  if (!designs) return std::unexpected(designs.error());
  const auto modified = [](const IncomingDesign& d) { return d.mod == IncomingDesign::Mod::Modified; };
  if (std::ranges::any_of(*designs, modified) &&
      session.prompt.Show({"Updating Database with Designs",
                           "This update could change existing Designs found in the database.\n\nClick OK to continue.",
                           Buttons::OkCancel, Icon::Question, Answer::Cancel}) != Answer::Ok)
    return Decline("Updating Database with Designs");
  RunPhotoSteps(session);
  DesignImport report;
  PhotoImport photos(session, maker, PhotosBeside(path), report);
  ProgressRun progress(session.progress, "Importing Designs ...");
  std::size_t done = 0;
  {
    Transaction transaction(session.File());
    UndoStep step(session, Undoable::ImportDesigns, fmt::format("Import {}", path.filename().string()));
    for (IncomingDesign& incoming : *designs) {
      const auto present = ReadDesign(session, incoming.design.DesignID);
      if (auto taken = photos.Take(incoming.design, present); !taken) return std::unexpected(taken.error());
      incoming.design.key = present ? present->key : 0;
      if (!incoming.design.Created) incoming.design.Created = session.clock.Today();
      WriteDesign(session, incoming.design);
      FollowLastUsed(session, incoming.design.DesignID);
      ++(!present ? report.added : modified(incoming) ? report.changed : report.same);
      progress.Step(++done, designs->size());
      if (session.progress.Cancelled())
        return Refuse(std::string(kImportTitle), "The import was cancelled. Nothing was changed.");
    }
    photos.Write(session);
    transaction.Note({Change::Kind::Design, "", "", Change::What::All, {}});
    if (!NextPhotoStep(session.File())) step.Keep();  // a photo in the library is not put back
    transaction.Commit();
  }
  RunPhotoSteps(session);
  return report;
}

std::string PhotoImportText(const DesignImport& report) {
  std::string text;
  const auto add = [&](int count, std::string_view what) {
    if (count == 0) return;
    text += (text.empty() ? "" : "\n\n") + fmt::format("{}{}", count, what);
  };
  add(report.photosMatched,
      " Photos for import matched names in the Design Photos library.\nThese photos were not imported to protect the "
      "photos already in use.");
  add(report.photosMissing, " Photos for import are missing from the import folder.");
  add(report.photosKept, " Photos associated with the import weren't in the selected file.");
  if (!text.empty())
    text += "\n\nOpen the Job Designs window, select an imported design\nand manually add photos if necessary.";
  return text;
}

}  // namespace vellumark
