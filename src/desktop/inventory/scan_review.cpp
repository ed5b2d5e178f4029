#include "desktop/inventory/scan_review.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/ink.h"
#include "core/labels/scan_undo.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

using State = ScanRecord::State;

constexpr int kLotWidth = 96;
constexpr int kFieldsWidth = 464;
constexpr int kMark = 32;

// Neither of two: what was not scanned is looked up.
void ChooseNone(RadioField& field) {
  QButtonGroup* group = field.Button(0)->group();
  group->setExclusive(false);
  for (const int index : {0, 1}) field.Button(index)->setChecked(false);
  group->setExclusive(true);
}

const char* MarkOf(const ScanRecord& record) {
  return record.state == State::Successful ? "checked" : "fault";
}

std::string FirstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

// An emptied field is a value that was not scanned, except the job's: emptied by the scanner it is missing.
std::optional<std::string> ValueOf(const std::string& typed) {
  const std::string value = Upper(Trim(typed));
  return value.empty() ? std::nullopt : std::optional(value);
}

}  // namespace

class ScanReview::Source : public GridSource {
 public:
  enum Column { Number, Color, Job, Quantity, Result };
  explicit Source(const std::vector<ScanRecord>& records) : records_(records) {}
  int Rows() const override { return static_cast<int>(records_.size()); }
  std::string Text(int row, int column) const override {
    const ScanRecord& record = records_.at(static_cast<std::size_t>(row));
    switch (column) {
      case Number:
        return std::to_string(row + 1);
      case Color:
        return record.CN.value_or(record.CC.value_or(""));
      case Job:
        return record.JN.value_or("");
      case Quantity:
        return record.Qty ? Fixed(*record.Qty, 3) : std::string();
      default:
        return FirstLine(record.Message);
    }
  }
  const char* Mark(int row, int column) const override {
    return column == Result ? MarkOf(records_.at(static_cast<std::size_t>(row))) : nullptr;
  }

 private:
  const std::vector<ScanRecord>& records_;
};

ScanReview::ScanReview(FormHost& host, Form form)
    : QObject(&host.Self()), host_(host), source_(std::make_shared<Source>(records_)) {
  auto* box = new QWidget;
  auto* across = new QHBoxLayout(box);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kGroup);
  auto* fields = new QWidget;
  auto* result = new QWidget;
  for (QWidget* side : {fields, result}) side->setProperty("flush", true);
  fields->setFixedWidth(kFieldsWidth);
  across->addWidget(fields);
  across->addWidget(result, 1);
  BuildFields(Form(host, *fields));
  BuildResult(Form(host, *result));
  form.Wide(box, 1);
  form.Wide(BuildButtons(form));
  for (TextField* field : std::initializer_list<TextField*>{job_, name_, code_, lot_, location_, container_, quantity_})
    field->DoNotTrack();
  for (Field* field : std::initializer_list<Field*>{type_, database_, choice_, messages_}) field->DoNotTrack();
}

ScanReview::~ScanReview() = default;

void ScanReview::BuildFields(Form form) {
  const Session& session = host_.session;
  const auto database = [this] { return database_->Text(); };
  const NameSource names{[&session, database](std::string_view typed) {
                           const auto found = typed.empty() ? std::vector<std::string>()
                                                            : ScanNamesFrom(session, database(), typed, 1);
                           return found.empty() ? std::string() : found.front();
                         },
                         [&session, database](std::string_view typed, std::size_t limit) {
                           return ScanNamesFrom(session, database(), typed, limit);
                         }};
  form.Row(tr("Job Number"), job_ = form.Add(new JobBox("cmbJN", session)));
  name_ = form.Name("cmbCN", names);
  ink_ = new SwatchView("imgScanSwatch", {48, 32});
  form.Row(tr("Color Name"), {name_, ink_});
  form.Row(tr("Color Code"), code_ = form.Text("txtScanCC", TextRule::Upper(session.NameLength)));
  type_ =
      form.Radio("optCT", {{"optCT_Formula", tr("Formula")}, {"optCT_Basic", tr("Basic / Additive")}}, Qt::Horizontal);
  form.Row(tr("Color Type"), type_);
  form.Row(tr("Database"), database_ = form.Combo("cmbDB"));
  database_->setMinimumWidth(240);
  form.Row(tr("Lot Number"), lot_ = form.Text("txtScanLN", TextRule::Upper(kLotTextLength)));
  choice_ = form.Combo("LotNum_ScanSel");
  choice_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  choice_->setMinimumWidth(304);
  form.Row(tr("Choose"), choice_);
  location_ = form.Text("txtScanLL", TextRule::Upper(kLotTextLength));
  container_ = form.Text("txtScanLC", TextRule::Upper(kLotTextLength));
  container_->setAccessibleName(tr("Lot Cont ID"));
  for (TextField* field : {location_, container_}) field->setMinimumWidth(kLotWidth);
  form.Row(tr("Lot Location"), {location_, form.Hint(tr("Lot Cont ID")), container_});
  quantity_ = form.Number("txtQty", 3, tr("Above 0, below 99999"));
  quantity_->setFont(Look::Figures(1.4));
  form.Row(tr("Quantity"), {quantity_, form.Hint(Q(UnitName(session.UMI)))});
  for (TextField* field : std::initializer_list<TextField*>{job_, name_})
    connect(field, &TextField::Left, this, [this] { ShowChoices(); });
  database_->OnChosen([this](int) { ShowChoices(); });
  connect(type_, &RadioField::ChosenChanged, this, [this] { ShowChoices(); });
  choice_->OnChosen([this](int index) { ChoiceMade(index); });
  // A lot that is typed is not the one that was picked.
  connect(lot_, &QLineEdit::textEdited, this, [this] {
    if (records_.empty()) return;
    Current().LR.reset();
    Current().jobRow.reset();
    choice_->setCurrentIndex(0);
  });
}

