#include "desktop/colors/measurements_panel.h"

#include <algorithm>

#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "desktop/kit/amount_field.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// The widths of the texts on file.
constexpr int kSourceLength = 30;
constexpr int kNoteLength = 70;

}  // namespace

/// The rows of the list, each edited through the rules of an entry.
class MeasurementsPanel::Source : public GridSource {
 public:
  explicit Source(Session& session) : session_(session) {}

  std::vector<LabReading> readings;

  int Rows() const override { return static_cast<int>(readings.size()); }
  std::string Text(int row, int column) const override {
    return LabTexts(session_, readings.at(static_cast<std::size_t>(row))).at(static_cast<std::size_t>(column));
  }
  bool IsEditable(int, int) const override { return true; }
  Result<void> Edit(int row, int column, const std::string& text) override {
    LabEntry entry = LabTexts(session_, readings.at(static_cast<std::size_t>(row)));
    entry.at(static_cast<std::size_t>(column)) = text;
    auto reading = ReadLabEntry(session_, entry);
    if (!reading) return Refuse(reading.error().title, reading.error().text);  // the cell keeps the focus by itself
    readings.at(static_cast<std::size_t>(row)) = *std::move(reading);
    return {};
  }

 private:
  Session& session_;
};

MeasurementsPanel::MeasurementsPanel(FormHost& host, TabSet& tabs, ColorKind kind)
    : QObject(&host.Self()), host_(host), kind_(kind), source_(std::make_shared<Source>(host.session)) {
  tabs.LatePage(tr("Measurements"), "TabLab", [this](Form form) { Build(form); });
}

void MeasurementsPanel::Build(Form form) {
  form.Heading(tr("New measurement"));
  BuildEntry(form);
  list_ = form.Table("fgLab");
  GridColumn lightSource = GridColumn::Text(tr("Light Source"), 152);
  lightSource.rule = TextRule::Any(kSourceLength);
  GridColumn substrate = GridColumn::Text(tr("Substrate"), 152);
  substrate.rule = TextRule::Any(kSourceLength);
  GridColumn note = GridColumn::Text(tr("Note"), 240);
  note.rule = TextRule::Any(kNoteLength);
  list_->SetColumns({GridColumn::Number(tr("L")), GridColumn::Number(tr("a")), GridColumn::Number(tr("b")),
                     GridColumn::Number(tr("Delta")), GridColumn::Number(tr("Density")), lightSource, substrate, note});
  list_->SetEmptyText(tr("No measurements"));
  list_->SetSource(source_);
  list_->setMinimumHeight(120);
  form.Heading(tr("Measurements"));
  form.Wide(list_, 1);
  remove_ = form.Button("cmdDeleteLab", tr("Re&move from list"), [this] { Remove(); });
  form.ButtonsWithoutDefault({remove_});
  remove_->setEnabled(false);
  if (shown_) FillDropDowns();
  EmptyEntry();
  connect(list_, &Grid::Edited, this, &MeasurementsPanel::Changed);
  connect(list_, &Grid::CurrentRowChanged, this, [this](int row) { remove_->setEnabled(row >= 0); });
}

MeasurementsPanel::~MeasurementsPanel() = default;

