#include "core/labels/label_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basics.h"
#include "core/colors/formulas.h"
#include "core/colors/guides.h"
#include "core/colors/names.h"
#include "core/inventory/lots.h"
#include "core/labels/barcodes.h"

namespace vellumark {
namespace {

constexpr std::array<LabelField, kLabelFields> kFields{{
    {"Color Name", "txtColorName", "<CN>", 30, "CN", false, false},
    {"Color Code", "txtColorCode", "<CC>", 30, "CC", true, false},
    {"Database", "txtDatabase", "<DB>", 15, "DB", true, false},
    {"Batch ID#", "txtBatchID", "<BI>", 10, "", true, false},
    {"Date", "txtDate", "<DT>", 10, "", true, false},
    {"Lot Number", "txtLotNumber", "<LN>", 30, "LN", true, true},
    {"Lot Location", "txtLotLocation", "<LL>", 30, "LL", true, true},
    {"Lot Cont ID", "txtLotContID", "<LC>", 10, "LC", true, true},
    {"Job Number", "txtJobNumber", "<JN>", 30, "JN", true, false},
    {"Username", "txtUsername", "<UN>", 10, "", true, false},
    {"Short Note", "txtShortNote", "<SN>", 30, "", true, false},
    {"Misc Text 1", "txtText1", "<M1>", 30, "M1", false, false},
    {"Misc Text 2", "txtText2", "<M2>", 30, "M2", false, false},
    {"Misc Text 3", "txtText3", "<M3>", 30, "M3", false, false},
    {"Misc Text 4", "txtText4", "<M3>", 30, "M4", false, false},
    {"Misc Bar Code Data 1", "txtMBCData1", "<U1>", 30, "", false, false},
    {"Misc Bar Code Data 2", "txtMBCData2", "<U2>", 30, "", false, false},
}};

constexpr std::array<std::string_view, 9> kHazardItems{
    "Signal Word", "Product",     "Hazard Statement", "Precautionary Statement", "Business Address", "Misc Text 1",
    "Misc Text 2", "Misc Text 3", "Misc Text 4"};
constexpr std::array<std::string_view, 4> kFormulaItems{"Color Name", "Color Code", "Formula", "Date"};

std::string Squeezed(std::string_view name) {
  std::string letters;
  for (const char c : Upper(name))
    if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) letters += c;
  return letters;
}

constexpr std::string_view kRegistered = "®";

// `read` gives the value of a key.
template <class Read>
LabelData DataOf(const Read& read) {
  LabelData data;
  for (const std::string_view item :
       {"Misc Text 1", "Misc Text 2", "Misc Text 3", "Misc Text 4", "Health", "Fire", "Reactivity"})
    data[item] = read(std::string(item) + " Text");
  return data;
}

// Whether a label of the layout has that bar code at all.
template <class Read>
bool ShowsCode(const Read& read, std::string_view item) {
  const auto symbology = FindSymbology(read("Label BC Type"));
  return symbology && *symbology != Symbology::NotUsing && LeadingInteger(read(std::string(item) + " Visible")) == 1;
}

template <class Read>
Result<void> Combine(const Read& read, LabelData& data) {
  for (const std::string_view item : {"Misc Bar Code Data 1", "Misc Bar Code Data 2"}) {
    const std::string run = read(std::string(item) + " Combined");
    if (run.empty()) continue;
    std::string together;
    for (const std::size_t field : FieldsOfRun(run)) together += data.texts[field];
    const std::size_t field = *FindLabelField(item);
    if (CharCount(together) > kFields[field].longest) {
      if (!ShowsCode(read, item)) {
        data[item].clear();
        continue;
      }
      return Refuse("Misc Bar Code Data",
                    "Combined data from selected fields cannot exceed 30 characters.\n\n" + together,
                    std::string(kFields[field].control));
    }
    data[item] = together;
  }
  return {};
}

}  // namespace

std::span<const LabelField, kLabelFields> LabelFields() {
  return kFields;
}

std::optional<std::size_t> FindLabelField(std::string_view name) {
  const std::string wanted = Squeezed(name);
  for (std::size_t i = 0; i < kFields.size(); ++i)
    if (Squeezed(kFields[i].item) == wanted) return i;
  return std::nullopt;
}

