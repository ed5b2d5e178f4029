#include "desktop/colors/ingredients_panel.h"

#include <QGridLayout>
#include <tuple>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/basics.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// Two columns of lines: seven and the total stand beside the first eight.
constexpr std::size_t kLeftLines = 8;
enum Column : int { kNumber, kInk, kIngredient, kParts, kSpaceBehind, kColumnsOfLine };
constexpr int kAmountDecimals = 3;
constexpr int kAmountChars = 8;
constexpr double kAmountScale = 1.4;
constexpr int kInkSize = 20;

QString FieldName(const char* word, std::size_t row) {
  return Q(schema::Numbered(word, static_cast<int>(row)));
}

}  // namespace

IngredientsPanel::IngredientsPanel(FormHost& host, Form form) : QObject(&host.Self()), host_(host) {
  // Everything is put into its place before it is filled: what moves into another parent is styled anew with all that
  // it holds.
  auto* box = new QWidget;
  form.Wide(box);
  form.Stretch();
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(space::kUnit);
  grid->setVerticalSpacing(space::kTight / 2);
  for (int side = 0; side < 2; ++side) {
    const int column = side * kColumnsOfLine;
    grid->addWidget(form.Hint(tr("Ingredient")), 0, column + kIngredient);
    grid->addWidget(form.Hint(tr("Parts")), 0, column + kParts, Qt::AlignRight);
    grid->setColumnMinimumWidth(column + kNumber, kInkSize);
    grid->setColumnStretch(column + kIngredient, 1);
  }
  grid->setColumnMinimumWidth(kSpaceBehind, space::kUnit);
  for (std::size_t row = 0; row < lines_.size(); ++row) BuildLine(form, *grid, row);
  BuildTotals(form, *grid);
  SetEditable(false);
}

void IngredientsPanel::BuildLine(Form& form, QGridLayout& grid, std::size_t row) {
  Line& line = lines_[row];
  const int number = static_cast<int>(row) + 1;
  line.name = form.Name(FieldName("BC", row), NamesOnFile(host_.session, NameKind::Basics));
  line.name->setAccessibleName(tr("Ingredient %1").arg(number));
  line.amount = form.Number(FieldName("BQ", row), kAmountDecimals, tr("0.001 to 999"), kAmountChars);
  line.amount->setAccessibleName(tr("Parts of ingredient %1").arg(number));
  line.amount->setFont(Look::Figures(kAmountScale));
  line.amount->SetWidthInChars(kAmountChars);
  const int column = row < kLeftLines ? 0 : kColumnsOfLine;
  const int at = static_cast<int>(row < kLeftLines ? row : row - kLeftLines) + 1;
  line.ink = new SwatchView(FieldName("imgBC", row), {kInkSize, kInkSize});
  QSizePolicy keeps = line.ink->sizePolicy();
  keeps.setRetainSizeWhenHidden(true);
  line.ink->setSizePolicy(keeps);
  grid.addWidget(form.Hint(QString::number(number)), at, column + kNumber, Qt::AlignRight | Qt::AlignVCenter);
  grid.addWidget(line.ink, at, column + kInk);
  grid.addWidget(line.name, at, column + kIngredient);
  grid.addWidget(line.amount, at, column + kParts);

  connect(line.name, &TextField::Left, this, [this, row](QWidget* to) { NameLeft(row, to); });
  connect(line.name, &QLineEdit::textChanged, this, [this, row] { LineChanged(row); });
  connect(line.amount, &TextField::Left, this, [this, row](QWidget* to) { AmountLeft(row, to); });
  connect(line.amount, &QLineEdit::textChanged, this, [this, row] { LineChanged(row); });
}

