#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <tuple>

namespace vellumark::cli::CLI {
namespace {

Validator Of(::CLI::Validator validator) {
  return {std::make_shared<::CLI::Validator>(std::move(validator))};
}

// The library takes "[A,B]" for a list of A and B, but here no name holds a bracket.
void RefuseBrackets(const ::CLI::App& app, const std::vector<std::string>& words) {
  for (const ::CLI::App* sub : app.get_subcommands()) {
    for (const ::CLI::Option* option : sub->get_options()) {
      if (!option->get_positional()) continue;
      for (const std::string& word : option->results())
        if (std::ranges::find(words, word) == words.end())
          throw ::CLI::ValidationError(option->get_name(), word + " cannot be given in brackets");
    }
    RefuseBrackets(*sub, words);
  }
}

std::string UsageMessage(const ::CLI::App* app, const ::CLI::Error& error) {
  const std::vector<std::string> unknown = app->remaining(true);
  if (error.get_name() != "RequiredError" || unknown.empty()) return ::CLI::FailureMessage::simple(app, error);
  return unknown.front() + " is no command here\nRun with --help for more information.\n";
}

}  // namespace

template <class T>
Validator Range(T least, T most) {
  return Of(::CLI::Range(least, most));
}
template Validator Range<int>(int, int);
template Validator Range<std::int64_t>(std::int64_t, std::int64_t);
template Validator Range<double>(double, double);

Validator IsMember(const std::vector<std::string>& words) {
  return Of(::CLI::IsMember(words));
}
Validator IsMember(std::initializer_list<const char*> words) {
  return IsMember(std::vector<std::string>(words.begin(), words.end()));
}
Validator IsMember(std::initializer_list<const char*> words, IgnoreCase) {
  return Of(::CLI::IsMember(std::vector<std::string>(words.begin(), words.end()), ::CLI::ignore_case));
}
Validator IsMember(std::initializer_list<int> numbers) {
  return Of(::CLI::IsMember(std::vector<int>(numbers)));
}
const Validator PositiveNumber = Of(::CLI::PositiveNumber);
const Validator NonNegativeNumber = Of(::CLI::NonNegativeNumber);
const Validator ExistingDirectory = Of(::CLI::ExistingDirectory);

RequiresError::RequiresError(std::string name, std::string needed)
    : std::runtime_error(name + " requires " + needed), option(std::move(name)), other(std::move(needed)) {}

ValidationError::ValidationError(std::string name, std::string text)
    : std::runtime_error(name + ": " + text), option(std::move(name)), message(std::move(text)) {}

Option* Option::required() {
  inner_->required();
  return this;
}
Option* Option::check(std::function<std::string(const std::string&)> fault) {
  inner_->check(std::move(fault));
  return this;
}
Option* Option::check(const Validator& validator) {
  inner_->check(*validator.inner);
  return this;
}
Option* Option::transform(const Validator& validator) {
  inner_->transform(*validator.inner);
  return this;
}
Option* Option::needs(Option* other) {
  inner_->needs(other->inner_);
  return this;
}
Option* Option::excludes(Option* other) {
  inner_->excludes(other->inner_);
  return this;
}
Option* Option::type_name(const std::string& name) {
  inner_->type_name(name);
  return this;
}
Option* Option::envname(const std::string& name) {
  inner_->envname(name);
  return this;
}
Option* Option::group(const std::string& name) {
  inner_->group(name);
  return this;
}
Option* Option::default_str(const std::string& text) {
  inner_->default_str(text);
  return this;
}
Option* Option::capture_default_str() {
  inner_->capture_default_str();
  return this;
}
Option* Option::expected(int count) {
  inner_->expected(count);
  return this;
}
Option* Option::expected(int least, int most) {
  inner_->expected(least, most);
  return this;
}
Option* Option::take_all() {
  inner_->take_all();
  return this;
}
Option* Option::allow_extra_args(bool allow) {
  inner_->allow_extra_args(allow);
  return this;
}

App::App(const std::string& description, const std::string& name)
    : root_(std::make_unique<::CLI::App>(description, name)), inner_(root_.get()) {
  inner_->failure_message(UsageMessage);
}
App::App(::CLI::App* app, const App* parent) : inner_(app), parent_(parent) {}
App::~App() = default;

Option* App::Keep(::CLI::Option* option) {
  return &options_.emplace_back(option);
}
App* App::Keep(::CLI::App* app) {
  return children_.emplace_back(new App(app, this)).get();
}

App* App::add_subcommand(const std::string& name, const std::string& description) {
  return Keep(inner_->add_subcommand(name, description));
}
App* App::add_option_group(const std::string& name) {
  return Keep(inner_->add_option_group(name));
}

template <class T>
Option* App::add_option(const std::string& name, T& into, const std::string& help) {
  return Keep(inner_->add_option(name, into, help));
}
template Option* App::add_option(const std::string&, std::string&, const std::string&);
template Option* App::add_option(const std::string&, std::vector<std::string>&, const std::string&);
template Option* App::add_option(const std::string&, std::optional<std::string>&, const std::string&);
template Option* App::add_option(const std::string&, std::vector<std::tuple<std::string, std::string, std::string>>&,
                                 const std::string&);
template Option* App::add_option(const std::string&, int&, const std::string&);
template Option* App::add_option(const std::string&, std::vector<int>&, const std::string&);
template Option* App::add_option(const std::string&, std::optional<int>&, const std::string&);
template Option* App::add_option(const std::string&, std::int64_t&, const std::string&);
template Option* App::add_option(const std::string&, std::optional<std::int64_t>&, const std::string&);
template Option* App::add_option(const std::string&, std::size_t&, const std::string&);
template Option* App::add_option(const std::string&, std::optional<std::size_t>&, const std::string&);
template Option* App::add_option(const std::string&, double&, const std::string&);
template Option* App::add_option(const std::string&, std::optional<double>&, const std::string&);

template <class T>
Option* App::add_option_function(const std::string& name, const std::function<void(const T&)>& take,
                                 const std::string& help) {
  return Keep(inner_->add_option_function<T>(name, take, help));
}
template Option* App::add_option_function(const std::string&, const std::function<void(const std::string&)>&,
                                          const std::string&);

Option* App::add_flag(const std::string& name, bool& into, const std::string& help) {
  return Keep(inner_->add_flag(name, into, help));
}
Option* App::add_flag_callback(const std::string& name, std::function<void()> take, const std::string& help) {
  return Keep(inner_->add_flag_callback(name, std::move(take), help));
}

App* App::footer(const std::string& text) {
  inner_->footer(text);
  return this;
}
App* App::fallthrough() {
  inner_->fallthrough();
  return this;
}
App* App::require_subcommand(int count) {
  inner_->require_subcommand(count);
  return this;
}
App* App::require_option() {
  inner_->require_option();
  return this;
}
App* App::require_option(int count) {
  inner_->require_option(count);
  return this;
}
App* App::set_version_flag(const std::string& name, const std::string& text) {
  inner_->set_version_flag(name, text);
  return this;
}
App* App::callback(std::function<void()> act) {
  inner_->callback(std::move(act));
  return this;
}
App* App::parse_complete_callback(std::function<void()> judge) {
  inner_->parse_complete_callback([judge = std::move(judge)] {
    try {
      judge();
    } catch (const RequiresError& error) {
      throw ::CLI::RequiresError(error.option, error.other);
    } catch (const ValidationError& error) {
      throw ::CLI::ValidationError(error.option, error.message);
    }
  });
  return this;
}

const std::string& App::get_name() const {
  return inner_->get_name();
}
std::size_t App::count(const std::string& option) const {
  return inner_->count(option);
}

std::optional<int> App::parse(const std::vector<std::string>& words) {
  try {
    inner_->parse(std::vector<std::string>(words.rbegin(), words.rend()));  // it takes them from the back
    RefuseBrackets(*inner_, words);
  } catch (const ::CLI::ParseError& error) {
    return inner_->exit(error);
  }
  return std::nullopt;
}

}  // namespace vellumark::cli::CLI
