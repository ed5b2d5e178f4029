#pragma once

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vellumark::test {

/// A scale on a pseudo-terminal that a link in a folder leads to. It keeps a log of every command, with the speed of the
/// line and the time at which it ended, and answers "SNW" with the reply that was set, in pieces if so wanted.
class ScaleOnPty {
 public:
  struct Heard {
    std::string command;  ///< without its carriage return
    int baud = 0;
    std::int64_t at = 0;  ///< milliseconds
  };

  explicit ScaleOnPty(const std::filesystem::path& folder) : link_(folder / "ttyScale") { PlugIn(); }
  ~ScaleOnPty() { PullOut(); }

  std::string Port() const { return link_.string(); }

  void PlugIn() {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0) throw std::runtime_error("no terminal");
    char name[128] = {};
    if (::ptsname_r(master_, name, sizeof name) != 0) throw std::runtime_error("no name of the terminal");
    const int slave = ::open(name, O_RDWR | O_NOCTTY);
    termios raw{};
    ::tcgetattr(slave, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(slave, TCSANOW, &raw);
    ::close(slave);
    std::filesystem::remove(link_);
    std::filesystem::create_symlink(name, link_);
    stop_ = false;
    thread_ = std::thread([this] { Serve(); });
  }
  void PullOut() {
    if (!thread_.joinable()) return;
    stop_ = true;
    thread_.join();
    ::close(master_);
  }

  /// 18 characters around a weight.
  static std::string Reply(const std::string& weight) {
    std::string field = weight;
    field.insert(0, 11 - std::min<std::size_t>(11, field.size()), ' ');
    return "\x02N " + field + " lb\r";
  }
  void Answer(std::vector<std::string> pieces) {
    const std::lock_guard lock(mutex_);
    pieces_ = std::move(pieces);
  }
  void Weigh(const std::string& weight) { Answer({Reply(weight)}); }

  std::vector<Heard> Log() const {
    const std::lock_guard lock(mutex_);
    return log_;
  }
  /// The commands with their speeds, requests for the weight left out unless wanted.
  std::vector<std::string> Commands(bool requests = false) const {
    std::vector<std::string> commands;
    for (const Heard& heard : Log())
      if (requests || heard.command != "SNW") commands.push_back(std::to_string(heard.baud) + " " + heard.command);
    return commands;
  }

 private:
  static std::int64_t Now() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }
  int Baud() const {
    termios now{};
    ::tcgetattr(master_, &now);
    switch (::cfgetospeed(&now)) {
      case B300:
        return 300;
      case B600:
        return 600;
      case B1200:
        return 1200;
      case B2400:
        return 2400;
      case B4800:
        return 4800;
      default:
        return ::cfgetospeed(&now) == B9600 ? 9600 : -1;
    }
  }
  void Serve() {
    std::string command;
    while (!stop_) {
      char byte = 0;
      pollfd waiting{master_, POLLIN, 0};
      // While nobody has the terminal open, reading it is an error that passes.
      if (::poll(&waiting, 1, 5) <= 0 || ::read(master_, &byte, 1) != 1) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        continue;
      }
      if (byte != '\r') {
        command += byte;
        continue;
      }
      std::vector<std::string> pieces;
      {
        const std::lock_guard lock(mutex_);
        log_.push_back({command, Baud(), Now()});
        if (command == "SNW") pieces = pieces_;
      }
      command.clear();
      for (const std::string& piece : pieces) {
        if (::write(master_, piece.data(), piece.size()) < 0) break;
        if (pieces.size() > 1) std::this_thread::sleep_for(std::chrono::milliseconds(15));
      }
    }
  }

  std::filesystem::path link_;
  int master_ = -1;
  std::thread thread_;
  std::atomic<bool> stop_ = false;
  mutable std::mutex mutex_;
  std::vector<std::string> pieces_;
  std::vector<Heard> log_;
};

}  // namespace vellumark::test
