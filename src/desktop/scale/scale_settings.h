#pragma once

#include <QTimer>
#include <filesystem>

#include "core/scale/port_search.h"
#include "core/scale/scale_setup.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class BenchScale;

/// How the scale is reached, tried out with the scale itself before it is saved, and how rows are weighed. The report of the
/// search for ports is written into `logFolder`.
class ScaleSettings : public Dialog {
  Q_OBJECT

 public:
  ScaleSettings(WindowList& windowList, QWidget* owner, BenchScale& scale, std::filesystem::path logFolder);

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  bool MayClose() override;

 public Q_SLOTS:
  void cmdBegin_Click();
  void cmdTare_Click();
  void cmdStop_Click();
  void cmdSave_Click();
  void cmdCommErrors_Click();

 private:
  void BuildPort(Form form);
  void BuildTest(Form form);
  void BuildWeighing(Form form);
  ComboField* Choice(Form& form, const char* name, const char* key, const QString& caption, const QStringList& items);
  void Show(const ScaleSetup& setup);
  /// What stands in the fields, or the refusal of the first that cannot be.
  Result<ScaleSetup> Typed() const;
  void Read();

  BenchScale& scale_;
  std::filesystem::path logFolder_;
  ScaleSetup saved_;
  PortSearch ports_;
  bool logWritten_ = false;
  bool testing_ = false;
  QTimer reading_;

  ComboField* port_ = nullptr;
  ComboField* baud_ = nullptr;
  ComboField* parity_ = nullptr;
  ComboField* wordLen_ = nullptr;
  ComboField* stopBit_ = nullptr;
  ComboField* handshaking_ = nullptr;
  ComboField* unit_ = nullptr;
  NumberField* capacity_ = nullptr;
  NumberField* tolerance_ = nullptr;
  ComboField* toleranceKind_ = nullptr;
  CheckField* heaviestFirst_ = nullptr;
  CommandButton* begin_ = nullptr;
  CommandButton* tare_ = nullptr;
  CommandButton* stop_ = nullptr;
  ValueField* weight_ = nullptr;
  QLabel* state_ = nullptr;
};

}  // namespace vellumark::desktop
