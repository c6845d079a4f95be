// What a start makes of files that were torn or changed.

#include "kept_rig.h"

namespace tutti {
namespace {

// Whatever was told is there; what stood in the piece that is lost never was told.
TEST(DealerDamage, ATornLastLineIsCutAndReportedDamageElsewhereEndsTheStart) {
  const TemporaryFolder home;
  Words at_line;  // the books after so many lines of the log
  {
    KeptRig rig(home, still_market(1));
    const auto seat = rig.trader(0);
    for (int i = 0; i < 3; ++i) {
      DealerRig::send(seat, buy, "EURUSD", 0.1 * (i + 1));
      rig.run(0);
      ASSERT_TRUE(i > 0 || rig.server.save_book());
      at_line.push_back(books(rig.server));
      rig.run(200);
      at_line.push_back(books(rig.server));
    }
  }
  const std::string log = home.read("dealer-book.log");
  const std::string book = home.read("dealer-book.toml");
  Words lines;
  for (std::size_t at = 0; at < log.size(); at = log.find('\n', at) + 1)
    lines.push_back(log.substr(at, log.find('\n', at) + 1 - at));
  ASSERT_EQ(lines.size(), at_line.size()) << log;  // with the head in front, and the first one in the book
  const auto start = [&](const std::string& changed_log, const std::string& changed_book) {
    home.write("dealer-book.log", changed_log);
    home.write("dealer-book.toml", changed_book);
    KeptRig rig(home, still_market(1), noon);
    if (!rig.kept) return rig.fault();
    std::string found = books(rig.server);
    for (const std::string& note : *rig.kept)
      found += note.substr(note.find("dealer-book"));
    return found;
  };
  std::string whole;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    for (std::size_t kept = 0; kept <= lines[line].size(); kept += kept < 3 ? 1 : 17) {
      const bool torn = (line == 0 || kept > 0) && kept + 1 < lines[line].size();
      const std::string note = "dealer-book.log: line " + std::to_string(line + 1) +
                               " was damaged and is left out; the file as it was is dealer-book.log.damaged";
      EXPECT_EQ(start(whole + lines[line].substr(0, kept), book),
                at_line[line == 0 ? 0 : line - 1] + (torn ? note : ""))
          << line << ' ' << kept;
    }
    whole += lines[line];
  }
  EXPECT_EQ(start(log, book), at_line.back());
  {
    KeptRig rig(home, still_market(1), noon + seconds{5});
    DealerRig::send(rig.trader(0), buy, "EURUSD", 0.5);
    rig.run(200);
    ASSERT_TRUE(rig.server.save_book());
    const std::string found = books(rig.server);
    EXPECT_EQ(start(log, home.read("dealer-book.toml")), found) << "the book holds what is still in its log";
  }
  const std::string first_log = lines[0];
  const auto last_line = book.rfind('\n', book.size() - 2) + 1;
  const auto before = book.rfind('\n', last_line - 2) + 1;
  const std::string left_out = " was damaged and is left out; the file as it was is dealer-book.toml.damaged";
  const struct {
    const char* what;
    std::string log, book, found;
  } cases[] = {
      {"a log that was never made", "", book, at_line[0] + "dealer-book.log: line 1 was damaged"},
      {"an older book put back", lines[0] + lines[1], "# x\nversion = 1\nnext_number = 5\n",
       "line 1: goes with another book"},
      {"the book's end torn", first_log, book.substr(0, book.size() - 9),
       at_line[0] + "dealer-book.toml: line 7" + left_out},
      {"the book's end missing", first_log, book.substr(0, last_line),
       at_line[0] + "dealer-book.toml: line 7" + left_out},
      {"an entry of the book torn", first_log, book.substr(0, last_line - 5),
       "dealer-book.toml: line 6: 2 of 4 entries are there"},
      {"an entry of the book missing", first_log, book.substr(0, before),
       "dealer-book.toml: line 6: 2 of 4 entries are there"},
      {"an entry changed by hand", first_log, book.substr(0, before - 20) + book.substr(before - 1),
       at_line[0]},
  };
  for (const auto& one : cases)
    EXPECT_NE(start(one.log, one.book).find(one.found), std::string::npos) << one.what << '\n'
                                                                           << start(one.log, one.book);
}

// The blocks of a piece reach the disk in any order, so that any part of the last one may be missing.
TEST(DealerDamage, AnUnfinishedLastPieceIsCutWhole) {
  const TemporaryFolder home;
  const auto found_in = [](const DealingServer& server) {
    return books(server) + std::to_string(server.requests_in_flight()) + " on their way";
  };
  std::string sent, log, book;
  {
    KeptRig rig(home, still_market(3));
    std::vector<DealerRig::Seat> seats;
    for (std::size_t account = 0; account < 3; ++account)
      seats.push_back(rig.trader(account));
    for (const auto amount : {0.1, 0.2}) {
      for (const auto& seat : seats)
        DealerRig::send(seat, buy, "EURUSD", amount);
      rig.run(0);
      sent = found_in(rig.server);
      rig.run(500);
      ASSERT_TRUE(amount > 0.1 || rig.server.save_book());
    }
    log = home.read("dealer-book.log");
    book = home.read("dealer-book.toml");
  }
  std::vector<std::size_t> begins{0};  // of lines: the head, two pieces of three, the end
  for (std::size_t at = 0; (at = log.find('\n', at) + 1) != 0;)
    begins.push_back(at);
  ASSERT_EQ(begins.size(), 8U) << log;
  enum How { changed, zeroed, ended };  // zeroed with its end, ended in front of it
  const std::string broken = "is damaged";
  const struct {
    How how;
    std::vector<std::size_t> lines;
    std::string note;
  } cases[] = {{changed, {5}, "lines 5 to 7 were"},
               {changed, {6}, "lines 5 to 7 were"},
               {changed, {7}, "lines 5 to 7 were"},
               {changed, {5, 6}, "lines 5 to 7 were"},
               {zeroed, {5}, "lines 5 to 6 were"},
               {zeroed, {5, 6}, "line 5 was"},
               {zeroed, {6, 7}, "lines 5 to 6 were"},
               {ended, {7}, "lines 5 to 6 were"},
               {ended, {6}, "line 5 was"},
               {changed, {4}, broken},
               {changed, {3, 7}, broken},
               {zeroed, {4, 5}, broken},
               {changed, {4, 5, 6, 7}, broken},
               {changed, {1, 5}, broken}};
  for (const auto& one : cases) {
    std::string text = log;
    for (const std::size_t line : one.lines) {
      if (one.how == changed) text[begins[line - 1] + 20] ^= 0x40;
      if (one.how == zeroed)
        text.replace(begins[line - 1], begins[line] - begins[line - 1], begins[line] - begins[line - 1],
                     '\0');
      if (one.how == ended) text.resize(begins[line - 1]);
    }
    home.write("dealer-book.log", text);
    home.write("dealer-book.toml", book);
    const KeptRig rig(home, still_market(3));
    const bool cut = one.note != broken;
    ASSERT_EQ(rig.kept.has_value(), cut) << rig.fault();
    EXPECT_NE((cut ? rig.kept->at(0) : rig.fault()).find(one.note), std::string::npos)
        << one.note << ": " << (cut ? rig.kept->at(0) : rig.fault());
    if (!cut) continue;
    EXPECT_EQ(found_in(rig.server), sent);
    EXPECT_EQ(home.read("dealer-book.log.damaged"), text);
  }
}

}  // namespace
}  // namespace tutti
