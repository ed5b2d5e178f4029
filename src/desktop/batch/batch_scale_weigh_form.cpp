#include "desktop/batch/batch_scale_weigh_form.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <cmath>
#include <utility>

#include "core/base/number.h"
#include "core/base/units.h"
#include "core/colors/ink.h"
#include "desktop/batch/pour_view.h"
#include "desktop/kit/look.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLook = 50;         // between two looks at the line, in milliseconds
constexpr int kTryAgain = 1000;   // a port that cannot be opened
constexpr int kWidth = 480;
constexpr int kPatch = 40;

QString Amount(double amount, int unit) {
  return Q(Fixed(amount, 3)) + " " + Q(UnitName(unit));
}

}  // namespace

BatchScaleWeighForm::BatchScaleWeighForm(WindowList& windowList, BenchScale& scale)
    : Window(windowList, "BatchScaleWeighForm", tr("Weigh Ingredient"), Stands::OverIt), scale_(&scale) {
  Build();
  look_.setParent(this);
  connect(&look_, &QTimer::timeout, this, &BatchScaleWeighForm::Follow);
}

BatchScaleWeighForm::~BatchScaleWeighForm() {
  if (scale_ != nullptr) scale_->GiveBack(*this);
}

void BatchScaleWeighForm::Build() {
  setMinimumWidth(kWidth);
  Form form(*this);
  auto* head = new QWidget;
  auto* grid = new QGridLayout(head);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(space::kUnit);
  QLabel* title = form.Label("lblTitle", tr(" Weigh Ingredient"));
  title->setProperty("role", "label");
  ink_ = new SwatchView("imgInk", {kPatch, kPatch}, SwatchView::Unknown::Empty);
  kind_ = form.Hint({}, "lblKind");
  ingredient_ = form.Value("lblIngredient", 2);
  left_ = form.Hint({}, "lblLeft");
  grid->addWidget(title, 0, 0, 1, 2);
  grid->addWidget(left_, 0, 2, Qt::AlignRight);
  grid->addWidget(ink_, 1, 0, 2, 1);
  grid->addWidget(ingredient_, 1, 1, 1, 2);
  grid->addWidget(kind_, 2, 1, 1, 2);
  grid->setColumnStretch(1, 1);
  form.Wide(head);
  form.Wide(reading_ = new PourReading);
  auto* line = new QWidget;
  auto* across = new QHBoxLayout(line);
  across->setContentsMargins(0, 0, 0, 0);
  across->setSpacing(space::kUnit);
  across->addWidget(form.Hint("0%", "lblLowerProgBar"));
  across->addWidget(bar_ = new PourBar("ProgressBar_Weight"), 1);
  across->addWidget(upper_ = form.Label("lblUpperProgBar", "0%"));
  upper_->setFont(Look::Heading());
  upper_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  upper_->setMinimumWidth(upper_->fontMetrics().horizontalAdvance("1000%"));
  form.Wide(line);

  auto* figures = new QWidget;
  auto* below = new QGridLayout(figures);
  below->setContentsMargins(0, 0, 0, 0);
  below->setHorizontalSpacing(space::kGap);
  below->addWidget(form.Hint(tr("Target")), 0, 0);
  below->addWidget(restCaption_ = form.Hint(tr("Rest"), "lblRestCaption"), 0, 1, Qt::AlignRight);
  target_ = form.Value("lblBWeight", 2);
  target_->setAccessibleName(tr("Target"));
  target_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  rest_ = form.Value("lblRest", 2);
  rest_->setAccessibleName(tr("Rest"));
  below->addWidget(target_, 1, 0);
  below->addWidget(rest_, 1, 1, Qt::AlignRight);
  form.Wide(figures);
  form.Wide(more_ = form.Hint(" ", "lblScaleShows"));
  trouble_ = form.Hint(" ", "lblState");
  trouble_->setProperty("role", "fault");
  trouble_->setWordWrap(true);
  trouble_->setMinimumHeight(2 * trouble_->fontMetrics().lineSpacing());
  trouble_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  form.Wide(trouble_);
  save_ = form.Button("cmdSave", tr("Done"));
  tare_ = form.Button("cmdTare", tr("Tare Scale"), Qt::Key_F4);
  form.Buttons({save_, tare_, form.Button("cmdCancel", tr("Cancel"))});
}

