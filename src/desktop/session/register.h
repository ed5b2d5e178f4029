#pragma once

namespace vellumark::desktop {

class WindowList;

/// The windows of users and rights: LoginForm, PasswordForm, NewAdminForm, AdminOptionsForm, NewUserForm,
/// ModifyUserForm, DeleteUserForm, ChangePasswordForm, ViewPermissionsForm.
///
/// One that changed who may do what gives back {"changed", true}: menus and open windows then read the session's rights
/// anew. LoginForm gives back {"exit", true} when the operator would rather end the program than log in.
void RegisterSessionWindows(WindowList& windows);

}  // namespace vellumark::desktop
