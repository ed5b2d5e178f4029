#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <string>

#include "core/base/seams.h"

namespace vellumark::test {

/// A folder that lives as long as the object.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vellumark-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = pattern;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// A Prompt that expects exactly the messages it was told of, in order: a message with another title, one too many, or
/// one that never came fails the test.
class ScriptedPrompt final : public Prompt {
 public:
  ~ScriptedPrompt() override {
    EXPECT_TRUE(expected_.empty()) << "never asked: " << (expected_.empty() ? "" : expected_.front().title);
  }

  ScriptedPrompt& Expect(std::string title, Answer answer = Answer::Ok, std::string text = {}) {
    expected_.push_back({std::move(title), std::move(text), answer});
    return *this;
  }

  Answer Show(const Message& message) override {
    last = message;
    if (expected_.empty()) {
      ADD_FAILURE() << "unexpected message: " << message.title << ": " << message.text;
      return Answer::Cancel;
    }
    const Expected next = expected_.front();
    expected_.pop_front();
    EXPECT_EQ(message.title, next.title) << message.text;
    if (!next.text.empty()) {
      EXPECT_EQ(message.text, next.text);
    }
    return next.answer;
  }

  Message last;

 private:
  struct Expected {
    std::string title;
    std::string text;
    Answer answer;
  };
  std::deque<Expected> expected_;
};

}  // namespace vellumark::test
