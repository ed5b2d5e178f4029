#include "postgres/statement_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace vellumark::postgres {
namespace {

enum class Kind { Word, Name, Text, Mark, Sign, Blank };

struct Token {
  Kind kind = Kind::Blank;
  std::string_view text;  // as it stands
};

bool IsBlank(char c) {
  return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsWordPart(char c) {
  return c == '_' || IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || static_cast<signed char>(c) < 0;
}

// Ends behind the quote that is no doubled one.
std::size_t EndOfQuoted(std::string_view sql, std::size_t at) {
  const char quote = sql[at];
  for (std::size_t end = at + 1; end < sql.size(); ++end) {
    if (sql[end] != quote) continue;
    if (end + 1 == sql.size() || sql[end + 1] != quote) return end + 1;
    ++end;
  }
  return sql.size();
}

Token TokenAt(std::string_view sql, std::size_t at) {
  const auto run = [&](Kind kind, auto belongs) {
    std::size_t end = at + 1;
    while (end < sql.size() && belongs(sql[end])) ++end;
    return Token{kind, sql.substr(at, end - at)};
  };
  const char c = sql[at];
  if (IsBlank(c)) return run(Kind::Blank, IsBlank);
  if (c == '\'' || c == '"') return {c == '"' ? Kind::Name : Kind::Text, sql.substr(at, EndOfQuoted(sql, at) - at)};
  if (c == '?') return run(Kind::Mark, IsDigit);
  if (IsDigit(c)) return run(Kind::Sign, [](char part) { return IsWordPart(part) || part == '.'; });
  if (IsWordPart(c)) return run(Kind::Word, IsWordPart);
  return {Kind::Sign, sql.substr(at, 1)};
}

class Translation {
 public:
  explicit Translation(std::string_view sql) {
    for (std::size_t at = 0; at < sql.size(); at += tokens_.back().text.size()) tokens_.push_back(TokenAt(sql, at));
  }

  StatementText Run() {
    FindWritten();
    for (at_ = 0; at_ < tokens_.size(); ++at_) Take(tokens_[at_]);
    EndOfItem();
    return std::move(result_);
  }

 private:
  // A list behind ORDER BY, at some depth of brackets.
  struct Order {
    bool open = false;
    bool descending = false;
    bool byKey = false;  // the keys of rows are never empty, and the index that they have is to be used
  };

  static std::string WordOf(const Token& token) {
    if (token.kind == Kind::Name) return Folded(token.text.substr(1, token.text.size() - 2));
    return token.kind == Kind::Word ? Folded(token.text) : std::string();
  }
  const Token* Next(std::size_t& at) const {
    while (at < tokens_.size() && tokens_[at].kind == Kind::Blank) ++at;
    return at < tokens_.size() ? &tokens_[at++] : nullptr;
  }

  void FindWritten() {
    std::size_t at = 0;
    const auto word = [&] {
      const Token* token = Next(at);
      return token == nullptr ? std::string() : WordOf(*token);
    };
    const std::string verb = word();
    if (verb != "insert" && verb != "update" && verb != "delete") return;
    if (verb != "update") word();  // INTO, FROM
    result_.written = word();
    // The fields that it names: in brackets, or up to the condition.
    for (const Token* token = Next(at); token != nullptr && token->text != ")"; token = Next(at)) {
      const std::string name = WordOf(*token);
      if (name == "where" || name == "select") return;
      if (name == "rowkey" || name == "id") result_.key = name;
    }
  }

  void Take(const Token& token) {
    const std::string word = WordOf(token);
    Order& order = orders_.back();
    if (token.text == "(") {
      orders_.emplace_back();
    } else if (token.text == ")") {
      EndOfItem();
      if (orders_.size() > 1) orders_.pop_back();
    } else if (order.open && (token.text == "," || Ends(word))) {
      EndOfItem();
      order.open = token.text == ",";
    } else if (token.kind == Kind::Word && word == "by" && lastWord_ == "order") {
      order = {true, false, false};
    } else if (order.open && token.kind != Kind::Blank) {
      if (word == "desc") order.descending = true;
      if (word != "desc" && word != "asc") order.byKey = word == "rowkey" || word == "id";
    }
    if (token.kind != Kind::Blank) lastWord_ = word;
    Write(token, word);
  }

  static bool Ends(std::string_view word) {
    constexpr std::array<std::string_view, 6> kEnds{"limit", "offset", "union", "rows", "range", "returning"};
    return std::ranges::find(kEnds, word) != kEnds.end();
  }

  // Behind it stands what is empty, as the core expects it.
  void EndOfItem() {
    Order& order = orders_.back();
    if (!order.open) return;
    if (!order.byKey) {
      std::string& sql = result_.sql;
      const std::size_t end = sql.find_last_not_of(" \n") + 1;
      sql.insert(end, order.descending ? " NULLS LAST" : " NULLS FIRST");
    }
    order = {true, false, false};
  }

  void Write(const Token& token, const std::string& word) {
    std::string& sql = result_.sql;
    if (token.kind == Kind::Mark) {
      const int number = token.text.size() > 1 ? std::stoi(std::string(token.text.substr(1))) : ++marks_;
      result_.values.push_back(number);
      sql += fmt::format("${}", result_.values.size());
    } else if (token.kind == Kind::Name) {
      sql += '"' + Folded(token.text.substr(1, token.text.size() - 2)) + '"';
    } else if (token.kind == Kind::Word && word == "like") {
      sql += "ILIKE";
    } else {
      sql += token.text;
    }
  }

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Order> orders_{1};
  std::string lastWord_;
  int marks_ = 0;
  StatementText result_;
};

}  // namespace

std::string Folded(std::string_view name) {
  std::string folded(name);
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  return folded;
}

StatementText Translated(std::string_view sql) {
  return Translation(sql).Run();
}

}  // namespace vellumark::postgres
