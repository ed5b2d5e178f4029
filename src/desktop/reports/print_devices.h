#pragma once

#include <QPrinter>
#include <functional>
#include <memory>
#include <string>

#include "desktop/datafile/file_choice.h"
#include "desktop/settings/printers.h"

namespace vellumark::desktop {

/// Where pages can go.
struct PrintDevices {
  PrinterSource printers = PrintersOfSystem;
  /// The printer of that device name; throws Failure when it is gone.
  std::function<std::unique_ptr<QPrinter>(const std::string& device)> open;
  FileChooser chooseFile = ChooseFile;

  static PrintDevices OfSystem();
};

}  // namespace vellumark::desktop
