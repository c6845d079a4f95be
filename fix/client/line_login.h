#pragma once

#include <cstdint>
#include <string>

#include "core/secret.h"

namespace tutti {

// Who logs in on a line.
struct LineLogin {
  std::int32_t account = 0;
  std::string user;
  Secret password;
};

}  // namespace tutti
