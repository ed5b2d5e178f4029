#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QThread>

#include "core/base/files.h"
#include "core/session/rights.h"
#include "core/settings/settings.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/wait_progress.h"
#include "desktop/settings/register.h"
#include "support/combos.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

using desktop::Arguments;

const desktop::SystemPrinters kPrinters{
    {{"Rendering Subsystem", "render"}, {"Office (laser)", "LASER_2"}, {"Label printer, ink room", "ZT-41"}}, "ZT-41"};

/// An ink room with its windows of the Options menu and three printers.
struct OptionsWindowsTest : testing::Test, InkRoom {
  OptionsWindowsTest() {
    // The keys that the ladder adds at the first start.
    for (const auto& [key, value] :
         {std::pair{setting::InvRecordMethod.key, "0"}, {setting::UDCNameCCodeLen.key, "30"}, {setting::BackupFileLocation.key, ""}}) {
      session.support->settings.AppendSupportValue(key, value);
    }
    ReadSettings(session);
    RegisterSettingsWindows(windows, [this] { return printers; });
  }

  /// Runs the window; true when it was closed by its first button.
  bool Run(const std::string& name, const std::function<void(QWidget&)>& inside) {
    bool saved = false;
    WithModal([&] { saved = windows.RunDialog(name).has_value(); }, inside);
    return saved;
  }
  /// What the settings file holds, read by someone else.
  std::string OnFile(std::string_view key) const {
    return SupportFile(session.support->settings.Path(), session.support->settings.Shape()).GetSupportValue(key);
  }

  desktop::SystemPrinters printers = kPrinters;
  desktop::WindowList windows{session};
};

std::string TextOf(QWidget& dialog, const char* name) {
  return Control<QLabel>(dialog, name).text().toStdString();
}

bool IsOn(QWidget& dialog, const char* name) {
  return Control(dialog, name).isEnabled();
}

/// All that a window says in its labels.
QString Says(QWidget& dialog) {
  QString all;
  const QRegularExpression letter("&(?=[^&\\s])");
  for (const auto* label : dialog.findChildren<QLabel*>()) all += label->text().remove(letter) + "\n";
  return all;
}

// ---- First setup

TEST_F(OptionsWindowsTest, TheFirstSetupStoresUnitsAndPrinterByKeyboardAlone) {
  const bool saved = Run("NewSetupForm", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Default Settings - Installation Setup");
    EXPECT_EQ(FocusName(), "cmbUMI");
    EXPECT_EQ(ItemsOf(dialog, "cmbUMI"), (QStringList{"lb.", "kg.", "g.", "oz."}));
    EXPECT_EQ(ItemsOf(dialog, "cmbUMF"), (QStringList{"lb.", "kg.", "g.", "oz."}));
    EXPECT_EQ(ItemsOf(dialog, "cmbPrinter"), (QStringList{"Office (laser)", "Label printer, ink room"}));
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbPrinter").currentText(), "Label printer, ink room") << "the default one";
    Picture(dialog, "settings-new-setup", {});
    Choose(dialog, "cmbUMI", "kg.");
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "cmbUMF");
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Down);
    PressOn(Qt::Key_Return);
    EXPECT_EQ(FocusName(), "cmbPrinter");
    PressOn(Qt::Key_Up);
    PressOn(Qt::Key_Return);
  });
  EXPECT_TRUE(saved);
  EXPECT_EQ(OnFile("UMI"), "2");
  EXPECT_EQ(OnFile("UMF"), "3");
  EXPECT_EQ(OnFile("PrinterDevice"), "LASER_2");
  EXPECT_EQ(session.UMI, 2);
  EXPECT_EQ(session.UMF, 3);
}

TEST_F(OptionsWindowsTest, TheFirstSetupWorksWithoutAnyPrinter) {
  printers = {{{"Rendering Subsystem", "render"}}, ""};
  EXPECT_TRUE(Run("NewSetupForm", [&](QWidget& dialog) {
    EXPECT_FALSE(IsOn(dialog, "cmbPrinter"));
    Picture(dialog, "settings-new-setup-no-printer", {});
    Press(dialog, Qt::Key_S, Qt::ControlModifier);
  }));
  EXPECT_EQ(OnFile("PrinterDevice"), "");
}

// ---- Default printer