std::string& LabelData::operator[](std::string_view item) {
  if (item == "Health") return Health;
  if (item == "Fire") return Fire;
  if (item == "Reactivity") return Reactivity;
  const auto found = std::ranges::find(kFields, item, &LabelField::item);
  if (found == kFields.end()) throw std::logic_error("no field of a label: " + std::string(item));
  return texts[static_cast<std::size_t>(found - kFields.begin())];
}

LabelData DataOfLayout(const Session& session, std::string_view layout) {
  return DataOf([&](std::string_view key) { return LabelSetting(session, LabelKind::Label, layout, key); });
}

LabelData DataOfDesign(const LabelDesign& design) {
  return DataOf([&](std::string_view key) { return design.Text(key); });
}

std::optional<LabelData> DataOfColor(const Session& session, const LabelDesign& design, std::string_view name) {
  LabelData data = DataOfDesign(design);
  ColorKind kind = ColorKind::Mix;
  if (const auto formula = FindMix(session, name)) {
    data["Color Name"] = formula->Color_Name;
    data["Color Code"] = formula->Color_Code;
  } else if (const auto basic = ReadBasic(session, name)) {
    kind = ColorKind::Basic;
    data["Color Name"] = basic->Color_Name;
    data["Color Code"] = basic->Color_Code;
  } else {
    return std::nullopt;
  }
  data["Database"] = session.CurrentDatabase;
  data["Date"] = session.clock.Today().DateText();
  data["Username"] = session.CurrentUser;
  if (const auto lots = LotsOf(session, kind, data["Color Name"]); !lots.empty()) {
    data["Lot Number"] = lots.front().LotNumber;
    data["Lot Location"] = lots.front().LotLoc;
    data["Lot Cont ID"] = lots.front().LotContID;
  }
  return data;
}

std::vector<std::size_t> FieldsOfRun(std::string_view run) {
  std::vector<std::size_t> fields;
  for (std::size_t at = 0; at + 2 <= run.size(); at += 2) {
    const auto found = std::ranges::find(kFields, run.substr(at, 2), &LabelField::run);
    if (found != kFields.end()) fields.push_back(static_cast<std::size_t>(found - kFields.begin()));
  }
  return fields;
}

std::string RunOfFields(const std::vector<std::size_t>& fields) {
  std::string run;
  for (const std::size_t field : fields) run += kFields.at(field).run;
  return run;
}

Result<void> CombineMiscBarCodes(const Session& session, std::string_view layout, LabelData& data) {
  return Combine([&](std::string_view key) { return LabelSetting(session, LabelKind::Label, layout, key); }, data);
}

Result<void> CombineMiscBarCodes(const LabelDesign& design, LabelData& data) {
  return Combine([&](std::string_view key) { return design.Text(key); }, data);
}

std::string BarCodeText(std::size_t field, std::string_view text, bool identifiers) {
  if (text.empty()) return {};
  std::string code(text);
  if (const auto at = code.find(kRegistered); at != std::string::npos) code.erase(at, kRegistered.size());
  return identifiers ? std::string(kFields.at(field).tag) + code : code;
}

std::string SmallLabelData::Of(std::string_view item) const {
  for (const auto& [name, text] : texts)
    if (name == item) return text;
  return {};
}

std::span<const std::string_view> HazardItems() {
  return kHazardItems;
}

std::span<const std::string_view> FormulaItems() {
  return kFormulaItems;
}

Result<SmallLabelData> FormulaLabelData(const Session& session, std::string_view name, std::string_view database) {
  const std::string typed = Trim(StripScanTag(name));
  const bool here = database.empty() || EqualNoCase(database, session.CurrentDatabase);
  const auto formula = here ? FindMix(session, typed)
                            : ReadMix(session, StoredName(session, ColorKind::Mix, typed, database), database);
  if (!formula) return Refuse("Bad Color Name", "Enter / Select a valid Color Name.", "cmbCN");
  std::string lines;
  for (const auto& line : formula->Ingredients())
    lines += fmt::format("{}{}  {}", lines.empty() ? "" : "\n", line.name, Fixed(line.amount, 3));
  return SmallLabelData{{{"Color Name", formula->Color_Name},
                         {"Color Code", formula->Color_Code},
                         {"Formula", lines},
                         {"Date", session.clock.Today().DateText()}}};
}

}  // namespace vellumark
