// Account records and their key.

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "core/texts.h"
#include "dealer/config/config_reader.h"
#include "sessions/account_records.h"
#include "tests/support/scripted_terminal.h"
#include "tests/support/session_rig.h"

namespace tutti::testing {
namespace {

namespace fs = std::filesystem;

static_assert(!std::is_copy_constructible_v<Secret> && !std::is_copy_assignable_v<Secret>);
static_assert(!std::is_convertible_v<Secret, std::string_view> && !fmt::is_formattable<Secret>::value);
template <class T>
concept Streams = requires(std::ostream& out, const T& value) {
  out << value;
};
static_assert(Streams<std::string> && !Streams<Secret>);

const Secret key_a{std::string(KeyFile::key_size, 'a')};
const Secret key_b{std::string(KeyFile::key_size, 'b')};

TEST(Records, ComeBackAndTellNothing) {
  const std::string texts[] = {
      "", "a", ",Z,", "\xC3\xA9\xE2\x82\xAC", "1.", "\r \x80", std::string("\0x\0", 3), std::string(70, 'p')};
  for (std::size_t i = 0; i < std::size(texts) * std::size(texts); ++i) {
    const std::string &user = texts[i / std::size(texts)], &password = texts[i % std::size(texts)];
    const auto account = static_cast<std::int32_t>(i * 0x9E3779B1u);
    const AccountRecord record{user, password, account, i % 2 == 0};
    const std::string line = encode_record(record, key_a);
    EXPECT_NE(line, encode_record(record, key_a));
    EXPECT_EQ(line.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_,."),
              std::string::npos);
    EXPECT_EQ(std::count(line.begin(), line.end(), ','), 3);
    EXPECT_TRUE(looks_like_record(line));
    const auto back = decode_record(line, key_a);
    ASSERT_TRUE(back) << line;
    EXPECT_TRUE(back->user == user && back->password == password && back->account == account &&
                back->auto_login == record.auto_login);
    EXPECT_FALSE(decode_record(line, key_b));
  }
  const auto size = [](std::size_t length) {
    return encode_record({"U", std::string(length, 'p'), 1, true}, key_a).size();
  };
  EXPECT_EQ(size(0), size(31));
  EXPECT_LT(size(31), size(32));
}

TEST(Records, EveryMutationIsRefused) {
  const std::string line = encode_record({"ANN", "SECRET", 500'100, true}, key_a);
  const std::string other = encode_record({"BOB", "OTHER", 500'101, false}, key_a);
  ASSERT_TRUE(decode_record(line, key_a) && decode_record(other, key_a));
  const auto refused = [&](const std::string& changed) {
    return changed == line || changed == other || !decode_record(changed, key_a);
  };
  for (std::size_t at = 0; at <= line.size(); ++at) {
    for (unsigned bit = 0; at < line.size() && bit < 8; ++bit) {
      std::string flipped = line;
      flipped[at] = static_cast<char>(flipped[at] ^ static_cast<char>(1u << bit));
      ASSERT_TRUE(refused(flipped)) << flipped;
    }
    for (const char stray : {' ', '\t', '\r', '=', '\0', '+', ',', 'A'})
      ASSERT_TRUE(refused(std::string{line}.insert(at, 1, stray))) << at << " " << int{stray};
    ASSERT_TRUE(refused(line.substr(0, at))) << at;
  }
  for (unsigned taken = 1; taken < 15; ++taken) {  // the fields of `other` that get into `line`
    std::string mixed;
    for (std::size_t field = 0; field < 4; ++field)
      mixed += (field == 0 ? "" : ",") + std::string{split((taken >> field) & 1u ? other : line, ",")[field]};
    EXPECT_TRUE(refused(mixed)) << taken;
  }
}

TEST(Key, WhatCannotBeTrustedIsRefusedAndLeftAlone) {
  const struct {
    const char* text;  // what the reason says; empty: the key is taken
    std::size_t size;  // bytes
    unsigned mode;
    bool link;
  } cases[] = {{"", 32, 0600, false},          {"", 32, 0400, false},
               {"mode 0640", 32, 0640, false}, {"mode 0602", 32, 0602, false},
               {"31 bytes", 31, 0600, false},  {"33 bytes", 33, 0600, false},
               {"0 bytes", 0, 0600, false},    {"symbolic link", 32, 0600, true}};
  for (const auto& one : cases) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "key";
    const std::string real = one.link ? "real" : "key";
    folder.write(real, std::string(one.size, 'k'));
    fs::permissions(folder.path() / real, static_cast<fs::perms>(one.mode));
    if (one.link) fs::create_symlink(folder.path() / real, file);
    KeyFile key{file};
    const auto found = key.find_or_create();
    ASSERT_EQ(found.has_value(), std::string{one.text}.empty()) << one.text;
    EXPECT_EQ(folder.read(real), std::string(one.size, 'k'));
    if (found) {
      EXPECT_EQ(**found, std::string(32, 'k'));
    } else {
      EXPECT_NE(found.error().text().find(one.text), std::string::npos) << found.error().text();
      EXPECT_NE(found.error().text().find(file.string()), std::string::npos);
    }
  }
  KeyFile folder{"/"};
  EXPECT_FALSE(folder.find());
  const TemporaryFolder home;
  home.write("key", std::string(32, 'k'));
  if (::chown((home.path() / "key").c_str(), 12'345, 12'345) == 0) {  // only root may give files away
    KeyFile foreign{home.path() / "key"};
    EXPECT_NE(foreign.find().error().text().find("another user"), std::string::npos);
  }
}

TEST(Key, IsMadeOnceInTheStateFolderWhateverTheUmask) {
  const TemporaryFolder state;
  const char* const names[] = {"XDG_STATE_HOME", "HOME"};
  std::optional<std::string> before[2];
  for (std::size_t i = 0; i < 2; ++i)
    if (const char* value = std::getenv(names[i])) before[i] = value;
  ::setenv("HOME", (state.path() / "home").c_str(), 1);
  ::setenv("XDG_STATE_HOME", "relative", 1);
  EXPECT_EQ(KeyFile::default_path(), state.path() / "home/.local/state/tutti/key");
  ::setenv("XDG_STATE_HOME", state.path().c_str(), 1);
  KeyFile first;
  for (std::size_t i = 0; i < 2; ++i)
    before[i] ? ::setenv(names[i], before[i]->c_str(), 1) : ::unsetenv(names[i]);

  EXPECT_EQ(first.path(), state.path() / "tutti/key");
  EXPECT_EQ(first.find().value(), nullptr);
  EXPECT_TRUE(fs::is_empty(state.path())) << "asking makes no key";
  const mode_t mask = ::umask(0277);
  const auto made = first.find_or_create();
  ::umask(mask);
  ASSERT_TRUE(made) << made.error().text();
  EXPECT_EQ((*made)->size(), 32u);
  KeyFile second{first.path()};
  EXPECT_EQ(*second.find_or_create().value(), **made);
  EXPECT_EQ(static_cast<unsigned>(fs::status(first.path()).permissions()), 0600u);
  EXPECT_EQ(static_cast<unsigned>(fs::status(first.path().parent_path()).permissions()), 0700u);
  EXPECT_EQ(std::distance(fs::directory_iterator{first.path().parent_path()}, {}), 1);
  KeyFile elsewhere{state.path() / "other"};
  EXPECT_FALSE(*elsewhere.find_or_create().value() == **made);
}

TEST(AccountFile, AMissingKeyStopsEverythingAndAnotherKeyLosesNothing) {
  const std::string name = "manage/Acountinfo.buf";
  SessionRig rig;
  const fs::path key_path = rig.home.key_file();
  const auto starts_anew = [&] { rig.general.key = KeyFile{key_path}; };
  rig.home.write(name, "damaged\n");
  EXPECT_TRUE(rig.options.records().remove({"BOB,81"}));
  EXPECT_FALSE(fs::exists(key_path)) << "nothing here needs a key";
  ASSERT_TRUE(rig.options.SetData("bob", "secret", 81, true));
  ASSERT_TRUE(rig.options.SetData("ann", "secret", 82, false));
  ASSERT_TRUE(rig.options.SetData("bob", "new", 81, false));
  const std::string before = rig.home.read(name);
  const std::string key = read_file(key_path).value();
  EXPECT_TRUE(before.starts_with("damaged\n1."));

  fs::remove(key_path);
  starts_anew();
  const auto refused = [&](const auto& answer) {
    return !answer && answer.error().text().find("Acountinfo.buf") != std::string::npos &&
           answer.error().text().find(key_path.string()) != std::string::npos;
  };
  EXPECT_TRUE(refused(rig.options.records().read_all()));
  EXPECT_TRUE(refused(rig.options.records().find("BOB,81")));
  EXPECT_TRUE(refused(rig.options.records().remove({"BOB,81"})));
  EXPECT_TRUE(refused(rig.options.SetData("eve", "secret", 83, true)));
  EXPECT_FALSE(fs::exists(key_path));
  EXPECT_EQ(rig.home.read(name), before);

  ASSERT_TRUE(replace_file(key_path, std::string(32, 'x')));
  starts_anew();
  rig.take();
  EXPECT_TRUE(rig.options.records().read_all().value().empty());
  const Heard heard = rig.take();
  ASSERT_EQ(heard.size(), 1u);
  EXPECT_NE(heard[0].find("lines 1, 2, 3, 4 of Acountinfo.buf"), std::string::npos) << heard[0];
  EXPECT_NE(heard[0].find(key_path.string()), std::string::npos);
  ASSERT_TRUE(rig.options.records().remove({"BOB,81", "ANN,82"}));
  EXPECT_EQ(rig.take(), heard);
  EXPECT_EQ(rig.home.read(name), before);
  ASSERT_TRUE(rig.options.SetData("eve", "secret", 83, true));
  EXPECT_TRUE(rig.home.read(name).starts_with(before));

  ASSERT_TRUE(replace_file(key_path, key));
  starts_anew();
  const auto records = rig.options.records().read_all().value();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_TRUE(records[0].user == "BOB" && records[0].password == "NEW" && !records[0].auto_login);
  ASSERT_TRUE(rig.options.records().replace("ANN,82", {"\xC3\x9C", "P", 7, true}));
  ASSERT_TRUE(rig.options.records().replace(account_key("\xC3\xBC", 7), {"ANN", "P", 82, true}));
  ASSERT_TRUE(rig.options.records().remove({"BOB,81"}));
  EXPECT_NE(account_key("bob1", 23), account_key("BOB", 123));
  const auto kept = rig.general.files.lines(rig.general.account_file).value();
  ASSERT_EQ(kept.size(), 3u);
  EXPECT_EQ(kept[0], "damaged");
  EXPECT_EQ(rig.options.records().find("ANN,82").value()->password, "P");
}

// Occurrences of a text, given inverted so that it does not find itself, in all memory that can be written.
__attribute__((no_sanitize("address"))) int copies_in_memory(const std::string& inverted) {
  constexpr std::uintptr_t reserved = std::uintptr_t{1} << 30;  // such ranges are no heap
  int found = 0;
  std::ifstream maps{"/proc/self/maps"};
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t at = 0;
    std::uintptr_t end = 0;
    char rights[5] = {};
    if (std::sscanf(line.c_str(), "%zx-%zx %4s", &at, &end, rights) != 3 || rights[0] != 'r') continue;
    if (rights[1] != 'w' || end - at > reserved) continue;
    for (end -= inverted.size(); at <= end; ++at) {
      std::size_t same = 0;
      while (same < inverted.size() && reinterpret_cast<const char*>(at)[same] == ~inverted[same])
        ++same;
      found += same == inverted.size() ? 1 : 0;
    }
  }
  return found;
}

TEST(AccountFile, RemovedAccountsLeaveNoPasswordInMemory) {
  const std::string inverted = "\xA8\x96\x8F\x9A\xD2\x92\x9A";  // "Wipe-me"
  ScriptedTerminal terminal{Summaries(6)};
  frmMain& list = terminal.main->accounts();
  terminal.main->general().key = KeyFile{terminal.home->key_file()};
  for (std::int32_t account = 1; account <= 6; ++account) {
    list.lvwClients.select(list.lvwClients.row(0));
    list.edit_account();
    const auto size = static_cast<std::size_t>(10 * account);  // short ones stand in no buffer of their own
    const Secret password = Secret::filled(size, [&](char* out) {
      std::fill(out, out + size, 'x');
      for (std::size_t i = 0; i < inverted.size(); ++i)
        out[i] = static_cast<char>(~inverted[i]);
    });
    frmaccount& dialog = list.account_dialog();
    dialog.txtpassword.set_text(password.reveal());
    dialog.CBServer.type("h:1");
    dialog.chkSave.set_checked(account % 2 == 0);
    dialog.cmdLoginAA.click();
    ASSERT_FALSE(dialog.Displayed());
    CLAPICLASS& sink = *terminal.clients.back()->sink;
    sink.AllDataAreLoaded();
    sink.ConnectionState(true);
    sink.AllDataAreLoaded();
  }
  terminal.file_dialog.answer = (terminal.home->path() / "manage/mine.buf").string();
  list.mnusaveas_Click();
  terminal.file_dialog.answer = (terminal.home->path() / "manage/savelvinfo.buf").string();
  list.mnuload_Click();
  EXPECT_EQ(list.lvwClients.size(), 6u);
  EXPECT_GE(copies_in_memory(inverted), 6);
  list.mnuclear_Click();
  EXPECT_EQ(copies_in_memory(inverted), 0);
}

// As what comes next does: the parser leaves there what it has put together last.
__attribute__((noinline)) void overwrite_stack() {
  volatile char room[100'000];
  for (volatile char& byte : room)
    byte = 0;
}

TEST(AccountFile, ADealerFileLeavesNoPasswordInMemory) {
  const std::string inverted = "\xA8\x96\x8F\x9A\xD2\x92\x9A";
  const TemporaryFolder home;
  {
    std::string text = "# " + std::string(50'000, 'x') + "\n[[account]]\nnumber = 9\nuser = \"U\"\n";
    text.reserve(2 * text.size());
    text += "password = \"xxxx";
    for (const char c : inverted)
      text += static_cast<char>(~c);
    home.write("dealer.toml", text += "\"\n");
    wipe(text);
  }
  {
    const auto config = load_dealer_config(home.path() / "dealer.toml");
    overwrite_stack();
    EXPECT_TRUE(config && copies_in_memory(inverted) == 1);
  }
  EXPECT_EQ(copies_in_memory(inverted), 0);
}

TEST(AccountFile, PasswordsStandNowhereButInThePlainLists) {
  DealerConfig config = DealerConfig::sample(2);
  for (AccountConfig& account : config.accounts)
    account.password = "CANARY" + std::to_string(account.number);
  TestTerminal terminal{config};
  terminal.start_logged_in();
  EXPECT_EQ(terminal.client(500'100).text(2), "Connected");
  for (const AccountConfig& account : config.accounts)
    EXPECT_TRUE(terminal.main->login_options().SetData(account.user, account.password, account.number, true));
  int files = 0;
  for (const auto& entry : fs::recursive_directory_iterator{terminal.home->path()}) {
    const std::string name = entry.path().filename().string();
    if (!entry.is_regular_file() || name == "savelvinfo.buf" || name == "saveconnected.buf") continue;
    ++files;
    EXPECT_EQ(upper(read_file(entry.path()).value()).find("CANARY"), std::string::npos) << name;
  }
  EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace tutti::testing
