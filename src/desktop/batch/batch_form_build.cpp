// How the Batch Window is put together.

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QVBoxLayout>

#include "core/base/units.h"
#include "core/batch/bench.h"
#include "core/colors/name_search.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/batch_form_took.h"
#include "desktop/batch/captions.h"
#include "desktop/batch/figures_panel.h"
#include "desktop/batch/flow_layout.h"
#include "desktop/batch/job_panel.h"
#include "desktop/batch/notes_panel.h"
#include "desktop/batch/recycle_panel.h"
#include "desktop/batch/rows_panel.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// Below these, in letters and lines, the window is put together otherwise.
constexpr int kWideFrom = 145;
constexpr int kHighFrom = 25;

}  // namespace

BatchForm::BatchForm(WindowList& windowList)
    : Window(windowList, "BatchForm", tr("Batch")), record_(NewBatchRecord(session)), dialogs_(windowList) {
  setWindowIcon(Icon("Batch"));
  Form form(*this);
  form.Wide(BuildHead(form));
  BuildMiddle(form);
  form.Wide(BuildButtons(form));
  SetDefaultButton(save_);
  Listen();
  SetButtonAction();
  Show();
}

QWidget* BatchForm::BuildHead(Form& form) {
  const NameSource names{[this](std::string_view typed) { return CompleteName(session, NameKind::Formulas, typed); },
                         [this](std::string_view typed, std::size_t limit) {
                           return NamesFrom(session, NameKind::Formulas, typed, limit);
                         }};
  name_ = form.Name("cmbColorName", names);
  name_->Means("Color_Name");
  name_->setMinimumWidth(200);
  name_->setMaximumWidth(320);
  quantity_ = form.Number("txtQuantity", 3, tr("0 to 99999"));
  QStringList units;
  for (const int unit : {UnitPound, UnitKilogram, UnitGram, UnitOunce}) units += Q(UnitName(unit));
  unit_ = form.Combo("cmbUMF", units);
  recycle_ = form.Button("cmdRecycle", tr("Recycle"), Qt::Key_F2);
  mix_ = form.Button("cmdMix", tr("Mix"), Qt::Key_F3);
  batchNo_ = form.Text("txtBatchNo", TextRule::Digits(6));
  batchNo_->SetWidthInChars(8);
  batchNo_->setToolTip(tr("Type the number of a Batch and press Enter to go to it"));

  next_ = form.Button("cmdNext", tr("Next"), Qt::Key_PageUp);
  previous_ = form.Button("cmdPrevious", tr("Previous"), Qt::Key_PageDown);
  recent_ = form.Button("cmdRecent", tr("Recent"), Qt::CTRL | Qt::Key_R);

  auto* what = new QGridLayout;
  what->setHorizontalSpacing(space::kUnit);
  what->setVerticalSpacing(space::kTight);
  const auto place = [what](int column, const QString& caption, QWidget* field) {
    what->addWidget(Caption(caption, field), 0, column);
    what->addWidget(field, 1, column);
  };
  place(0, tr("&Color name"), name_);
  place(1, tr("&Quantity"), quantity_);
  place(2, tr("Unit"), unit_);
  what->addWidget(recycle_, 1, 3);
  what->addWidget(mix_, 1, 4);
  what->setColumnStretch(0, 4);
  // Over the actions, for it says when they are to be pressed again.
  state_ = form.Hint({}, "lblState");
  what->addWidget(state_, 0, 3, 1, 3);

  which_ = new QBoxLayout(QBoxLayout::TopToBottom);
  which_->setSpacing(space::kTight);
  which_->addWidget(Caption(tr("Batch ID # (Ctrl+F)"), batchNo_));
  auto* which = new QHBoxLayout;
  which->setSpacing(space::kUnit);
  for (QWidget* part : std::initializer_list<QWidget*>{batchNo_, previous_, next_, recent_}) which->addWidget(part);
  which->addStretch(1);
  which_->addLayout(which);

  auto* head = new QWidget;
  head_ = new QBoxLayout(QBoxLayout::LeftToRight, head);
  head_->setContentsMargins(0, 0, 0, space::kUnit);
  head_->setSpacing(space::kUnit);
  head_->addLayout(what, 1);
  head_->addLayout(which_);
  return head;
}