void MeasurementsPanel::BuildEntry(Form& form) {
  const std::array<QString, 5> captions{tr("L"), tr("a"), tr("b"), tr("Delta"), tr("Density")};
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    const std::string control = (LabFields().begin() + static_cast<std::ptrdiff_t>(i))->Control();
    numbers_[i] = form.Number(Q(control), DecimalsOf(host_.session, AmountKey::Lab), tr("-99999 to 99999"), 9);
    numbers_[i]->setAccessibleName(captions[i]);
    MakeAmountField(host_, *numbers_[i], AmountKey::Lab, control, [this] { return shown_; });
  }
  form.Row(captions[0], {numbers_[0], form.Hint(captions[1]), numbers_[1], form.Hint(captions[2]), numbers_[2],
                         form.Hint(captions[3]), numbers_[3], form.Hint(captions[4]), numbers_[4]});
  // Made editable before the form listens to it, which must hear its line of text too.
  const auto dropDown = [&form](const char* name, const QString& caption) {
    auto* combo = new ComboField(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->lineEdit()->setMaxLength(kSourceLength);
    combo->setMinimumWidth(200);
    combo->setAccessibleName(caption);
    combo->MarkClean();
    return form.Add(combo);
  };
  lightSource_ = dropDown("cmb_LS", tr("Light source"));
  substrate_ = dropDown("cmb_PT", tr("Substrate"));
  form.Row(tr("Light source"), {lightSource_, form.Hint(tr("Substrate")), substrate_});
  note_ = form.Text("txt_Note", TextRule::Any(kNoteLength));
  form.Row(tr("Note"), {note_, form.Button("cmdAddLab", tr("&Add to list"), [this] { Add(); })});
}

void MeasurementsPanel::Load(std::string_view name) {
  shown_ = true;
  loaded_ = ReadLabReadings(host_.session, kind_, name);
  source_->readings = loaded_;
  if (!IsBuilt()) return;
  ShowList();
  FillDropDowns();
  EmptyEntry();
}

void MeasurementsPanel::ShowList() {
  list_->Refresh();
  remove_->setEnabled(list_->CurrentRow() >= 0);
}

void MeasurementsPanel::Refresh(std::string_view name) {
  const bool changed = IsChanged();
  loaded_ = ReadLabReadings(host_.session, kind_, name);
  if (changed) return;
  source_->readings = loaded_;
  if (IsBuilt()) list_->Refresh();
}

void MeasurementsPanel::Clear() {
  shown_ = false;
  loaded_.clear();
  source_->readings.clear();
  if (!IsBuilt()) return;
  ShowList();
  EmptyEntry();
}

bool MeasurementsPanel::IsChanged() const {
  return source_->readings != loaded_;
}

bool MeasurementsPanel::IsEntryFilled() const {
  if (!IsBuilt()) return false;
  return std::ranges::any_of(Entry(), [](const std::string& text) { return !Trim(text).empty(); });
}

LabEntry MeasurementsPanel::Entry() const {
  return {numbers_[0]->Text(), numbers_[1]->Text(),  numbers_[2]->Text(), numbers_[3]->Text(),
          numbers_[4]->Text(), lightSource_->Text(), substrate_->Text(),  note_->Text()};
}

const std::vector<LabReading>& MeasurementsPanel::Readings() const {
  return source_->readings;
}

void MeasurementsPanel::FocusEntry() {
  host_.FocusField(LabFields().begin()->Control());
}

void MeasurementsPanel::Add() {
  const Result<LabReading> reading = ReadLabEntry(host_.session, Entry());
  if (!host_.Accepted(reading)) return;
  source_->readings.push_back(*reading);
  list_->Refresh();
  EmptyEntry();
  Q_EMIT Changed();
  FocusEntry();
}

void MeasurementsPanel::Remove() {
  const int row = list_->CurrentRow();
  if (row < 0) return;
  source_->readings.erase(source_->readings.begin() + row);
  ShowList();
  Q_EMIT Changed();
}

void MeasurementsPanel::EmptyEntry() {
  for (NumberField* field : numbers_) field->SetText("");
  lightSource_->SetText("");
  substrate_->SetText("");
  note_->SetText("");
  for (NumberField* field : numbers_) field->MarkClean();
  lightSource_->MarkClean();
  substrate_->MarkClean();
  note_->MarkClean();
}

void MeasurementsPanel::FillDropDowns() {
  lightSource_->SetItems(KnownLightSources(host_.session, kind_));
  substrate_->SetItems(KnownSubstrates(host_.session, kind_));
}

}  // namespace vellumark::desktop
