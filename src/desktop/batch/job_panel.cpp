#include "desktop/batch/job_panel.h"

#include <QHBoxLayout>
#include <QKeyEvent>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/batch/jobs.h"
#include "desktop/batch/captions.h"
#include "desktop/batch/cell_button.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kTextLength = 30;  // of job numbers, lots and notes on file

/// Commands read the fields themselves before they do anything.
bool IsCommand(const QWidget* widget) {
  return qobject_cast<const QPushButton*>(widget) != nullptr;
}

bool Changes(const QKeyEvent& key) {
  const bool typed = !key.text().isEmpty() && key.text().front().isPrint() &&
                     (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
  return typed || key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete || key.matches(QKeySequence::Paste) ||
         key.matches(QKeySequence::Cut);
}

}  // namespace

JobPanel::JobPanel(FormHost& host, Form& form, BatchRecord& record) : host_(host), record_(record) {
  setObjectName("JobPanel");
  Build(form);
  Listen();
}

// Two lines of fields under their captions: the list above them needs the height.
void JobPanel::Build(Form& form) {
  job_ = form.Text("JobNumber", TextRule::Any(kTextLength));
  split_ = form.Button("cmdSplitJobs", tr("S&plit"), Qt::Key_F8, [this] { Q_EMIT SplitClicked(); });
  used_ = form.Number("txtQtyUsed", 3);
  usedUnit_ = form.Hint({});
  returns_ = form.Check("chkReturnToInventory", tr("&Return to inventory"));
  returned_ = new CellButton("lblInvQty", 1.4, Qt::AlignRight);
  returned_->setFocusPolicy(Qt::TabFocus);
  returned_->setAccessibleName(tr("Quantity returned to inventory"));
  returned_->setToolTip(Q(ReturnedRuleText()));
  returnedUnit_ = form.Hint({});
  lot_ = form.Text("LotNumber", TextRule::Any(kTextLength));
  location_ = form.Text("LotLocation", TextRule::Any(kTextLength));
  container_ = form.Text("LotContID", TextRule::Any(kTextLength));
  for (TextField* field : {job_, lot_, location_, container_}) field->setMinimumWidth(96);

  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(0, space::kTight, 0, 0);
  lines->setSpacing(space::kUnit);
  auto* first = new QHBoxLayout;
  first->setSpacing(space::kGap);
  first->addLayout(Under(Caption(tr("&Job number"), job_), {job_, split_}), 1);
  first->addLayout(Under(Caption(tr("Qty &used"), used_), {used_, usedUnit_}));
  first->addLayout(Under(returns_, {returned_, returnedUnit_}));
  lines->addLayout(first);
  lotLine_ = new QWidget(this);
  auto* second = new QHBoxLayout(lotLine_);
  second->setContentsMargins(0, 0, 0, 0);
  second->setSpacing(space::kUnit);
  second->addLayout(Under(Caption(tr("&Lot number"), lot_), {lot_}), 1);
  second->addLayout(Under(Caption(tr("Location"), location_), {location_}), 1);
  second->addLayout(Under(Caption(tr("Cont. ID"), container_), {container_}), 1);
  container_->setAccessibleName(tr("Container ID"));
  lines->addWidget(lotLine_);
  lines->addStretch(1);
}

void JobPanel::Listen() {
  connect(job_, &TextField::Left, this, [this](QWidget* to) {
    if (!IsCommand(to)) EnterJob();
  });
  connect(used_, &TextField::Left, this, [this](QWidget* to) {
    // To the job's number the focus may go with an amount that does not fit, to change the job.
    if (!IsCommand(to) && to != job_) EnterQty();
  });
  used_->installEventFilter(this);
  connect(returns_, &QCheckBox::clicked, this, &JobPanel::ReturnToggled);
  connect(returned_, &QAbstractButton::clicked, this,
          [this] { host_.session.prompt.Tell("", ReturnedRuleText(), vellumark::Icon::Information); });
  const auto keeps = [this](TextField* field, const char* column) {
    connect(field, &QLineEdit::textChanged, this, [this, field, column] {
      if (showing_) return;
      if (const auto entered = EnterBatchField(host_.session, record_, column, field->Text()); !entered) Done(entered);
    });
  };
  keeps(lot_, "LotNumber");
  keeps(location_, "LotLoc");
  keeps(container_, "LotContID");
}

void JobPanel::Show() {
  showing_ = true;
  const bool open = record_.state != BatchState::None;
  const bool isSplit = record_.jobs.size() > 1;
  const QString unit = Q(UnitName(record_.work.UMF));
  const bool fixed = !TakesChanges(host_.session, record_);
  job_->SetText(record_.JobNumber());
  job_->setReadOnly(isSplit || fixed);
  used_->SetText(record_.QtyUsedText());
  used_->setReadOnly(isSplit || fixed);
  usedUnit_->setText(open ? unit : QString());
  returnedUnit_->setText(open ? unit : QString());
  returns_->setChecked(record_.ReturnToInventory || !record_.jobs.empty());
  returned_->setText(open ? Q(record_.ReturnedText()) : QString());
  const auto show = [fixed](TextField* field, const std::string& text) {
    if (field->Text() != text) field->SetText(text);
    field->setReadOnly(fixed);
  };
  show(lot_, record_.fields.LotNumber);
  show(location_, record_.fields.LotLoc);
  show(container_, record_.fields.LotContID);
  lotLine_->setVisible(host_.session.InvLotTracking != 0);
  for (QWidget* cell :
       std::initializer_list<QWidget*>{job_, used_, split_, returns_, returned_, lot_, location_, container_})
    cell->setEnabled(open);
  for (QWidget* cell : std::initializer_list<QWidget*>{split_, returns_}) cell->setEnabled(open && !fixed);
  showing_ = false;
}

template <class R>
bool JobPanel::Done(const R& result) {
  Show();
  Q_EMIT Edited();
  return host_.Accepted(result);
}

bool JobPanel::EnterJob() {
  if (record_.state == BatchState::None || record_.jobs.size() > 1 || job_->Text() == record_.JobNumber()) return true;
  return Done(EnterJobNumber(host_.session, record_, job_->Text()));
}

bool JobPanel::EnterQty() {
  if (record_.state == BatchState::None || record_.jobs.size() > 1 || used_->Text() == record_.QtyUsedText())
    return true;
  const std::string typed = used_->Text();
  const Result<void> entered = EnterQtyUsed(host_.session, record_, typed);
  if (Done(entered)) return true;
  // What was refused stands to be corrected.
  used_->SetText(typed);
  used_->SetFault(Q(entered.error().text));
  used_->selectAll();
  return false;
}

bool JobPanel::Enter() {
  // The job first: an amount is refused without one.
  return EnterJob() && EnterQty();
}

void JobPanel::ReturnToggled(bool checked) {
  Done(SetReturnToInventory(host_.session, record_, checked));
}

bool JobPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched != used_) return QWidget::eventFilter(watched, event);
  // Tab comes here by way of a command, which left the job's number as it was typed.
  if (event->type() == QEvent::FocusIn && job_->Text() != record_.JobNumber() && EnterJob())
    QMetaObject::invokeMethod(used_, &QLineEdit::selectAll, Qt::QueuedConnection);
  if (event->type() != QEvent::KeyPress) return false;
  if (!Changes(*static_cast<QKeyEvent*>(event)) || !TakesChanges(host_.session, record_)) return false;
  const Result<void> allowed = CheckQtyUsedKey(record_);
  if (allowed) return false;
  host_.ShowRefusal(allowed.error());
  return true;
}

}  // namespace vellumark::desktop
