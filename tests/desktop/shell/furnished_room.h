#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "support/cli_run.h"

namespace vellumark::test {

/// Colours of all kinds with lots, consignment, a set, a job and saved Batches, and a second Database.
struct FurnishedRoom : CliRoom {
  FurnishedRoom() {
    MakeFile();
    const std::vector<std::vector<std::string>> verbs{
        {"db", "create", "UV"},
        {"db", "use", "INK"},
        {"color", "add", "RED", "PurchaseCost=4.25", "Reorder=200", "VOC=0.5", "HAP=0.1", "Red=200", "Green=30"},
        {"color", "add", "BLUE", "PurchaseCost=6", "Reorder=20", "VOC=1", "Blue=180"},
        {"color", "add", "GREEN", "PurchaseCost=5"},
        {"color", "add", "WHITE", "PurchaseCost=2"},
        {"color", "add", "YELLOW", "PurchaseCost=3"},
        {"color", "add", "DRIER", "Additive=true", "PurchaseCost=9"},
        {"color", "add", "WAX", "Additive=true"},
        {"addset", "add", "STD SET", "DRIER=2", "WAX=1"},
        {"formula", "add", "TARGET", "RED=60", "BLUE=40"},
        {"formula", "add", "VIOLET", "RED=50", "BLUE=50", "Recycle=true"},
        {"formula", "add", "TINT", "WHITE=80", "RED=10", "YELLOW=10", "--additive-set", "STD SET"},
        {"formula", "add", "LIME", "GREEN=50", "YELLOW=50", "Recycle=true"},
        {"design", "add", "BOX", "TARGET=2:40", "RED=1", "Impressions=1000", "Length=10", "Width=8"},
        {"settings", "set", "InvLotTracking", "1"},
        {"stock", "adjust", "RED", "100", "--lot", "A", "--loc", "SHELF", "--price", "4"},
        {"stock", "adjust", "RED", "50", "--lot", "B", "--consignment"},
        {"stock", "adjust", "BLUE", "80", "--lot", "C", "--date", "2026-01-02"},
        {"stock", "adjust", "WHITE", "300"},
        {"stock", "adjust", "VIOLET", "12", "--kind", "formula", "--lot", "V1"},
        {"stock", "adjust", "LIME", "6", "--kind", "formula"},
        {"batch", "save", "--formula", "TARGET", "--quantity", "20", "--mix", "--lot", "RED=A:12", "--lot", "BLUE=C:8",
         "--job", "J1=15"},
        {"batch", "save", "--formula", "TARGET", "--quantity", "30", "--recycle", "--yes"},
    };
    for (std::vector<std::string> verb : verbs) {
      verb.insert(verb.begin(), {"--now", "2026-03-10 11:00:00"});
      const CliAnswer answer = Run(verb);
      if (answer.status != 0) throw std::runtime_error(verb[2] + " " + verb[3] + " " + verb[4] + ": " + answer.err);
    }
  }
};

}  // namespace vellumark::test
