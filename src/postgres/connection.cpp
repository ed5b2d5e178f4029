#include "postgres/connection.h"

#include <fmt/format.h>

#include "core/base/refusal.h"
#include "core/base/text.h"

namespace vellumark::postgres {
namespace {

std::string FirstLine(const char* message) {
  const std::string_view text = message == nullptr ? std::string_view() : message;
  return Trim(text.substr(0, text.find('\n')));
}

// What the engine's code of a failure means to a person.
std::string CauseInWords(const PGresult* result, const PGconn* connection) {
  const char* code = result == nullptr ? nullptr : PQresultErrorField(result, PG_DIAG_SQLSTATE);
  const std::string_view state = code == nullptr ? "08006" : code;
  if (state.starts_with("08") || state.starts_with("57P"))
    return fmt::format("cannot be read or written: the server does not answer ({})",
                       FirstLine(PQerrorMessage(connection)));
  if (state == "53100") return "cannot be written: the disk is full";
  if (state == "25006") return "cannot be written: it is read-only";
  if (state == "55P03" || state == "40P01") return "is in use by another process";
  if (state == "42501") return "cannot be opened: permission denied";
  if (state.starts_with("XX")) return "is damaged or was cut short";
  return FirstLine(PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
}

std::vector<const char*> Pointers(const std::vector<Parameter>& values) {
  std::vector<const char*> pointers;
  for (const Parameter& value : values) pointers.push_back(value.null ? nullptr : value.text.c_str());
  return pointers;
}

std::vector<Oid> Types(const std::vector<Parameter>& values) {
  std::vector<Oid> types;
  for (const Parameter& value : values) types.push_back(value.type);
  return types;
}

std::string Doubled(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char c : text) {
    if (c == quote) quoted += quote;
    quoted += c;
  }
  return quoted + quote;
}

}  // namespace

Connection::Connection(const PostgresServer& server, std::string subject)
    : subject_(std::move(subject)), connection_(nullptr, PQfinish) {
  const char* keys[] = {"host", "user", "dbname", "client_encoding", "application_name", "options", nullptr};
  // The statements are made for an engine that walks along one index. Of a table that it has not measured the server
  // would rather gather all that an index finds and sort it, for the few rows that are wanted.
  const char* options = "-c client_min_messages=warning -c jit=off -c enable_bitmapscan=off";
  const char* values[] = {
      server.host.c_str(), server.user.c_str(), server.database.c_str(), "UTF8", "vellumark", options, nullptr};
  connection_.reset(PQconnectdbParams(keys, values, 0));
  if (PQstatus(connection_.get()) != CONNECTION_OK)
    throw Failure(subject_, fmt::format("cannot be opened: the server of {} does not answer ({})", server.host,
                                        FirstLine(PQerrorMessage(connection_.get()))));
}

Answer Connection::Checked(PGresult* result) {
  Answer answer(result);
  const ExecStatusType status = PQresultStatus(result);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_EMPTY_QUERY)
    throw Failure(subject_, CauseInWords(result, connection_.get()));
  return answer;
}

Answer Connection::Run(const std::string& sql) {
  return Checked(PQexec(connection_.get(), sql.c_str()));
}

Answer Connection::Run(const std::string& sql, const std::vector<Parameter>& values) {
  return Checked(PQexecParams(connection_.get(), sql.c_str(), static_cast<int>(values.size()), Types(values).data(),
                              Pointers(values).data(), nullptr, nullptr, 0));
}

void Connection::Prepare(const std::string& name, const std::string& sql, const std::vector<Parameter>& values) {
  Checked(
      PQprepare(connection_.get(), name.c_str(), sql.c_str(), static_cast<int>(values.size()), Types(values).data()));
}

Answer Connection::RunPrepared(const std::string& name, const std::vector<Parameter>& values) {
  return Checked(PQexecPrepared(connection_.get(), name.c_str(), static_cast<int>(values.size()),
                                Pointers(values).data(), nullptr, nullptr, 0));
}

std::string QuotedName(std::string_view name) {
  return Doubled(name, '"');
}

std::string QuotedText(std::string_view text) {
  return Doubled(text, '\'');
}

}  // namespace vellumark::postgres