void IngredientsPanel::BuildTotals(Form& form, QGridLayout& grid) {
  parts_ = form.Value("lblTotalParts", kAmountScale);
  parts_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  parts_->setContentsMargins(0, 0, space::kUnit, 0);
  grid.addWidget(form.Hint(tr("Total Parts")), kLeftLines, kColumnsOfLine + kIngredient,
                 Qt::AlignRight | Qt::AlignVCenter);
  grid.addWidget(parts_, kLeftLines, kColumnsOfLine + kParts);

  auto* totals = new QWidget;
  grid.addWidget(totals, kLeftLines + 1, 0, 1, 2 * kColumnsOfLine - 1);
  auto* line = new QHBoxLayout(totals);
  line->setContentsMargins(0, space::kTight, 0, 0);
  line->setSpacing(space::kUnit);
  const auto total = [&](const char* name, const QString& caption, bool shown) {
    QLabel* label = form.Hint(caption);
    ValueField* value = form.Value(name, kAmountScale);
    label->setVisible(shown);
    value->setVisible(shown);
    line->addWidget(label);
    line->addWidget(value);
    line->addSpacing(space::kGap);
    return std::pair{label, value};
  };
  const bool priceBlocked = host_.session.Perm_Costs == 0;
  std::tie(costCaption_, cost_) = total("lblBasicCost", {}, !priceBlocked);
  costCaption_->setObjectName("lblBasicCostPer");
  if (priceBlocked) line->addWidget(form.Hint(tr("User Permissions - Price Blocked"), "lblBasicCostBlocked"));
  voc_ = total("lblVOCBasics", tr("VOC"), true).second;
  hap_ = total("lblHAPBasics", tr("HAP"), true).second;
  line->addStretch(1);
  Relabel();
}

void IngredientsPanel::Relabel() {
  costCaption_->setText(tr("Cost per %1").arg(Q(UnitName(host_.session.UMI))));
}

// ---- Showing

void IngredientsPanel::Show(const FormulaWork& work, bool keepTyped) {
  if (!keepTyped) {
    showing_ = true;
    for (std::size_t row = 0; row < lines_.size(); ++row) {
      Put(*lines_[row].name, work.grid[row].BC, false);
      Put(*lines_[row].amount, work.grid[row].BQ, false);
      lines_[row].entered = work.grid[row].BC;
    }
    showing_ = false;
    setName_ = work.AddSetName;
  }
  RefreshFigures();
  SetEditable(editable_);
}

void IngredientsPanel::ShowStored(const LiveTotals& totals) {
  totals_ = totals;
  PutTotals();
}

void IngredientsPanel::UseSet(const std::string& setName) {
  setName_ = setName;
  RefreshFigures();
}

void IngredientsPanel::Clear() {
  Show({}, false);
  parts_->SetText("");
  for (ValueField* value : {cost_, voc_, hap_}) value->SetText("");
}

void IngredientsPanel::ReadInto(FormulaWork& work) const {
  for (std::size_t row = 0; row < lines_.size(); ++row)
    work.grid[row] = {lines_[row].name->Text(), lines_[row].amount->Text()};
}

bool IngredientsPanel::IsChanged() const {
  for (const Line& line : lines_)
    if (line.name->IsDirty() || line.amount->IsDirty()) return true;
  return false;
}

void IngredientsPanel::SetEditable(bool editable) {
  editable_ = editable;
  for (std::size_t row = 0; row < lines_.size(); ++row) {
    const Line& line = lines_[row];
    const bool used = !line.name->text().isEmpty() || !line.amount->text().isEmpty();
    line.name->setReadOnly(!editable);
    line.amount->setReadOnly(!editable);
    line.amount->setEnabled(!editable || used);
    // Enter and Tab pass over a formula that is only read; its first line stays a place to go to.
    line.name->setFocusPolicy(editable || row == 0 ? Qt::StrongFocus : Qt::ClickFocus);
    line.amount->setFocusPolicy(editable ? Qt::StrongFocus : Qt::ClickFocus);
  }
}

void IngredientsPanel::LineChanged(std::size_t row) {
  if (showing_) return;
  const Line& line = lines_[row];
  const bool used = !line.name->text().isEmpty() || !line.amount->text().isEmpty();
  if (editable_ && (used || !line.amount->hasFocus())) line.amount->setEnabled(used);
  ShowTotals();
}

