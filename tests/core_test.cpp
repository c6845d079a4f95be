#include <sys/socket.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <random>

#include "apps/times.h"
#include "core/CLocalSettings.h"
#include "core/appended_file.h"
#include "core/descriptor.h"
#include "core/line_reader.h"
#include "core/numbers.h"
#include "core/row_list.h"
#include "core/text_box.h"
#include "core/text_file.h"
#include "core/texts.h"
#include "core/timer.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {
namespace {

namespace fs = std::filesystem;
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Numbers, ReaderStopsAtTheFirstForeignCharacter) {
  const std::pair<const char*, double> cases[] = {
      {"", 0},     {"abc", 0},   {"12abc", 12},   {"  7 8", 7},  {"-3.5x", -3.5}, {"+2", 2},
      {".5", 0.5}, {"5.", 5},    {"1E-05", 1e-5}, {"1e3", 1000}, {"5e", 5},       {"-", 0},
      {"--5", 0},  {"+-5", 0},   {"1.2.3", 1.2},  {"1,5", 1},    {"inf", 0},      {"nan", 0},
      {"-inf", 0}, {"1e999", 0}, {"0x1F", 0},     {"\t5", 0}};
  for (const auto& [text, value] : cases)
    EXPECT_EQ(read_number(text), value) << '"' << text << '"';
  EXPECT_EQ(read_number(std::string_view{"1234"}.substr(0, 2)), 12.0) << "not what stands behind the text";
  EXPECT_EQ(read_integer("-7.9"), -7);
  EXPECT_EQ(read_integer("9999999999"), std::numeric_limits<std::int32_t>::max());
  // The strict readers want the whole text.
  EXPECT_EQ(parse_number(" -2.5 "), -2.5);
  for (const char* text : {"", " ", "1x", "1 2", "inf", "."})
    EXPECT_FALSE(parse_number(text)) << text;
  EXPECT_EQ(parse_int32("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(parse_int32("+5"), 5);
  for (const char* text : {"", "2147483648", "1.0", "1e3", "5a", "+-5"})
    EXPECT_FALSE(parse_int32(text)) << text;
}

TEST(Numbers, WriterGivesFifteenDigitsAndSummariesTwoDecimals) {
  const std::pair<const char*, double> general[] = {
      {"0", -0.0},      {"0.3", 0.1 + 0.2},  {"-12.5", -12.5},
      {"0.0001", 1e-4}, {"1E-05", 1e-5},     {"-1.25E-05", -1.25e-5},
      {"1E+15", 1e15},  {"1.5E+20", 1.5e20}, {"0", infinite}};
  EXPECT_EQ(number_text(1.0 / 3.0) + number_text(123456789012345.0), "0.333333333333333123456789012345");
  for (const auto& [text, value] : general) {
    EXPECT_EQ(number_text(value), text);
    EXPECT_EQ(as_text_reads(value), read_number(text)) << text;
  }
  // Of every size, and halfway between two numbers of fifteen digits.
  std::mt19937_64 random{7};
  for (int i = 0; i < 20'000; ++i) {
    const double any = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 110) - 100);
    for (const double value : {any, -std::floor(any) - 0.5})
      ASSERT_EQ(as_text_reads(value), read_number(number_text(value))) << number_text(value);
  }
  const std::pair<const char*, double> summary[] = {{"0", 0},        {"15.3", 15.3},    {"0.12", 0.125},
                                                    {"0.38", 0.375}, {"-0.12", -0.125}, {"0", -0.005},
                                                    {"100", 99.999}, {"0", infinite}};
  EXPECT_EQ(summary_text(1234567.891) + summary_text(-1e15), "1234567.89-1000000000000000");
  for (const auto& [text, value] : summary)
    EXPECT_EQ(summary_text(value), text) << value;
}

TEST(Texts, LetterCaseOfEveryLetter) {
  const std::pair<const char*, const char*> cases[] = {{"m\xC3\xBCller", "M\xC3\x9CLLER"},  // u umlaut
                                                       {"\xC3\xBF", "\xC5\xB8"},            // y diaeresis
                                                       {"\xC9\x90", "\xE2\xB1\xAF"},        // longer in bytes
                                                       {"\xD0\xBF\xD1\x80i", "\xD0\x9F\xD0\xA0I"},
                                                       {"\xFC\x80 a", "\xFC\x80 A"},  // no UTF-8
                                                       {"a\xC3", "A\xC3"},
                                                       {"az", "AZ"}};
  for (const auto& [small, large] : cases) {
    EXPECT_EQ(upper(small), large);
    EXPECT_EQ(folded(large), folded(small)) << large;
    EXPECT_TRUE(same_letters(small, large) && !same_letters(small, std::string{large} + "x")) << large;
    EXPECT_TRUE(contains_letters(std::string{"x"} + large + "x", folded(small))) << large;
  }
  EXPECT_FALSE(same_letters("\xC3\xBC", "u"));
}

