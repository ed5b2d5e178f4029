#pragma once

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QWidget>
#include <chrono>

#include "desktop/kit/application.h"

namespace vellumark::bench {

using Seconds = std::chrono::duration<double>;

/// One application for all measurements of windows, on no screen.
inline void NeedApplication() {
  static int argc = 1;
  static char name[] = "vellumark_bench";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: at the end of the process other statics would outlive it.
  static auto* application = new desktop::Application(argc, argv);
  benchmark::DoNotOptimize(application);
}

/// The window is there, painted.
inline void Shown(QWidget& window) {
  window.show();
  QApplication::processEvents();
  QApplication::processEvents();
}

}  // namespace vellumark::bench
