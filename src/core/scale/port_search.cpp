#include "core/scale/port_search.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "core/base/files.h"

namespace vellumark {

PortSearch SearchPorts(SerialLine& line, const std::string& typed) {
  PortSearch search;
  std::vector<std::string> ports = line.Ports();
  if (!typed.empty() && std::ranges::find(ports, typed) == ports.end()) ports.push_back(typed);
  for (const std::string& port : ports) {
    auto fault = line.Open({.port = port, .handshaking = LineHandshaking::None});
    line.Close();
    if (fault) {
      search.refused.push_back({port, *std::move(fault)});
    } else {
      search.available.push_back(port);
    }
  }
  return search;
}

std::string PortReport(const PortSearch& search, const Clock& clock) {
  const auto refused = [&](LineFault::Kind kind) {
    std::string ports;
    for (const auto& [port, fault] : search.refused)
      if (fault.kind == kind) ports += (ports.empty() ? "" : ",") + port;
    return ports;
  };
  std::string various;
  for (const auto& [port, fault] : search.refused)
    if (fault.kind == LineFault::Kind::Denied || fault.kind == LineFault::Kind::Vanished)
      various += fmt::format("{}{} ({})", various.empty() ? "" : ",", port,
                             fault.kind == LineFault::Kind::Denied ? "permission denied" : "it has gone");
  return fmt::format(
      "Date - {}\r\n"
      "Error 8002, Comm Ports don't exist - {}\r\n"
      "Error 8005, Comm Ports already open / in use - {}\r\n"
      "Error 8012, Comm Ports open failed - {}\r\n"
      "Various Errors, Comm Ports - {}\r\n"
      "Avaiable Comm Ports - {}\r\n",
      clock.Now().DateText(), refused(LineFault::Kind::NoSuchPort), refused(LineFault::Kind::InUse),
      refused(LineFault::Kind::Failed), various, fmt::join(search.available, ","));
}

void WritePortLog(const std::filesystem::path& folder, const std::string& report) {
  ReplaceFile(folder / kPortLogFile, report);
}

void TellNoPorts(Prompt& prompt) {
  prompt.Tell(" No Comm Ports !",
              "Windows cannot find Comm Ports\n\n\n"
              "Use Windows Device Manager \n"
              "to find or manage Comm Ports",
              Icon::Exclamation);
}

}  // namespace vellumark
