#pragma once

#include <libpq-fe.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "postgres/postgres_engine.h"

namespace vellumark::postgres {

/// What a statement came to.
class Answer {
 public:
  explicit Answer(PGresult* result = nullptr) : result_(result, PQclear) {}

  explicit operator bool() const { return result_ != nullptr; }
  int Rows() const { return PQntuples(result_.get()); }
  int Columns() const { return PQnfields(result_.get()); }
  bool IsNull(int row, int column) const { return PQgetisnull(result_.get(), row, column) != 0; }
  std::string_view Text(int row, int column) const {
    return {PQgetvalue(result_.get(), row, column), static_cast<std::size_t>(PQgetlength(result_.get(), row, column))};
  }
  PGresult* Get() const { return result_.get(); }

 private:
  std::unique_ptr<PGresult, decltype(&PQclear)> result_;
};

/// A value on its way; null of none. The type is one of the engine's numbers, 0 where the place says it.
struct Parameter {
  Oid type = 0;
  bool null = true;
  std::string text;
};

/// A conversation with the server. Whatever goes wrong is a Failure of `subject`.
class Connection {
 public:
  Connection(const PostgresServer& server, std::string subject);

  /// One statement or several behind one another; the answer of the last.
  Answer Run(const std::string& sql);
  Answer Run(const std::string& sql, const std::vector<Parameter>& values);
  Answer Run(const std::string& sql, std::string_view value) { return Run(sql, {{0, false, std::string(value)}}); }
  void Prepare(const std::string& name, const std::string& sql, const std::vector<Parameter>& values);
  Answer RunPrepared(const std::string& name, const std::vector<Parameter>& values);
  /// Whether a transaction is under way, if only to be taken back.
  bool InTransaction() const { return PQtransactionStatus(connection_.get()) != PQTRANS_IDLE; }

  const std::string& Subject() const { return subject_; }

 private:
  Answer Checked(PGresult* result);

  std::string subject_;
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

/// A name, or a text, as it stands in a statement.
std::string QuotedName(std::string_view name);
std::string QuotedText(std::string_view text);

}  // namespace vellumark::postgres
