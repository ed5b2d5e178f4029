#include "desktop/scale/scale_settings.h"

#include <QHBoxLayout>
#include <type_traits>
#include <utility>

#include "core/base/number.h"
#include "core/base/text.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/scale/bench_scale.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {
namespace {

constexpr int kLook = 50;  // between two looks at the line, in milliseconds
constexpr int kWidth = 800;
constexpr int kNarrow = 320;  // of a text in the second column

template <class Words>
QStringList TextsOf(const Words& words) {
  QStringList texts;
  for (const auto& word : words) {
    if constexpr (std::is_integral_v<std::decay_t<decltype(word)>>) {
      texts += QString::number(word);
    } else {
      texts += Q(word);
    }
  }
  return texts;
}

}  // namespace

ScaleSettings::ScaleSettings(WindowList& windowList, QWidget* owner, BenchScale& scale,
                             std::filesystem::path logFolder)
    : Dialog(windowList, owner, "ScaleSettings", tr(" Scale Settings - Pennsylvania Models")),
      scale_(scale),
      logFolder_(std::move(logFolder)) {
  setMinimumWidth(kWidth);
  Form form(*this);
  TabSet tabs = form.Tabs("TabScale");
  Form page = tabs.Page(tr("Port and test"), "TabPort");
  std::vector<Form> sides = page.Columns(2);
  BuildPort(sides[0]);
  BuildTest(sides[1]);
  BuildWeighing(tabs.Page(tr("Weighing"), "TabWeighing"));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCommErrors", tr("Windows Comm Port Results")),
                form.Button("cmdCancel", tr("Cancel"))});
  reading_.setParent(this);
  connect(&reading_, &QTimer::timeout, this, &ScaleSettings::Read);
}

ComboField* ScaleSettings::Choice(Form& form, const char* name, const char* key, const QString& caption,
                                  const QStringList& items) {
  ComboField* field = form.Combo(name, items);
  field->Means(key);
  form.Row(caption, field);
  // Other values than those that are tried end the test.
  connect(field, &QComboBox::currentTextChanged, this, &ScaleSettings::cmdStop_Click);
  return field;
}

void ScaleSettings::BuildPort(Form form) {
  form.Heading(tr("Comm port"));
  port_ = new ComboField("cmbCommPort");
  port_->setEditable(true);
  port_->setInsertPolicy(QComboBox::NoInsert);
  port_->setCompleter(nullptr);  // a device of another name is meant as it was typed
  port_->setMinimumContentsLength(18);
  port_->setToolTip(tr("Choose a port, or type the name of its device"));
  form.Add(port_);
  port_->Means("CommPort");
  form.Row(tr("Comm &port"), port_);
  connect(port_, &QComboBox::currentTextChanged, this, &ScaleSettings::cmdStop_Click);
  baud_ = Choice(form, "cmbBaudRate", "BaudRate", tr("&Baud rate"), TextsOf(kBaudRates));
  parity_ = Choice(form, "cmbParity", "Parity", tr("P&arity"), TextsOf(kParities));
  wordLen_ = Choice(form, "cmbWordLen", "WordLen", tr("&Word length"), {"7", "8"});
  stopBit_ = Choice(form, "cmbStopBit", "StopBit", tr("St&op bits"), {"1", "2"});
  handshaking_ = Choice(form, "cmbHandshaking", "Handshaking", tr("&Handshaking"), TextsOf(kHandshakings));
  form.Row(form.Hint(tr("Recommended: 9600, Odd, 7 and 1")));
}

void ScaleSettings::BuildTest(Form form) {
  form.Heading(tr("Test New Comm Port Values "));
  const auto explain = [&form](const QString& text, const QString& name = {}) {
    QLabel* label = Explain(form, text, name);
    label->setMinimumWidth(kNarrow);
    form.Wide(label);
    return label;
  };
  explain(tr("1) Scale must be powered off before using "));
  explain(tr("2) Scale will power on and off for use of test settings, do not interrup this procedure"));
  begin_ = form.Button("cmdBegin", tr("B&egin"));
  tare_ = form.Button("cmdTare", tr("&Tare"));
  stop_ = form.Button("cmdStop", tr("Stop"));
  auto* buttons = new QWidget;
  auto* across = new QHBoxLayout(buttons);
  across->setContentsMargins(0, space::kUnit, 0, 0);
  across->setSpacing(space::kUnit);
  for (CommandButton* button : {begin_, tare_, stop_}) across->addWidget(button);
  across->addStretch(1);
  form.Wide(buttons);
  weight_ = form.Value("lblweight", 2.5);
  weight_->setAccessibleName(tr("Weight"));
  weight_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  weight_->setMinimumHeight(weight_->fontMetrics().height() + 8);
  form.Wide(weight_);
  explain(tr("Weight should display here with no error codes displaying on scale "));
  state_ = explain({}, "lblState");
  state_->setProperty("role", "fault");
  form.Stretch();
}

