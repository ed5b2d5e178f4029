#pragma once

#include <string>
#include <vector>

namespace vellumark::desktop {

/// A paper of a printer: its name, and the number that the printer's driver has for it.
struct PrinterPaper {
  std::string name;
  int id = 0;
};

/// The papers of that printer; those of the standards for a printer that is not there.
std::vector<PrinterPaper> PapersOfPrinter(const std::string& device);

}  // namespace vellumark::desktop
