#include "core/labels/label_drawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/guide_database.h"
#include "core/colors/names.h"
#include "core/datafile/databases.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

using What = LabelElement::What;

constexpr int kMostLabelsASide = 100;
constexpr int kMostLabels = 99999;
constexpr double kMostTwips = 200 * kTwipsPerInch;

/// Reads the records of one layout, on file or in memory.
class Layout {
 public:
  Layout(const Session& session, LabelKind kind, std::string_view name)
      : read_([&session, kind, name](std::string_view key) { return LabelSetting(session, kind, name, key); }) {}
  explicit Layout(const LabelDesign& design) : read_([&design](std::string_view key) { return design.Text(key); }) {}

  std::string Text(std::string_view key) const { return read_(key); }
  std::string Text(std::string_view item, std::string_view key) const { return read_(fmt::format("{} {}", item, key)); }
  int Number(std::string_view item, std::string_view key) const { return LeadingInteger(Text(item, key)); }
  double Twips(std::string_view item, std::string_view key) const {
    return std::clamp<double>(Number(item, key), 0, kMostTwips);
  }
  LabelElement Element(What what, std::string_view item, std::string text) const {
    return {.what = what,
            .item = std::string(item),
            .text = std::move(text),
            .left = Twips(item, "Left"),
            .top = Twips(item, "Top"),
            .font = Text(item, "FontName"),
            .size = std::clamp(LeadingNumber(Text(item, "FontSize")), 1.0, 400.0),
            .bold = EqualNoCase(Text(item, "FontBold"), "True")};
  }

 private:
  std::function<std::string(std::string_view key)> read_;
};

LabelPaper PaperOf(const Layout& layout) {
  const auto number = [&](std::string_view key) { return LeadingInteger(layout.Text(key)); };
  const auto twips = [&](std::string_view key, double least) {
    return std::clamp<double>(number(key), least, kMostTwips);
  };
  return {.printer = layout.Text("Printer"),
          .paper = layout.Text("Paper Type"),
          .orientation = std::clamp(number("Orientation"), 0, 3),
          .across = std::clamp(number("Labels Across"), 1, kMostLabelsASide),
          .down = std::clamp(number("Labels Down"), 1, kMostLabelsASide),
          .width = twips("Label Width", 1),
          .length = twips("Label Length", 1),
          .left = twips("Left Margin", 0),
          .top = twips("Top Margin", 0)};
}

class LabelWriter {
 public:
  LabelWriter(const Session& session, const Layout& layout, const LabelData& data, const LabelOptions& options)
      : session_(session), layout_(layout), data_(data), options_(options) {
    drawing_.symbology = FindSymbology(layout.Text("Label BC Type")).value_or(Symbology::NotUsing);
  }

  LabelDrawing Write() {
    const LabelPaper paper = PaperOf(layout_);
    drawing_.width = paper.width;
    drawing_.length = paper.length;
    const auto fields = LabelFields();
    constexpr std::size_t kTexts = kLabelFields - 2;
    for (std::size_t i = 0; i < kTexts; ++i)
      if (IsUsed(i)) AddText(fields[i].item, TextOf(i));
    AddText("Health - Fire - Reactivity", Hazards());
    if (HasPantonePrefix(data_.texts[0])) AddText("Pantone Trademark", TradeMark());
    for (std::size_t i = 0; i < kTexts; ++i)
      if (IsUsed(i)) AddCode(std::string(fields[i].item) + " BC", i);
    for (std::size_t i = kTexts; i < kLabelFields; ++i) AddCode(fields[i].item, i);
    if (layout_.Number("Picture Image", "Visible") == 1)
      if (const std::string file = layout_.Text("Picture Image", "Location"); !file.empty())
        drawing_.elements.push_back(layout_.Element(What::Picture, "Picture Image", file));
    if (options_.qrCode) AddSquare();
    return std::move(drawing_);
  }

 private:
  bool IsUsed(std::size_t field) const { return !LabelFields()[field].lot || session_.InvLotTracking == 1; }

  std::string TextOf(std::size_t field) const {
    const LabelField& f = LabelFields()[field];
    const std::string& text = data_.texts[field];
    if (text.empty() || !f.title || layout_.Number(f.item, "Title") != 1) return text;
    return fmt::format("{} : {}", f.item, text);
  }

  // Of the Database that the label names, which need not be the current one.
  std::string TradeMark() const {
    const std::string& named = data_.texts[*FindLabelField("Database")];
    const std::string* database = named.empty() ? nullptr : session_.FindDatabase(named);
    if (database == nullptr || EqualNoCase(*database, session_.CurrentDatabase)) return session_.TradeMark;
    return TemplatePath(session_).empty() ? std::string() : ReadDatabaseInfo(session_.File(), *database).tradeMark;
  }

  std::string Hazards() const {
    if (data_.Health.empty() && data_.Fire.empty() && data_.Reactivity.empty()) return {};
    return fmt::format("Health {}    Fire {}    Reactivity {}", data_.Health, data_.Fire, data_.Reactivity);
  }

  void AddText(std::string_view item, std::string text) {
    if (text.empty() || layout_.Number(item, "Visible") != 1) return;
    drawing_.elements.push_back(layout_.Element(What::Text, item, std::move(text)));
  }

