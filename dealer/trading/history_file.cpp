#include "dealer/trading/history_file.h"

#include <iterator>
#include <utility>

#include "dealer/trading/book_files.h"
#include "dealer/trading/book_text.h"

namespace tutti {
namespace {

constexpr std::size_t records_a_line = 500;

std::string text_of(const HistoryState& state) {
  BookEntry entry;
  entry.history = state;
  return book_text::entry(entry);
}

}  // namespace

tl::expected<HistoryFile::Content, FileError> HistoryFile::read() const {
  Content content;
  const auto text = read_if_there(file_);
  if (!text) return tl::unexpected(text.error());
  content.settled = text->has_value();
  if (!*text) return content;
  BookReader reader;
  const BookReader::Outcome found = reader.read_history(**text);
  if (found.fault) return tl::unexpected(FileError{file_, *found.fault});
  if (found.cut != 0) {
    auto note = keep_damaged(file_, found, **text);
    if (!note) return tl::unexpected(note.error());
    content.notes.push_back(std::move(*note));
    content.settled = false;
  }
  content.state = std::move(reader.state().history);
  content.since = found.since;
  return content;
}

tl::expected<void, FileError> HistoryFile::rewrite(const HistoryState& state, TimePoint since) {
  log_.reset();
  // In lines of a size that damage to one of them bears, and with one behind them that holds nothing: what is
  // damaged in the last line is taken for a write that was cut off.
  std::string text = book_text::history_head(since);
  HistoryState part;
  for (const RequestRecord& record : state.requests) {
    part.requests.push_back(record);
    if (part.requests.size() == records_a_line) text += text_of(std::exchange(part, {}));
  }
  part.fills = state.fills;
  text += text_of(part);
  return replace_file(file_, text + text_of({}));
}

tl::expected<void, FileError> HistoryFile::append(const HistoryState& state) {
  if (state.empty()) return {};
  if (log_ && log_->broken()) {
    auto found = read();
    if (!found) return tl::unexpected(found.error());
    HistoryState& all = found->state;
    all.requests.insert(all.requests.end(), state.requests.begin(), state.requests.end());
    all.fills.insert(all.fills.end(), state.fills.begin(), state.fills.end());
    return rewrite(all, found->since.value_or(TimePoint{}));
  }
  if (!log_) {
    auto opened = SyncedLog::open(file_);
    if (!opened) return tl::unexpected(opened.error());
    log_.emplace(std::move(*opened));
  }
  return log_->append(text_of(state));
}

}  // namespace tutti
