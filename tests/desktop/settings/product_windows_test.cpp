#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>

#include "desktop/settings/register.h"
#include "support/desk.h"
#include "support/desktop.h"

namespace vellumark::test {
namespace {

struct ProductWindowsTest : testing::Test, Desk {
  ProductWindowsTest() {
    RegisterSettingsWindows(windows, [] { return desktop::SystemPrinters{}; });
    session.CurrentDatabase = "PANTONE";
    session.FullName = "Formula Guide";
  }
  void Notices() {
    session.Disclaimer =
        "The colors of this guide are samples, made up to show how guides work. They match no published standard.";
    session.TradeMark = "PANTONE is a mark of its owner.";
  }
  /// Runs the splash, which stays until `inside` closes it.
  void Splash(const std::function<void(QWidget&)>& inside, int milliseconds = 60000) {
    WithModal([&] { windows.RunDialog("ProductSplashFormPantone", {{"Milliseconds", milliseconds}}); }, inside);
  }
};

TEST_F(ProductWindowsTest, TheSplashClosesItself) {
  QElapsedTimer clock;
  clock.start();
  Splash([&](QWidget& splash) { EXPECT_TRUE(WaitFor([&] { return !splash.isVisible(); })); }, 200);
  EXPECT_GE(clock.elapsed(), 190);
}

TEST_F(ProductWindowsTest, ItsOwnTimeIsShortAndLongerWhereThereIsSomethingToRead) {
  const auto time = [&] {
    int interval = 0;
    WithModal([&] { windows.RunDialog("ProductSplashFormPantone"); },
              [&](QWidget& splash) {
                auto* timer = splash.findChild<QTimer*>("tmrClose");
                interval = timer->isActive() ? timer->interval() : 0;
                Press(splash, Qt::Key_Space);
              });
    return interval;
  };
  const int plain = time();
  EXPECT_GE(plain, 2000);
  EXPECT_LE(plain, 5000);
  Notices();
  EXPECT_GT(time(), plain);
  session.Disclaimer = std::string(50000, 'x');
  EXPECT_LE(time(), 15000) << "nobody waits for a book";
}

TEST_F(ProductWindowsTest, AnyKeyAndAnyClickCloseTheSplashAndAModifierAloneDoesNot) {
  const std::pair<const char*, std::function<void(QWidget&)>> ways[] = {
      {"a letter", [](QWidget& splash) { Press(splash, Qt::Key_A); }},
      {"Escape", [](QWidget&) { PressOn(Qt::Key_Escape); }},
      {"Enter on Close", [](QWidget&) { PressOn(Qt::Key_Return); }},
      {"a function key", [](QWidget&) { PressOn(Qt::Key_F3); }},
      {"a click on the band", [](QWidget& splash) { Click(splash, "imgIcon"); }},
      {"a click on the ground", [](QWidget& splash) { Click(splash); }},
      {"Close", [](QWidget& splash) { Click(splash, "cmdClose"); }},
      {"being closed", [](QWidget& splash) { splash.close(); }},
  };
  for (const auto& [way, close] : ways) {
    Splash([&](QWidget& splash) {
      Press(splash, Qt::Key_Shift);
      EXPECT_TRUE(splash.isVisible()) << way;
      close(splash);
      EXPECT_FALSE(splash.isVisible()) << way;
    });
  }
}

TEST_F(ProductWindowsTest, TheSplashShowsProductWarrantyVersionAndTheNoticesOfTheDatabase) {
  Splash([&](QWidget& splash) {
    EXPECT_TRUE(splash.isModal());
    EXPECT_EQ(Control<QLabel>(splash, "lblProduct").text(), "The Vellumark");
    EXPECT_EQ(Control<QLabel>(splash, "lblVersion").text(), "Version " VELLUMARK_VERSION);
    EXPECT_TRUE(Control<QLabel>(splash, "lblWarranty").text().contains("without warranty"));
    EXPECT_EQ(splash.findChild<QWidget*>("lblDisclaimer"), nullptr) << "there are no notices";
    Picture(splash, "settings-splash", {});
    Press(splash, Qt::Key_Space);
  });
  Notices();
  Splash([&](QWidget& splash) {
    const QString shown = Control<QLabel>(splash, "lblDisclaimer").text();
    EXPECT_TRUE(shown.contains(desktop::Q(session.Disclaimer)));
    EXPECT_TRUE(shown.contains(desktop::Q(session.TradeMark)));
    Picture(splash, "settings-splash-notices", {});
    Press(splash, Qt::Key_Space);
  });
  for (int i = 0; i < 5; ++i) session.Disclaimer += "\n\n" + session.Disclaimer;
  Splash([&](QWidget& splash) {
    EXPECT_LE(splash.height(), 720);
    EXPECT_TRUE(Control<QScrollArea>(splash, "lblDisclaimerArea").isVisible());
    Picture(splash, "settings-splash-long", {});
    Press(splash, Qt::Key_Space);
  });
}

TEST_F(ProductWindowsTest, AboutTellsVersionAndWhatIsOpen) {
  Notices();
  session.DataFileName = "/srv/ink/Shop Data.vkd";
  session.CurrentUser = "PAT";
  session.DataFolder = "/var/lib/vellumark/VKDat";
  WithModal([&] { windows.RunDialog("AboutForm"); },
            [&](QWidget& about) {
              EXPECT_EQ(about.windowTitle(), "About The Vellumark");
              EXPECT_EQ(Control<QLabel>(about, "lblVersion").text(), "Version " VELLUMARK_VERSION);
              EXPECT_EQ(Control<QLabel>(about, "lblDataFileName").text(), "/srv/ink/Shop Data.vkd");
              EXPECT_EQ(Control<QLabel>(about, "lblDatabase").text(), "PANTONE - Formula Guide");
              EXPECT_EQ(Control<QLabel>(about, "lblUser").text(), "PAT");
              EXPECT_EQ(Control<QLabel>(about, "lblTradeMark").text().toStdString(), session.TradeMark);
              Picture(about, "settings-about", {});
              PressOn(Qt::Key_Return);
              EXPECT_FALSE(about.isVisible());
            });
}

}  // namespace
}  // namespace vellumark::test
