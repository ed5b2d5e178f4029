#include "desktop/labels/label_window.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>
#include <array>

#include "core/base/number.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/labels/label_preview.h"
#include "paper/label_painter.h"

namespace vellumark::desktop {
namespace {

constexpr std::array kZooms{LabelPreview::kWholePage, LabelPreview::kWholeLabel, 0.5, 1.0, 1.5, 2.0, 3.0};
constexpr int kTrueSize = 3;
constexpr const char* kZoomKey = "labels/zoom";
constexpr int kWidestFields = 800;
constexpr int kMomentToCheck = 200;  // milliseconds after the last key
constexpr int kFaultsListed = 3;

/// Rolls downwards alone.
class RollingFields : public QScrollArea {
 public:
  using QScrollArea::QScrollArea;
  QSize minimumSizeHint() const override {
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(), 2 * space::kFieldHeight};
  }
};

std::vector<paper::CodeCheck> FaultsOf(const Session& session, const LabelDrawing& drawing, int dots) {
  std::vector<paper::CodeCheck> faults = paper::CheckCodes(session, drawing, dots);
  std::erase_if(faults, [](const paper::CodeCheck& check) { return check.Reads; });
  for (paper::CodeCheck& fault : paper::CheckPlaces(session, drawing, dots)) faults.push_back(std::move(fault));
  return faults;
}

}  // namespace

LabelWindow::LabelWindow(WindowList& windowList, const LabelWindows& kind, const QString& title, PrintDevices devices)
    : Window(windowList, kind.print, title), kind_(kind), devices_(std::move(devices)) {
  redraw_.setSingleShot(true);
  connect(&redraw_, &QTimer::timeout, this, &LabelWindow::Redraw);
  check_.setSingleShot(true);
  connect(&check_, &QTimer::timeout, this, &LabelWindow::CheckNext);
}

void LabelWindow::Build(const std::function<void(Form)>& fields, const std::optional<Command>& own) {
  Form form(*this);
  auto* middle = new QWidget(this);
  auto* sides = new QHBoxLayout(middle);
  sides->setContentsMargins(0, 0, 0, 0);
  sides->setSpacing(space::kGroup);
  auto* left = new QWidget(middle);
  auto* right = new QWidget(middle);
  left->setMaximumWidth(kWidestFields);
  sides->addWidget(left, 3);
  sides->addWidget(right, 2);
  Form head(*this, *left);
  BuildHead(head);
  // Where the window is low, the fields roll by themselves: template, preview and commands stay in sight.
  auto* rolls = new RollingFields(left);
  rolls->setObjectName("Fields");
  rolls->setWidgetResizable(true);
  rolls->setFrameShape(QFrame::NoFrame);
  rolls->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  rolls->setFocusPolicy(Qt::NoFocus);
  auto* inside = new QWidget(rolls);
  fields(Form(*this, *inside));
  rolls->setWidget(inside);
  head.Wide(rolls, 1);
  connect(qApp, &QApplication::focusChanged, rolls, [rolls, inside](QWidget*, QWidget* now) {
    if (now != nullptr && inside->isAncestorOf(now)) rolls->ensureWidgetVisible(now);
  });
  BuildPreview(Form(*this, *right));
  form.Wide(middle, 1);

  print_ = form.Button("cmdPrint", tr("&Print"));
  pdf_ = form.Button("cmdPDF", tr("Save as P&DF"));
  last_ = form.Button("cmdLastLabels", tr("Last Labels A&gain"), Qt::Key_F9);
  design_ = form.Button("cmdLabelDesign", kind_.kind == LabelKind::Label ? tr("Label Desi&gn") : tr("Edit Label Layout"));
  CommandButton* clear = form.Button("cmdClear", tr("&Clear"), Qt::Key_F8);
  auto* row = new QWidget(this);
  auto* buttons = new QHBoxLayout(row);
  buttons->setContentsMargins(0, 0, 0, 0);
  buttons->setSpacing(space::kUnit);
  if (own) buttons->addWidget(form.Button(own->button, own->text, own->key));
  buttons->addStretch(1);
  for (QPushButton* command : std::initializer_list<QPushButton*>{print_, pdf_, last_, design_, clear})
    buttons->addWidget(command);
  SetDefaultButton(print_);
  form.Wide(row);

  FillLayouts();
  count_->SetText("1");
  start_->SetText("1");
  zoom_->setCurrentIndex(std::clamp(memory::Recall(kZoomKey).toInt(), 0, static_cast<int>(kZooms.size()) - 1));
  preview_->SetZoom(kZooms.at(static_cast<std::size_t>(zoom_->currentIndex())));
  ChooseLayout();
  // A layout may have been edited elsewhere.
  OnActivation(*this, [this] { redraw_.start(0); });
}

