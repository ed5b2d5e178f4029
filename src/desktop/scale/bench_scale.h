#pragma once

#include <QObject>
#include <QPointer>
#include <cstdint>
#include <functional>
#include <memory>

#include "core/scale/port_search.h"
#include "core/scale/scale_link.h"

namespace vellumark::desktop {

class WindowList;

/// The scale of the bench as the windows have it: one line and one link, which is lent to one window at a time. While it is
/// switched on or off WaitForm_ScaleBoot stands in front of everything.
class BenchScale : public QObject {
  Q_OBJECT

 public:
  explicit BenchScale(WindowList& windows);
  ~BenchScale() override;

  /// How long a boot takes, in milliseconds; for a scale that is none, such as that of tools/scale_simulator.
  void SetBootTime(int milliseconds) { bootTime_ = milliseconds; }

  /// What an earlier run left on is on.
  void TakeOver() { link_.TakeOver(); }

  // The commands of the menu; a refusal is told.
  /// The settings, while the scale is off.
  void Setup();
  /// With the settings first, where the scale has no port yet.
  void SwitchOn();
  void SwitchOff();

  /// Opens and closes the ports of the machine, while the scale is off.
  PortSearch Ports();
  Result<void> PowerOn(const ScaleSetup& setup);
  Result<void> PowerOff();

  /// The link for `reader` alone, until it gives it back or goes; false while another has it.
  bool Lend(QObject& reader);
  bool Has(const QObject& reader) const { return reader_ == &reader; }
  /// Closes the line. Nothing for one that has not got it.
  void GiveBack(QObject& reader);
  ScaleLink& Link() { return link_; }
  /// The steady clock by which the link is driven.
  static std::int64_t Now();

 Q_SIGNALS:
  /// While the scale boots: how much of the whole is over, 0 to 1, and the milliseconds that are left of it.
  void Booting(const QString& text, double part, int left);

 private:
  class Waits;
  Result<void> InWaitWindow(int boots, const std::function<Result<void>()>& work);
  void Boot(const QString& text);
  void Tell(const Result<void>& result);

  WindowList& windows_;
  std::unique_ptr<SerialLine> line_;
  std::unique_ptr<ScaleWaits> waits_;
  ScaleLink link_;
  QPointer<QObject> reader_;
  int bootTime_ = kBootTimer;
  int boots_ = 1;      // of what is going on
  int bootsOver_ = 0;  // of them
};

}  // namespace vellumark::desktop