TEST(LocaleSettings, ForceTheSeparatorsAndReadTypedNumbers) {
  ProcessLocale own;
  const CLocalSettings settings{own};
  EXPECT_EQ(settings.LocalDecimal() + settings.LocalThousand(), ".,");
  EXPECT_EQ(settings.GetSystemCharacter(29) + settings.GetSystemCharacter(30), "/:");
  const std::pair<const char*, double> cases[] = {{"1,234.5", 1234.5}, {"", 0},       {"12abc", 12},
                                                  {"1,000,000", 1e6},  {"-1,5", -15}, {"x", 0}};
  for (const auto& [text, value] : cases)
    EXPECT_EQ(settings.StringToNumber(text), value) << text;
}

std::string keys_of(const RowList& list) {
  std::string out;
  for (const Row& row : list)
    out += (row.key().empty() ? "-" : row.key().text()) + " ";
  return out;
}

void expect_places(RowList& list) {
  for (std::size_t i = 0; i < list.size(); ++i)
    EXPECT_EQ(list.index_of(list.row(i)), i) << keys_of(list);
}

TEST(RowLists, KeepKeysAndPlacesThroughEveryChange) {
  RowList list{{"A", "B"}};
  Row* one = list.add(client_key(1));
  Row* three = list.add(client_key(3));
  list.insert(0, ticket_key(9, 81));
  list.insert(2, order_key(-2, 81));
  list.insert(1);
  EXPECT_EQ(keys_of(list), "T9 - C1 P-2 C3 ");
  EXPECT_EQ(list.add(client_key(3)), nullptr);
  // The same number of another account is another row, though its key reads the same.
  EXPECT_EQ(list.find(ticket_key(9, 82)), nullptr);
  Row* other = list.add(ticket_key(9, 82));
  EXPECT_EQ(keys_of(list), "T9 - C1 P-2 C3 T9 ");
  EXPECT_EQ(list.find(ticket_key(9, 82)), other);
  EXPECT_EQ(list.find(ticket_key(9, 81)), &list.row(0));
  list.remove(*other);
  expect_places(list);

  list.set_current(one);
  list.remove(*one);
  EXPECT_EQ(list.current(), nullptr);
  EXPECT_EQ(list.find(client_key(1)), nullptr);
  EXPECT_FALSE(list.rekey(*three, order_key(-2, 81)));
  EXPECT_TRUE(list.rekey(*three, client_key(1)));
  EXPECT_EQ(list.find(client_key(1)), three);
  list.remove(list.row(0));
  EXPECT_EQ(keys_of(list), "- P-2 C1 ");
  expect_places(list);
  for (Row& row : list) {
    list.select(row);
    for (const Row& each : list)
      EXPECT_EQ(each.selected(), &each == &row);
  }

  // Nobody asks for a place between these.
  Row* gone[] = {list.add(ticket_key(5, 81)), list.insert(1, ticket_key(6, 81)), list.add(ticket_key(7, 81)),
                 list.insert(2)};
  list.add(ticket_key(8, 81));
  for (Row* row : gone)
    list.remove(*row);
  EXPECT_EQ(list.size(), 4u);
  EXPECT_EQ(keys_of(list), "- P-2 C1 T8 ");
  EXPECT_EQ(list.checked_count() + list.selected().size(), 1u);
  list.insert(0, ticket_key(3, 81));
  expect_places(list);
  list.remove(*list.find(order_key(-2, 81)));
  list.remove(*list.find(ticket_key(8, 81)));
  list.remove(*list.find(ticket_key(3, 81)));
  list.insert(1, order_key(-2, 81));
  // Who goes through the rows may ask for places on the way.
  for (Row* row : {list.insert(1, ticket_key(5, 81)), list.insert(2, ticket_key(6, 81))})
    list.remove(*row);
  std::size_t place = 0;
  for (const Row& row : list)
    EXPECT_EQ(list.index_of(row), place++);
  EXPECT_EQ(place, 3u);
  EXPECT_EQ(keys_of(list), "- P-2 C1 ");
  expect_places(list);

  auto aside = list.take_all();
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.find(client_key(1)), nullptr);
  list.add(ticket_key(4, 81));
  list.put_back(std::move(aside));
  EXPECT_EQ(keys_of(list), "- P-2 C1 T4 ");
  EXPECT_EQ(list.find(client_key(1)), three);
  expect_places(list);

  Row& first = *three;
  Row& second = *list.add();
  const auto structure = list.structure_stamp();
  const auto before = second.stamp();
  first.set_text(0, "x");
  EXPECT_EQ(second.stamp(), before);
  EXPECT_EQ(first.stamp(), list.stamp());
  second.set_checked(true);
  EXPECT_GT(second.stamp(), first.stamp());
  EXPECT_EQ(list.structure_stamp(), structure);
  list.remove(first);
  EXPECT_GT(list.structure_stamp(), structure);
}