void LabelWindow::BuildHead(Form& form) {
  layout_ = Loose(form.Combo("cmbLabelName"));
  layout_->setMinimumWidth(160);
  layout_->OnChosen([this](int) { ChooseLayout(); });
  count_ = Loose(form.Number("txtLabels", 0, tr("A whole number above 0"), 6));
  start_ = Loose(form.Number("ScrollStartLabel", 0, tr("The place of the first label on its sheet"), 5));
  start_->setAccessibleName(tr("Start at label"));
  capacity_ = form.Hint({}, "lblCapacity");
  count_->setAccessibleName(tr("Number of labels"));
  auto* caption = form.Hint(tr("&Labels"));
  caption->setBuddy(count_);
  form.Row(tr("Label &Template"), {layout_, caption, count_, form.Hint(tr("from place")), start_, capacity_});
  connect(count_, &TextField::Left, this, [this] { SetCount(ReadLabelCount(count_->Text())); });
  connect(start_, &TextField::Left, this,
          [this] { start_->SetText(std::to_string(ReadStartLabel(start_->Text(), Paper()))); });
}

void LabelWindow::BuildPreview(Form form) {
  back_ = form.Button("cmdPreviousPage", tr("Previous"), Qt::Key_PageUp);
  forth_ = form.Button("cmdNextPage", tr("Next"), Qt::Key_PageDown);
  place_ = form.Label("lblPlace");
  zoom_ = Loose(form.Combo("cmbZoom", {tr("Whole page"), tr("One label"), "50 %", tr("True size"), "150 %", "200 %",
                                       "300 %"}));
  zoom_->setAccessibleName(tr("Zoom"));
  zoom_->OnChosen([this](int index) {
    memory::Keep(kZoomKey, index);
    preview_->SetZoom(kZooms.at(static_cast<std::size_t>(index)));
  });
  form.Row({zoom_, place_});
  form.Row({back_, forth_});
  form.Wide(preview_ = new LabelPreview("Preview", session), 1);
  form.Wide(told_ = form.Label("lblFaults"));
  told_->setWordWrap(true);
  told_->setProperty("role", "fault");
  connect(preview_, &LabelPreview::Turned, this, &LabelWindow::ShowPlace);
  connect(preview_, &LabelPreview::PlaceClicked, this, [this](int place) {
    start_->SetText(std::to_string(place));
    start_->TakeFocus();
  });
}

void LabelWindow::FillLayouts() {
  const std::string chosen = layout_->Text();
  const std::vector<std::string> names = LabelLayouts(session, kind_.kind);
  layout_->SetItems(names);
  const bool there = std::ranges::find(names, chosen) != names.end();
  if (there) layout_->SetText(chosen);
  if (!there && !names.empty()) layout_->setCurrentIndex(0);
}

void LabelWindow::ChooseLayout() {
  const LabelPaper paper = Paper();
  start_->SetText(std::to_string(ReadStartLabel(start_->Text(), paper)));
  LayoutChosen(Layout());
  Changed();
}

void LabelWindow::OnChanges(const std::vector<Change>& changes) {
  if (std::ranges::none_of(changes, [](const Change& change) { return change.kind == Change::Kind::Settings; })) return;
  const std::string before = Layout();
  FillLayouts();
  if (Layout() != before)
    ChooseLayout();
  else
    Changed();
}

