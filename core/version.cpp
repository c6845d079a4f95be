#include "core/version.h"

namespace tutti {

std::string_view program_version() {
  return "Tutti " TUTTI_VERSION;
}

}  // namespace tutti