TEST_F(OptionsWindowsTest, TheDefaultPrinterIsShownAndStoredWithItsFont) {
  Setting(setting::PrinterDevice.key, "LASER_2");
  EXPECT_TRUE(Run("Default_Printer", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Default Printer");
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbPrinter").currentText(), "Office (laser)");
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbFont").currentText(), "Arial") << "also where it is not installed";
    Picture(dialog, "settings-default-printer", {});
    Choose(dialog, "cmbPrinter", "Label printer, ink room");
    Choose(dialog, "cmbFont", "DejaVu Sans");
    Click(dialog, "cmdSave");
  }));
  EXPECT_EQ(OnFile("PrinterDevice"), "ZT-41");
  EXPECT_EQ(OnFile("PrinterFont"), "DejaVu Sans");
  EXPECT_EQ(session.PrinterFont, "DejaVu Sans");
}

TEST_F(OptionsWindowsTest, APrinterThatIsGoneGivesWayToTheDefaultButNotWhereThereAreNone) {
  Setting(setting::PrinterDevice.key, "OLD");
  EXPECT_FALSE(Run("Default_Printer", [&](QWidget& dialog) {
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbPrinter").currentText(), "Label printer, ink room");
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(OnFile("PrinterDevice"), "OLD") << "cancelled";
  printers = {};
  EXPECT_TRUE(Run("Default_Printer", [&](QWidget& dialog) { Click(dialog, "cmdSave"); }));
  EXPECT_EQ(OnFile("PrinterDevice"), "OLD");
}

// ---- Reminders

TEST_F(OptionsWindowsTest, RemindersAreStoredInBothSenses) {
  const std::string backups = (folder / "Backups here").string();
  std::filesystem::create_directories(backups);
  EXPECT_TRUE(Run("RemindersForm", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Reminders");
    EXPECT_TRUE(Control<QRadioButton>(dialog, "OptOff").isChecked());
    for (const char* name : {"cmbDays", "cmbDrive", "cmdRefresh", "txtFolder", "cmdBrowse"})
      EXPECT_FALSE(IsOn(dialog, name)) << name;
    Click(dialog, "OptOn");
    for (const char* name : {"cmbDays", "cmbDrive", "cmdRefresh", "txtFolder", "cmdBrowse"})
      EXPECT_TRUE(IsOn(dialog, name)) << name;
    EXPECT_EQ(ItemsOf(dialog, "cmbDays").size(), 30);
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbDays").currentText(), "1");
    EXPECT_EQ(Control<QPushButton>(dialog, "cmdRefresh").text().remove('&'), "Drive Refresh");
    Choose(dialog, "cmbDays", "14");
    WithModal([&] { Click(dialog, "cmdBrowse"); },
              [&](QWidget& chooser) {
                Fill(chooser, "fileNameEdit", backups);
                PressOn(Qt::Key_Return);
                if (chooser.isVisible()) Press(Control(chooser, "fileNameEdit"), Qt::Key_Return);
              });
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtFolder").text().toStdString(), backups);
    Picture(dialog, "settings-reminders", {});
    Click(dialog, "chkInvLot_InvReportReminder");
    Click(dialog, "cmdOK");
  }));
  EXPECT_EQ(OnFile("RemindBackup"), "0");
  EXPECT_EQ(OnFile("BackupFileLocation"), backups);
  EXPECT_EQ(OnFile("LottedInvReminder"), "0");
  EXPECT_EQ(OnFile("BatchLotNumReminder"), "1");
  EXPECT_EQ(Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole(), 14);

  EXPECT_TRUE(Run("RemindersForm", [&](QWidget& dialog) {
    EXPECT_TRUE(Control<QRadioButton>(dialog, "OptOn").isChecked());
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbDays").currentText(), "14");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtFolder").text().toStdString(), backups);
    EXPECT_FALSE(Control<QCheckBox>(dialog, "chkInvLot_InvReportReminder").isChecked());
    Click(dialog, "OptOff");
    EXPECT_FALSE(IsOn(dialog, "cmbDays"));
    Click(dialog, "chkBatchLotNumReminder");
    Click(dialog, "cmdOK");
  }));
  EXPECT_EQ(OnFile("RemindBackup"), "1");
  EXPECT_EQ(OnFile("BackupFileLocation"), "");
  EXPECT_EQ(OnFile("BatchLotNumReminder"), "0");
  EXPECT_EQ(Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole(), 14) << "kept for the next time";
}