void ScanReview::BuildResult(Form form) {
  form.Heading(tr("Step 2 - View Results & Update"));
  auto* line = new QWidget;
  auto* across = new QHBoxLayout(line);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kGap);
  mark_ = new IconView("fault", kMark, "imgResult");
  result_ = form.Label("lblResult");
  result_->setFont(Look::Heading());
  place_ = form.Hint({}, "lblRecord");
  across->addWidget(mark_);
  across->addWidget(result_);
  across->addStretch(1);
  across->addWidget(place_);
  form.Wide(line);
  messages_ = form.Note("txtMessages", 6);
  messages_->setReadOnly(true);
  messages_->setFocusPolicy(Qt::ClickFocus);
  messages_->setAccessibleName(tr("What became of the record"));
  messages_->setMaximumHeight(168);
  form.Wide(messages_);
  list_ = form.Table("fgScanResults");
  list_->SetColumns({GridColumn::Number("#", 40), GridColumn::Text(tr("Color"), 136), GridColumn::Text(tr("Job"), 88),
                     GridColumn::Number(tr("Quantity"), 88), GridColumn::Text(tr("Result"), 376)});
  list_->SetSource(source_);
  list_->setAccessibleName(tr("Results of the scan"));
  form.Wide(list_, 1);
  connect(list_, &Grid::CurrentRowChanged, this, [this](int row) {
    if (!loading_ && row >= 0) Go(static_cast<std::size_t>(row));
  });
}

QWidget* ScanReview::BuildButtons(Form& form) {
  auto* line = new QWidget;
  auto* across = new QHBoxLayout(line);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kUnit);
  across->addWidget(previous_ =
                        form.Button("cmdPrevious", tr("Previous"), Qt::ALT | Qt::Key_Left, [this] { Go(at_ - 1); }));
  across->addWidget(next_ = form.Button("cmdNext", tr("Next"), Qt::ALT | Qt::Key_Right, [this] { Go(at_ + 1); }));
  across->addStretch(1);
  across->addWidget(takeBack_ = form.Button("cmdTakeBack", tr("Take back"), [this] { TakeBack(); }));
  across->addWidget(again_ = form.Button("cmdReProcess", tr("Process &Again"), Qt::Key_F8, [this] { cmdReProcess(); }));
  across->addWidget(done_ = form.Button("cmdDone", tr("Done"), Qt::Key_F10, [this] { Finish(); }));
  again_->setProperty("primary", true);
  return line;
}

// ---- Records

void ScanReview::Show(std::vector<ScanRecord> records) {
  records_ = std::move(records);
  at_ = 0;
  loading_ = true;
  list_->Refresh();
  loading_ = false;
  if (!records_.empty()) ShowRecord();
}

bool ScanReview::HasUnbooked() const {
  return std::ranges::any_of(records_, [](const ScanRecord& record) { return record.state != State::Successful; });
}

void ScanReview::UpdateEnabled() {
  const bool any = !records_.empty();
  previous_->setEnabled(any && at_ > 0);
  next_->setEnabled(any && at_ + 1 < records_.size());
  again_->setEnabled(any);
  takeBack_->setEnabled(any && Current().state == State::Successful);
}

void ScanReview::Go(std::size_t to) {
  if (to >= records_.size() || to == at_) return;
  TakeIfOpen();
  at_ = to;
  ShowRecord();
}

void ScanReview::ShowRecord() {
  const ScanRecord& record = Current();
  loading_ = true;
  job_->SetText(record.JN.value_or(""));
  name_->SetText(record.CN.value_or(""));
  code_->SetText(record.CC.value_or(""));
  ChooseNone(*type_);
  if (record.CT) type_->Choose(*record.CT == "2" ? 0 : 1);
  std::vector<std::string> databases{""};
  databases.insert(databases.end(), host_.session.databaseList.begin(), host_.session.databaseList.end());
  const std::string scanned = record.DB.value_or("");
  const std::string* known = scanned.empty() ? nullptr : host_.session.FindDatabase(scanned);
  if (known == nullptr && !scanned.empty()) databases.push_back(scanned);
  database_->SetItems(databases);
  database_->SetText(known == nullptr ? scanned : *known);
  lot_->SetText(record.LN.value_or(""));
  location_->SetText(record.LL.value_or(""));
  container_->SetText(record.LC.value_or(""));
  quantity_->SetText(record.Qty ? Fixed(*record.Qty, 3) : "");
  list_->SetCurrentRow(static_cast<int>(at_));
  loading_ = false;
  ShowChoices();
  Q_EMIT Changed();
  ShowResult();
}

