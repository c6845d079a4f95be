#include "ledger/copy/copy_server.h"

#include <libpq-fe.h>
#include <poll.h>

#include <string_view>
#include <utility>

namespace tutti {
namespace {

constexpr int slice_ms = 100;      // between two looks whether it is stopped
constexpr int longest_wait = 300;  // slices, for anything to come

struct Clear {
  void operator()(PGresult* result) const { ::PQclear(result); }
};
using Result = std::unique_ptr<PGresult, Clear>;

std::string first_line(std::string_view text) {
  return std::string{text.substr(0, text.find('\n'))};
}

// Of a state of the standard: another transaction was in the way, or the connection is at its end.
bool passes(std::string_view state) {
  return state == "40001" || state == "40P01" || state.starts_with("57P") || state.starts_with("08");
}

}  // namespace

void CopyServer::Close::operator()(pg_conn* connection) const {
  ::PQfinish(connection);
}

tl::expected<CopyServer, CopyError> CopyServer::connect(const CopyTarget& target, Stopped stopped) {
  CopyServer out{std::move(stopped)};
  std::vector<const char*> names;
  std::vector<const char*> values;
  for (const auto& [name, value] : target.options()) {
    names.push_back(name.c_str());
    values.push_back(value.c_str());
  }
  names.push_back(nullptr);
  values.push_back(nullptr);
  out.connection_.reset(::PQconnectStartParams(names.data(), values.data(), 0));
  PostgresPollingStatusType next = PGRES_POLLING_WRITING;
  while (out.connection_ && ::PQstatus(out.connection_.get()) != CONNECTION_BAD) {
    if (next == PGRES_POLLING_OK) {
      ::PQsetnonblocking(out.connection_.get(), 1);
      // What it remarks beside is for nobody.
      ::PQsetNoticeReceiver(
          out.connection_.get(), [](void*, const PGresult*) {}, nullptr);
      return out;
    }
    if (next == PGRES_POLLING_FAILED || !out.wait(next == PGRES_POLLING_WRITING)) break;
    next = ::PQconnectPoll(out.connection_.get());
  }
  CopyError error = out.lost();
  // Trying again is for who had a connection.
  error.kind = CopyError::Kind::failed;
  return tl::unexpected(error);
}

bool CopyServer::wait(bool to_write) {
  pollfd socket{::PQsocket(connection_.get()), static_cast<short>(to_write ? POLLIN | POLLOUT : POLLIN), 0};
  for (int slices = 0; slices < longest_wait && socket.fd >= 0; ++slices) {
    if (stopped_()) return false;
    if (::poll(&socket, 1, slice_ms) > 0) return true;
  }
  return false;
}

CopyError CopyServer::lost() const {
  const std::string said = connection_ ? first_line(::PQerrorMessage(connection_.get())) : std::string{};
  return {CopyError::Kind::again, said.empty() ? "the server does not answer" : said};
}

CopyServer::Answer CopyServer::ask(const std::string& sql, const std::vector<std::string>& values) {
  PGconn* const connection = connection_.get();
  std::vector<const char*> texts;
  for (const std::string& value : values)
    texts.push_back(value.c_str());
  const int sent = values.empty()
                       ? ::PQsendQuery(connection, sql.c_str())
                       : ::PQsendQueryParams(connection, sql.c_str(), static_cast<int>(texts.size()), nullptr,
                                             texts.data(), nullptr, nullptr, 0);
  if (sent == 0) return tl::unexpected(lost());
  for (int left = 1; left != 0;) {
    left = ::PQflush(connection);
    if (left < 0 || (left > 0 && !wait(true)) || ::PQconsumeInput(connection) == 0)
      return tl::unexpected(lost());
  }
  Rows rows;
  CopyError error;
  for (;;) {
    while (::PQisBusy(connection) != 0)
      if (!wait(false) || ::PQconsumeInput(connection) == 0) return tl::unexpected(lost());
    const Result result{::PQgetResult(connection)};
    if (!result) break;
    const ExecStatusType status = ::PQresultStatus(result.get());
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK && error.text.empty()) {
      const char* state = ::PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
      error.text = first_line(::PQresultErrorMessage(result.get()));
      if (state == nullptr || passes(state)) error.kind = CopyError::Kind::again;
    }
    for (int row = 0; row < ::PQntuples(result.get()); ++row) {
      auto& cells = rows.emplace_back();
      for (int column = 0; column < ::PQnfields(result.get()); ++column)
        cells.emplace_back(::PQgetvalue(result.get(), row, column));
    }
  }
  if (!error.text.empty()) return tl::unexpected(error);
  return rows;
}

}  // namespace tutti
