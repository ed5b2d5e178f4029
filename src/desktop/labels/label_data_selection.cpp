#include "desktop/labels/label_data_selection.h"

#include <QCompleter>
#include <QStringListModel>
#include <algorithm>

#include "core/base/text.h"
#include "core/colors/name_search.h"
#include "core/colors/names.h"
#include "core/jobs/job_numbers.h"
#include "desktop/kit/text.h"
#include "desktop/labels/label_windows.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongestJob = 30;
constexpr std::size_t kListed = 200;

// Job numbers that begin as what is typed, asked for key by key.
void CompleteJobs(TextField& field, const Session& session) {
  auto* model = new QStringListModel(&field);
  auto* completer = new QCompleter(model, &field);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  field.setCompleter(completer);
  QObject::connect(&field, &QLineEdit::textEdited, model, [model, &session](const QString& typed) {
    QStringList numbers;
    for (const std::string& number : JobNumbersFrom(session, StripScanTag(U8(typed)), kListed)) numbers += Q(number);
    model->setStringList(numbers);
  });
}

}  // namespace

LabelDataSelection::LabelDataSelection(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "LabelDataSelection", tr("Label Data Selection")) {
  Form form(*this);
  form.Row(tr("&Database"), database_ = form.Combo("cmbDB"));
  database_->SetItems(session.databaseList);
  database_->SetText(session.CurrentDatabase);
  form.Row(tr("Color Type"), type_ = form.Radio("optType", {{"optBasic", tr("Basic / Additive")},
                                                            {"optFormula", tr("Formula")}},
                                                Qt::Horizontal));
  type_->Choose(1);
  const auto kind = [this] { return type_->Chosen() == 1 ? NameKind::Formulas : NameKind::Basics; };
  form.Row(tr("Color &Name"),
           name_ = form.Name("cmbCN", {[this, kind](std::string_view typed) {
                                         return CompleteName(session, kind(), typed, database_->Text());
                                       },
                                       [this, kind](std::string_view typed, std::size_t limit) {
                                         return NamesFrom(session, kind(), typed, limit, database_->Text());
                                       }}));
  form.Row(tr("Color Code"), code_ = form.Value("lblColorCode", 1));
  form.Row(tr("&Job Numbers"), job_ = form.Text("cmbJN", TextRule::Any(kLongestJob)));
  CompleteJobs(*job_, session);
  QLabel* lotCaption = form.Row(tr("&Lot Number"), lot_ = form.Combo("cmbLN"));
  QLabel* containerCaption = form.Row(tr("Lot Cont &ID"), container_ = form.Combo("cmbLC"));
  lotRows_ = {lotCaption, lot_, containerCaption, container_};
  form.Buttons({form.Button("cmdSelect", tr("&Select")), form.Button("cmdFormulaLabel", tr("&Formula Label")),
                form.Button("cmdCancel", tr("Cancel"))});
  for (QWidget* choice : std::initializer_list<QWidget*>{database_, lot_, container_}) choice->setMinimumWidth(240);
  setMinimumWidth(480);
  database_->OnChosen([this](int) { ShowColor(); });
  connect(type_, &RadioField::ChosenChanged, this, &LabelDataSelection::ShowColor);
  connect(name_, &TextField::Left, this, &LabelDataSelection::ShowColor);
  connect(name_, &NameBox::Picked, this, &LabelDataSelection::ShowColor);
  connect(job_, &TextField::Left, this, [this] { job_->SetText(ReadJobNumber(job_->Text())); });
  lot_->OnChosen([this](int) { ShowContainers(); });
  name_->setFocus();
}

void LabelDataSelection::UpdateEnabled() {
  for (QWidget* part : lotRows_) part->setVisible(session.InvLotTracking == 1);
  lot_->setEnabled(lot_->count() > 1);
  container_->setEnabled(container_->count() > 1);
}

LabelChoice LabelDataSelection::Choice() const {
  return {.database = database_->Text(),
          .kind = type_->Chosen() == 1 ? ColorKind::Mix : ColorKind::Basic,
          .name = name_->Name(),
          .job = ReadJobNumber(job_->Text()),
          .lotNumber = lot_->Text(),
          .container = container_->Text()};
}

void LabelDataSelection::ShowColor() {
  const LabelChoice choice = Choice();
  const auto name = FindLabelColor(session, choice);
  const std::string shown = choice.database + '\n' + (name ? *name : std::string()) + (choice.kind == ColorKind::Mix ? "" : "*");
  if (shown == shown_) return;
  shown_ = shown;
  std::vector<std::string> lots{""};
  if (name) {
    name_->SetText(*name);
    code_->setText(Q((*LabelOfColor(session, choice.kind, *name, choice.database))["Color Code"]));
    for (const LotRow& lot : LotsOf(session, choice.kind, *name, choice.database))
      if (lots.back() != lot.LotNumber) lots.push_back(lot.LotNumber);
  } else {
    code_->clear();
  }
  lot_->SetItems(lots);
  lot_->setCurrentIndex(0);
  ShowContainers();
  Changed();
}

void LabelDataSelection::ShowContainers() {
  const LabelChoice choice = Choice();
  std::vector<std::string> containers;
  const auto name = FindLabelColor(session, choice);
  if (name && !choice.lotNumber.empty())
    for (const LotRow& lot : LotsNumbered(session, choice.kind, *name, choice.database, choice.lotNumber))
      containers.push_back(lot.LotContID);
  container_->SetItems(containers);
  container_->setCurrentIndex(containers.empty() ? -1 : 0);
  Changed();
}

void LabelDataSelection::cmdSelect_Click() {
  ShowColor();
  auto label = LabelOfChoice(session, Choice());
  if (!Accepted(label)) return;
  result.Set("Labels", std::vector<LabelData>{*std::move(label)});
  accept();
}

void LabelDataSelection::cmdFormulaLabel_Click() {
  const LabelChoice choice = Choice();
  if (!Accepted(CheckFormulaLabel(choice))) return;
  const auto name = FindLabelColor(session, choice);
  if (!Accepted(name)) return;
  WindowList& list = windows;
  accept();
  list.OpenForm(WindowsOf(LabelKind::Formula).print, {{"Color_Name", *name}, {"Database", choice.database}});
}

}  // namespace vellumark::desktop