TEST(RowLists, CellsOfARecordAreMadeWhenSomebodyReads) {
  RowList list{{"A", "B"}};
  int record = 1;
  int made = 0;
  list.set_make_cells([&](Row& row) {
    ++made;
    row.set_number(0, record);
  });
  Row& row = *list.add();
  row.outdate();
  const auto stamp = row.stamp();
  for (record = 2; record < 5; ++record)
    row.outdate();
  EXPECT_EQ(made, 0);
  EXPECT_EQ(row.stamp(), stamp + 3);
  EXPECT_EQ(row.text(0) + row.text(1), "5");
  EXPECT_EQ(row.stamp(), stamp + 3) << "reading is no change";
  EXPECT_EQ(made, 1);
  // What is written into an outdated row stands behind what is made.
  row.outdate();
  row.set_text(0, "typed");
  EXPECT_EQ(row.text(0), "typed");
  EXPECT_EQ(row.stamp(), list.stamp());
  EXPECT_EQ(made, 2);
}

TEST(TextBoxes, TypeAtTheSelection) {
  TextBox box;
  box.set_text("gr\xC3\xBC\xC3\x9F");
  box.type("\b\b");
  EXPECT_EQ(box.text(), "gr");
  box.type("\xE2\x82\xAC!");
  EXPECT_EQ(box.text(), "gr\xE2\x82\xAC!");
  box.select(2, 3);
  box.type("\b");
  EXPECT_EQ(box.text(), "gr!");
  box.select(0, 99);
  box.type("x");
  EXPECT_EQ(box.text(), "x");
  box.type("\b\b\b");
  EXPECT_EQ(box.text(), "");
}

TEST(TextFiles, LinesHoweverTheyEnd) {
  const TemporaryFolder folder;
  const Paths paths{folder.path()};
  const TextFile files{paths};
  const std::string name = "\\Manage\\X.BUF";
  using Lines = std::vector<std::string>;
  const std::pair<const char*, Lines> cases[] = {{"", {}},
                                                 {"\n", {""}},
                                                 {"a\nb", {"a", "b"}},
                                                 {"a\r\nb\r\n", {"a", "b"}},
                                                 {"a\r\n\r\nb\r", {"a", "", "b"}},
                                                 {"a\n\n", {"a", ""}}};
  for (const auto& [content, lines] : cases) {
    folder.write("manage/x.buf", content);
    EXPECT_EQ(files.lines(name).value(), lines) << content;
    // An editor may leave the last line without its end; what is appended is still a line of its own.
    ASSERT_TRUE(files.write_line(name, "more", TextFile::Mode::append));
    Lines longer = lines;
    longer.emplace_back("more");
    EXPECT_EQ(files.lines(name).value(), longer) << content;
  }
  EXPECT_EQ(files.line(name, 1) + files.line(name, 3) + files.line(name, 9), "amore");
  ASSERT_TRUE(files.write_line(name, "alone", TextFile::Mode::create));
  EXPECT_EQ(folder.read("manage/x.buf"), "alone\n");
  EXPECT_TRUE(files.lines("\\manage\\missing.buf").value().empty());
  const std::string mark = "\xEF\xBB\xBF";
  folder.write("manage/x.buf", mark + "a\n" + mark + "b");
  EXPECT_EQ(files.lines(name).value(), (Lines{"a", mark + "b"}));
}