TEST_F(OptionsWindowsTest, AFolderThatIsLostGivesWayToTheDefaultWithoutAWord) {
  const auto there = folder / "Stick";
  std::filesystem::create_directories(there);
  Setting(setting::RemindBackup.key, "0");
  Setting(setting::BackupFileLocation.key, "/no/such/drive");
  EXPECT_FALSE(Run("RemindersForm", [&](QWidget& dialog) {
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtFolder").text(), QDir::homePath());
    dialog.close();
  }));
  Setting(setting::BackupFileLocation.key, there.string());
  EXPECT_FALSE(Run("RemindersForm", [&](QWidget& dialog) {
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtFolder").text().toStdString(), there.string());
    std::filesystem::remove(there);
    Click(dialog, "cmdRefresh");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtFolder").text(), QDir::homePath());
    dialog.close();
  }));
}

// ---- Inventory Settings

TEST_F(OptionsWindowsTest, InventorySettingsSayWhatTheyMeanAndAreInForceAtOnce) {
  EXPECT_TRUE(Run("UMSettingForm", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Inventory Settings");
    for (const char* text :
         {"This UOM should not be changed after inventory has been entered into the database.",
          "The Cutoff Point helps to keep inventory accurate.  Any inventory below this amount is automatically set to "
          "0.",
          "Note - This feature only works with Basics && Additives using the Unlotted Inventory method.",
          "It is not recommended to turn this feature on and off once it has been activated."}) {
      EXPECT_TRUE(Says(dialog).contains(text)) << text;
    }
    EXPECT_EQ(Control<QRadioButton>(dialog, "optGross").text().remove('&'),
              "Enter Inv by gross amount. (i.e. 100 lbs.)");
    EXPECT_EQ(Control<QRadioButton>(dialog, "optUnit").text().remove('&'),
              "Enter Inv by unit amount. (i.e. 5 lbs. * 20 units = 100 lbs.)");
    EXPECT_EQ(TextOf(dialog, "lblAllowNegInv"), "Inventory amounts never go below zero.");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtCutoff").text(), "0.5");
    Picture(dialog, "settings-inventory", {});
    Choose(dialog, "cmbUMI", "g.");
    Fill(dialog, "txtCutoff", "226.8");
    Click(dialog, "chkAllowNegInv");
    EXPECT_EQ(TextOf(dialog, "lblAllowNegInv"),
              "Inventory amounts can go below zero. The Inventory Removal / Cutoff point is disabled.");
    Click(dialog, "optUnit");
    Click(dialog, "chkInvLotTracking");
    EXPECT_FALSE(IsOn(dialog, "optInvRecordMethod")) << "there are no lots to enter";
    prompt.Expect("Inventory Unit", Answer::Ok,
                  "Nothing is converted: stock, lots, reorder points, the cutoff and unit costs on file keep their "
                  "figures, which stood for lb. and stand for g. from now on.");
    Press(dialog, Qt::Key_S, Qt::ControlModifier);
  }));
  EXPECT_EQ(OnFile("UMI"), "3");
  EXPECT_EQ(OnFile("InvCutoff"), "226.8");
  EXPECT_EQ(OnFile("AllowNegInv"), "1");
  EXPECT_EQ(OnFile("InvLotTracking"), "0");
  EXPECT_EQ(OnFile("InvRecordMethod"), "1");
  EXPECT_EQ(session.UMI, 3);
  EXPECT_EQ(session.InvLotTracking, 0);
}

TEST_F(OptionsWindowsTest, ABadCutoffIsRefusedAndTheFocusIsOnIt) {
  EXPECT_FALSE(Run("UMSettingForm", [&](QWidget& dialog) {
    Choose(dialog, "cmbUMI", "oz.");
    for (const char* bad : {"-0.1", "", "1.2.3"}) {
      Fill(dialog, "txtCutoff", bad);
      prompt.Expect("Invalid Inventory Cutoff", Answer::Ok, "You must enter an amount greater than or equal to zero.");
      Click(dialog, "cmdSave");
      EXPECT_EQ(FocusName(), "txtCutoff") << bad;
      EXPECT_EQ(Control<QLineEdit>(dialog, "txtCutoff").selectedText(), bad);
      EXPECT_TRUE(dialog.isVisible());
    }
    EXPECT_TRUE(Control<desktop::TextField>(dialog, "txtCutoff").HasFault());
    Picture(dialog, "settings-inventory-refused", {});
    Press(dialog, Qt::Key_Escape);
  }));
  EXPECT_EQ(OnFile("UMI"), "1");
  EXPECT_EQ(session.UMI, 1);
}

