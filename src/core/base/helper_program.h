#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "core/base/platform.h"

namespace vellumark::platform {

/// A program of ours that does for this one what may go wrong beyond repair. What it says on its standard output comes
/// here; it is asked by its arguments alone, and what it says of its errors is heard by nobody. It ends with this
/// object, whatever it is at.
class HelperProgram {
 public:
  /// An error when it cannot be started.
  HelperProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                std::error_code& error);
  ~HelperProgram();
  HelperProgram(const HelperProgram&) = delete;
  HelperProgram& operator=(const HelperProgram&) = delete;

  /// The next of what it says; 0 once it has said all. The error timed_out when it says nothing for that long.
  std::size_t Read(char* buffer, std::size_t size, std::chrono::milliseconds silence, std::error_code& error);

 private:
  OpenFile output_;
  std::intptr_t process_ = 0;
};

/// For a helper program: it is ended when it takes more memory than that.
void LimitMemory(std::uint64_t bytes);
/// For a helper program: it is ended unless this is called again before it has worked for so long. Waiting is no work.
void MustGetOnWithin(std::chrono::seconds processorTime);

}  // namespace vellumark::platform
