#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/base/seams.h"
#include "core/scale/serial_line.h"

namespace vellumark {

/// What a look at the ports of the machine found.
struct PortSearch {
  struct Refused {
    std::string port;
    LineFault fault;
  };
  std::vector<std::string> available;
  std::vector<Refused> refused;
};

/// Opens and closes every port of the machine, and `typed` where it is none of them, with the line on which the scale
/// wakes. No port is to be open.
PortSearch SearchPorts(SerialLine& line, const std::string& typed = {});

/// The report of a search, as the log file has it.
std::string PortReport(const PortSearch& search, const Clock& clock);

inline constexpr std::string_view kPortLogFile = "Vellumark_CommPortLogFile.txt";
/// Writes the report into that folder.
void WritePortLog(const std::filesystem::path& folder, const std::string& report);

/// Tells that there is no port.
void TellNoPorts(Prompt& prompt);

}  // namespace vellumark