TEST(TextFiles, OnlyWhatIsNotThereIsMissing) {
  const TemporaryFolder folder;
  const Paths paths{folder.path()};
  const TextFile files{paths};
  const fs::path manage = folder.path() / "manage";
  folder.write("manage/large.buf", "");
  fs::create_directory(manage / "folder.buf");
  ASSERT_EQ(::mkfifo((manage / "pipe.buf").c_str(), 0600), 0);
  fs::create_symlink(manage / "loop.buf", manage / "loop.buf");
  fs::create_symlink(folder.path() / "unmounted/list.buf", manage / "nowhere.buf");
  fs::resize_file(manage / "large.buf", largest_file + 1);
  fs::create_symlink(folder.path() / "looped", folder.path() / "looped");
  for (const char* name : {"manage/folder.buf", "manage/pipe.buf", "manage/loop.buf", "manage/nowhere.buf",
                           "manage/large.buf", "looped/x.buf", "manage/large.buf/x.buf"}) {
    const auto lines = files.lines(name);
    ASSERT_FALSE(lines) << name;
    const std::string place = *name == 'l' ? "looped" : name;
    EXPECT_NE(lines.error().text().find(place), std::string::npos) << lines.error().text();
  }
  EXPECT_EQ(files.exists("manage/none.buf").value(), false);
  for (const char* name : {"manage/folder.buf", "manage/pipe.buf"}) {
    EXPECT_FALSE(files.write_line(name, "x", TextFile::Mode::create)) << name;
    EXPECT_FALSE(files.write_line(name, "x", TextFile::Mode::append)) << name;
    const fs::path replaced = manage / "replaced.buf";
    auto kept_open = AppendedFile::open(replaced);
    ASSERT_TRUE(kept_open && kept_open->append("x\n"));
    fs::remove(replaced);
    fs::create_symlink(folder.path() / name, replaced);
    EXPECT_FALSE(kept_open->append("x\n")) << name;
    fs::remove(replaced);
  }
}

TEST(LineReader, GivesEveryLineOfAnyLength) {
  const TemporaryFolder folder;
  std::string content = "\xEF\xBB\xBF";
  std::vector<std::string> lines;
  for (const std::size_t length : {0u, 65'535u, 65'536u, 1u, 65'531u, 200'000u, 3u}) {
    lines.push_back(std::string(length, 'x'));
    content += lines.back() + (length % 2 == 0 ? "\r\n" : "\n");
  }
  for (const char* last : {"", "open", "open\r"}) {
    folder.write("x", content + last);
    std::vector<std::string> read;
    ASSERT_TRUE(read_lines(folder.path() / "x", [&](std::string_view line) { read.emplace_back(line); }));
    auto expected = lines;
    if (*last != '\0') expected.emplace_back("open");
    EXPECT_EQ(read, expected) << last;
  }
}

// What comes piece by piece is read until there is as much as was asked for, or no more.
TEST(Descriptors, ReadAllPieces) {
  int ends[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
  const Descriptor in{ends[0]};
  Descriptor out{ends[1]};
  EXPECT_TRUE(out.write("ab") && out.write("c") && out.write("de") && out.write("f"));
  EXPECT_TRUE(out.close());
  for (const std::string_view text : {"abcde", "f", ""}) {
    char read[5];
    EXPECT_EQ(std::string_view(read, in.read(read, sizeof read).value()), text);
  }
}

TEST(PathsTest, EitherSlashAndAnyCaseMeanOneFile) {
  const TemporaryFolder folder;
  folder.write("Manage/Acountinfo.buf", "x");
  folder.write("sounds/Connect.WAV", "x");
  const Paths paths{folder.path()};
  const fs::path record = folder.path() / "Manage" / "Acountinfo.buf";
  for (const char* name : {"\\manage\\acountinfo.buf", "/MANAGE/Acountinfo.BUF", "\\Manage/Acountinfo.buf"}) {
    EXPECT_EQ(paths.file(paths.full(name)), record) << name;
    EXPECT_EQ(paths.file(std::string_view{name}.substr(1)), record) << name;
  }
  EXPECT_EQ(paths.file(paths.full("\\sounds\\Connect.wav")), folder.path() / "sounds" / "Connect.WAV");
  EXPECT_EQ(paths.file(paths.full("\\manage\\New.buf")), folder.path() / "Manage" / "New.buf");
  // A neighbour whose name begins like the folder's is not inside it.
  const fs::path outside = folder.path().parent_path() / (folder.path().filename().string() + "2.buf");
  EXPECT_EQ(paths.file(outside.string()), outside);
}

TEST(FileWriter, FilesAndFoldersArePrivateWhateverTheUmask) {
  for (const mode_t mask : {0000u, 0277u}) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "a" / "b" / "x.buf";
    const mode_t before = ::umask(mask);
    const bool written = replace_file(file, "1\n").has_value() && append_file(file, "2\n").has_value();
    const bool appended = append_file(folder.path() / "a" / "new.buf", "3\n").has_value();
    ::umask(before);
    ASSERT_TRUE(written && appended) << mask;
    const auto mode = [](const fs::path& path) {
      return static_cast<unsigned>(fs::status(path).permissions());
    };
    EXPECT_EQ(mode(file), 0600u) << mask;
    EXPECT_EQ(mode(folder.path() / "a" / "new.buf"), 0600u) << mask;
    EXPECT_EQ(mode(folder.path() / "a"), 0700u) << mask;
    EXPECT_EQ(mode(folder.path() / "a" / "b"), 0700u) << mask;
    EXPECT_EQ(read_file(file).value(), "1\n2\n");
    EXPECT_EQ(std::distance(fs::directory_iterator{file.parent_path()}, {}), 1);
  }
}

