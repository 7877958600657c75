#include "visa/Attributes.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace zevisa {
namespace {

enum class Type : std::uint8_t { kByte = 1, kWord = 2, kLong = 4, kQuad = 8, kText = 0 };
enum class Access : std::uint8_t { kRead, kWrite };

struct Row {
  const char* name;
  ViAttr id;
  Slot slot;
  Type type;
  Access access;
  bool on_manager;
  std::uint64_t initial = 0;
  // What clients may write.
  std::uint64_t minimum = 0;
  std::uint64_t maximum = 0;
  std::uint64_t step = 1;  // between the values
};

constexpr std::uint64_t kMax8 = 0xFF;
constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr std::uint64_t kMax64 = ~std::uint64_t{0};
constexpr std::uint64_t kSpecVersion = 0x00500800;
constexpr std::uint64_t kOurVersion = 0x00100200;  // 1.2.0
constexpr std::uint64_t kMakerId = 0x0FFE;
constexpr std::uint64_t kBufferSize = 4096;  // of formatted input and output

constexpr auto kR = Access::kRead;
constexpr auto kW = Access::kWrite;

// The first two fields of a row: an attribute's name and its number.
#define ZK_NAMED(attribute) #attribute, attribute

// A mode of the read buffer is 1 (flush on access) or 3 (off); nothing is read ahead, so either
// tells the truth.
constexpr Row kRows[] = {
    {ZK_NAMED(VI_ATTR_TMO_VALUE), Slot::kTimeout, Type::kLong, kW, false, 2000, 0, kMax32},
    {ZK_NAMED(VI_ATTR_TERMCHAR), Slot::kTermChar, Type::kByte, kW, false, '\n', 0, kMax8},
    {ZK_NAMED(VI_ATTR_TERMCHAR_EN), Slot::kTermCharEnabled, Type::kWord, kW, false, 0, 0, 1},
    {ZK_NAMED(VI_ATTR_SEND_END_EN), Slot::kSendEnd, Type::kWord, kW, false, 1, 0, 1},
    {ZK_NAMED(VI_ATTR_SUPPRESS_END_EN), Slot::kSuppressEnd, Type::kWord, kW, false, 1, 0, 1},
    {ZK_NAMED(VI_ATTR_IO_PROT), Slot::kIoProtocol, Type::kWord, kW, false, VI_PROT_NORMAL,
     VI_PROT_NORMAL, VI_PROT_4882_STRS, VI_PROT_4882_STRS - VI_PROT_NORMAL},
    {ZK_NAMED(VI_ATTR_TCPIP_NODELAY), Slot::kNoDelay, Type::kWord, kW, false, 1, 0, 1},
    {ZK_NAMED(VI_ATTR_TCPIP_KEEPALIVE), Slot::kKeepAlive, Type::kWord, kW, false, 0, 0, 1},
    {ZK_NAMED(VI_ATTR_TCPIP_PORT), Slot::kPort, Type::kWord, kR, false},
    {ZK_NAMED(VI_ATTR_INTF_TYPE), Slot::kInterfaceType, Type::kWord, kR, false, VI_INTF_TCPIP},
    {ZK_NAMED(VI_ATTR_INTF_NUM), Slot::kInterfaceNumber, Type::kWord, kR, false},
    {ZK_NAMED(VI_ATTR_RSRC_SPEC_VERSION), Slot::kSpecVersion, Type::kLong, kR, true, kSpecVersion},
    {ZK_NAMED(VI_ATTR_RSRC_IMPL_VERSION), Slot::kImplementationVersion, Type::kLong, kR, true,
     kOurVersion},
    {ZK_NAMED(VI_ATTR_RSRC_MANF_ID), Slot::kMakerId, Type::kWord, kR, true, kMakerId},
    {ZK_NAMED(VI_ATTR_RSRC_LOCK_STATE), Slot::kLockState, Type::kLong, kR, true},
    {ZK_NAMED(VI_ATTR_RM_SESSION), Slot::kManager, Type::kLong, kR, false},
    {ZK_NAMED(VI_ATTR_MAX_QUEUE_LENGTH), Slot::kQueueLength, Type::kLong, kW, true, 50, 1, kMax32},
    {ZK_NAMED(VI_ATTR_USER_DATA_32), Slot::kUserData, Type::kLong, kW, true, 0, 0, kMax32},
    {ZK_NAMED(VI_ATTR_USER_DATA), Slot::kUserData, Type::kQuad, kW, true, 0, 0, kMax64},
    {ZK_NAMED(VI_ATTR_RD_BUF_OPER_MODE), Slot::kReadMode, Type::kWord, kW, false, 3, 1, 3, 2},
    {ZK_NAMED(VI_ATTR_WR_BUF_OPER_MODE), Slot::kWriteMode, Type::kWord, kW, false,
     VI_FLUSH_WHEN_FULL, VI_FLUSH_ON_ACCESS, VI_FLUSH_WHEN_FULL},
    {ZK_NAMED(VI_ATTR_RD_BUF_SIZE), Slot::kReadBufferSize, Type::kLong, kR, false, kBufferSize},
    {ZK_NAMED(VI_ATTR_WR_BUF_SIZE), Slot::kWriteBufferSize, Type::kLong, kR, false, kBufferSize},
    {ZK_NAMED(VI_ATTR_FILE_APPEND_EN), Slot::kFileAppend, Type::kWord, kW, false, 0, 0, 1},
    {ZK_NAMED(VI_ATTR_DMA_ALLOW_EN), Slot::kDma, Type::kWord, kW, false, 0, 0, 1},
    {ZK_NAMED(VI_ATTR_TCPIP_ADDR), Slot::kAddress, Type::kText, kR, false},
    {ZK_NAMED(VI_ATTR_TCPIP_HOSTNAME), Slot::kHostName, Type::kText, kR, false},
    {ZK_NAMED(VI_ATTR_RSRC_NAME), Slot::kName, Type::kText, kR, true},
    {ZK_NAMED(VI_ATTR_RSRC_CLASS), Slot::kClass, Type::kText, kR, true},
    {ZK_NAMED(VI_ATTR_INTF_INST_NAME), Slot::kInterfaceName, Type::kText, kR, false},
    {ZK_NAMED(VI_ATTR_RSRC_MANF_NAME), Slot::kMakerName, Type::kText, kR, true},
    {ZK_NAMED(VI_ATTR_ZENTREL_LOCK_OWNER), Slot::kLockOwner, Type::kText, kR, false},
    {ZK_NAMED(VI_ATTR_ZENTREL_SETTINGS_FILE), Slot::kSettingsFile, Type::kText, kR, true},
    {ZK_NAMED(VI_ATTR_ZENTREL_SETTINGS_SECTION), Slot::kSettingsSection, Type::kText, kR, false},
};
#undef ZK_NAMED

const Row* FindRow(ViAttr attribute, Owner owner) {
  const Row* const row = std::ranges::find(kRows, attribute, &Row::id);
  const bool found = row != std::end(kRows) && (owner == Owner::kSession || row->on_manager);
  return found ? row : nullptr;
}

// Clients that know the value as 32 bits, as it is elsewhere, leave anything above them.
std::uint64_t Narrowed(const Row& row, ViAttrState value) {
  return row.type == Type::kQuad ? value : value & kMax32;
}

/// What a Get of this type wrote; the low bytes come first on every machine that this runs on.
std::uint64_t NumberIn(const void* value, Type type) {
  std::uint64_t number = 0;
  std::memcpy(&number, value, static_cast<std::size_t>(type));
  return number;
}

std::size_t TextIndex(Slot slot) {
  return static_cast<std::size_t>(slot) - static_cast<std::size_t>(Slot::kNumbers);
}

}  // namespace

