#include "desktop/batch/add_addition_form.h"

#include <QKeyEvent>
#include <algorithm>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/colors/name_search.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLines = 8;

std::string Numbered(const char* name, std::size_t line) {
  return name + std::to_string(line);
}

}  // namespace

AddAdditionForm::AddAdditionForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "AddAdditionForm", tr(" Batch Addition")) {
  Form form(*this);
  form.Wide(form.Hint(tr("Enter (new or extra) Colors and amounts added to the Batch.")));
  for (int i = 0; i < kLines; ++i) AddLine(form, i);
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
}

void AddAdditionForm::AddLine(Form& form, int number) {
  const NameSource names{
      [this](std::string_view typed) { return CompleteName(session, NameKind::Basics, typed); },
      [this](std::string_view typed, std::size_t limit) { return NamesFrom(session, NameKind::Basics, typed, limit); }};
  Line line{};
  line.name = form.Name(QString("cmbColorName%1").arg(number), names);
  line.name->setMinimumWidth(240);
  line.amount = form.Number(QString("txtAmount%1").arg(number), 3);
  line.amount->setAccessibleName(tr("Amount"));
  line.unit = form.Hint({});
  form.Row(tr("Color %1").arg(number + 1), {line.name, line.amount, line.unit});
  lines_.push_back(line);
  const auto place = static_cast<std::size_t>(number);
  connect(line.name, &TextField::Left, this, [this, place](QWidget* to) {
    // A command looks at all lines itself.
    if (qobject_cast<QPushButton*>(to) == nullptr) NameLeft(lines_.at(place));
  });
  connect(line.name, &NameBox::Picked, this, [this, place] { lines_.at(place).amount->TakeFocus(); });
  line.name->installEventFilter(this);
}

void AddAdditionForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  const QString unit = Q(UnitName(record_->work.UMF));
  for (const Line& line : lines_) line.unit->setText(unit);
}

bool AddAdditionForm::NameLeft(Line& line) {
  const std::string typed = line.name->Name();
  if (typed.empty()) return true;
  const auto name = ReadAdditionName(session, typed);
  if (!name || !*name) {
    if (!name) session.prompt.Tell(name.error().title, name.error().text);
    line.name->TakeFocus();
    return false;
  }
  line.name->SetText(**name);
  return true;
}

std::vector<AdditionLine> AddAdditionForm::Typed(std::vector<std::size_t>& places) const {
  std::vector<AdditionLine> typed;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    AdditionLine line{lines_[i].name->Name(), lines_[i].amount->Text()};
    if (line.Color_Name.empty() && Trim(line.amount).empty()) continue;
    typed.push_back(std::move(line));
    places.push_back(i);
  }
  return typed;
}

void AddAdditionForm::cmdSave_Click() {
  for (Line& line : lines_)
    if (!NameLeft(line)) return;
  std::vector<std::size_t> places;
  const std::vector<AdditionLine> typed = Typed(places);
  if (typed.empty()) return reject();
  const Result<void> added = AddBatchAdditions(session, *record_, typed);
  if (added) return accept();
  Refusal refusal = added.error();
  const auto faulty = FaultyAddition(session, record_->work, typed);
  if (!refusal.field.empty()) refusal.field = Numbered(refusal.field.c_str(), places[faulty.value_or(0)]);
  ShowRefusal(refusal);
}

// Enter on an empty line is the end of the list.
bool AddAdditionForm::eventFilter(QObject* watched, QEvent* event) {
  const auto line = std::ranges::find(lines_, watched, [](const Line& l) -> QObject* { return l.name; });
  if (line == lines_.end() || event->type() != QEvent::KeyPress) return Dialog::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if ((key != Qt::Key_Return && key != Qt::Key_Enter) || line == lines_.begin() || !line->name->text().isEmpty())
    return Dialog::eventFilter(watched, event);
  DefaultButton()->setFocus(Qt::TabFocusReason);
  DefaultButton()->click();
  return true;
}

}  // namespace vellumark::desktop
