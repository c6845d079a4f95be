#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tl/expected.hpp>

#include "core/key_file.h"
#include "ledger/ledger_file.h"
#include "ledger/ledger_queries.h"

namespace tutti {

// Reads the ledger of a home folder, whoever writes it meanwhile, and changes nothing. Everything fails where
// there is none, or where its key is missing.
class LedgerReader {
 public:
  // `key_file` as KeyFile takes it.
  LedgerReader(std::filesystem::path home, const std::filesystem::path& key_file)
      : home_(std::move(home)), key_(key_file) {}

  // For who reads more than once.
  tl::expected<std::unique_ptr<LedgerFile>, FileError> open();
  // One line for each thing that is wrong with it.
  tl::expected<std::vector<std::string>, FileError> check();
  // Copies it, whole, to where nothing is yet.
  tl::expected<void, FileError> back_up(const std::filesystem::path& to);
  // What was filled, oldest first.
  tl::expected<std::vector<FillRecord>, FileError> fills(const FillFilter& filter);
  // See LedgerQueries for the following.
  tl::expected<std::vector<TicketRecord>, FileError> newest_tickets(int count);
  tl::expected<std::vector<TicketRequest>, FileError> requests_of(std::int64_t ticket);
  tl::expected<std::vector<TicketRequest>, FileError> with_tickets_of(std::span<const RequestId> requests);
  tl::expected<std::optional<NamedTicket>, FileError> named(const std::string& key, const std::string& plan);
  struct Unknown {
    std::vector<LedgerUnknown> requests;  // oldest first
    std::string notice;                   // what is wrong with the last run's end; empty mostly
  };
  // Requests whose outcome nobody knows. While no terminal has the folder, those count that the last run left
  // without an answer, as the next start will settle them.
  tl::expected<Unknown, FileError> unknown();
  // Every row of the tables that never change, table by table, as it was added.
  using Row = std::function<void(const std::string& table, const std::vector<std::string>& names,
                                 const std::vector<LedgerValue>& values)>;
  tl::expected<void, FileError> each_row(const Row& take);

 private:
  template <class Work>
  auto with_file(Work&& work) -> tl::expected<decltype(work(std::declval<LedgerFile&>())), FileError>;

  std::filesystem::path home_;
  KeyFile key_;
};

}  // namespace tutti