  void AddCode(std::string_view item, std::size_t field) {
    if (drawing_.symbology == Symbology::NotUsing || layout_.Number(item, "Visible") != 1) return;
    std::string text = BarCodeText(field, data_.texts[field], options_.identifiers);
    if (text.empty()) return;
    drawing_.elements.push_back(layout_.Element(What::Code, item, std::move(text)));
  }

  // In the upper right corner of what the label has below its items: it has no place of its own in a layout.
  void AddSquare() {
    std::string lines;
    const auto add = [&](const std::string& line) { lines += (lines.empty() ? "" : "\n") + line; };
    for (std::size_t i = 0; i < kLabelFields - 2; ++i)
      if (IsUsed(i) && !data_.texts[i].empty()) add(BarCodeText(i, data_.texts[i], true));
    if (!lines.empty() && data_.kind) add(*data_.kind == ColorKind::Mix ? "<CT>2" : "<CT>1");
    if (!lines.empty() && session_.InvLotTracking == 1 && data_.LotRefID > 0)
      add(fmt::format("<LR>{}", data_.LotRefID));
    if (lines.empty()) return;
    drawing_.elements.push_back({.what = What::Square, .item = "QR Code", .text = lines});
  }

  const Session& session_;
  const Layout& layout_;
  const LabelData& data_;
  const LabelOptions& options_;
  LabelDrawing drawing_;
};

LabelDrawing SmallDrawing(LabelKind kind, const Layout& layout, const SmallLabelData& data) {
  const LabelPaper paper = PaperOf(layout);
  LabelDrawing drawing{.width = paper.width, .length = paper.length};
  for (const std::string_view item : kind == LabelKind::Hazard ? HazardItems() : FormulaItems()) {
    std::string text = data.Of(item);
    if (text.empty() || layout.Number(item, "Enabled") != 1) continue;
    drawing.elements.push_back(layout.Element(What::Text, item, std::move(text)));
    drawing.elements.back().wraps = kind == LabelKind::Hazard;  // statements are sentences, recipes lines
  }
  if (kind != LabelKind::Hazard) return drawing;
  const double inches = LeadingNumber(layout.Text("Picto Size"));
  for (std::size_t i = 0; i < kPictograms; ++i) {
    const std::string item = PictogramItem(i);
    if (data.pictograms ? !(*data.pictograms)[i] : layout.Number(item, "Visible") != 1) continue;
    LabelElement picto = layout.Element(What::Pictogram, item, {});
    picto.number = static_cast<int>(i) + 1;
    picto.size = std::clamp(inches, 0.25, 2.0) * kTwipsPerInch;
    drawing.elements.push_back(std::move(picto));
  }
  return drawing;
}

}  // namespace

std::string PictogramItem(std::size_t pictogram) {
  return fmt::format("Picto_Image {}", pictogram + 1);
}

LabelPaper PaperOfLayout(const Session& session, LabelKind kind, std::string_view layout) {
  return PaperOf(Layout(session, kind, layout));
}

LabelPaper PaperOfDesign(const LabelDesign& design) {
  return PaperOf(Layout(design));
}

LabelOptions OptionsOfLabels(const Session& session) {
  return {.identifiers = GetSetting(session, setting::BC_Label_Prefix_Identifier)};
}

LabelDrawing DrawLabel(const Session& session, std::string_view layout, const LabelData& data,
                       const LabelOptions& options) {
  return LabelWriter(session, Layout(session, LabelKind::Label, layout), data, options).Write();
}

LabelDrawing DrawLabel(const Session& session, const LabelDesign& design, const LabelData& data,
                       const LabelOptions& options) {
  return LabelWriter(session, Layout(design), data, options).Write();
}

LabelDrawing DrawSmallLabel(const Session& session, LabelKind kind, std::string_view layout,
                            const SmallLabelData& data) {
  return SmallDrawing(kind, Layout(session, kind, layout), data);
}

LabelDrawing DrawSmallLabel(const LabelDesign& design, const SmallLabelData& data) {
  return SmallDrawing(design.Kind(), Layout(design), data);
}

LabelPlace PlaceOfLabel(const LabelPaper& paper, int start, int number) {
  const int position = std::clamp(start, 1, paper.Capacity()) - 1 + number;
  const int onPage = position % paper.Capacity();
  const int column = onPage % paper.across;
  const int row = onPage / paper.across;
  return {position / paper.Capacity(), paper.left + column * paper.width, paper.top + row * paper.length};
}

std::string CleanUpPaperType(std::string_view name) {
  return Trim(name.substr(0, name.find('\0')));
}

int ReadLabelCount(std::string_view typed) {
  const auto number = ParseNumber(typed);
  return number && *number >= 1 ? static_cast<int>(std::min<double>(std::floor(*number), kMostLabels)) : 1;
}

Result<void> CheckLabelPicture(std::string_view format, int pixelsAcross, int pixelsDown, double pixelsPerInch) {
  const bool known = EqualNoCase(format, "JPG") || EqualNoCase(format, "JPEG") || EqualNoCase(format, "BMP");
  const double points = 72.0 / 96.0;
  if (known && std::lround(pixelsPerInch) == 96 && pixelsAcross > 0 && pixelsDown > 0 && pixelsAcross * points <= 144 &&
      pixelsDown * points <= 288)
    return {};
  return Refuse("Picture Selection",
                "The selected picture does not meet the design requirements.\n\nJPG or BMP\n96 pixels per inch.\n"
                "144 pts x 288 pts Max.\n2\" x 4\" Max.");
}

}  // namespace vellumark
