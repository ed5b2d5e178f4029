#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>

#include "core/jobs/design_work.h"
#include "desktop/jobs/register.h"
#include "desktop/kit/grid.h"
#include "support/desktop.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// The windows of Designs on an ink room. Files are chosen as `chosen` tells.
struct DesignsDesk : InkRoom {
  DesignsDesk() {
    desktop::RegisterJobsWindows(windows, [this](const desktop::FileChoice& choice, QWidget*) {
      asked = choice;
      return QString::fromStdString(chosen.string());
    });
    Basic("RED", {{"PurchaseCost", 4.0F}, {"Inventory", 3.0F}});
    Basic("BLUE", {{"PurchaseCost", 6.5F}});
    Mix("PINK", {{"RED", 100.0F}}, {{"PurchaseCost", 9.5F}});
    Mix("VIOLET", {{"RED", 40.0F}, {"BLUE", 60.0F}});
  }

  desktop::Window& Open(const std::string& name, const desktop::Arguments& arguments = {}) {
    desktop::Window* window = windows.OpenForm(name, arguments);
    ShowActive(*window);
    return *window;
  }
  static std::string Text(QWidget& window, const char* name) {
    return Control<QLabel>(window, name).text().toStdString();
  }
  static void Tab(QWidget& window, const char* tabs, int page) {
    Control<QTabWidget>(window, tabs).setCurrentIndex(page);
  }
  /// A picture of stripes, as a camera would bring it.
  std::filesystem::path Picture(const std::string& name, QColor ink, QSize size = {1200, 800}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int x = 0; x < size.width(); ++x)
      for (int y = 0; y < size.height(); ++y)
        if ((x / 100 + y / 100) % 2 == 0) image.setPixelColor(x, y, ink);
    const auto path = folder / name;
    image.save(QString::fromStdString(path.string()));
    return path;
  }

  desktop::WindowList windows{session};
  std::filesystem::path chosen;
  desktop::FileChoice asked;
};

}  // namespace vellumark::test
