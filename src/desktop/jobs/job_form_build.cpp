// How the Job Window is put together.

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShortcut>
#include <QTimer>

#include "core/base/units.h"
#include "desktop/batch/flow_layout.h"
#include "desktop/jobs/job_form.h"
#include "desktop/jobs/job_layout.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/layout_memory.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"

namespace vellumark::desktop {
namespace {

constexpr int kReloadSoon = 200;  // milliseconds

QWidget* Captioned(const QString& caption, const char* name, QWidget* value) {
  auto* box = new QWidget;
  auto* column = new QVBoxLayout(box);
  column->setContentsMargins(0, 0, space::kGap, 0);
  column->setSpacing(0);
  auto* label = new QLabel(caption);
  label->setProperty("role", "hint");
  label->setObjectName(name);
  column->addWidget(label);
  column->addWidget(value);
  value->setAccessibleName(caption);
  return box;
}

}  // namespace

JobForm::JobForm(WindowList& windowList)
    : Window(windowList, "JobForm", tr("Job Records")), rows_(std::make_shared<JobRows>(JobColumns(session))) {
  setWindowIcon(Icon("Job"));
  reload_ = new QTimer(this);
  reload_->setSingleShot(true);
  reload_->setInterval(kReloadSoon);
  Form form(*this);
  BuildHead(form);
  BuildTotals(form);
  list_ = form.Table("fg");
  list_->setProperty(kLayoutInSettings, true);
  list_->ShowFilter(tr("Filter"));
  list_->AllowManyRows();
  list_->setAccessibleName(tr("Items of the Job"));
  LayOutJobs(session, *list_, *rows_);
  list_->SetSource(rows_);
  form.Wide(list_, 1);
  form.Wide(BuildButtons(form));
  Listen();
  ShowFigures();
}

JobForm::~JobForm() = default;

void JobForm::BuildHead(Form& form) {
  number_ = form.Add(new JobBox("cmbJobNumber", session));
  number_->Means("JobNumber");
  number_->DoNotTrack();
  number_->setMinimumWidth(160);
  number_->setMaximumWidth(280);
  auto* rename = form.Button("cmdRename", tr("Re&name Job"));
  form.Row(tr("Job &Number"),
           {number_, form.Button("cmdPrevious", tr("Previous"), Qt::Key_PageUp),
            form.Button("cmdNext", tr("Next"), Qt::Key_PageDown), form.Button("cmdNew", tr("Ne&w Job")), rename,
            state_ = form.Hint({}, "lblState")});
  ofJob_.push_back(rename);
}

void JobForm::BuildTotals(Form& form) {
  auto* line = new QWidget;
  auto* place = new QHBoxLayout(line);
  place->setContentsMargins(0, 0, 0, 0);
  place->setSpacing(space::kGap);
  const QString used = tr("Total Qty Used (%1)").arg(Q(UnitName(session.UMI)));
  place->addWidget(Captioned(used, "lblTotalQtyUsedCaption", used_ = form.Value("lblTotalQtyUsed")));
  place->addWidget(Captioned(tr("Total Cost"), "lblTotalCostCaption", cost_ = form.Value("lblTotalCost")));
  place->addWidget(Captioned(tr("Total VOCs"), "lblTotalVOCsCaption", VOCs_ = form.Value("lblTotalVOCs")));
  place->addWidget(Captioned(tr("Total HAPs"), "lblTotalHAPsCaption", HAPs_ = form.Value("lblTotalHAPs")));
  hint_ = form.Hint({}, "lblHint");
  hint_->setWordWrap(true);
  hint_->setAlignment(Qt::AlignCenter);
  place->addWidget(hint_, 1);
  place->addWidget(Captioned(tr("Date Entered"), "lblDateEnteredCaption", entered_ = form.Label("lblDateEntered")));
  place->addWidget(Captioned(tr("Date Completed"), "lblJobCompletedCaption", completed_ = form.Label("lblJobCompleted")));
  usedCaption_ = line->findChild<QLabel*>("lblTotalQtyUsedCaption");
  form.Wide(line);
}

QWidget* JobForm::BuildButtons(Form& form) {
  auto* remove = form.Button("cmdDeleteItem", tr("&Delete Item"), Qt::CTRL | Qt::Key_D);
  auto* change = form.Button("cmdChange", tr("C&hange"), Qt::Key_F4);
  auto* undo = form.Button("cmdUndo", tr("&Undo Booking"));
  addItem_ = form.Button("cmdAddItem", tr("&Add Item"), Qt::Key_Insert);
  closeJob_ = form.Button("cmdCloseJob", tr("C&lose Job"), Qt::Key_F12);
  reopen_ = form.Button("cmdReopen", tr("&Reopen Job"));
  print_ = form.Button("cmdPrint", tr("&Print"));
  codes_ = form.Button("cmdBC_Report", tr("Codes for Returns"));
  usage_ = form.Button("cmdUsage", tr("Usage"));
  auto* printMultiple = form.Button("cmdPrintMultiple", tr("List of Jobs"));
  auto* out = form.Button("cmdOut", tr("&Out on Jobs"));
  auto* exportJobs = form.Button("cmdExportJobs", tr("&Export"));
  ofItem_ = {remove, change};
  ofJob_.insert(ofJob_.end(), {undo, usage_});
  for (const auto& [button, window] : {std::pair{usage_, "DetailedSpecificJobUsageForm"}, {printMultiple, "JobListForm"},
                                       {out, "JobsOutForm"}, {exportJobs, "ExportJobRecords"}})
    button->setVisible(windows.Knows(window));
  auto* box = new QWidget;
  auto* flow = new FlowLayout(box);
  flow->setContentsMargins(0, space::kUnit, 0, 0);
  for (QWidget* part : std::initializer_list<QWidget*>{
           addItem_, change, remove, undo, closeJob_, reopen_, print_, codes_, usage_, printMultiple, out, exportJobs,
           form.Button("cmdOptions", tr("Op&tions")), form.Button("cmdClose", tr("Close"))})
    flow->addWidget(part);
  QSizePolicy policy = box->sizePolicy();
  policy.setHeightForWidth(true);
  box->setSizePolicy(policy);
  return box;
}

void JobForm::Listen() {
  connect(number_, &TextField::Left, this, [this](QWidget* to) {
    // A command enters the number itself where it needs it.
    if (to == nullptr || qobject_cast<QPushButton*>(to) == nullptr) EnterNumber();
  });
  connect(number_, &NameBox::Picked, this, [this] { EnterNumber(); });
  number_->installEventFilter(this);
  connect(list_, &Grid::RowActivated, this, [this](int row) { OpenCell(row, list_->View().currentIndex().column()); });
  connect(list_, &Grid::CellClicked, this, [this](int row, int column) {
    if (column == static_cast<int>(JobColumn::BatchNo) && QApplication::keyboardModifiers() == Qt::NoModifier)
      OpenCell(row, column);
  });
  connect(list_, &Grid::CurrentRowChanged, this, [this] { ShowFigures(); });
  connect(RowMenu::Of(*list_), &RowMenu::Opens, this, &JobForm::AddToRowMenu);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    const bool edits = now != nullptr && now->objectName() == "txtEdit" && list_->isAncestorOf(now);
    hint_->setText(edits ? tr("TAB or ENTER to accept changes  -  ESC to Cancel") : QString());
  });
  connect(reload_, &QTimer::timeout, this, &JobForm::Reload);
  auto* find = new QShortcut(QKeySequence::Find, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(find, &QShortcut::activated, this, [this] { FocusField("cmbJobNumber"); });
  rows_->take = [this](int row, const std::string& typed) {
    typed_ = {rows_->rows.at(static_cast<std::size_t>(row)).row, typed};
    QMetaObject::invokeMethod(this, &JobForm::TakeQtyUsed, Qt::QueuedConnection);
  };
}

// Enter and Tab behind the number go to its items.
bool JobForm::eventFilter(QObject* watched, QEvent* event) {
  if (watched != number_ || event->type() != QEvent::KeyPress) return Window::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  const bool goesOn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Tab;
  if (!goesOn || (key.modifiers() & ~Qt::KeypadModifier) != 0) return false;
  if (EnterNumber()) (job_.items.empty() ? static_cast<QWidget*>(addItem_) : &list_->View())->setFocus(Qt::TabFocusReason);
  return true;
}

}  // namespace vellumark::desktop
