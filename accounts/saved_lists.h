#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/secret.h"
#include "core/text_file.h"

namespace tutti {

// The two saved account lists of the data folder, one "user,password,account" per line: all accounts, and
// those that were connected. Passwords stand in them in plain text, so nobody but the operator has rights to
// the lists or to their folder, and what holds their text in memory is wiped. Lines are compared as texts;
// what tells accounts apart is the key of user name and account number. A list is changed as a whole, so that
// a crash leaves the old one or the new one.
class SavedLists {
 public:
  struct Record {
    std::string user;
    Secret password;
    std::int32_t account = 0;
  };
  // What a list holds. Of several records with one key the last counts, in the place of the first.
  struct Content {
    std::vector<Record> records;
    std::vector<std::size_t> skipped_lines;  // from 1: too short, or without an account number
  };

  SavedLists(const TextFile& files, const Paths& paths);

  const std::string& all() const { return all_; }
  const std::string& connected() const { return connected_; }

  tl::expected<Content, FileError> read_all() const;
  // Makes these records the whole list of all accounts.
  tl::expected<void, FileError> write_all(const std::vector<Record>& records) const;
  // Makes a chosen file the list of all accounts, and keeps the list that was as ".old". A file without a
  // single account line is refused. Where this fails the list is as it was.
  tl::expected<void, FileError> load(std::string_view chosen) const;
  // Takes away what load() kept.
  tl::expected<void, FileError> forget_old() const { return files_.remove(old_list()); }
  // Appends those whose line is not there yet, in one go; one with an empty field is left out.
  tl::expected<void, FileError> append(const std::string& list, std::span<const Record> records) const {
    return add(list, records, false);
  }
  // Puts each in the place of the line with its key, or at the end.
  tl::expected<void, FileError> update(const std::string& list, std::span<const Record> records) const {
    return add(list, records, true);
  }
  // Puts the record in the place of another account's line, in both lists; the full list gets it in any case.
  tl::expected<void, FileError> replace(std::string_view key, const Record& record) const;
  // Takes the lines of these account keys out of both lists.
  tl::expected<void, FileError> forget(const std::vector<std::string>& keys) const;

 private:
  std::string old_list() const { return all_ + ".old"; }
  tl::expected<void, FileError> add(const std::string& list, std::span<const Record> records,
                                    bool by_key) const;
  tl::expected<void, FileError> write_lines(const std::string& list,
                                            const std::vector<std::string_view>& lines) const;

  const TextFile& files_;
  std::string all_;
  std::string connected_;
};

}  // namespace tutti