void ScaleSettings::BuildWeighing(Form form) {
  form.Heading(tr("Scale"));
  const QStringList units = QStringList{tr("Unit of the Batch")} + UnitNames();
  form.Row(tr("&Unit that the scale shows"), unit_ = form.Combo("cmbScaleUnit", units));
  form.Row(tr("Heaviest &load"), {capacity_ = form.Number("txtScaleCapacity", 3, tr("0 or more")),
                                  form.Hint(tr("in the unit of the scale; heavier rows are weighed in drafts"))});
  capacity_->Means("ScaleCapacity");
  form.Heading(tr("Weighing"));
  form.Row(tr("&Counts as on target"),
           {tolerance_ = form.Number("txtWeighTolerance", 3, tr("0 or more")),
            toleranceKind_ = form.Combo("cmbWeighTolerance", {tr("g. more or less"), tr("% more or less")})});
  tolerance_->Means("WeighTolerance");
  form.Row(heaviestFirst_ = form.Check("chkWeighHeaviestFirst", tr("Weigh the hea&viest row first")));
  form.Stretch();
}

// ---- What is set

void ScaleSettings::OnOpen(const Arguments&) {
  saved_ = ReadScaleSetup(session);
  ports_ = scale_.Ports();
  if (ports_.available.empty() && ports_.refused.empty()) TellNoPorts(session.prompt);
  try {
    WritePortLog(logFolder_, PortReport(ports_, session.clock));
    logWritten_ = true;
  } catch (const Failure& failure) {
    session.prompt.Tell(failure.subject, failure.cause, Icon::Exclamation);
  }
  Show(saved_);
}

void ScaleSettings::Show(const ScaleSetup& setup) {
  port_->SetItems(ports_.available);
  port_->SetText(setup.CommPort);
  baud_->SetText(std::to_string(setup.BaudRate));
  parity_->SetText(setup.Parity);
  wordLen_->SetText(std::to_string(setup.WordLen));
  stopBit_->SetText(std::to_string(setup.StopBit));
  handshaking_->SetText(setup.Handshaking);
  unit_->setCurrentIndex(setup.ScaleUnit);
  capacity_->SetText(ShortestText(setup.ScaleCapacity));
  tolerance_->SetText(ShortestText(setup.WeighTolerance));
  toleranceKind_->setCurrentIndex(setup.WeighToleranceInPercent ? 1 : 0);
  heaviestFirst_->setChecked(setup.WeighHeaviestFirst);
}

Result<ScaleSetup> ScaleSettings::Typed() const {
  ScaleSetup setup = saved_;
  const auto number = [](const NumberField& field) { return field.Text().empty() ? "0" : field.Text(); };
  const std::pair<const char*, std::string> values[] = {{"CommPort", std::string(TrimView(port_->Text()))},
                                                        {"BaudRate", baud_->Text()},
                                                        {"Parity", parity_->Text()},
                                                        {"WordLen", wordLen_->Text()},
                                                        {"StopBit", stopBit_->Text()},
                                                        {"Handshaking", handshaking_->Text()},
                                                        {"ScaleCapacity", number(*capacity_)},
                                                        {"WeighTolerance", number(*tolerance_)}};
  for (const auto& [key, value] : values)
    if (auto set = SetScaleValue(setup, key, value); !set) return std::unexpected(set.error());
  setup.ScaleUnit = unit_->currentIndex();
  setup.WeighToleranceInPercent = toleranceKind_->currentIndex() == 1;
  setup.WeighHeaviestFirst = heaviestFirst_->isChecked();
  return setup;
}

void ScaleSettings::cmdSave_Click() {
  cmdStop_Click();
  const auto setup = Typed();
  if (!Accepted(setup) || !Accepted(StoreScaleSetup(session, *setup))) return;
  accept();
}

void ScaleSettings::cmdCommErrors_Click() {
  session.prompt.Tell("Comm port log report", PortReport(ports_, session.clock));
  if (logWritten_)
    session.prompt.Tell("Comm Port Log File", "saved to the desktop\n\n" + (logFolder_ / kPortLogFile).string());
}

// ---- The test

void ScaleSettings::UpdateEnabled() {
  begin_->setEnabled(!testing_);
  tare_->setEnabled(testing_);
  stop_->setEnabled(testing_);
}

void ScaleSettings::cmdBegin_Click() {
  const auto setup = Typed();
  if (!Accepted(setup) || !Accepted(scale_.PowerOn(*setup))) return;
  testing_ = true;
  if (scale_.Lend(*this) && Accepted(scale_.Link().OpenForUse())) reading_.start(kLook);
  Changed();
  tare_->setFocus();
}

void ScaleSettings::cmdTare_Click() {
  if (scale_.Link().Tare(BenchScale::Now())) weight_->SetText("0.000");
}

// Also whatever ends the test by the way.
void ScaleSettings::cmdStop_Click() {
  if (!std::exchange(testing_, false)) return;
  reading_.stop();
  weight_->SetText("");
  state_->clear();
  const auto off = scale_.PowerOff();
  scale_.GiveBack(*this);
  Accepted(off);
  Changed();
}

void ScaleSettings::Read() {
  ScaleLink& link = scale_.Link();
  link.Step(BenchScale::Now());
  if (const auto& last = link.Last()) weight_->SetText(Fixed(last->weight, 3));
  state_->setText(Q(link.Lost().value_or("")));
}

bool ScaleSettings::MayClose() {
  cmdStop_Click();
  return true;
}

}  // namespace vellumark::desktop
