#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tutti::testing {

// The files of a home's ledger, with left.log, as a disk has them that was told only of what was
// synchronised. Each keeps the writes since it was last synchronised apart. When the power fails these are
// lost, or some of them reach the disk all the same, in any order, the last sector of one torn.
class UnsyncedFiles {
 public:
  // All that is there by now is on the disk.
  UnsyncedFiles(const std::filesystem::path& home, unsigned seed);

  // Called right before the call of the system; of other files nothing is kept. Without an offset it writes
  // at the end.
  void written(int descriptor, const void* data, std::size_t size, off_t offset = -1);
  void synchronised(int descriptor);
  // Writes down what the power cut leaves of the files. They stay as they are: other threads of the process
  // may be at them until it ends.
  void lose();
  // Makes the files of a home what was written down, once the process has ended; nothing where none was.
  static void take_effect(const std::filesystem::path& home);

 private:
  struct Write {
    std::size_t offset = 0;
    std::string data;
    bool cuts = false;  // the file was cut off at the offset
  };
  struct File {
    ino_t number = 0;
    std::string synced;
    std::size_t size = 0;  // of the file as programs see it
    std::vector<Write> since;
  };

  static bool is_watched(const std::filesystem::path& file);
  static void apply(const Write& write, std::string& content);
  // nullptr when it is none of them. Takes up what became of it without a write.
  File* of(int descriptor);
  bool drawn() { return random_() % 2 == 0; }

  std::filesystem::path home_;
  std::mt19937 random_;
  std::map<std::string, File> files_;  // by name
};

}  // namespace tutti::testing
