#include "desktop/inventory/scan_capture.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QTextBlock>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/labels/scan_step.h"
#include "desktop/kit/caps_lock.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kDataWidth = 296;
constexpr int kJobRows = 5;
constexpr int kLineOver = 150;  // ms after the last key

}  // namespace

class ScanCapture::Source : public GridSource {
 public:
  enum Column { Number, Color, Effect, Quantity };
  explicit Source(const ScanPreview& preview) : preview_(preview) {}

  int Rows() const override { return static_cast<int>(preview_.Plans().size()); }
  std::string Text(int row, int column) const override {
    const ScanPlan& plan = Plan(row);
    const ScanRecord& record = preview_.Records().at(static_cast<std::size_t>(row));
    switch (column) {
      case Number:
        return std::to_string(row + 1);
      case Color:
        return plan.database.empty() ? plan.name : plan.name + " (" + plan.database + ")";
      case Quantity:
        return record.Qty ? Fixed(*record.Qty, 3) : std::string();
      default:
        return plan.text;
    }
  }
  std::optional<QColor> Swatch(int row, int column) const override {
    return column == Color ? ColorOf(Plan(row).ink) : std::nullopt;
  }
  const char* Mark(int row, int column) const override {
    if (column != Effect) return nullptr;
    const ScanPlan::Kind kind = Plan(row).kind;
    return kind == ScanPlan::Kind::Ready ? "checked" : kind == ScanPlan::Kind::Refused ? "fault" : "unchecked";
  }

 private:
  const ScanPlan& Plan(int row) const { return preview_.Plans().at(static_cast<std::size_t>(row)); }
  const ScanPreview& preview_;
};

ScanCapture::ScanCapture(FormHost& host, Form form)
    : QObject(&host.Self()),
      host_(host),
      source_(std::make_shared<Source>(preview_)),
      totals_(std::make_shared<TableSource>()) {
  form.Heading(tr("Step 1 - Scan & Process"));
  auto* box = new QWidget;
  BuildLists(form, *box);
  form.Wide(box, 1);
  auto* line = new QWidget;
  auto* across = new QHBoxLayout(line);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kUnit);
  across->addWidget(form.Hint(tr("Scan a label, then scan or type its quantity and press Enter.")));
  across->addStretch(1);
  across->addWidget(
      form.Button("cmdHelp", tr("Help"), Qt::Key_F1, [this] { host_.windows.RunDialog("ScanningHelpForm"); }));
  across->addWidget(form.Button("cmd_ScanCancel", tr("Clear"), [this] { Cancel(); }));
  CommandButton* save = form.Button("cmd_ScanSave", tr("&Process"), Qt::Key_F9, [this] { cmd_ScanSave(); });
  across->addWidget(save);
  save->setProperty("primary", true);
  form.Wide(line);
  caps_.setSingleShot(true);
  caps_.setInterval(kLineOver);
  connect(&caps_, &QTimer::timeout, this, &ScanCapture::WarnOfCapsLock);
  connect(&CapsLock::Of(), &CapsLock::TurnedOn, this, [this] {
    if (data_->hasFocus()) caps_.start();
  });
  Clear();
}

ScanCapture::~ScanCapture() = default;

void ScanCapture::BuildLists(Form& form, QWidget& box) {
  auto* across = new QHBoxLayout(&box);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kGap);
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  for (QVBoxLayout* side : {left, right}) side->setSpacing(space::kUnit);
  across->addLayout(left);
  across->addLayout(right, 1);
  data_ = form.Add(new ScanDataField("Scan_Data"));
  data_->DoNotTrack();
  data_->setAccessibleName(tr("Scanned lines"));
  data_->setPlaceholderText(tr("The scanner writes here"));
  data_->setFixedWidth(kDataWidth);
  jobs_ = form.Table("fgScanJobs");
  const QString unit = Q(UnitName(host_.session.UMI));
  jobs_->SetColumns({GridColumn::Text(tr("Job"), 112), GridColumn::Number(tr("Cont."), 64),
                     GridColumn::Number(tr("Quantity (%1)").arg(unit), 112)});
  jobs_->SetSource(totals_);
  jobs_->SetEmptyText(tr("No totals yet"));
  jobs_->setAccessibleName(tr("Totals of each Job"));
  jobs_->setFixedSize(kDataWidth, (kJobRows + 1) * space::kRowHeight);
  left->addWidget(data_, 1);
  left->addWidget(jobs_);
  flash_ = new ScanFlash("lblScanFlash");
  list_ = form.Table("fgScan");
  list_->SetColumns({GridColumn::Number("#", 48), GridColumn::Text(tr("Color"), 208),
                     GridColumn::Text(tr("What it will do"), 512),
                     GridColumn::Amount(tr("Quantity (%1)").arg(unit), 136)});
  list_->SetSource(source_);
  list_->SetEmptyText(tr("Nothing is scanned yet"));
  list_->setAccessibleName(tr("Records of the scan"));
  right->addWidget(flash_);
  right->addWidget(list_, 1);
  connect(data_, &ScanDataField::Read, this, &ScanCapture::Read);
  connect(data_, &QPlainTextEdit::textChanged, this, [this] {
    if (caps_.isActive()) caps_.start();
    Q_EMIT Changed();
  });
}

