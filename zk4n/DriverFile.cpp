#include "zk4n/DriverFile.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "platform/com/RegKey.h"
#include "platform/os/Text.h"
#include "server/interface/Guids.h"
#include "zk4n/Arguments.h"
#include "zk4n/DriverClient.h"

namespace zk4n {
namespace {

namespace fs = std::filesystem;

std::uint32_t Word(std::string_view bytes, std::size_t offset, std::size_t size) {
  std::uint32_t word = 0;
  for (std::size_t i = size; i-- > 0;) {
    word = word << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return word;
}

/// What the head of an ELF module says.
int BitsOfElf(std::string_view head) { return head[4] == 2 ? 64 : head[4] == 1 ? 32 : 0; }

/// What the head of a Windows module says: its header's place, and the processor there.
int BitsOfPe(std::string_view head) {
  constexpr std::size_t kHeaderPlace = 0x3C;
  const std::size_t header = Word(head, kHeaderPlace, 4);
  if (header > head.size() - 6 || head.substr(header, 4) != std::string_view("PE\0\0", 4)) return 0;
  const std::uint32_t processor = Word(head, header + 4, 2);
  return processor == 0x8664 ? 64 : processor == 0x14C ? 32 : 0;
}

}  // namespace

std::string DriverFile(const std::string& typed) {
  const fs::path path = typed.empty() ? DefaultDriverModule() : PathArgument(typed);
  RequireReadable(Utf8Of(path));
  return Utf8Of(fs::absolute(path).lexically_normal());
}

std::string RegisteredDriverFile() {
  std::array<OLECHAR, 39> clsid{};
  StringFromGUID2(__uuidof(ZentrelK4N), clsid.data(), static_cast<int>(clsid.size()));
  const os::WideString key =
      os::WideString(OLESTR("CLSID\\")) + clsid.data() + OLESTR("\\InprocServer32");
  return os::ToNarrow(RegistryText(HKEY_CLASSES_ROOT, key), os::kUtf8CodePage);
}

int BitsOfModule(const std::string& file) {
  std::array<char, 4096> head{};
  std::ifstream stream(PathArgument(file), std::ios::binary);
  stream.read(head.data(), head.size());
  const std::string_view bytes(head.data(), head.size());
  if (bytes.starts_with("\x7F"
                        "ELF"))
    return BitsOfElf(bytes);
  return bytes.starts_with("MZ") ? BitsOfPe(bytes) : 0;
}

}  // namespace zk4n