Attributes::Attributes(Owner owner) : owner_(owner) {
  for (const Row& row : kRows) {
    if (row.type != Type::kText) SetNumber(row.slot, row.initial);
  }
  SetText(Slot::kMakerName, "Zentrel");
}

ViStatus Attributes::Get(ViAttr attribute, void* value) const {
  const Row* const row = FindRow(attribute, owner_);
  if (row == nullptr) return VI_ERROR_NSUP_ATTR;
  if (value == nullptr) return VI_ERROR_USER_BUF;
  if (row->type == Type::kText) {
    const std::string& text = texts_[TextIndex(row->slot)];
    std::memcpy(value, text.c_str(), text.size() + 1);
  } else {
    // The low bytes come first on every machine that this runs on.
    const std::uint64_t number = Number(row->slot);
    std::memcpy(value, &number, static_cast<std::size_t>(row->type));
  }
  return VI_SUCCESS;
}

ViStatus Attributes::Check(ViAttr attribute, ViAttrState value) const {
  const Row* const row = FindRow(attribute, owner_);
  if (row == nullptr) return VI_ERROR_NSUP_ATTR;
  if (row->access == Access::kRead) return VI_ERROR_ATTR_READONLY;
  const std::uint64_t number = Narrowed(*row, value);
  const bool is_one =
      number >= row->minimum && number <= row->maximum && (number - row->minimum) % row->step == 0;
  return is_one ? VI_SUCCESS : VI_ERROR_NSUP_ATTR_STATE;
}

ViStatus Attributes::Set(ViAttr attribute, ViAttrState value) {
  const ViStatus status = Check(attribute, value);
  if (status != VI_SUCCESS) return status;
  const Row* const row = FindRow(attribute, owner_);
  SetNumber(row->slot, Narrowed(*row, value));
  return VI_SUCCESS;
}

void Attributes::SetText(Slot slot, std::string text) {
  text.resize(std::min<std::size_t>(text.size(), VI_FIND_BUFLEN - 1));
  texts_[TextIndex(slot)] = std::move(text);
}

void TellAttribute(TraceLine& line, ViAttr attribute) {
  const Row* const row = FindRow(attribute, Owner::kSession);
  line.Name("attribute", row != nullptr ? row->name : HexadecimalNumber(attribute));
}

void TellAttribute(TraceLine& line, ViAttr attribute, const void* value) {
  TellAttribute(line, attribute);
  const Row* const row = FindRow(attribute, Owner::kSession);
  if (row == nullptr || !line.IsGood()) return;
  if (row->type == Type::kText) {
    line.Text("value", static_cast<const char*>(value));
  } else {
    line.Number("value", NumberIn(value, row->type));
  }
}

}  // namespace zevisa
