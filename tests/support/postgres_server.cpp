#include "tests/support/postgres_server.h"

#include <fcntl.h>
#include <libpq-fe.h>
#include <pwd.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace tutti::testing {

namespace fs = std::filesystem;

PostgresServer::PostgresServer() {
  for (const auto& version : fs::directory_iterator{"/usr/lib/postgresql"})
    programs_ = std::max(programs_, (version.path() / "bin/").string());
  // It does not run as root.
  if (::geteuid() == 0) {
    user_ = "postgres";
    const passwd* who = ::getpwnam(user_.c_str());
    if (who == nullptr || ::chown(folder_.path().c_str(), who->pw_uid, who->pw_gid) != 0)
      throw std::runtime_error("there is no user postgres");
  }
  int status = -1;
  ::waitpid(launch({"initdb", "-D", folder_.path() / "data", "-U", "tutti", "-A", "trust", "--no-sync"}, -1),
            &status, 0);
  if (status != 0) throw std::runtime_error("initdb failed");
  start();
}

PostgresServer::~PostgresServer() {
  kill();
}

pid_t PostgresServer::launch(const Texts& words, int output) const {
  Texts all{"setpriv", "--pdeathsig", "KILL"};
  if (!user_.empty()) all.insert(all.end(), {"--reuid", user_, "--regid", user_, "--clear-groups"});
  all.push_back(programs_ + words[0]);
  all.insert(all.end(), words.begin() + 1, words.end());
  std::vector<char*> argv;
  for (std::string& word : all)
    argv.push_back(word.data());
  argv.push_back(nullptr);
  const pid_t child = ::fork();
  if (child != 0) return child;
  if (output >= 0)
    ::dup2(output, STDERR_FILENO);
  else
    std::freopen("/dev/null", "w", stdout);
  // A home folder of root's is none for who it runs as.
  if (::chdir("/") == 0) ::execvp(argv[0], argv.data());
  ::_exit(127);
}

void PostgresServer::start() {
  int log[2];
  if (::pipe2(log, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const std::string folder = folder_.path();
  process_ = launch({"postgres", "-D", folder + "/data", "-k", folder, "-c", "listen_addresses=", "-c",
                     "fsync=off", "-c", "log_min_messages=log"},
                    log[1]);
  ::close(log[1]);
  const std::unique_ptr<FILE, int (*)(FILE*)> reader{::fdopen(log[0], "r"), &::fclose};
  std::string said;
  char line[1024];
  while (std::fgets(line, sizeof line, reader.get()) != nullptr) {
    said += line;
    if (said.find("ready to accept connections") != std::string::npos) return;
  }
  throw std::runtime_error("PostgreSQL does not start: " + said);
}

void PostgresServer::kill() {
  if (process_ <= 0) return;
  // Its own way of ending at once: what it has not written is lost.
  ::kill(process_, SIGQUIT);
  ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

std::string PostgresServer::url() const {
  return "postgresql://tutti@/postgres?host=" + folder_.path().string();
}

Texts PostgresServer::ask(const std::string& sql) const {
  const std::unique_ptr<PGconn, void (*)(PGconn*)> connection{::PQconnectdb(url().c_str()), &::PQfinish};
  ::PQsetNoticeReceiver(
      connection.get(), [](void*, const PGresult*) {}, nullptr);
  const std::unique_ptr<PGresult, void (*)(PGresult*)> result{::PQexec(connection.get(), sql.c_str()),
                                                              &::PQclear};
  Texts out;
  for (int row = 0; row < ::PQntuples(result.get()); ++row) {
    std::string& text = out.emplace_back();
    for (int column = 0; column < ::PQnfields(result.get()); ++column)
      text += (column == 0 ? "" : "|") + std::string{::PQgetvalue(result.get(), row, column)};
  }
  if (const std::string wrong = ::PQerrorMessage(connection.get()); !wrong.empty()) out.push_back(wrong);
  return out;
}

void PostgresServer::end_connections() const {
  ask("SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE application_name = 'tutti'");
}

}  // namespace tutti::testing
