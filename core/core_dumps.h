#pragma once

namespace tutti {

// From here on a crash of this process leaves no image of its memory, which holds passwords, and no other
// process of the operator may look into it. Called first in the programs the operator runs.
void forbid_core_dumps();

}  // namespace tutti
