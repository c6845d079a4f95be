#pragma once

namespace tutti {

// Opens those of the descriptors 0 to 2 that the program was started without, on nothing. Else the first
// files that it opens would get their numbers, and what is printed would go into them. Called before anything
// else in the programs the operator runs.
void open_standard_streams();

}  // namespace tutti
