// The window of Master Formulas on a file of 100,000 formulas: how fast it opens, and how fast it completes a name.
// Each stands beside a bare window, or a bare line, that shows the same from one query on the index of names.

#include <benchmark/benchmark.h>

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include "desktop/colors/register.h"
#include "desktop/kit/name_box.h"
#include "desktop/kit/window.h"
#include "desktop/shell/main_form.h"
#include "large_room.h"
#include "offscreen.h"

namespace vellumark::bench {
namespace {

// The formula that is looked for, in the middle of the file.
constexpr const char* kFormula = "SPOT COLOUR 54711";

// The windows of colours on the file of 100,000 formulas.
struct ColorsDesk {
  ColorsDesk() { desktop::RegisterColorsWindows(windows); }
  LargeRoom& room = Room100k();
  desktop::WindowList windows{room.session};
};

void Gone(desktop::Window& window) {
  window.Leave();
  QApplication::processEvents();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// In the main window, as the operator has it.
void OpenMixFormOurs(benchmark::State& state) {
  NeedApplication();
  ColorsDesk desk;
  desk.room.session.RecordsetsOpen = true;
  desktop::MainForm main(desk.windows);
  Shown(main);
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    desktop::Window* window = desk.windows.OpenForm("MixColorsForm", {{"FindRecord", kFormula}});
    Shown(main);
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    if (window->findChild<QLineEdit*>("BC0")->text().isEmpty()) state.SkipWithError("no formula is shown");
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
    Gone(*window);
  }
  state.counters["ms"] = best * 1000;
}
BENCHMARK(OpenMixFormOurs)
    ->Name("open_mix_form_100k/ours")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(12);

// A bare window with a line for each column of the formula's row, filled by one query on the index of names.
void OpenMixFormRaw(benchmark::State& state) {
  NeedApplication();
  Database& file = Room100k().session.File();
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    QWidget window;
    window.resize(1280, 720);
    auto* grid = new QGridLayout(&window);
    Statement row = file.Prepare("SELECT * FROM INK_Mix WHERE Color_Name = ?");
    row.Bind(1, kFormula);
    if (!row.Step()) state.SkipWithError("no formula is there");
    for (int column = 0; column < row.ColumnCount(); ++column) {
      auto* line = new QLineEdit(QString::fromStdString(row.Text(column)));
      grid->addWidget(new QLabel(QString::fromStdString(row.ColumnName(column))), column % 14, column / 14 * 2);
      grid->addWidget(line, column % 14, column / 14 * 2 + 1);
    }
    Shown(window);
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - begin).count());
  }
}
BENCHMARK(OpenMixFormRaw)
    ->Name("open_mix_form_100k/raw")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(12);

void PressKey(QWidget& widget, QChar key) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(key));
  QApplication::sendEvent(&widget, &press);
}

// One key after the other of a whole name; the time is that of one key.
template <class AfterKey>
double TypeName(QLineEdit& line, AfterKey afterKey) {
  const QString name = QString::fromLatin1(kFormula);
  const auto begin = std::chrono::steady_clock::now();
  for (const QChar key : name) {
    PressKey(line, key);
    afterKey();
  }
  return Seconds(std::chrono::steady_clock::now() - begin).count() / static_cast<double>(name.size());
}

void CompleteOurs(benchmark::State& state) {
  NeedApplication();
  ColorsDesk desk;
  desktop::Window* window = desk.windows.OpenForm("MixColorsForm");
  Shown(*window);
  auto& name = *window->findChild<desktop::NameBox*>("cmbColorName");
  double best = 1e9;
  for (auto unused : state) {
    name.SetText("");
    const double seconds = TypeName(name, [] {});
    if (name.Name() != kFormula) state.SkipWithError("the name was not completed");
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
  }
  Gone(*window);
  state.counters["ms"] = best * 1000;
}
BENCHMARK(CompleteOurs)->Name("complete_100k/ours")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

// A bare line that fills itself in by a query on the index of names, with the rest selected.
void CompleteRaw(benchmark::State& state) {
  NeedApplication();
  Database& file = Room100k().session.File();
  QLineEdit line;
  Shown(line);
  for (auto unused : state) {
    line.clear();
    const double seconds = TypeName(line, [&] {
      const QString typed = line.text();
      Statement row = file.Prepare("SELECT Color_Name FROM INK_Mix WHERE Color_Name >= ? ORDER BY Color_Name LIMIT 1");
      row.Bind(1, typed.toStdString());
      if (!row.Step()) return;
      const QString found = QString::fromStdString(row.Text(0));
      line.setText(found);
      line.setSelection(static_cast<int>(found.size()), static_cast<int>(typed.size() - found.size()));
    });
    state.SetIterationTime(seconds);
  }
}
BENCHMARK(CompleteRaw)->Name("complete_100k/raw")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

}  // namespace
}  // namespace vellumark::bench
