// The pages of the layout windows that all kinds of labels have.

#include <fmt/format.h>

#include <QAbstractItemView>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>

#include "core/base/text.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/labels/design_surface.h"
#include "desktop/labels/label_papers.h"
#include "desktop/labels/layout_window.h"
#include "desktop/labels/sheet_view.h"

namespace vellumark::desktop {

Form LayoutWindow::Scrolled(FormHost& host, Form page) {
  auto* area = new QScrollArea;
  page.Wide(area, 1);
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  auto* inside = new QWidget;
  inside->setProperty("flush", true);
  Form form(host, *inside);
  area->setWidget(inside);
  return form;
}

LayoutWindow::Keys LayoutWindow::SelectedKeys(const std::string& key) const {
  return [this, key] {
    std::vector<std::string> keys;
    for (const std::string& name : surface_->Selected()) {
      const std::string full = fmt::format("{} {}", name, key);
      if (std::ranges::any_of(Design().Records(), [&](const SupportRecord& r) { return r.key == full; }))
        keys.push_back(full);
    }
    return keys;
  };
}

void LayoutWindow::AddShown(Form& form, std::span<const std::string_view> items) {
  form.Wide(form.Hint(tr("Print Data:")));
  for (const std::string_view item : items) {
    const std::string name(item);
    CheckField* check =
        Check(form, "chkData" + Q(item).remove(' '), Q(item), Key(FindDesignItem(work_.Kind(), item)->shown));
    check->setAccessibleName(tr("Print Data:") + ' ' + Q(item));
    connect(check, &QCheckBox::clicked, this, [this, name](bool on) {
      if (on) surface_->Select({name});
    });
    form.Wide(check);
  }
}

// ---- The selected boxes

void LayoutWindow::BuildSelected(Form form) {
  const auto one = [this](const std::string& key) -> Keys {
    return [keys = SelectedKeys(key)] {
      auto all = keys();
      return all.size() == 1 ? all : std::vector<std::string>{};
    };
  };
  item_ = form.Combo("cmbItem");
  item_->DoNotTrack();
  item_->setPlaceholderText(tr("Nothing is selected"));
  item_->OnChosen([this](int) { surface_->Select({item_->Text()}); });
  form.Row(tr("Item"), item_);
  NumberField* x = Length(form, "txtX", one("Left"));
  NumberField* y = Length(form, "txtY", one("Top"));
  x->setAccessibleName(tr("X"));
  y->setAccessibleName(tr("Y"));
  form.Row("X", {x, form.Hint("Y"), y, Unit(form)});
  forOne_ = {x, y};
  BuildArrows(form);
  ComboField* font = Choice(form, "cmbFont", SelectedKeys("FontName"));
  font->addItems(QFontDatabase::families());
  font->setMinimumContentsLength(16);
  font->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  form.Row(tr("Font"), font);
  NumberField* size = Whole(form, "txtFontSize", SelectedKeys("FontSize"), 4);
  CheckField* bold = Check(form, "chkFontBold", tr("Bold"), SelectedKeys("FontBold"), "True", "False");
  form.Row(tr("Size"), {size, form.Hint(tr("points")), bold});
  forText_ = {font, size, bold};
  form.Row(form.Hint(tr("The size of a bar code is its height and the width of its bars.")));

  form.Heading(tr("Several boxes"));
  const auto arrange = [&](const QString& name, const QString& text, Arrange how, std::vector<QWidget*>& when) {
    CommandButton* button = form.Button(name, text, [this, how] {
      work_.EndGesture();
      work_.Place(Arranged(surface_->SelectedItems(), how), "arrange");
      work_.EndGesture();
      Refresh();
    });
    when.push_back(button);
    return button;
  };
  form.Row(tr("Align across"), {arrange("cmdAlignLeft", tr("Left"), Arrange::Left, forTwo_),
                                arrange("cmdAlignCenter", tr("Center"), Arrange::Center, forTwo_),
                                arrange("cmdAlignRight", tr("Right"), Arrange::Right, forTwo_)});
  form.Row(tr("Align down"), {arrange("cmdAlignTop", tr("Top"), Arrange::Top, forTwo_),
                              arrange("cmdAlignMiddle", tr("Middle"), Arrange::Middle, forTwo_),
                              arrange("cmdAlignBottom", tr("Bottom"), Arrange::Bottom, forTwo_)});
  form.Row(tr("Space evenly"), {arrange("cmdSpaceAcross", tr("Across"), Arrange::AcrossEvenly, forThree_),
                                arrange("cmdSpaceDown", tr("Down"), Arrange::DownEvenly, forThree_)});
  QLabel* keys = form.Hint(tr(
      "On the label: arrows move the selected boxes by a step, with Shift by a line of the grid. PageUp and PageDown "
      "go from box to box, with Shift they add it; Ctrl+A takes all. Delete hides. + and - zoom, 0 shows the whole "
      "label, 1 its true size. Alt drags without snapping."));
  keys->setWordWrap(true);
  form.Wide(keys);
}

// A pair for each direction and each unit, of which those of the unit in use are there.
void LayoutWindow::BuildArrows(Form& form) {
  struct Pair {
    const char* name;
    bool across;
    bool inches;
  };
  std::vector<QWidget*> row;
  for (const Pair& pair : {Pair{"MoveField_X_IN", true, true}, Pair{"MoveField_Y_IN", false, true},
                           Pair{"MoveField_X_MM", true, false}, Pair{"MoveField_Y_MM", false, false}}) {
    auto* box = new QWidget;
    box->setObjectName(pair.name);
    auto* line = new QHBoxLayout(box);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    for (const int step : {-1, 1}) {
      auto* arrow = new QToolButton(box);
      arrow->setObjectName(QString("%1_%2").arg(pair.name, step < 0 ? "Less" : "More"));
      arrow->setText(pair.across ? (step < 0 ? tr("← Left") : tr("Right →")) : (step < 0 ? tr("↑ Up") : tr("Down ↓")));
      arrow->setAutoRepeat(true);
      arrow->setFocusPolicy(Qt::TabFocus);
      connect(arrow, &QToolButton::clicked, this,
              [this, step, across = pair.across] { surface_->Nudge(across ? step : 0, across ? 0 : step, false); });
      line->addWidget(arrow);
      forAny_.push_back(arrow);
    }
    Shown([this, box, inches = pair.inches] { box->setVisible((UnitOfDesign(Design()).text == "in.") == inches); });
    row.push_back(box);
  }
  form.Row(tr("Move"), {row[0], row[1], row[2], row[3]});
}

void LayoutWindow::FillItems() {
  QStringList names;
  for (const SurfaceBox& box : surface_->Shown().boxes) names += Q(box.item.name);
  QStringList now;
  for (int i = 0; i < item_->count(); ++i) now += item_->itemText(i);
  const QSignalBlocker quiet(item_);
  if (now != names) {
    item_->clear();
    item_->addItems(names);
  }
  const auto& selected = surface_->Selected();
  item_->setCurrentIndex(selected.empty() ? -1 : item_->findText(Q(selected.back())));
}

// ---- The sheet

void LayoutWindow::BuildSheet(Form form) {
  RadioField* unit = form.Radio("optUOM", {{"optIN", tr("Inches")}, {"optMM", tr("Millimeters")}}, Qt::Horizontal);
  unit->DoNotTrack();
  Shown([this, unit] { unit->Choose(UnitOfDesign(Design()).text == "in." ? 0 : 1); });
  connect(unit, &RadioField::ChosenChanged, this, [this](int index) {
    if (!showing_) Set({"Label_UOM"}, index == 0 ? "in." : " mm.");
  });
  form.Row(tr("Measured in"), unit);
  const auto pair = [&](const QString& label, QWidget* first, const QString& between, QWidget* second, bool lengths) {
    second->setAccessibleName(between);
    QLabel* hint = form.Hint(between);
    if (lengths)
      form.Row(label, {first, hint, second, Unit(form)});
    else
      form.Row(label, {first, hint, second});
  };
  pair(tr("Label &width"), Length(form, "txtLabelWidth", Key("Label Width")), tr("length"),
       Length(form, "txtLabelLength", Key("Label Length")), true);
  pair(tr("Labels a&cross"), Whole(form, "txtLabelsAcross", Key("Labels Across"), 4), tr("down"),
       Whole(form, "txtLabelsDown", Key("Labels Down"), 4), false);
  pair(tr("Left &margin"), Length(form, "txtLeftMargin", Key("Left Margin")), tr("top"),
       Length(form, "txtTopMargin", Key("Top Margin")), true);

  printers_ = form.Combo("cmbPrinter");
  printers_->DoNotTrack();
  papers_ = form.Combo("cmbPaperTypes");
  papers_->DoNotTrack();
  ComboField* orientation = Choice(form, "cmbOrientation", Key("Orientation"));
  const QStringList turns{tr("Portrait"), tr("Landscape"), tr("Reverse Portrait"), tr("Reverse Landscape")};
  for (int i = 0; i < turns.size(); ++i) orientation->addItem(turns[i], QString::number(i));
  for (ComboField* combo : {printers_, papers_}) {
    combo->setMinimumContentsLength(16);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  }
  const auto hint = [&](const QString& text) {
    QLabel* label = form.Hint(text);
    label->setWordWrap(true);
    form.Wide(label);
  };
  form.Row(tr("&Printer"), printers_);
  form.Row(tr("Paper &type"), papers_);
  hint(tr("The paper type should match the measurements of your label."));
  form.Row(tr("Orie&ntation"), orientation);
  hint(tr("Barcodes can only be printed with the Portrait and Landscape orientations."));
  auto* sheet = new SheetView("Sheet");
  form.Wide(sheet, 1);
  Shown([this, sheet] { sheet->Show(PaperOfDesign(Design())); });

  const SystemPrinters system = devices_.printers();
  printers_->addItem(tr("(none)"), QString());
  for (const PrinterNames& printer : PrintersOffered(system.printers))
    printers_->addItem(Q(printer.name), Q(printer.device));
  Shown([this] {
    const QString device = Q(Design().Text("Printer"));
    if (printers_->findData(device) < 0) printers_->addItem(tr("%1 (not on this computer)").arg(device), device);
    printers_->setCurrentIndex(printers_->findData(device));
    FillPapers();
  });
  printers_->OnChosen([this](int) { Set({"Printer"}, U8(printers_->currentData().toString())); });
  papers_->OnChosen([this](int) {
    work_.EndGesture();
    const bool named = papers_->currentIndex() > 0;
    Set({"Paper Type"}, named ? papers_->Text() : std::string(), "paper");
    Set({"Paper Type ID"}, U8(papers_->currentData().toString()), "paper");
    work_.EndGesture();
  });
}

void LayoutWindow::FillPapers() {
  const std::string device = Design().Text("Printer");
  const QSignalBlocker quiet(papers_);
  if (papers_->count() == 0 || papers_->property("device").toString() != Q(device)) {
    papers_->clear();
    papers_->addItem(tr("As large as its labels"), QString());
    for (const PrinterPaper& paper : PapersOfPrinter(device))
      papers_->addItem(Q(paper.name), QString::number(paper.id));
    papers_->setProperty("device", Q(device));
  }
  const QString name = Q(Design().Text("Paper Type"));
  if (!name.isEmpty() && papers_->findText(name) < 0) papers_->addItem(name, Q(Design().Text("Paper Type ID")));
  papers_->setCurrentIndex(name.isEmpty() ? 0 : papers_->findText(name));
}

}  // namespace vellumark::desktop
