#include "core/settings/label_defaults.h"

#include <fmt/format.h>

#include <array>

namespace vellumark {
namespace {

class LayoutWriter {
 public:
  explicit LayoutWriter(std::string_view layout) : layout_(layout) {}

  void Add(std::string_view name, std::string_view key, std::string_view value) {
    records_.push_back({layout_, fmt::format("{} {}", name, key), std::string(value)});
  }
  void Add(std::string_view key, std::string_view value) {
    records_.push_back({layout_, std::string(key), std::string(value)});
  }
  void Place(std::string_view name, int top, int left) {
    Add(name, "Top", std::to_string(top));
    Add(name, "Left", std::to_string(left));
  }
  void Font(std::string_view name, int size, std::string_view font, bool bold) {
    Add(name, "FontSize", std::to_string(size));
    Add(name, "FontName", font);
    Add(name, "FontBold", bold ? "True" : "False");
  }
  // A sheet with one label as large as letter paper: 12240 by 15840 twips.
  void Paper(bool barCodes) {
    Add("Top Margin", "0");
    Add("Left Margin", "0");
    Add("Label_UOM", "in.");
    Add("Printer", "");
    Add("Paper Type", "");
    Add("Paper Type ID", "");
    Add("Orientation", "0");
    Add("Labels Across", "1");
    Add("Labels Down", "1");
    Add("Label Length", "15840");
    Add("Label Width", "12240");
    if (barCodes) Add("Label BC Type", "Not Using");
  }
  std::vector<SupportRecord> Take() { return std::move(records_); }

 private:
  std::string layout_;
  std::vector<SupportRecord> records_;
};

struct Twin {
  int top;
  int left;
  int size;
};

struct LabelItem {
  std::string_view name;
  bool title;
  int top;
  int left;
  int size;
  bool text;
  Twin twin;  // size 0: the item has none
};

constexpr std::array<LabelItem, 17> kLabelItems{{
    {"Color Name", false, 0, 0, 32, false, {0, 4320, 10}},
    {"Color Code", true, 720, 0, 14, false, {720, 4320, 10}},
    {"Database", true, 1080, 0, 14, false, {1080, 4320, 10}},
    {"Batch ID#", true, 1440, 0, 10, false, {1440, 4320, 10}},
    {"Date", true, 1800, 0, 10, false, {1800, 4320, 10}},
    {"Lot Number", true, 2160, 0, 10, false, {2160, 4320, 10}},
    {"Lot Location", true, 720, 4320, 10, false, {730, 4920, 24}},
    {"Lot Cont ID", true, 920, 4320, 10, false, {930, 4920, 24}},
    {"Job Number", true, 2520, 0, 10, false, {2520, 4320, 10}},
    {"Username", true, 2880, 0, 10, false, {2880, 4320, 10}},
    {"Short Note", true, 3240, 0, 10, false, {3240, 4320, 10}},
    {"Misc Text 1", false, 3600, 0, 10, true, {3600, 1260, 10}},
    {"Misc Text 2", false, 3960, 0, 10, true, {3960, 1260, 10}},
    {"Misc Text 3", false, 3600, 2880, 10, true, {3600, 4140, 10}},
    {"Misc Text 4", false, 3960, 2880, 10, true, {3960, 4140, 10}},
    {"Health - Fire - Reactivity", false, 4320, 0, 10, false, {0, 0, 0}},
    {"Pantone Trademark", false, 4680, 0, 10, false, {0, 0, 0}},
}};

struct SmallItem {
  std::string_view name;
  int top;
  int size;
};

constexpr std::array<SmallItem, 9> kHazardItems{{
    {"Signal Word", 0, 32},
    {"Product", 720, 14},
    {"Hazard Statement", 1440, 10},
    {"Precautionary Statement", 2160, 10},
    {"Business Address", 2880, 10},
    {"Misc Text 1", 3600, 10},
    {"Misc Text 2", 3960, 10},
    {"Misc Text 3", 4320, 10},
    {"Misc Text 4", 4680, 10},
}};

constexpr std::array<SmallItem, 4> kFormulaItems{{
    {"Color Name", 0, 32},
    {"Color Code", 720, 14},
    {"Formula", 1440, 10},
    {"Date", 1080, 10},
}};

void AddSmallItem(LayoutWriter& label, const SmallItem& item) {
  label.Add(item.name, "Enabled", "1");
  label.Place(item.name, item.top, 0);
  label.Add(item.name, "FontName", "Arial");
  label.Add(item.name, "FontSize", std::to_string(item.size));
  label.Add(item.name, "FontBold", "True");
}

}  // namespace

std::vector<SupportRecord> DefaultLabel(std::string_view layout) {
  LayoutWriter label(layout);
  label.Paper(true);
  for (const LabelItem& item : kLabelItems) {
    label.Add(item.name, "Visible", "1");
    if (item.title) label.Add(item.name, "Title", "1");
    label.Place(item.name, item.top, item.left);
    label.Font(item.name, item.size, "Arial", true);
    if (item.text) label.Add(item.name, "Text", "");
    if (item.twin.size == 0) continue;
    const std::string twin = fmt::format("{} BC", item.name);
    label.Add(twin, "Visible", "1");
    label.Place(twin, item.twin.top, item.twin.left);
    label.Font(twin, item.twin.size, "Code 128", false);
  }
  for (int i = 1; i <= 2; ++i) {
    const std::string name = fmt::format("Misc Bar Code Data {}", i);
    label.Add(name, "Visible", "0");
    label.Place(name, 4680 + 360 * i, 0);
    label.Font(name, 10, "Code 128", false);
    label.Add(name, "Combined", "");
  }
  for (const std::string_view hazard : {"Health", "Fire", "Reactivity"}) label.Add(hazard, "Text", "");
  label.Add("Picture Image", "Visible", "0");
  label.Place("Picture Image", 1440, 4320);
  label.Add("Picture Image", "Location", "");
  return label.Take();
}

std::vector<SupportRecord> DefaultHazardLabel(std::string_view layout) {
  LayoutWriter label(layout);
  label.Paper(false);
  for (const SmallItem& item : kHazardItems) AddSmallItem(label, item);
  // Five pictograms of an inch side by side, the other four below them.
  for (int i = 0; i < 9; ++i) {
    const std::string name = fmt::format("Picto_Image {}", i + 1);
    label.Add(name, "Visible", "0");
    label.Place(name, 5400 + (i / 5) * 1620, (i % 5) * 1620);
  }
  label.Add("Picto Size", "1");
  return label.Take();
}

std::vector<SupportRecord> DefaultFormulaLabel(std::string_view layout) {
  LayoutWriter label(layout);
  label.Paper(false);
  for (const SmallItem& item : kFormulaItems) AddSmallItem(label, item);
  return label.Take();
}

}  // namespace vellumark
