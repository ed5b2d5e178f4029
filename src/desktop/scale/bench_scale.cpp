#include "desktop/scale/bench_scale.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <exception>

#include "core/shell/gating.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"
#include "devices/system_line.h"

namespace vellumark::desktop {
namespace {

constexpr int kStep = 100;  // of the bar, in milliseconds

}  // namespace

// The waits of the protocol: the program goes on painting.
class BenchScale::Waits final : public ScaleWaits {
 public:
  explicit Waits(BenchScale& scale) : scale_(scale) {}
  void Pause(int milliseconds) override {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }
  void Boot(const std::string& text, int) override {
    QString shown = Q(text);
    scale_.Boot(shown.replace("&&", "&"));  // a caption without an access key
  }

 private:
  BenchScale& scale_;
};

BenchScale::BenchScale(WindowList& windows)
    : windows_(windows),
      line_(devices::SystemLine()),
      waits_(std::make_unique<Waits>(*this)),
      link_(windows.session, *line_, *waits_) {}

BenchScale::~BenchScale() = default;

std::int64_t BenchScale::Now() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// ---- Power

void BenchScale::Boot(const QString& text) {
  QElapsedTimer clock;
  clock.start();
  QEventLoop loop;
  QTimer step;
  const auto show = [&] {
    const int over = static_cast<int>(std::min<qint64>(clock.elapsed(), bootTime_));
    const int whole = boots_ * bootTime_;
    const int done = bootsOver_ * bootTime_ + over;
    Q_EMIT Booting(text, whole == 0 ? 1.0 : static_cast<double>(done) / whole, whole - done);
    if (over >= bootTime_) loop.quit();
  };
  connect(&step, &QTimer::timeout, &loop, show);
  step.start(std::min(kStep, std::max(bootTime_, 1)));
  show();
  if (bootTime_ > 0) loop.exec();
  ++bootsOver_;
}

// The work runs inside the window that keeps everything else from beginning.
Result<void> BenchScale::InWaitWindow(int boots, const std::function<Result<void>()>& work) {
  boots_ = boots;
  bootsOver_ = 0;
  Result<void> done;
  std::exception_ptr failure;
  const std::function<void()> run = [&] {
    try {
      done = work();
    } catch (...) {
      failure = std::current_exception();
    }
  };
  windows_.RunDialog("WaitForm_ScaleBoot", {{"Work", run}});
  if (failure) std::rethrow_exception(failure);
  return done;
}

Result<void> BenchScale::PowerOn(const ScaleSetup& setup) {
  return InWaitWindow(2, [&] { return link_.PowerOn(setup); });
}

Result<void> BenchScale::PowerOff() {
  return InWaitWindow(1, [&] { return link_.PowerOff(); });
}

PortSearch BenchScale::Ports() {
  if (windows_.session.ScalePowered == 1) return {};
  link_.Close();
  return SearchPorts(*line_, ReadScaleSetup(windows_.session).Line().port);
}

void BenchScale::Tell(const Result<void>& result) {
  if (!result) windows_.session.prompt.Tell(result.error().title, result.error().text, Icon::Exclamation);
}

void BenchScale::Setup() {
  const auto allowed = CheckScaleSetup(windows_.session);
  if (!allowed) return Tell(allowed);
  windows_.RunDialog("ScaleSettings");
}

void BenchScale::SwitchOn() {
  if (ReadScaleSetup(windows_.session).CommPort.empty()) windows_.RunDialog("ScaleSettings");
  const ScaleSetup setup = ReadScaleSetup(windows_.session);
  if (!setup.CommPort.empty()) Tell(PowerOn(setup));
}

void BenchScale::SwitchOff() {
  Tell(PowerOff());
}

// ---- Reading

bool BenchScale::Lend(QObject& reader) {
  if (reader_ != nullptr && reader_ != &reader) return false;
  reader_ = &reader;
  return true;
}

void BenchScale::GiveBack(QObject& reader) {
  if (reader_ != &reader) return;
  reader_.clear();
  link_.Close();
}

}  // namespace vellumark::desktop