void BatchForm::BuildMiddle(Form& form) {
  QSplitter* split = form.Sides("BatchSplit");
  split->setHandleWidth(1);
  auto* left = new QWidget(split);
  auto* inset = new QVBoxLayout(left);
  inset->setContentsMargins(0, space::kUnit, space::kGap, 0);
  rows_ = new RowsPanel(*this, form, left);
  rows_->setMinimumWidth(440);
  inset->addWidget(rows_);
  auto* scroll = new QScrollArea(split);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setMinimumWidth(384);
  auto* inside = new QWidget;
  scroll->setWidget(inside);
  inside->setAutoFillBackground(false);
  scroll->viewport()->setAutoFillBackground(false);
  BuildSide(form, *inside);
  split->setStretchFactor(0, 3);
  split->setStretchFactor(1, 2);
  split->setSizes({690, 510});
}

void BatchForm::BuildSide(Form& form, QWidget& inside) {
  recycleList_ = new RecyclePanel(*this, form);
  figures_ = new FiguresPanel(*this);
  notes_ = new NotesPanel(*this, record_);
  job_ = new JobPanel(*this, form, record_);
  tabs_ = new QTabWidget(&inside);
  tabs_->setObjectName("TabBatch");
  tabs_->setDocumentMode(true);
  tabs_->tabBar()->setDrawBase(false);
  tabs_->addTab(recycleList_, tr("Recycle List"));
  tabs_->addTab(figures_, tr("Costs"));
  tabs_->addTab(notes_, tr("Notes"));
  side_ = new QVBoxLayout(&inside);
  side_->setContentsMargins(space::kGap, 0, 0, 0);
  side_->setSpacing(space::kUnit);
  side_->addWidget(tabs_, 1);
  side_->addWidget(job_);
  recycleList_->PutHead(*tabs_, true);
}

QWidget* BatchForm::BuildButtons(Form& form) {
  complete_ = form.Check("chkComplete", tr("Complete"));
  save_ = form.Button("cmdSave", tr("&Save"));
  hold_ = form.Button("cmdSaveAndHold", tr("Save and hold"), Qt::Key_F12);
  cancel_ = form.Button("cmdCancel", tr("Cancel"));
  weigh_ = form.Button("cmdWeigh", tr("Weigh"), Qt::Key_F6);
  dispense_ = form.Button("cmdDispense", tr("Dispense"), Qt::Key_F7);
  settings_ = form.Button("cmdSettings", tr("Settings"));
  delete_ = form.Button("cmdDelete", tr("Delete"));
  print_ = form.Button("cmdPrint", tr("Print"));
  label_ = form.Button("cmdPrintLabel", tr("Labels"), Qt::CTRL | Qt::Key_L);
  label_->setToolTip(tr("A label for each container of this Batch, or of the one saved last"));
  CommandButton* multiple = form.Button("cmdPrintMultiple", tr("Reports"));
  multiple->setEnabled(windows.Knows("ReportsForm"));
  printRecList_ = findChild<CommandButton*>("cmdPrintRecList");
  auto* box = new QWidget;
  auto* flow = new FlowLayout(box);
  flow->setContentsMargins(0, space::kUnit, 0, 0);
  flow->setSpacing(space::kTight);  // all of them in one line of a small screen
  for (QWidget* part : std::initializer_list<QWidget*>{complete_, save_, hold_, cancel_, weigh_, dispense_, print_,
                                                       label_, multiple, settings_, delete_})
    flow->addWidget(part);
  QSizePolicy policy = box->sizePolicy();
  policy.setHeightForWidth(true);
  box->setSizePolicy(policy);
  return box;
}

