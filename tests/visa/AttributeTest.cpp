#include <cstring>

#include "tests/visa/VisaModule.h"

namespace {

constexpr std::uint64_t kReadOnly = 0xEEEEEEEE;

TEST_F(VisaTest, AttributesHaveTheirSizesAndDefaults) {
  Peer peer;
  ViSession session = 0;
  ASSERT_EQ(Open(peer.Name(), 0, session), VI_SUCCESS);
  const auto port = static_cast<std::uint64_t>(std::stoi(peer.Port()));
  const struct {
    ViAttr id;
    std::uint32_t size;
    std::uint64_t value;
    std::uint64_t set = kReadOnly;  // a value that is accepted
    std::uint64_t refused = 0;      // and one that is not
  } rows[] = {
      {VI_ATTR_TMO_VALUE, 4, 2000, 0xFFFFFFFF},
      {VI_ATTR_TERMCHAR, 1, '\n', 0xFF, 0x100},
      {VI_ATTR_TERMCHAR_EN, 2, 0, 1, 2},
      {VI_ATTR_SEND_END_EN, 2, 1, 0, 2},
      {VI_ATTR_SUPPRESS_END_EN, 2, 1, 0, 2},
      {VI_ATTR_IO_PROT, 2, 1, 4, 2},
      {VI_ATTR_TCPIP_NODELAY, 2, 1, 0, 2},
      {VI_ATTR_TCPIP_KEEPALIVE, 2, 0, 1, 2},
      {VI_ATTR_TCPIP_PORT, 2, port},
      {VI_ATTR_INTF_TYPE, 2, 6},
      {VI_ATTR_INTF_NUM, 2, 0},
      {VI_ATTR_RSRC_SPEC_VERSION, 4, 0x00500800},
      {VI_ATTR_RSRC_IMPL_VERSION, 4, 0x00100200},
      {VI_ATTR_RSRC_MANF_ID, 2, 0x0FFE},
      {VI_ATTR_RSRC_LOCK_STATE, 4, 0},
      {VI_ATTR_RM_SESSION, 4, manager},
      {VI_ATTR_MAX_QUEUE_LENGTH, 4, 50, 1, 1ULL << 32},  // that is 0 to clients of 32 bits
      {VI_ATTR_USER_DATA_32, 4, 0, 0x12345678},
      {VI_ATTR_USER_DATA, 8, 0, 0x123456789ABCDEF0},
      {VI_ATTR_RD_BUF_OPER_MODE, 2, 3, 1, 9},
      {VI_ATTR_WR_BUF_OPER_MODE, 2, 2, 1, 9},
      {VI_ATTR_RD_BUF_SIZE, 4, 4096},
      {VI_ATTR_WR_BUF_SIZE, 4, 4096},
      {VI_ATTR_FILE_APPEND_EN, 2, 0, 1, 2},
      {VI_ATTR_DMA_ALLOW_EN, 2, 0, 1, 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(Hex(static_cast<ViStatus>(row.id)));
    const bool is_read_only = row.set == kReadOnly;
    const auto read = [&] {
      std::uint64_t value = ~std::uint64_t{0};  // bytes beyond the size must stay
      EXPECT_STATUS(visa.viGetAttribute(session, row.id, &value), VI_SUCCESS);
      const std::uint64_t mask = row.size == 8 ? 0 : ~std::uint64_t{0} << (8 * row.size);
      EXPECT_EQ(value & mask, mask) << "wrote beyond its size";
      return value & ~mask;
    };
    EXPECT_EQ(read(), row.value);
    EXPECT_STATUS(visa.viSetAttribute(session, row.id, row.set),
                  is_read_only ? VI_ERROR_ATTR_READONLY : VI_SUCCESS);
    EXPECT_EQ(read(), is_read_only ? row.value : row.set);
    if (is_read_only) continue;
    if (row.refused != 0) {
      EXPECT_STATUS(visa.viSetAttribute(session, row.id, row.refused), VI_ERROR_NSUP_ATTR_STATE);
      EXPECT_EQ(read(), row.set);
    }
    EXPECT_STATUS(visa.viSetAttribute(session, row.id, row.value), VI_SUCCESS);
  }
}

TEST_F(VisaTest, TextAttributesNameTheInstrument) {
  Peer peer;
  const ViSession session = OpenSession("tcpip3::localhost::" + peer.Port() + "::socket");
  const struct {
    ViAttr id;
    std::string text;
  } rows[] = {
      {VI_ATTR_RSRC_NAME, "TCPIP3::localhost::" + peer.Port() + "::SOCKET"},
      {VI_ATTR_RSRC_CLASS, "SOCKET"},
      {VI_ATTR_TCPIP_ADDR, "127.0.0.1"},
      {VI_ATTR_TCPIP_HOSTNAME, "localhost"},
      {VI_ATTR_INTF_INST_NAME, "TCPIP3"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Text(session, row.id), row.text);
    EXPECT_STATUS(visa.viSetAttribute(session, row.id, 1), VI_ERROR_ATTR_READONLY);
  }
}

TEST_F(VisaTest, ManagersAndUnknownAttributesAnswerToo) {
  std::uint64_t value = 0;
  EXPECT_EQ(Number(manager, VI_ATTR_RSRC_SPEC_VERSION), 0x00500800U);
  EXPECT_EQ(Text(manager, VI_ATTR_RSRC_CLASS), "RM");
  EXPECT_EQ(Number(manager, VI_ATTR_RSRC_LOCK_STATE), 0U) << "nobody locks a manager";
  EXPECT_STATUS(visa.viGetAttribute(manager, VI_ATTR_TMO_VALUE, &value), VI_ERROR_NSUP_ATTR);
  EXPECT_STATUS(visa.viSetAttribute(manager, 0x3FFF0FFF, 1), VI_ERROR_NSUP_ATTR);
  EXPECT_STATUS(visa.viGetAttribute(manager, VI_ATTR_USER_DATA, nullptr), VI_ERROR_USER_BUF);
  EXPECT_STATUS(visa.viGetAttribute(manager + 99, VI_ATTR_USER_DATA, &value), VI_ERROR_INV_OBJECT);
}

}  // namespace