void IngredientsPanel::ShowInk() {
  for (std::size_t row = 0; row < lines_.size(); ++row) {
    const std::optional<Ink>& ink = figures_.lines[row].ink;
    lines_[row].ink->setVisible(ink.has_value());
    lines_[row].ink->Show(ink);
  }
}

FormulaWork IngredientsPanel::Work() const {
  FormulaWork work;
  ReadInto(work);
  work.AddSetName = setName_;
  return work;
}

void IngredientsPanel::ShowTotals() {
  const FormulaWork work = Work();
  parts_->SetText(UpdateBQTotal(work));
  totals_ = ComputeLiveTotals(host_.session, work, figures_);
  PutTotals();
}

void IngredientsPanel::PutTotals() {
  cost_->SetText(totals_.BasicCost);
  voc_->SetText(totals_.VOCBasics);
  hap_->SetText(totals_.HAPBasics);
  Q_EMIT Changed();
}

// ---- Typing

void IngredientsPanel::NameLeft(std::size_t row, QWidget* to) {
  if (!editable_ || !GoesOnWithin(host_, to)) return;
  Line& line = lines_[row];
  const std::string typed = line.name->Text();
  if (EqualNoCase(typed, line.entered)) return;
  const Result<IngredientEntry> entry = EnterIngredient(host_.session, Work(), row, typed);
  if (!host_.Accepted(entry)) {
    line.name->SetText("");
    line.entered.clear();
    figures_.lines[row] = {};
    ShowInk();
    ShowTotals();
    return;
  }
  std::string name = entry->name;
  if (entry->toAdd) name = AddZeroBasic(host_.session, entry->toAdd->name, entry->toAdd->additive);
  TakeName(row, name);
}

void IngredientsPanel::TakeName(std::size_t row, const std::string& name) {
  Line& line = lines_[row];
  line.entered = name;
  if (line.name->Text() != name) line.name->SetText(name);
  figures_.lines[row] = ReadIngredientFigures(host_.session, name);
  ShowInk();
  ShowTotals();
}

void IngredientsPanel::AmountLeft(std::size_t row, QWidget* to) {
  NumberField& amount = *lines_[row].amount;
  // An ingredient may be named before it is weighed; a line without an amount is found by the save.
  if (!editable_ || !GoesOnWithin(host_, to) || Trim(amount.Text()).empty()) return;
  const Result<std::string> entered = EnterAmount(amount.Text(), U8(amount.objectName()));
  if (!host_.Accepted(entered)) return;
  if (*entered != amount.Text()) amount.SetText(*entered);
}

// ---- Changes made elsewhere

void IngredientsPanel::RenameIngredient(std::string_view oldName, std::string_view newName) {
  for (std::size_t row = 0; row < lines_.size(); ++row) {
    if (!EqualNoCase(lines_[row].name->Text(), oldName)) continue;
    const bool wasClean = !lines_[row].name->IsDirty();
    TakeName(row, std::string(newName));
    if (wasClean) lines_[row].name->MarkClean();
  }
}

void IngredientsPanel::TakeFigure(std::string_view name, std::string_view kind, float value) {
  for (std::size_t row = 0; row < lines_.size(); ++row) {
    if (!EqualNoCase(lines_[row].name->Text(), name)) continue;
    if (kind == "Cost") figures_.lines[row].Cost = value;
    if (kind == "VOC") figures_.lines[row].VOC = value;
    if (kind == "HAP") figures_.lines[row].HAP = value;
  }
  for (GridFigures::SetLine& line : figures_.set)
    if (EqualNoCase(line.name, name)) line.figures = ReadIngredientFigures(host_.session, name);
  ShowTotals();
}

void IngredientsPanel::RefreshFigures() {
  figures_ = ReadGridFigures(host_.session, Work());
  ShowInk();
  ShowTotals();
}

}  // namespace vellumark::desktop
