#include <algorithm>
#include <memory>

#include "cli/frame.h"
#include "core/base/text.h"
#include "core/base/write_over.h"
#include "core/colors/names.h"
#include "core/labels/label_drawing.h"
#include "core/labels/label_printing.h"
#include "paper/label_print.h"

namespace vellumark::cli {
namespace {

LabelKind KindOfLabel(const std::string& kind) {
  return kind == "hazard" ? LabelKind::Hazard : kind == "formula" ? LabelKind::Formula : LabelKind::Label;
}

void AddKind(CLI::App* verb, std::string& kind) {
  verb->add_option("--kind", kind, "label, hazard or formula")
      ->default_str("label")
      ->check(CLI::IsMember({"label", "hazard", "formula"}));
}

struct LayoutWords {
  std::string kind;
  std::string layout;
  std::string key;  ///< or the new name
  std::string value;
};

struct PrintWords : LayoutWords {
  std::vector<std::string> fields;
  std::string out;
  std::string labels = "1";
  int start = 1;
  int dots = paper::kLabelDots;
  bool square = false;
};

Json NamesJson(const Session& session, LabelKind kind) {
  Json names = Json::array();
  for (const std::string& name : LabelLayouts(session, kind)) names.push_back(name);
  return names;
}

Result<Json> ShowLayout(Context& context, const LayoutWords& words) {
  const auto name = FindLabelLayout(context.session, KindOfLabel(words.kind), words.layout);
  if (!name) return std::unexpected(name.error());
  return context.Answer(TableOf<SupportRecord>()
                            .Add("Key", &SupportRecord::key)
                            .Add("Value", &SupportRecord::value)
                            .Of(LabelRecords(context.session, KindOfLabel(words.kind), *name)));
}

Result<LabelDrawing> FilledLabel(const Session& session, const std::string& layout, const PrintWords& words) {
  LabelData data = DataOfLayout(session, layout);
  for (const std::string& field : words.fields) {
    const auto pair = SplitPair(field);
    if (!pair) return Refuse("Label", field + " is not of the form FIELD=VALUE.", field);
    if (pair->first == "Health" || pair->first == "Fire" || pair->first == "Reactivity") {
      data[pair->first] = pair->second;
      continue;
    }
    const auto place = FindLabelField(pair->first);
    if (!place) return Refuse("Label", "A label has no field " + pair->first + ".", pair->first);
    data.texts[*place] = pair->second;
  }
  if (const auto combined = CombineMiscBarCodes(session, layout, data); !combined)
    return std::unexpected(combined.error());
  LabelOptions options = OptionsOfLabels(session);
  options.qrCode = words.square;
  return DrawLabel(session, layout, data, options);
}

Result<LabelDrawing> FilledSmallLabel(const Session& session, LabelKind kind, const std::string& layout,
                                      const PrintWords& words) {
  SmallLabelData data;
  const auto items = kind == LabelKind::Hazard ? HazardItems() : FormulaItems();
  for (const std::string& field : words.fields) {
    const auto pair = SplitPair(field);
    if (!pair) return Refuse("Label", field + " is not of the form FIELD=VALUE.", field);
    if (kind == LabelKind::Formula && (pair->first == "Color_Name" || pair->first == "Color Name")) {
      auto formula = FormulaLabelData(session, pair->second);
      if (!formula) return std::unexpected(formula.error());
      data.texts.insert(data.texts.end(), formula->texts.begin(), formula->texts.end());
      continue;
    }
    if (std::ranges::find(items, pair->first) == items.end())
      return Refuse("Label", "A label has no field " + pair->first + ".", pair->first);
    data.texts.insert(data.texts.begin(), *pair);
  }
  return DrawSmallLabel(session, kind, layout, data);
}

Result<Json> PrintLabels(Context& context, const PrintWords& words) {
  Session& session = context.session;
  const LabelKind kind = KindOfLabel(words.kind);
  const auto name = FindLabelLayout(session, kind, words.layout);
  if (!name) return std::unexpected(name.error());
  const auto drawing =
      kind == LabelKind::Label ? FilledLabel(session, *name, words) : FilledSmallLabel(session, kind, *name, words);
  if (!drawing) return std::unexpected(drawing.error());
  if (const auto any = CheckAnythingToPrint({*drawing}); !any) return std::unexpected(any.error());
  Json codes = Json::array();
  std::vector<paper::CodeCheck> checks = paper::CheckCodes(session, *drawing, words.dots);
  for (const paper::CodeCheck& check : checks)
    codes.push_back({{"Field", check.Field},
                     {"Text", check.Text},
                     {"Reads", check.Reads},
                     {"Reason", check.Reads ? Json() : Json(check.Reason)}});
  for (paper::CodeCheck& fault : paper::CheckPlaces(session, *drawing, words.dots)) checks.push_back(std::move(fault));
  if (const auto wanted = paper::AskAboutFaults(session, checks); !wanted) return std::unexpected(wanted.error());
  if (const auto may = MayWriteOver(session.prompt, words.out, "out"); !may) return std::unexpected(may.error());
  const paper::LabelJob job{.paper = PaperOfLayout(session, kind, *name),
                            .drawings = {*drawing},
                            .count = ReadLabelCount(words.labels),
                            .start = words.start,
                            .dotsPerInch = words.dots};
  const int pages = paper::PrintLabelsToFile(session, job, words.out);
  return Json{{"File", std::filesystem::absolute(words.out).string()}, {"Pages", pages}, {"Codes", codes}};
}

Result<Json> Encode(const std::string& symbology, const std::string& text) {
  const Symbology which = symbology == "code128"       ? Symbology::Code128
                          : symbology == "code39check" ? Symbology::Code39Check
                                                       : Symbology::Code39;
  const auto font = EncodeBarcode(which, text);
  if (!font) return std::unexpected(font.error());
  return Json{{"Text", text}, {"Codes", *font}};
}

void AddLayoutVerbs(CLI::App* noun, Commands& commands) {
  const auto add = [&](const char* verb, const char* help, std::shared_ptr<LayoutWords>& words) {
    CLI::App* added = noun->add_subcommand(verb, help);
    words = std::make_shared<LayoutWords>();
    AddKind(added, words->kind);
    added->add_option("LAYOUT", words->layout, "Name of the layout")->required();
    return added;
  };
  std::shared_ptr<LayoutWords> shown;
  CLI::App* show = add("show", "All keys of a layout", shown);
  commands.AddList(show, Needs::Nothing, "Label Layout",
                   [shown](Context& context) { return ShowLayout(context, *shown); });

  std::shared_ptr<LayoutWords> set;
  CLI::App* setting = add("set", "Give a key of a layout another value; places and sizes are twips", set);
  setting->add_option("KEY", set->key, "The key, in its exact case")->required();
  setting->add_option("VALUE", set->value, "Its new value")->required();
  commands.Add(setting, Needs::Nothing, [set](Context& context) -> Result<Json> {
    const LabelKind kind = KindOfLabel(set->kind);
    if (auto saved = SaveLabelSetting(context.session, kind, set->layout, set->key, set->value); !saved)
      return std::unexpected(saved.error());
    return Json{{set->key,
                 LabelSetting(context.session, kind, *FindLabelLayout(context.session, kind, set->layout), set->key)}};
  });

  std::shared_ptr<LayoutWords> copied;
  CLI::App* copy = add("copy", "Make another layout of a layout", copied);
  copy->add_option("NEW", copied->key, "Its name")->required();
  commands.Add(copy, Needs::Nothing, [copied](Context& context) -> Result<Json> {
    const LabelKind kind = KindOfLabel(copied->kind);
    if (auto made = CopyLabelLayout(context.session, kind, copied->layout, copied->key); !made)
      return std::unexpected(made.error());
    return NamesJson(context.session, kind);
  });

  std::shared_ptr<LayoutWords> deleted;
  CLI::App* remove = add("delete", "Remove a layout", deleted);
  commands.Add(remove, Needs::Nothing, [deleted](Context& context) -> Result<Json> {
    const LabelKind kind = KindOfLabel(deleted->kind);
    if (auto gone = DeleteLabelLayout(context.session, kind, deleted->layout); !gone)
      return std::unexpected(gone.error());
    return NamesJson(context.session, kind);
  });
}

}  // namespace

void AddLabelCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "label", "Labels: layouts, bar codes, printing");

  auto* layouts = noun->add_subcommand("layouts", "The names of the layouts");
  const auto kind = std::make_shared<std::string>();
  AddKind(layouts, *kind);
  commands.Add(layouts, Needs::Nothing,
               [kind](Context& context) -> Result<Json> { return NamesJson(context.session, KindOfLabel(*kind)); });
  AddLayoutVerbs(noun, commands);

  auto* print = noun->add_subcommand("print", "Print labels into a PDF, true to size");
  const auto words = std::make_shared<PrintWords>();
  AddKind(print, words->kind);
  print->add_option("LAYOUT", words->layout, "Name of the layout")->required();
  print->add_option("FIELD=VALUE", words->fields,
                    "What the label says: \"Color Name=RED\" \"Lot Number=A1\" ...; of a formula label its Color_Name");
  print->add_option("--out", words->out, "The PDF")->type_name("FILE.pdf")->required()->check(NotEmpty);
  print->add_option("--labels", words->labels, "How many")->type_name("N");
  print->add_option("--start", words->start, "Place of the first one on its sheet, from 1")->type_name("N");
  print->add_option("--dpi", words->dots, "Dots per inch of the printer")->type_name("N")->check(CLI::Range(100, 1200));
  print->add_flag("--qr", words->square, "With one square code that holds all fields");
  commands.Add(print, Needs::File, [words](Context& context) { return PrintLabels(context, *words); });

  auto* encode = noun->add_subcommand("encode", "The characters of a bar code font for a text");
  const auto code = std::make_shared<std::pair<std::string, std::string>>();
  encode->add_option("SYMBOLOGY", code->first, "code39, code39check or code128")
      ->required()
      ->check(CLI::IsMember({"code39", "code39check", "code128"}));
  encode->add_option("TEXT", code->second, "What the code says")->required();
  commands.Add(encode, Needs::Nothing, [code](Context&) { return Encode(code->first, code->second); });
}

}  // namespace vellumark::cli