// On a small screen the ways to other Batches get a line of their own, and the job is a page beside the lists.
void BatchForm::resizeEvent(QResizeEvent* event) {
  Window::resizeEvent(event);
  if (side_ == nullptr) return;  // it is still being put together
  const bool wide = width() >= kWideFrom * fontMetrics().averageCharWidth();
  if (wide != (head_->direction() == QBoxLayout::LeftToRight)) {
    head_->setDirection(wide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    which_->setDirection(wide ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    recycleList_->PutHead(*tabs_, wide);
  }
  const bool high = height() >= kHighFrom * fontMetrics().lineSpacing();
  const int page = tabs_->indexOf(job_);
  if (high == (page < 0)) return;
  QWidget* focus = job_->isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : nullptr;
  if (high) {
    tabs_->removeTab(page);
    side_->addWidget(job_);
    job_->show();
  } else {
    tabs_->addTab(job_, tr("Job"));
  }
  if (focus != nullptr) FocusField(U8(focus->objectName()));
}

void BatchForm::Listen() {
  connect(name_, &TextField::Left, this, [this](QWidget* to) {
    // A command enters the name itself.
    if (to != nullptr && isAncestorOf(to) && qobject_cast<QPushButton*>(to) == nullptr) EnterName();
  });
  connect(name_, &NameBox::Picked, this, [this] {
    if (EnterName()) FocusField("txtQuantity");
  });
  connect(name_, &NameBox::PantoneTyped, this, [this] {
    session.prompt.Tell(U8(tr("Hint")), U8(tr("No need to type the word 'PANTONE' for a Pantone Color.\n"
                                              "Just type the color number and press the Enter key.\n"
                                              "Vellumark automatically adds the 'PANTONE' prefix.")));
  });
  connect(quantity_, &QLineEdit::textChanged, this, [this] {
    if (showing_) return;
    SetQuantityText(record_.work, quantity_->Text());
    Changed();
  });
  quantity_->installEventFilter(this);
  batchNo_->installEventFilter(this);
  connect(batchNo_, &TextField::Left, this, [this] { batchNo_->SetText(BatchNoText(record_.BatchNo)); });
  unit_->OnChosen([this](int index) { EnterUnit(index); });
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* from, QWidget* to) {
    if (to == weigh_) weighFrom_ = rows_->RowOf(from);
  });
  auto* find = new QShortcut(QKeySequence::Find, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(find, &QShortcut::activated, this, [this] { FocusField("txtBatchNo"); });
  connect(complete_, &QCheckBox::clicked, this, [this](bool checked) {
    record_.Complete = checked;
    Show();
  });
  connect(rows_, &RowsPanel::AmountClicked, this, &BatchForm::AmountClicked);
  connect(rows_, &RowsPanel::NameClicked, this, &BatchForm::NameClicked);
  connect(rows_, &RowsPanel::LotsClicked, this, &BatchForm::LotsClicked);
  connect(rows_, &RowsPanel::AdditionsClicked, this, &BatchForm::AddAdditions);
  connect(rows_, &RowsPanel::ModifiedClicked, this, [this] {
    if (windows.Knows("CompareFormulasForm"))
      windows.RunDialog("CompareFormulasForm", {{"Color_Name", record_.work.Color_Name}});
  });
  connect(recycleList_, &RecyclePanel::Taken, this, &BatchForm::TakeFromList);
  connect(recycleList_, &RecyclePanel::ViewChanged, this, [this] { recycleList_->Show(record_.work); });
  connect(job_, &JobPanel::Edited, this, [this] { Changed(); });
  connect(job_, &JobPanel::SplitClicked, this, [this] {
    if (!FieldsEntered() || !Took(CheckEditable(session, record_))) return;
    windows.RunDialog("JobItemsForm", {{"Record", &record_}});
    Show();
    FocusField("JobNumber");
  });
  const auto beside = [this](const char* window) {
    if (!FieldsEntered()) return;
    windows.RunDialog(window, {{"Record", &record_}});
    Show();
  };
  connect(figures_, &FiguresPanel::CostsClicked, this, [beside] { beside("CostInfForm"); });
  connect(figures_, &FiguresPanel::EmissionsClicked, this, [beside] { beside("VOC_HAP_CalcForm"); });
  connect(notes_, &NotesPanel::MoreDataClicked, this, [beside] { beside("MoreDataForm"); });
}

// The action that Enter and Tab behind the quantity mean has the outline, and comes first behind it.
void BatchForm::SetButtonAction() {
  const bool isRecycle = !record_.work.settings.mixByDefault;
  CommandButton* first = isRecycle ? recycle_ : mix_;
  CommandButton* second = isRecycle ? mix_ : recycle_;
  for (CommandButton* button : {first, second}) {
    button->setProperty("outlined", button == first);
    button->style()->unpolish(button);
    button->style()->polish(button);
  }
  setTabOrder(name_, quantity_);
  setTabOrder(quantity_, first);
  setTabOrder(first, second);
  setTabOrder(second, unit_);
  // From the number the way goes into the Batch; the ways to other Batches come behind what is done with it.
  setTabOrder(dispense_, next_);
  setTabOrder(next_, previous_);
  setTabOrder(previous_, print_);
  setTabOrder(findChild<QWidget*>("cmdPrintMultiple"), recent_);
  setTabOrder(recent_, settings_);
}

}  // namespace vellumark::desktop
