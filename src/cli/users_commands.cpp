#include <fmt/format.h>

#include <iostream>
#include <memory>

#include "cli/frame.h"
#include "core/base/files.h"
#include "core/base/number.h"
#include "core/base/platform.h"
#include "core/base/text.h"
#include "core/session/users.h"

namespace vellumark::cli {
namespace {

// A new password never stands on the command line, where every process list shows it.
constexpr const char* kNewPasswordFile = "File whose first line is the new password; - is standard input";

std::string FirstLine(std::string_view text) {
  return std::string(text.substr(0, text.find_first_of("\r\n")));
}

std::string TypedLine(const char* question) {
  if (platform::InputIsTerminal()) return FirstLine(platform::AskSilently(question));
  std::string line;
  std::getline(std::cin, line);
  return FirstLine(line);
}

struct NewPassword {
  std::string typed;
  std::string repeated;
};

NewPassword ReadNewPassword(const std::string& file) {
  if (!file.empty() && file != "-") {
    const std::string password = FirstLine(ReadFileBytes(file));
    return {password, password};
  }
  NewPassword password;
  password.typed = TypedLine("New password: ");
  password.repeated = platform::InputIsTerminal() ? TypedLine("The same again: ") : password.typed;
  return password;
}

// For the verbs whose rule takes the password once.
Result<std::string> ReadSamePassword(const std::string& file) {
  NewPassword password = ReadNewPassword(file);
  if (password.typed != password.repeated) return Refuse("Users", "The new Passwords are not the same!");
  return std::move(password.typed);
}

Result<void> SetField(UserRow& user, const std::string& field, const std::string& text, bool mayBeAdmin) {
  if (EqualNoCase(field, "Password"))
    return Refuse("Users", "A new password is read from standard input or from --new-password-file.", "Password");
  const auto number = ParseNumber(text);
  const auto refuse = [](std::string_view name, int full) {
    return Refuse("Users", fmt::format("{} must be a whole number between 0 and {}.", name, full), std::string(name));
  };
  if (mayBeAdmin && EqualNoCase(field, "IsAdmin")) {
    if (!number || (*number != 0 && *number != 1)) return refuse("IsAdmin", 1);
    user.IsAdmin = *number == 1;
    return {};
  }
  for (const RightField& right : RightFields()) {
    if (!EqualNoCase(field, right.field)) continue;
    for (int value = 0; number && value <= right.full; ++value) {
      if (*number != value) continue;
      user.rights.*right.value = static_cast<std::uint8_t>(value);
      return {};
    }
    return refuse(right.field, right.full);
  }
  return Refuse("Users", fmt::format("Users have no field {} that could be set.", field), "FIELD=VALUE");
}

Result<void> SetFields(UserRow& user, const std::vector<std::string>& pairs, bool mayBeAdmin) {
  for (const std::string& text : pairs) {
    const auto pair = SplitPair(text);
    // What stands there could be a password: it is not repeated.
    if (!pair) return Refuse("Users", "Expected FIELD=VALUE.", "FIELD=VALUE");
    if (auto set = SetField(user, pair->first, pair->second, mayBeAdmin); !set) return set;
  }
  return {};
}

Result<Json> Add(Context& context, const std::string& name, const std::vector<std::string>& pairs,
                 const std::string& passwordFile) {
  UserRow user{name, "", false, {}};
  if (auto set = SetFields(user, pairs, false); !set) return std::unexpected(set.error());
  const auto password = ReadSamePassword(passwordFile);
  if (!password) return std::unexpected(password.error());
  user.Password = *password;
  const auto added = AddUser(context.session, user);
  if (!added) return std::unexpected(added.error());
  return Json{{"Username", Upper(TrimView(name))}, {"Added", *added}};
}

Result<Json> Modify(Context& context, const std::string& name, const std::vector<std::string>& pairs,
                    const std::string& passwordFile) {
  // A user who is not on file, or may not be modified, is refused by the rule.
  UserRow user = ReadUser(context.session, name).value_or(UserRow{name, "", false, {}});
  if (auto set = SetFields(user, pairs, true); !set) return std::unexpected(set.error());
  if (!passwordFile.empty()) {
    const auto password = ReadSamePassword(passwordFile);
    if (!password) return std::unexpected(password.error());
    user.Password = *password;
  }
  if (auto modified = ModifyUser(context.session, user); !modified) return std::unexpected(modified.error());
  return RowJson(UserColumns().Of({user}));
}

void AddListAndFeature(CLI::App& noun, Commands& commands) {
  commands.AddList(noun.add_subcommand("list", "The users and, for an administrator, their rights"), Needs::File,
                   "Users", [](Context& context) { return context.Answer(ListUsers(context.session)); });

  auto* enable = noun.add_subcommand("enable", "Switch the feature on, with its first administrator");
  const auto name = std::make_shared<std::string>();
  const auto file = std::make_shared<std::string>();
  enable->add_option("NAME", *name, "The administrator, 15 characters at most")->required();
  enable->add_option("--new-password-file", *file, kNewPasswordFile)->check(NotEmpty);
  commands.Add(enable, Needs::Writable, [name, file](Context& context) -> Result<Json> {
    if (UsersEnabled(context.session)) return Refuse("Users", "The Users feature is already active.");
    const auto password = ReadSamePassword(*file);
    if (!password) return std::unexpected(password.error());
    if (auto made = CreateUsers(context.session, *name, *password); !made) return std::unexpected(made.error());
    return Json{{"Username", context.session.CurrentUser}, {"IsAdmin", true}};
  });

  commands.Add(noun.add_subcommand("disable", "Switch the feature off and remove all users"), Needs::Writable,
               [](Context& context) -> Result<Json> {
                 const auto done = DeactivateUsers(context.session);
                 if (!done) return std::unexpected(done.error());
                 return Json{{"Disabled", *done}};
               });
}

void AddChanges(CLI::App& noun, Commands& commands) {
  struct Arguments {
    std::string name;
    std::vector<std::string> pairs;
    std::string passwordFile;
  };
  const auto arguments = [](CLI::App* verb) {
    const auto taken = std::make_shared<Arguments>();
    verb->add_option("NAME", taken->name, "The user")->required();
    verb->add_option("FIELD=VALUE", taken->pairs, "Rights, by the names that users list shows");
    verb->add_option("--new-password-file", taken->passwordFile, kNewPasswordFile)->check(NotEmpty);
    return taken;
  };

  auto* add = noun.add_subcommand(
      "add",
      "Add a user. Without rights named, one who can do the day's work (Batches, stock, notes) but sees no costs and "
      "changes no recipes, costs, emissions, Databases or settings");
  commands.Add(add, Needs::Writable, [taken = arguments(add)](Context& context) {
    return Add(context, taken->name, taken->pairs, taken->passwordFile);
  });

  auto* modify = noun.add_subcommand("modify", "Change rights, administrator status or password of a user");
  commands.Add(modify, Needs::Writable, [taken = arguments(modify)](Context& context) {
    return Modify(context, taken->name, taken->pairs, taken->passwordFile);
  });

  auto* remove = noun.add_subcommand("delete", "Delete a user who is no administrator");
  const auto name = std::make_shared<std::string>();
  remove->add_option("NAME", *name, "The user")->required();
  commands.Add(remove, Needs::Writable, [name](Context& context) -> Result<Json> {
    const auto deleted = DeleteUser(context.session, *name);
    if (!deleted) return std::unexpected(deleted.error());
    return Json{{"Username", Upper(TrimView(*name))}, {"Deleted", *deleted}};
  });

  auto* passwd = noun.add_subcommand("passwd", "Change the password of the user of --user");
  const auto file = std::make_shared<std::string>();
  passwd->add_option("--new-password-file", *file, kNewPasswordFile)->check(NotEmpty);
  commands.Add(passwd, Needs::Writable, [file](Context& context) -> Result<Json> {
    const NewPassword password = ReadNewPassword(*file);
    const auto changed = ChangePassword(context.session, context.password, password.typed, password.repeated);
    if (!changed) return std::unexpected(changed.error());
    return Json{{"Username", context.session.CurrentUser}, {"Changed", *changed}};
  });
}

}  // namespace

void AddUsersCommands(CLI::App& app, Commands& commands) {
  CLI::App* noun = AddNoun(app, "users", "Users and their rights: list, add, modify, delete, enable, disable, passwd");
  AddListAndFeature(*noun, commands);
  AddChanges(*noun, commands);
}

}  // namespace vellumark::cli
