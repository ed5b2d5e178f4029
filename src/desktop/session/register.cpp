#include "desktop/session/register.h"

#include "desktop/kit/window_list.h"
#include "desktop/session/admin_options_form.h"
#include "desktop/session/change_password_form.h"
#include "desktop/session/delete_user_form.h"
#include "desktop/session/login_form.h"
#include "desktop/session/modify_user_form.h"
#include "desktop/session/new_admin_form.h"
#include "desktop/session/new_user_form.h"
#include "desktop/session/password_form.h"
#include "desktop/session/view_permissions_form.h"

namespace vellumark::desktop {

void RegisterSessionWindows(WindowList& windows) {
  windows.RegisterAll<LoginForm, PasswordForm, NewAdminForm, AdminOptionsForm, NewUserForm, ModifyUserForm,
                      DeleteUserForm, ChangePasswordForm, ViewPermissionsForm>();
}

}  // namespace vellumark::desktop
