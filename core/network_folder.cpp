#include "core/network_folder.h"

#include <sys/vfs.h>

#include <utility>

namespace tutti {

std::string_view network_file_system(std::int64_t kind) {
  constexpr std::pair<std::int64_t, std::string_view> kinds[] = {
      {0x6969, "NFS"},      {0x517B, "SMB"},      {0xFE534D42, "SMB"},  {0xFF534D42, "CIFS"},
      {0x5346414F, "AFS"},  {0x6B414653, "AFS"},  {0x00C36400, "Ceph"}, {0x564C, "NCP"},
      {0x73757245, "Coda"}, {0x01161970, "GFS2"}, {0x7461636F, "OCFS2"}};
  for (const auto& [number, name] : kinds)
    if (number == kind) return name;
  return {};
}

std::string_view network_file_system(const std::filesystem::path& folder) {
  struct statfs about {};
  if (::statfs(folder.c_str(), &about) != 0) return {};
  // 32 bits of it count, whatever the sign of the field.
  return network_file_system(static_cast<std::int64_t>(static_cast<std::uint32_t>(about.f_type)));
}

}  // namespace tutti