void ScanReview::ShowResult() {
  const ScanRecord& record = Current();
  const bool booked = record.state == State::Successful;
  mark_->Show(MarkOf(record));
  result_->setText(booked ? tr("Booked") : tr("Not booked"));
  place_->setText(tr("Record %1 of %2").arg(at_ + 1).arg(records_.size()));
  messages_->SetText(record.Message);
  if (!booked && !record.Field.empty()) return void(host_.FocusField(record.Field));
  if (booked) (at_ + 1 < records_.size() ? next_ : done_)->setFocus(Qt::OtherFocusReason);
}

void ScanReview::ShowChoices() {
  if (loading_ || records_.empty()) return;
  ScanRecord record = Current();
  TakeFields(record);
  choices_ = ChoicesOf(host_.session, record);
  loading_ = true;
  QStringList texts{choices_.empty() ? tr("No lots or items to choose from")
                    : record.JN      ? tr("Items of the Job")
                                     : tr("Lots of the color")};
  for (const ScanChoice& choice : choices_) texts += Q(choice.text);
  choice_->clear();
  choice_->addItems(texts);
  const auto picked = std::ranges::find_if(choices_, [&](const ScanChoice& choice) {
    return choice.jobRow ? choice.jobRow == record.jobRow : record.LR && choice.LotRefID == *record.LR;
  });
  choice_->setCurrentIndex(picked == choices_.end() ? 0 : 1 + static_cast<int>(picked - choices_.begin()));
  choice_->setEnabled(!choices_.empty());
  const std::string database = record.DB.value_or("");
  std::optional<Ink> ink;
  if (record.CN && host_.session.FindDatabase(database) != nullptr)
    for (const ColorKind kind : {ColorKind::Mix, ColorKind::Basic})
      if (!ink && (!record.CT || (*record.CT == "2") == (kind == ColorKind::Mix)))
        ink = InkOf(host_.session, kind, *record.CN, database);
  ink_->Show(ink);
  loading_ = false;
}

void ScanReview::ChoiceMade(int index) {
  if (loading_ || index < 1) return;
  ScanRecord& record = Current();
  if (record.state == State::Successful) return;
  TakeFields(record);
  Choose(record, choices_.at(static_cast<std::size_t>(index) - 1));
  lot_->SetText(record.LN.value_or(""));
  location_->SetText(record.LL.value_or(""));
  container_->SetText(record.LC.value_or(""));
  quantity_->TakeFocus();
}

void ScanReview::TakeFields(ScanRecord& record) const {
  const bool jobWasEmpty = record.JN && record.JN->empty();
  record.JN = ValueOf(job_->Number());
  if (!record.JN && jobWasEmpty) record.JN = "";
  record.CN = ValueOf(name_->Name());
  record.CC = ValueOf(code_->Text());
  record.CT.reset();
  if (type_->Chosen() >= 0) record.CT = type_->Chosen() == 0 ? "2" : "1";
  record.DB = ValueOf(database_->Text());
  record.LN = ValueOf(lot_->Text());
  record.LL = ValueOf(location_->Text());
  record.LC = ValueOf(container_->Text());
  const auto quantity = ParseNumber(quantity_->Text());
  record.Qty = quantity && *quantity < 99999 ? std::optional(RoundSingle(*quantity, 3)) : std::nullopt;
}

void ScanReview::TakeIfOpen() {
  if (!records_.empty() && Current().state != State::Successful) TakeFields(Current());
}

void ScanReview::cmdReProcess() {
  if (records_.empty()) return;
  TakeIfOpen();
  if (!host_.Accepted(ProcessAgain(host_.session, Current()))) return;
  if (Current().state != State::Successful) QApplication::beep();
  list_->Refresh();
  ShowRecord();
}

void ScanReview::TakeBack() {
  if (!host_.session.prompt.Ask(U8(tr("Take Back")), U8(tr("Take this booking back?")), Answer::No)) return;
  if (!host_.Accepted(UndoScan(host_.session, Current()))) return;
  list_->Refresh();
  ShowRecord();
}

void ScanReview::Finish() {
  if (records_.empty()) return;  // its key is heard in the first step too
  if (HasUnbooked() && !MayClearScan(host_.session)) return;
  records_.clear();
  list_->Refresh();
  Q_EMIT Done();
}

}  // namespace vellumark::desktop