// ---- Rows

void BatchScaleWeighForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Bench")) return;
  bench_ = arguments.Get<WeighBench*>("Bench");
  if (owner_ == nullptr) {
    owner_ = arguments.Get<QObject*>("Owner");
    // It never outlives the Batch that it asks.
    connect(owner_, &QObject::destroyed, this, &BatchScaleWeighForm::End);
  }
  save_->setFocus();
  const bool begun = ticket_ && bench_->Stands(*ticket_) && (poured_ != 0 || OnScale() != 0);
  if (begun) return;
  setup_ = ReadScaleSetup(session);
  look_.start(kLook);
  if (!Begin(arguments.Has("Row") ? std::optional(static_cast<std::size_t>(arguments.Number("Row"))) : std::nullopt))
    End();
}

bool BatchScaleWeighForm::Begin(std::optional<std::size_t> wanted) {
  poured_ = 0;
  draft_ = 1;
  over_ = false;
  ticket_ = bench_->NextRow(wanted);
  if (!ticket_) return false;
  ShowRow();
  Follow();
  save_->setFocus();
  return true;
}

// Without a question: there is nothing left to be asked about.
void BatchScaleWeighForm::End() {
  ended_ = true;
  ticket_.reset();
  Leave();
}

void BatchScaleWeighForm::ShowRow() {
  const std::size_t left = bench_->RowsLeft();
  left_->setText(left == 1 ? tr("The last row") : tr("%1 rows to weigh").arg(left));
  ingredient_->SetText(ticket_->name);
  // Room for the scale's own unit only where it is another.
  more_->setVisible(setup_.ScaleUnit != 0 && setup_.ScaleUnit != ticket_->UMF);
  ink_->Show(InkOf(session, ColorKindOf(ticket_->kind), ticket_->name));
}

double BatchScaleWeighForm::Tolerance() const {
  return WeighTolerance{setup_.WeighTolerance, setup_.WeighToleranceInPercent}.Of(ticket_->target, ticket_->UMF);
}

double BatchScaleWeighForm::Draft() const {
  const double capacity = InBatchUnit(static_cast<double>(setup_.ScaleCapacity), setup_.ScaleUnit, ticket_->UMF);
  return NextDraft(RoundTo(ticket_->target - poured_, 3), capacity);
}

void BatchScaleWeighForm::cmdSave_Click() {
  if (!ticket_ || scale_ == nullptr) return;
  const Result<double> reading = scale_->Link().Weight(BenchScale::Now());
  if (!Accepted(reading)) return;
  const double poured = RoundTo(poured_ + InBatchUnit(*reading, setup_.ScaleUnit, ticket_->UMF), 3);
  const bool isDraft = Draft() < RoundTo(ticket_->target - poured_, 3);
  if (isDraft && *reading > 0 && ComparePour(poured, ticket_->target, Tolerance()) == PourEnd::Under) {
    poured_ = poured;
    ++draft_;
    Zero();
    return;
  }
  if (!AcceptPour(session.prompt, poured, ticket_->target, Tolerance())) return save_->setFocus();
  taking_ = true;
  const QPointer<BatchScaleWeighForm> here = this;
  const bool taken = bench_->TakeWeight(*ticket_, poured);
  if (here == nullptr) return;
  taking_ = false;
  if (!taken) return;
  poured_ = 0;
  Zero();
  if (bench_->RowsLeft() > 0 && Begin(std::nullopt)) {
    activateWindow();
    return;
  }
  WeighBench& bench = *bench_;
  End();
  bench.WeighingEnds();
}

void BatchScaleWeighForm::cmdTare_Click() {
  Zero();
  save_->setFocus();
}

void BatchScaleWeighForm::Zero() {
  if (scale_ != nullptr) scale_->Link().Tare(BenchScale::Now());
  if (ticket_) Show();
}

