#pragma once

#include <any>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vellumark::desktop {

/// What one window tells another that it opens by name, and what a dialog gives back: {{"Color_Name", name},
/// {"BatchNo", 12}}. Texts are kept as std::string, whole numbers as std::int64_t, other numbers as double; anything
/// else, such as a struct of the core, as itself.
class Arguments {
 public:
  class Value {
   public:
    template <class T>
    Value(T&& value) : any_(Kept(std::forward<T>(value))) {}  // NOLINT: made to be written {"Name", value}
    const std::any& Any() const { return any_; }

   private:
    template <class T>
    static auto Kept(T&& value) {
      using Plain = std::decay_t<T>;
      if constexpr (std::is_integral_v<Plain> && !std::is_same_v<Plain, bool>) {
        return static_cast<std::int64_t>(value);
      } else if constexpr (std::is_floating_point_v<Plain>) {
        return static_cast<double>(value);
      } else if constexpr (std::is_convertible_v<T, std::string_view>) {
        return std::string(std::string_view(value));
      } else {
        return Plain(std::forward<T>(value));
      }
    }
    std::any any_;
  };

  Arguments() = default;
  Arguments(std::initializer_list<std::pair<const std::string, Value>> values) : values_(values) {}

  template <class T>
  Arguments& Set(const std::string& name, T&& value) {
    values_.insert_or_assign(name, Value(std::forward<T>(value)));
    return *this;
  }
  bool Has(const std::string& name) const { return values_.contains(name); }
  bool IsEmpty() const { return values_.empty(); }

  /// The value of that name. One that is missing or of another kind is the caller's mistake: std::logic_error.
  template <class T>
  T Get(const std::string& name) const {
    const auto found = values_.find(name);
    const T* value = found == values_.end() ? nullptr : std::any_cast<T>(&found->second.Any());
    if (value == nullptr) throw std::logic_error("argument " + name + " is missing or of another kind");
    return *value;
  }
  std::string Text(const std::string& name) const { return Get<std::string>(name); }
  std::int64_t Number(const std::string& name) const { return Get<std::int64_t>(name); }

 private:
  std::map<std::string, Value> values_;
};

}  // namespace vellumark::desktop
