#include "tests/support/command_line_rig.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>

#include "core/texts.h"

namespace tutti::testing {

namespace {

std::string content(int file) {
  std::string out;
  std::array<char, 4096> piece{};
  ::lseek(file, 0, SEEK_SET);
  for (ssize_t got = 0; (got = ::read(file, piece.data(), piece.size())) > 0;)
    out.append(piece.data(), static_cast<std::size_t>(got));
  ::close(file);
  return out;
}

}  // namespace

CommandLineRig::CommandLineRig(const std::string& dealer) : with_dealer(!dealer.empty()) {
  if (with_dealer) home.write("dealer.toml", dealer);
}

int CommandLineRig::run(const std::string& words) {
  Texts arguments{"tuttictl", "--home", home.path().string(), "--key", home.key_file().string()};
  if (create) arguments.emplace_back("--create");
  if (with_dealer) arguments.insert(arguments.end(), {"--dealer", (home.path() / "dealer.toml").string()});
  for (const auto word : split(words, " "))
    if (!word.empty()) arguments.emplace_back(word);
  std::vector<const char*> argv;
  for (const std::string& argument : arguments)
    argv.push_back(argument.c_str());

  const int in = ::memfd_create("in", 0);
  EXPECT_EQ(::write(in, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  ::lseek(in, 0, SEEK_SET);
  const int report = ::memfd_create("out", 0);
  const int messages = ::memfd_create("err", 0);
  Console console{in, report_to >= 0 ? report_to : report, messages, [this] {
                    if (on_stall) on_stall();
                    return signal != 0;
                  }};
  const auto pause = [this](std::chrono::milliseconds time) {
    clock.advance(time);
    if (on_pause) on_pause();
  };
  const auto began = clock.elapsed();
  const int status = tuttictl(static_cast<int>(argv.size()), argv.data(),
                              {console, clock, pause, [this] { return signal; }});
  lasted = clock.elapsed() - began;
  ::close(in);
  out = content(report);
  err = content(messages);
  return status;
}

}  // namespace tutti::testing
