#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellumark {

enum class LineHandshaking { None, XOnXOff, RTS, RTSXOnXOff };

/// A port and how its characters are sent. `parity` is 'N', 'O' or 'E'.
struct LineSettings {
  std::string port{};
  int baud = 300;
  char parity = 'O';
  int wordLen = 7;
  int stopBits = 1;
  LineHandshaking handshaking = LineHandshaking::XOnXOff;
  bool operator==(const LineSettings&) const = default;
};

/// Why a line cannot be used. The numbers are those that a report of the ports has always had.
struct LineFault {
  enum class Kind { NoSuchPort = 8002, InUse = 8005, Failed = 8012, Denied = 70, Vanished = 57 };
  Kind kind = Kind::Failed;
  std::string text;  ///< in words for the operator, without the port
};

/// A serial line. What is lost while it is used (a cable pulled out) is a fault of the next call, which closes it.
class SerialLine {
 public:
  virtual ~SerialLine() = default;
  virtual std::optional<LineFault> Open(const LineSettings& settings) = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  /// Hands all bytes to the line. They may still be under way when it returns.
  virtual std::optional<LineFault> Write(std::string_view bytes) = 0;
  /// Adds what has come, without waiting.
  virtual std::optional<LineFault> Read(std::string& bytes) = 0;
  /// The ports of the machine, by the names under which they are opened.
  virtual std::vector<std::string> Ports() = 0;
};

/// The waits of the scale's protocol.
class ScaleWaits {
 public:
  virtual ~ScaleWaits() = default;
  /// Until bytes are out: short, nothing is shown.
  virtual void Pause(int milliseconds) = 0;
  /// While the scale boots; nobody can begin anything else meanwhile.
  virtual void Boot(const std::string& text, int milliseconds) = 0;
};

}  // namespace vellumark
