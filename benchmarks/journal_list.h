#pragma once

namespace tutti::bench {

// One more line in the journal window while its filter stands: in the history of an account with a million
// lines, over the live list, which holds ten thousand at most and gives its oldest up for each. Wants the
// toolkit's application.
double journal_line_ratio();

}  // namespace tutti::bench
