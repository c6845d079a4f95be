#pragma once

#include <string>

namespace tutti::testing {

class UnsyncedFiles;

// Ends this process, as a kill does, right before its `number`-th call from now on that writes something to a
// disk or makes what was written last: of whichever thread, library or file. 0: never, it only counts.
void kill_at_write(long number);
// The same, with the power of the machine: of these files, which outlive it, what was not synchronised by
// then may go.
void cut_power_at_write(long number, UnsyncedFiles& unsynced);
// While this file is there, nothing can be written any more, and no room be taken: the disk is full, but for
// what the file keeps. An empty name ends that.
void fill_disk_but_for(const std::string& file);
// How many such calls there were since then.
long writes_counted();

}  // namespace tutti::testing
