#include "devices/system_line.h"

#include <QCoreApplication>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <algorithm>
#include <array>
#include <filesystem>

#include "core/base/platform.h"

namespace vellumark::devices {
namespace {

constexpr int kWriteTime = 2000;  // for the system to take a few bytes, in milliseconds

// Qt's ports want an application to belong to; a desktop program has one.
void EnsureApplication() {
  static int count = 1;
  static char name[] = "vellumark";
  static std::array<char*, 2> words{name, nullptr};
  if (QCoreApplication::instance() == nullptr) static QCoreApplication application(count, words.data());
}

QSerialPort::Parity ParityOf(char parity) {
  return parity == 'N'   ? QSerialPort::NoParity
         : parity == 'E' ? QSerialPort::EvenParity
                         : QSerialPort::OddParity;
}

// Qt knows one way at a time. Where both are wanted the wires hold the sender up, and the reading leaves out the
// characters.
QSerialPort::FlowControl FlowOf(LineHandshaking handshaking) {
  switch (handshaking) {
    case LineHandshaking::None:
      return QSerialPort::NoFlowControl;
    case LineHandshaking::XOnXOff:
      return QSerialPort::SoftwareControl;
    case LineHandshaking::RTS:
    case LineHandshaking::RTSXOnXOff:
      break;
  }
  return QSerialPort::HardwareControl;
}

// The file of a port, on systems where it has one.
std::filesystem::path DeviceFile(const QSerialPort& port) {
  std::filesystem::path path = QSerialPortInfo(port.portName()).systemLocation().toStdString();
  if (path.is_absolute()) return path;
  std::filesystem::path named = port.portName().toStdString();
  return named.is_absolute() ? named : std::filesystem::path();
}

class QtLine final : public SerialLine {
 public:
  ~QtLine() override { Close(); }

  std::optional<LineFault> Open(const LineSettings& settings) override {
    Close();
    port_.setPortName(QString::fromStdString(settings.port));
    device_ = settings.port.starts_with('/') ? std::filesystem::path(settings.port) : DeviceFile(port_);
    port_.setBaudRate(settings.baud);
    port_.setDataBits(settings.wordLen == 8 ? QSerialPort::Data8 : QSerialPort::Data7);
    port_.setParity(ParityOf(settings.parity));
    port_.setStopBits(settings.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
    port_.setFlowControl(FlowOf(settings.handshaking));
    if (!port_.open(QIODevice::ReadWrite)) {
      LineFault fault = WhyNot();
      port_.close();
      return fault;
    }
    port_.clear(QSerialPort::Input);
    return std::nullopt;
  }

  // It gives the line its old settings back: whoever closes has waited until the last character was out.
  void Close() override {
    if (port_.isOpen()) port_.close();
  }

  bool IsOpen() const override { return port_.isOpen(); }

  std::optional<LineFault> Write(std::string_view bytes) override {
    if (auto lost = Lost()) return lost;
    port_.clearError();
    if (port_.write(bytes.data(), static_cast<qint64>(bytes.size())) != static_cast<qint64>(bytes.size()) ||
        (port_.bytesToWrite() > 0 && !port_.waitForBytesWritten(kWriteTime)))
      return Drop();
    return std::nullopt;
  }

  std::optional<LineFault> Read(std::string& bytes) override {
    if (auto lost = Lost()) return lost;
    port_.clearError();
    // Where no event loop runs nobody else fetches what has come.
    port_.waitForReadyRead(1);
    const QByteArray received = port_.readAll();
    bytes.append(received.constData(), static_cast<std::size_t>(received.size()));
    const QSerialPort::SerialPortError error = port_.error();
    if (received.isEmpty() && error != QSerialPort::NoError && error != QSerialPort::TimeoutError) return Drop();
    return std::nullopt;
  }

  std::vector<std::string> Ports() override {
    std::vector<std::string> ports;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
      const QString location = info.systemLocation();
      ports.push_back((location.startsWith('/') ? location : info.portName()).toStdString());
    }
    std::ranges::sort(ports);
    return ports;
  }

 private:
  std::optional<LineFault> Lost() {
    if (!port_.isOpen()) return LineFault{LineFault::Kind::Vanished, "it is closed"};
    std::error_code error;
    if (device_.empty() || std::filesystem::exists(device_, error)) return std::nullopt;
    return Drop();
  }

  std::optional<LineFault> Drop() {
    LineFault fault{LineFault::Kind::Vanished, port_.errorString().toStdString()};
    port_.close();
    return fault;
  }

  LineFault WhyNot() const {
    using enum LineFault::Kind;
    const std::string text = port_.errorString().toStdString();
    switch (port_.error()) {
      case QSerialPort::DeviceNotFoundError:
        return {NoSuchPort, text};
      case QSerialPort::PermissionError:
        // Also what a port in use is called.
        return {!device_.empty() && platform::Denied(device_, platform::Access::Write) ? Denied : InUse, text};
      default:
        return {Failed, text};
    }
  }

  QSerialPort port_;
  std::filesystem::path device_;
};

}  // namespace

std::unique_ptr<SerialLine> SystemLine() {
  EnsureApplication();
  return std::make_unique<QtLine>();
}

}  // namespace vellumark::devices
