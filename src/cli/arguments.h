#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI

/// A narrow door to the library that reads the arguments, under the library's own names: arguments.cpp alone reads its
/// headers, which cost five seconds of compilation wherever they are included.
namespace vellumark::cli::CLI {

/// A check of the text of an argument.
struct Validator {
  std::shared_ptr<::CLI::Validator> inner;
};
struct IgnoreCase {};
inline constexpr IgnoreCase ignore_case;

/// Of int, std::int64_t and double.
template <class T>
Validator Range(T least, T most);
Validator IsMember(const std::vector<std::string>& words);
Validator IsMember(std::initializer_list<const char*> words);
Validator IsMember(std::initializer_list<const char*> words, IgnoreCase);
Validator IsMember(std::initializer_list<int> numbers);
extern const Validator PositiveNumber;
extern const Validator NonNegativeNumber;
extern const Validator ExistingDirectory;

/// Thrown by a `parse_complete_callback`: an option that needs another.
struct RequiresError : std::runtime_error {
  RequiresError(std::string name, std::string needed);
  std::string option;
  std::string other;
};
/// The same: arguments that do not go together.
struct ValidationError : std::runtime_error {
  ValidationError(std::string name, std::string text);
  std::string option;
  std::string message;
};

/// An option or an argument. It belongs to its App.
class Option {
 public:
  explicit Option(::CLI::Option* option) : inner_(option) {}

  Option* required();
  /// The function answers with what is wrong with a text, or with nothing.
  Option* check(std::function<std::string(const std::string&)> fault);
  Option* check(const Validator& validator);
  /// The same, and the text becomes the word that it was found to be.
  Option* transform(const Validator& validator);
  Option* needs(Option* other);
  Option* excludes(Option* other);
  Option* type_name(const std::string& name);
  Option* envname(const std::string& name);
  Option* group(const std::string& name);
  Option* default_str(const std::string& text);
  Option* capture_default_str();
  Option* expected(int count);
  Option* expected(int least, int most);
  Option* take_all();
  Option* allow_extra_args(bool allow);

 private:
  ::CLI::Option* inner_;
};

/// The program, a noun or a verb.
class App {
 public:
  App(const std::string& description, const std::string& name);
  ~App();
  App(const App&) = delete;
  App& operator=(const App&) = delete;

  App* add_subcommand(const std::string& name, const std::string& description);
  App* add_option_group(const std::string& name);
  /// Of the types for which arguments.cpp has it.
  template <class T>
  Option* add_option(const std::string& name, T& into, const std::string& help);
  template <class T>
  Option* add_option_function(const std::string& name, const std::function<void(const T&)>& take,
                              const std::string& help);
  Option* add_flag(const std::string& name, bool& into, const std::string& help);
  Option* add_flag_callback(const std::string& name, std::function<void()> take, const std::string& help);

  App* footer(const std::string& text);
  App* fallthrough();
  App* require_subcommand(int count);
  App* require_option();
  App* require_option(int count);
  App* set_version_flag(const std::string& name, const std::string& text);
  /// Called when the words of the whole command line have been read.
  App* callback(std::function<void()> act);
  /// Called when those of this verb have, to judge them together.
  App* parse_complete_callback(std::function<void()> judge);

  const std::string& get_name() const;
  const App* get_parent() const { return parent_; }
  /// How often an option was given.
  std::size_t count(const std::string& option) const;

  /// Reads the words into the variables. Help, version and what is wrong with the words are written; then the exit
  /// status, as the library has it, comes back.
  std::optional<int> parse(const std::vector<std::string>& words);

 private:
  App(::CLI::App* app, const App* parent);
  Option* Keep(::CLI::Option* option);
  App* Keep(::CLI::App* app);

  std::unique_ptr<::CLI::App> root_;  ///< of the program; the others belong to it
  ::CLI::App* inner_;
  const App* parent_ = nullptr;
  std::deque<std::unique_ptr<App>> children_;
  std::deque<Option> options_;
};
using Option_group = App;

}  // namespace vellumark::cli::CLI