void LabelWindow::UpdateEnabled() {
  if (print_ == nullptr) return;
  const bool any = layout_->count() > 0;
  print_->setEnabled(any);
  pdf_->setEnabled(any);
  last_->setEnabled(memory::Recall(LastKey()).isValid());
  design_->setEnabled(windows.Knows(kind_.layout));
  capacity_->setText(tr("of %1").arg(Paper().Capacity()));
  redraw_.start(0);
}

LabelPaper LabelWindow::Paper() const {
  return PaperOfLayout(session, kind_.kind, Layout());
}

void LabelWindow::SetCount(int count) {
  count_->SetText(std::to_string(count));
}

// ---- Preview

void LabelWindow::Redraw() {
  auto drawings = Draw(Layout());
  refused_ = drawings ? QString() : Q(drawings.error().text);
  paper::LabelJob job{.paper = Paper(), .count = ReadLabelCount(count_->Text())};
  if (drawings) job.drawings = *std::move(drawings);
  job.start = ReadStartLabel(start_->Text(), job.paper);
  job.dotsPerInch = DotsOf(job.paper.printer);
  faults_.assign(job.drawings.size(), {});
  preview_->Show(std::move(job));
  checked_ = 0;
  ShowFaults();
  check_.start(kMomentToCheck);
}

// One after the other, so that typing never waits.
void LabelWindow::CheckNext() {
  const paper::LabelJob& job = preview_->Job();
  if (checked_ >= job.drawings.size()) return;
  faults_[checked_] = FaultsOf(session, job.drawings[checked_], job.dotsPerInch);
  preview_->ShowFaults(checked_, faults_[checked_]);
  ++checked_;
  ShowFaults();
  check_.start(0);
}

void LabelWindow::ShowFaults() {
  QStringList lines;
  if (!refused_.isEmpty()) lines += refused_;
  for (const std::vector<paper::CodeCheck>& faults : faults_)
    for (const paper::CodeCheck& fault : faults) {
      const QString line = tr("%1: %2").arg(Q(fault.Field), Q(fault.Reason).simplified());
      if (!lines.contains(line)) lines += line;
    }
  told_->setToolTip(lines.join('\n'));
  if (lines.size() > kFaultsListed) {
    const qsizetype more = lines.size() - (kFaultsListed - 1);
    lines = lines.mid(0, kFaultsListed - 1) << tr("and %1 more").arg(more);
  }
  told_->setText(lines.join('\n'));
  told_->setVisible(!lines.isEmpty());
}

void LabelWindow::ShowPlace() {
  const int count = preview_->PageCount();
  place_->setText(count == 0 ? QString() : tr("Page %1 of %2").arg(preview_->PageShown() + 1).arg(count));
  for (CommandButton* turn : {back_, forth_}) turn->setVisible(count > 1);
  back_->setEnabled(preview_->PageShown() > 0);
  forth_->setEnabled(preview_->PageShown() + 1 < count);
}

void LabelWindow::cmdPreviousPage_Click() {
  preview_->TurnTo(preview_->PageShown() - 1);
}

void LabelWindow::cmdNextPage_Click() {
  preview_->TurnTo(preview_->PageShown() + 1);
}

// ---- Onto paper

std::unique_ptr<QPrinter> LabelWindow::OpenPrinter(const std::string& device, Telling telling) {
  try {
    return devices_.open(device);
  } catch (const Failure& failure) {
    if (telling == Aloud) session.prompt.Tell(failure.subject, failure.cause, vellumark::Icon::Critical);
    return nullptr;
  }
}

int LabelWindow::DotsOf(const std::string& printer) {
  if (printer == dotsPrinter_) return dots_;
  dotsPrinter_ = printer;
  dots_ = paper::kLabelDots;
  if (!CheckLabelPrinter(Paper(), kind_.kind, devices_.printers().printers)) return dots_;
  // One that has gone is told of when it is printed to.
  if (const auto opened = OpenPrinter(printer, Quietly)) dots_ = opened->resolution();
  return dots_;
}