// ---- Unit Cost Accuracy

constexpr const char* kLossWarning =
    "Reducing unit cost accuracy may result in the permanent loss of precise unit cost data. For example, if you have "
    "unit costs that are accurate to four decimal places and you set the decimal place accuracy to two, the unit cost "
    "information in the third and fourth decimal places will be permanently lost.\n\nDo you wish to continue?";

TEST_F(OptionsWindowsTest, UnitCostAccuracyWarnsBeforeDigitsAreLost) {
  Basic("RED", {{"PurchaseCost", 10.1265F}});
  Mix("PINK", {{"RED", 100.0F}}, {{"BasicCost", 0.0F}});
  const auto basicCost = [&] { return Scalar("SELECT BasicCost FROM INK_Mix WHERE Color_Name = 'PINK'").Number(); };

  EXPECT_TRUE(Run("UnitCostAccuracyForm", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Unit Cost Accuracy");
    EXPECT_TRUE(Says(dialog).contains(
        "The standard Unit Cost accuracy is 2 decimal places, the maximum decimal place accuracy is 4."));
    EXPECT_EQ(ItemsOf(dialog, "cmbDecimalPlaces"), (QStringList{"2", "3", "4"}));
    EXPECT_EQ(TextOf(dialog, "lblExample"), "12.35");
    Choose(dialog, "cmbDecimalPlaces", "4");
    EXPECT_EQ(TextOf(dialog, "lblExample"), "12.3457");
    Picture(dialog, "settings-unit-cost-accuracy", {});
    PressOn(Qt::Key_Return);
  }));
  EXPECT_EQ(OnFile("DecimalPlaces"), "4");
  EXPECT_EQ(session.DecimalPlaces, 4);
  EXPECT_NEAR(basicCost(), 10.1265, 1e-6);

  EXPECT_FALSE(Run("UnitCostAccuracyForm", [&](QWidget& dialog) {
    Choose(dialog, "cmbDecimalPlaces", "2");
    prompt.Expect("Warning", Answer::No, kLossWarning)
        .Expect("Unit Cost Accuracy", Answer::Ok, "Unit cost data has not been modified.");
    Click(dialog, "cmdOK");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(Control<QComboBox>(dialog, "cmbDecimalPlaces").currentText(), "4");
    EXPECT_EQ(TextOf(dialog, "lblExample"), "12.3457");
    EXPECT_EQ(FocusName(), "cmbDecimalPlaces");
    Click(dialog, "cmdCancel");
  }));
  EXPECT_EQ(OnFile("DecimalPlaces"), "4");
  EXPECT_NEAR(basicCost(), 10.1265, 1e-6);

  EXPECT_TRUE(Run("UnitCostAccuracyForm", [&](QWidget& dialog) {
    Choose(dialog, "cmbDecimalPlaces", "3");
    prompt.Expect("Warning", Answer::Yes, kLossWarning);
    Click(dialog, "cmdOK");
  }));
  EXPECT_EQ(OnFile("DecimalPlaces"), "3");
  EXPECT_NEAR(basicCost(), 10.127, 1e-6);
  EXPECT_NEAR(Scalar("SELECT PurchaseCost FROM INK_Basic").Number(), 10.1265, 1e-6) << "what was typed stays";
}

/// The wait windows, on a machine that is slow enough to need them.
class SlowMachine : public Progress {
 public:
  void Begin(std::string_view text) override {
    wait.Begin(text);
    QThread::msleep(310);
  }
  void Percent(double percent) override {
    wait.Percent(percent);
    if (wait.Shown() == nullptr) return;
    kind = wait.Shown()->objectName().toStdString();
    text = TextOf(*wait.Shown(), "lblMessage");
  }
  void End() override { wait.End(); }

  desktop::WaitProgress wait;
  std::string kind;
  std::string text;
};