TEST(FileWriter, NobodyGainsRights) {
  const TemporaryFolder folder;
  folder.write("a/x.buf", "1");
  const fs::path file = folder.path() / "a/x.buf";
  const std::pair<unsigned, unsigned> modes[] = {{0644, 0600}, {0400, 0400}, {0600, 0600}, {0777, 0700}};
  for (const auto& [before, after] : modes) {
    fs::permissions(file, fs::perms{before});
    fs::permissions(folder.path() / "a", fs::perms{0755});
    ASSERT_TRUE(replace_file(file, "2"));
    EXPECT_EQ(static_cast<unsigned>(fs::status(file).permissions()), after);
    EXPECT_EQ(static_cast<unsigned>(fs::status(file.parent_path()).permissions()), 0755u);
  }
  fs::permissions(file.parent_path(), fs::perms{0550});
  keep_private(file);
  EXPECT_EQ(static_cast<unsigned>(fs::status(file.parent_path()).permissions()), 0500u);
  fs::permissions(file.parent_path(), fs::perms{0700});
}

TEST(Clocks, TheMachinesTellsItsOwnZone) {
  const char* zone = std::getenv("TZ");
  const std::optional<std::string> before = zone == nullptr ? std::nullopt : std::optional<std::string>{zone};
  ::setenv("TZ", "NST3:30NDT,M3.2.0,M11.1.0", 1);
  const TimePoint winter{std::chrono::seconds{1'767'225'600}};
  EXPECT_EQ(SystemClock{}.utc_offset(winter), -3h - 30min);
  EXPECT_EQ(SystemClock{}.utc_offset(winter + 4'000h), -2h - 30min);
  // What the clock showed tells which of the two it was.
  const SystemClock clock;
  LocalTimes times{clock};
  for (const auto& [wall, zone] : {std::pair{"2026-03-08 01:59:59", "-03:30"},
                                   {"2026-03-08 03:00:00", "-02:30"},
                                   {"2026-11-01 00:59:59", "-02:30"},
                                   {"2026-11-01 02:00:09", "-03:30"}}) {
    std::string text = std::string{wall} + zone;
    EXPECT_EQ(times.text(wall), text.replace(10, 1, "T"));
    EXPECT_EQ(times.text(text), text) << "no time of the journal";
  }
  before ? ::setenv("TZ", before->c_str(), 1) : ::unsetenv("TZ");
}

TEST(Timer, GoesOnWhenTheClockIsSetBack) {
  ManualClock clock;
  Timer timer{std::chrono::seconds{1}};
  int ticks = 0;
  timer.on_tick = [&] { ++ticks; };
  const std::pair<std::chrono::milliseconds, int> steps[] = {{0ms, 1}, {999ms, 1}, {1ms, 2},
                                                             {-1h, 3}, {999ms, 3}, {5s, 4}};
  for (const auto& [step, expected] : steps) {
    clock.advance(step);
    timer.poll(clock.now());
    EXPECT_EQ(ticks, expected);
  }
}

}  // namespace
}  // namespace tutti::testing