bool ScanCapture::IsEmpty() const {
  return data_->toPlainText().trimmed().isEmpty();
}

void ScanCapture::Focus() {
  data_->setFocus(Qt::OtherFocusReason);
}

void ScanCapture::Clear() {
  data_->clear();
  flash_->Show(ScanFlash::Kind::Idle, tr("Ready to scan"), tr("Nothing is booked before Process is chosen."));
  Read();
}

void ScanCapture::FileChanged() {
  preview_.Forget();
  Read();
}

void ScanCapture::Read() {
  preview_.Show(host_.session, ParseScan(data_->Text()));
  list_->Refresh();
  if (source_->Rows() > 0) list_->SetCurrentRow(source_->Rows() - 1);
  ShowTotals();
  const int ended = data_->EndedLines();
  if (ended > ended_ && !IsEmpty()) Flash(ended);
  ended_ = ended;
}

void ScanCapture::Flash(int ended) {
  const QString line = data_->LastLine();
  const ScanLine kind = ClassifyScanLine(U8(line));
  // Of many lines at once, as pasted, the last one stands for all.
  if (kind == ScanLine::Invalid && ended == ended_ + 1) {
    QApplication::beep();
    return flash_->Show(ScanFlash::Kind::Bad, tr("Not a code of a label"), line);
  }
  if (preview_.Plans().empty() || kind == ScanLine::Ignored) return;
  const ScanPlan& plan = preview_.Plans().back();
  const QString name = plan.name.empty() ? tr("Color not known") : Q(plan.name);
  const bool over = kind == ScanLine::Quantity;
  const bool bad = over && plan.kind != ScanPlan::Kind::Ready;
  if (bad) QApplication::beep();
  flash_->Show(bad    ? ScanFlash::Kind::Bad
               : over ? ScanFlash::Kind::Good
                      : ScanFlash::Kind::Waiting,
               name, Q(plan.text), plan.ink);
}

void ScanCapture::ShowTotals() {
  totals_->Clear();
  for (const ScanTotal& total : TotalsOfScan(preview_.Records()))
    totals_->Add({total.JobNumber.empty() ? U8(tr("To stock")) : total.JobNumber, std::to_string(total.containers),
                  Fixed(total.quantity, 3)});
  jobs_->Refresh();
}

void ScanCapture::cmd_ScanSave() {
  if (!data_->isVisible()) return;  // its key is heard on the other pages too
  if (IsEmpty()) {
    QApplication::beep();
    return Focus();
  }
  std::vector<ScanRecord> records = ParseScan(data_->Text());
  if (records.empty()) {
    QApplication::beep();
    flash_->Show(ScanFlash::Kind::Bad, tr("Nothing to process"),
                 tr("No line of it is a code of a label or a quantity."));
    return Focus();
  }
  Q_EMIT Process(records);
}

void ScanCapture::Cancel() {
  if (IsEmpty() || MayClearScan(host_.session)) Clear();
  Focus();
}

// Not in the middle of a code: the rest of it would go to the message.
void ScanCapture::WarnOfCapsLock() {
  if (!CapsLock::Of().IsOn() || !data_->isVisible()) return;
  host_.session.prompt.Tell("Caps Lock",
                            "Caps Lock has been turned on.\n\nScan data can be altered when Caps Lock is on.\n\nTurn "
                            "off Caps Lock!!!");
}

}  // namespace vellumark::desktop
