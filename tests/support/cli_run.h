#pragma once

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/base/files.h"
#include "support/sound.h"

namespace vellumark::test {

struct CliAnswer {
  int status = -1;
  std::string out;
  std::string err;
  nlohmann::ordered_json Json() const { return nlohmann::ordered_json::parse(out); }
};

/// The real program in a scratch place of its own: data folder, program folder and Data File.
class CliRoom {
 public:
  CliAnswer Run(const std::vector<std::string>& arguments) const;

  CliAnswer RunWithInput(const std::vector<std::string>& arguments, const std::filesystem::path& input) const;

  /// `prepare` runs in the process of the program before it starts: limits, another user.
  CliAnswer RunPrepared(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                        const std::function<void()>& prepare) const;

  /// Makes the program of this process, in this place.
  [[noreturn]] void Become(const std::vector<std::string>& arguments, const std::filesystem::path& input,
                           const std::function<void()>& prepare) const;

  /// A Data File with the Database INK, the default of this room.
  std::string MakeFile() const;

  /// For stock that a test puts in past the program: the next opening counts it as there from the beginning.
  static void BeginHistoryAnew(Database& file);

  /// A verb that must succeed, its JSON answer.
  nlohmann::ordered_json Json(std::vector<std::string> arguments) const;

  SoundFolder folder;
};

}  // namespace vellumark::test
