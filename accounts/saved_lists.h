#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/secret.h"
#include "core/text_file.h"

namespace tutti {

// The two saved account lists of the data folder, one "user,password,account" per line: all accounts, and
// those that were connected. Passwords stand in them in plain text, so nobody but the operator has rights to
// the lists or to their folder. Lines are compared as texts; what tells accounts apart is the key of user
// name and account number.
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
  // Appends unless an equal line is there; nothing is written when a field is empty.
  tl::expected<void, FileError> append(const std::string& list, const Record& record) const;
  // Puts the record in the place of the line with its key, or at the end.
  tl::expected<void, FileError> update(const std::string& list, const Record& record) const;
  // Takes the lines of these account keys out of both lists.
  tl::expected<void, FileError> forget(const std::vector<std::string>& keys) const;

 private:
  tl::expected<void, FileError> append_line(const std::string& list, const std::string& line) const;
  tl::expected<void, FileError> write_lines(const std::string& list,
                                            const std::vector<std::string>& lines) const;

  const TextFile& files_;
  std::string all_;
  std::string connected_;
};

}  // namespace tutti
