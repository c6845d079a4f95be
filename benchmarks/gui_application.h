#pragma once

#include <QApplication>
#include <memory>

namespace tutti::bench {

// The toolkit as the program sets it up, on this of its platforms; on the one that needs no screen where
// there is none.
std::unique_ptr<QApplication> make_application(const char* platform);

}  // namespace tutti::bench