bool BatchScaleWeighForm::MayClose() {
  const bool asks = !ended_ && ticket_ && (poured_ != 0 || OnScale() != 0);
  if (asks && !session.prompt.Ask("Scale Weighing in Progress", "Cancel Weighing Scale Amount?")) return false;
  look_.stop();
  if (scale_ != nullptr) scale_->GiveBack(*this);
  return true;
}

// ---- The pour

double BatchScaleWeighForm::OnScale() const {
  if (!ticket_ || scale_ == nullptr || !scale_->Has(*this)) return 0;
  const auto& last = scale_->Link().Last();
  return last ? InBatchUnit(last->weight, setup_.ScaleUnit, ticket_->UMF) : 0;
}

void BatchScaleWeighForm::Follow() {
  if (scale_ == nullptr || !ticket_) return;
  const std::int64_t now = BenchScale::Now();
  if (session.ScalePowered == 1 && scale_->Lend(*this)) {
    ScaleLink& link = scale_->Link();
    if (!link.IsReading() && now >= tryAgain_) {
      const auto open = link.OpenForUse();
      openFault_ = open ? "" : open.error().text;
      tryAgain_ = now + kTryAgain;
    }
    link.Step(now);
  } else {
    openFault_.clear();
  }
  Show();
  Changed();
}

QString BatchScaleWeighForm::Trouble() const {
  if (!taking_ && !bench_->Stands(*ticket_))
    return tr("The Batch was changed: this row is not what it was. Cancel, and weigh it anew.");
  if (session.ScalePowered != 1) return tr("The scale is off. Switch it on: Scale, Power On.");
  if (!scale_->Has(*this)) return tr("Another window uses the scale.");
  if (!openFault_.empty()) return Q(openFault_);
  const ScaleLink& link = scale_->Link();
  if (link.Lost()) return Q(*link.Lost());
  const std::int64_t now = BenchScale::Now();
  if (!link.Last() || link.IsFresh(now)) return " ";
  return tr("This weight is %1 s old: the scale has stopped to answer.").arg((now - link.Last()->at) / 1000);
}

void BatchScaleWeighForm::Show() {
  const int unit = ticket_->UMF;
  const double target = Draft();
  const double weight = OnScale();
  WeighProgress progress = FollowPour(weight, target, Tolerance());
  PourEnd end = ComparePour(weight, target, Tolerance());
  if (end == PourEnd::Over && ComparePour(poured_ + weight, ticket_->target, Tolerance()) != PourEnd::Over) {
    // More of a draft than its share is less of the next.
    end = PourEnd::OnTarget;
    progress.color = WeighColor::FullGreen;
  }
  reading_->Show(Q(Fixed(weight, 3)), Q(UnitName(unit)), PourWord(progress, end), progress.color);
  bar_->Show(progress);
  upper_->setText(Q(progress.percent));
  target_->SetText(U8(Amount(target, unit)));
  const double rest = RoundTo(target - weight, 3);
  restCaption_->setText(rest < 0 ? tr("Over") : tr("Rest"));
  rest_->SetText(U8(Amount(std::abs(rest), unit)));
  QString kind = Q(LineKindName(ticket_->kind));
  if (ticket_->before != 0) kind += tr(", %1 weighed before").arg(Amount(ticket_->before, unit));
  if (target < RoundTo(ticket_->target - poured_, 3) || draft_ > 1)
    kind += tr(", draft %1: %2 of %3 poured").arg(draft_).arg(Amount(poured_, unit), Amount(ticket_->target, unit));
  kind_->setText(kind);
  const auto& last = scale_->Link().Last();
  if (!more_->isHidden() && scale_->Has(*this) && last)
    more_->setText(tr("The scale shows %1").arg(Amount(last->weight, setup_.ScaleUnit)));
  trouble_->setText(Trouble());
  const bool over = end == PourEnd::Over;
  if (over && !std::exchange(over_, over)) {
    QApplication::beep();
    Q_EMIT Overpoured();
  }
  over_ = over;
}

void BatchScaleWeighForm::UpdateEnabled() {
  save_->setEnabled(ticket_.has_value());
  const bool reads = scale_ != nullptr && scale_->Has(*this) && scale_->Link().IsReading() && !scale_->Link().Lost();
  tare_->setEnabled(ticket_.has_value() && reads);
}

}  // namespace vellumark::desktop
