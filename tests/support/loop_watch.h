#pragma once

#include <QEvent>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "support/desktop.h"

class QObject;

namespace vellumark::test {

/// How many times as slow as a desk's this machine is at this moment; at least 1.
double MachineSlowness();

/// Looks on while a test goes about in the program, and notes the longest time for which the event loop did not come
/// round in each step: no key would have been heard. Time of the processor counts, and none of it while a wait window is
/// shown. There is one at a time.
class LoopWatch {
 public:
  LoopWatch();
  ~LoopWatch();
  LoopWatch(const LoopWatch&) = delete;
  LoopWatch& operator=(const LoopWatch&) = delete;

  struct Block {
    double ms = 0;
    std::string event{};  ///< the event of it that took longest, and whose it was
  };
  /// What `act` does and what comes of it, as one step; those inside it count for themselves.
  void Step(const std::string& step, const std::function<void()>& act);
  /// Of each step since it was last asked.
  std::map<std::string, Block> Longest() { return std::exchange(longest_, {}); }

  // For the application.
  class Delivery {
   public:
    Delivery(QObject& receiver, QEvent::Type type);
    ~Delivery();
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

   private:
    LoopWatch* watch_;
    std::string what_;
    CpuTimer timer_;
  };

 private:
  void ComesRound();

  std::string step_;
  std::map<std::string, Block> longest_;
  int depth_ = 0;
  double before_ = 0;  ///< ms of deliveries since the loop came round that are over
  CpuTimer since_;     ///< of the one that goes on
  Block slowest_;      ///< event since the loop came round
  int bars_ = 0;
  bool barSeen_ = false;
};

}  // namespace vellumark::test