std::optional<paper::LabelJob> LabelWindow::Checked(int dots) {
  SetCount(ReadLabelCount(count_->Text()));
  start_->SetText(std::to_string(ReadStartLabel(start_->Text(), Paper())));
  auto drawings = Draw(Layout());
  if (!Accepted(drawings)) return std::nullopt;
  paper::LabelJob job{.paper = Paper(),
                      .drawings = *std::move(drawings),
                      .count = ReadLabelCount(count_->Text()),
                      .start = ReadStartLabel(start_->Text(), Paper()),
                      .dotsPerInch = dots};
  if (!Accepted(CheckAnythingToPrint(job.drawings))) return std::nullopt;
  std::vector<paper::CodeCheck> faults;
  for (const LabelDrawing& drawing : job.drawings) {
    // A character that the bar code has not is told in its own words first.
    for (const LabelElement& element : drawing.elements)
      if (element.what == LabelElement::What::Code)
        if (const auto font = EncodeBarcode(drawing.symbology, element.text); !font) {
          ShowRefusal(font.error());
          break;
        }
    for (paper::CodeCheck& fault : FaultsOf(session, drawing, dots)) faults.push_back(std::move(fault));
  }
  if (!paper::AskAboutFaults(session, faults)) return std::nullopt;
  return job;
}

void LabelWindow::Run(const std::function<void(const paper::LabelJob&)>& print, int dots) {
  const auto job = Checked(dots);
  if (!job) return;
  try {
    print(*job);
    Remember(*job);
  } catch (const Failure& failure) {
    session.prompt.Tell(failure.subject, failure.cause, vellumark::Icon::Critical);
  }
}

void LabelWindow::cmdPrint_Click() {
  const std::string device = Paper().printer;
  if (!Accepted(MayPrint()) || !Accepted(CheckLabelPrinter(Paper(), kind_.kind, devices_.printers().printers))) return;
  const auto printer = OpenPrinter(device, Aloud);
  if (!printer) return;
  Run(
      [&](const paper::LabelJob& job) {
        printer->setDocName(windowTitle());
        printer->setFullPage(true);
        paper::SetUpLabelPages(*printer, job.paper);
        paper::PaintLabels(*printer, device, session, job);
      },
      printer->resolution());
}

void LabelWindow::cmdPDF_Click() {
  if (!Accepted(MayPrint())) return;
  const QString file = ChooseDocument(devices_.chooseFile, session.prompt, ChoiceOfPdf(), this);
  if (file.isEmpty()) return;
  Run([&](const paper::LabelJob& job) { paper::PrintLabelsToFile(session, job, U8(file)); }, paper::kLabelDots);
}

void LabelWindow::cmdLabelDesign_Click() {
  windows.OpenForm(kind_.layout, {{"LayoutName", Layout()}});
}

void LabelWindow::cmdClear_Click() {
  ClearFields();
  SetCount(1);
  Changed();
}

// ---- The last labels again

QString LabelWindow::LastKey() const {
  return QStringLiteral("labels/last/") + kind_.print;
}

void LabelWindow::Remember(const paper::LabelJob& job) {
  QVariantMap last = Filled();
  last["Layout"] = Q(Layout());
  last["Labels"] = job.count;
  last["Start"] = job.start;
  memory::Keep(LastKey(), last);
  last_->setEnabled(true);
}

void LabelWindow::cmdLastLabels_Click() {
  const QVariantMap last = memory::Recall(LastKey()).toMap();
  const auto layout = FindLabelLayout(session, kind_.kind, U8(last["Layout"].toString()));
  if (!Accepted(layout)) return;
  layout_->SetText(*layout);
  LayoutChosen(*layout);
  Fill(last);
  SetCount(last["Labels"].toInt());
  start_->SetText(std::to_string(last["Start"].toInt()));
  Changed();
}

}  // namespace vellumark::desktop