TEST_F(OptionsWindowsTest, ThePassOverTheFormulasShowsItsWaitWindow) {
  Basic("RED", {{"PurchaseCost", 10.1265F}});
  for (int i = 0; i < 200; ++i) Mix("PINK " + std::to_string(i), {{"RED", 100.0F}});
  SlowMachine machine;
  Session slow(prompt, machine, clock);
  slow.support = std::move(session.support);
  slow.DataFileDB = std::move(session.DataFileDB);
  slow.CurrentDatabase = session.CurrentDatabase;
  slow.DataFileOpen = true;
  ReadSettings(slow);
  {
    desktop::WindowList list(slow, &machine.wait);
    RegisterSettingsWindows(list);
    WithModal([&] { EXPECT_TRUE(list.RunDialog("UnitCostAccuracyForm").has_value()); },
              [&](QWidget& dialog) {
                Choose(dialog, "cmbDecimalPlaces", "3");
                Click(dialog, "cmdOK");
              });
  }
  EXPECT_EQ(machine.text, "Updating Master Formula Basic Costs...");
  EXPECT_EQ(machine.kind, "WaitingForm_NoCancel");
  EXPECT_EQ(machine.wait.Shown(), nullptr);
  session.support = std::move(slow.support);
  session.DataFileDB = std::move(slow.DataFileDB);
  ReadSettings(session);
}

// ---- Name Length and Autofill

TEST_F(OptionsWindowsTest, NameLengthTakesTenToThirtyOnly) {
  EXPECT_TRUE(Run("OptionMaxNameLen", [&](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Name Length");
    EXPECT_EQ(FocusName(), "txtNameLength");
    EXPECT_EQ(Control<QLineEdit>(dialog, "txtNameLength").text(), "30");
    Picture(dialog, "settings-name-length", {});
    for (const char* bad : {"9", "31", ""}) {
      Fill(dialog, "txtNameLength", bad);
      prompt.Expect("Invalid Name Length", Answer::Ok, "You must enter a whole number between 10 and 30.");
      Click(dialog, "cmdSave");
      EXPECT_EQ(FocusName(), "txtNameLength");
      EXPECT_EQ(OnFile("UDCNameCCodeLen"), "30") << bad;
    }
    TypeOn("15");
    PressOn(Qt::Key_Return);
  }));
  EXPECT_EQ(OnFile("UDCNameCCodeLen"), "15");
  EXPECT_EQ(session.NameLength, 15);
}

TEST_F(OptionsWindowsTest, AutofillIsSwitchedOffAndOn) {
  for (const char* value : {"0", "1"}) {
    EXPECT_TRUE(Run("AutofillForm", [&](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), "Autofill Text");
      if (*value == '0') Picture(dialog, "settings-autofill", {});
      PressOn(Qt::Key_Space);
      PressOn(Qt::Key_Return);
    }));
    EXPECT_EQ(OnFile("AutoFillText"), value);
    EXPECT_EQ(std::to_string(session.AutoFillText), value);
  }
}

TEST_F(OptionsWindowsTest, AUserWithoutTheRightToOptionsChangesNothing) {
  session.CurrentUser = "PAT";
  session.IsAdminUser = false;
  const std::pair<const char*, const char*> windowsAndButtons[] = {
      {"UMSettingForm", "cmdSave"},   {"AutofillForm", "cmdSave"},     {"RemindersForm", "cmdOK"},
      {"Default_Printer", "cmdSave"}, {"OptionMaxNameLen", "cmdSave"}, {"UnitCostAccuracyForm", "cmdOK"},
  };
  const std::string before = ReadFileBytes(session.support->settings.Path());
  for (const auto& [name, button] : windowsAndButtons) {
    session.Perm_Options = 1;
    EXPECT_FALSE(Run(name, [&](QWidget& dialog) {
      session.Perm_Options = 0;
      if (auto* places = dialog.findChild<QComboBox*>("cmbDecimalPlaces")) places->setCurrentIndex(2);
      prompt.Expect(RequireCommandRight(session, CommandRight::Options).error().title);
      Click(dialog, button);
      EXPECT_TRUE(dialog.isVisible()) << name;
      dialog.close();
    })) << name;
  }
  EXPECT_EQ(ReadFileBytes(session.support->settings.Path()), before);
}

}  // namespace
}  // namespace vellumark::test
