#include <filesystem>
#include <fstream>

#include "tests/platform/Content.h"
#include "tests/visa/VisaModule.h"

namespace {

class VisaBuffer : public VisaSession {
 protected:
  VisaBuffer() : VisaSession(5000) {}
  ViStatus Buffer(std::string_view text) {
    return visa.viBufWrite(session, reinterpret_cast<const ViByte*>(text.data()),
                           static_cast<ViUInt32>(text.size()), &count);
  }
  /// What the instrument has got, up to a mark that is written now, past the buffer.
  std::string Arrived() {
    EXPECT_STATUS(Write(session, "|"), VI_SUCCESS);
    std::string text;
    const auto size = asio::read_until(instrument, asio::dynamic_buffer(text), '|');
    return text.substr(0, size - 1);
  }

  ViUInt32 count = 0;
};

TEST_F(VisaBuffer, HoldsWritesBackUntilFlushedOrFull) {
  EXPECT_STATUS(Buffer("abc"), VI_SUCCESS);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(Arrived(), "") << "sent before the flush";
  EXPECT_STATUS(visa.viFlush(session, VI_WRITE_BUF | VI_IO_IN_BUF), VI_SUCCESS);
  EXPECT_EQ(Arrived(), "abc");
  EXPECT_STATUS(Buffer("lost"), VI_SUCCESS);
  EXPECT_STATUS(visa.viFlush(session, VI_WRITE_BUF_DISCARD), VI_SUCCESS);
  EXPECT_STATUS(Buffer("old"), VI_SUCCESS);
  EXPECT_STATUS(visa.viSetBuf(session, VI_READ_BUF | VI_WRITE_BUF, 4), VI_SUCCESS);
  EXPECT_EQ(Arrived(), "old");
  for (const char* text : {"1", "23", "4567", "8"}) EXPECT_STATUS(Buffer(text), VI_SUCCESS);
  EXPECT_EQ(Arrived(), "1234567");
  visa.viSetAttribute(session, VI_ATTR_WR_BUF_OPER_MODE, VI_FLUSH_ON_ACCESS);
  EXPECT_STATUS(Buffer("9"), VI_SUCCESS);
  EXPECT_EQ(Arrived(), "89");
}

TEST_F(VisaBuffer, FlushDropsInputAndRefusesBadMasks) {
  std::array<ViByte, 8> bytes{};
  visa.viSetAttribute(session, VI_ATTR_TERMCHAR_EN, 1);
  Send("one\nrest");
  EXPECT_STATUS(visa.viBufRead(session, bytes.data(), 8, &count), VI_SUCCESS_TERM_CHAR);
  EXPECT_EQ(count, 4U);
  EXPECT_STATUS(visa.viFlush(session, VI_IO_IN_BUF), VI_SUCCESS);
  Send("new\n");
  EXPECT_STATUS(visa.viBufRead(session, bytes.data(), 8, &count), VI_SUCCESS_TERM_CHAR);
  EXPECT_EQ(bytes[0], 'n');
  for (const int mask : {0, 5, 10, 80, 160, 256}) {
    EXPECT_STATUS(visa.viFlush(session, static_cast<ViUInt16>(mask)), VI_ERROR_INV_MASK) << mask;
  }
  EXPECT_STATUS(visa.viSetBuf(session, VI_WRITE_BUF_DISCARD, 9), VI_ERROR_INV_MASK);
  EXPECT_STATUS(visa.viSetBuf(session, VI_IO_OUT_BUF, 9), VI_WARN_NSUP_BUF);
  EXPECT_STATUS(visa.viSetBuf(session, VI_READ_BUF, 5), VI_SUCCESS);
  EXPECT_EQ(Number(session, VI_ATTR_RD_BUF_SIZE), 5U);
  EXPECT_EQ(Number(session, VI_ATTR_WR_BUF_SIZE), 4096U);
}

TEST_F(VisaBuffer, CommonCommandsAreTextOfTheirProtocolOnly) {
  ViUInt16 status = 0;
  EXPECT_STATUS(visa.viReadSTB(session, &status), VI_ERROR_NSUP_OPER);
  EXPECT_STATUS(visa.viAssertTrigger(session, 0), VI_ERROR_NSUP_OPER);
  visa.viSetAttribute(session, VI_ATTR_IO_PROT, VI_PROT_4882_STRS);
  EXPECT_STATUS(visa.viClear(session), VI_SUCCESS);
  EXPECT_STATUS(visa.viAssertTrigger(session, 0), VI_SUCCESS);
  const struct {
    const char* answer;
    ViStatus status;
    ViUInt16 value;
  } rows[] = {{"255\r\n", VI_SUCCESS, 255},
              {"7\n", VI_SUCCESS, 7},
              {"7;\n", VI_ERROR_INP_PROT_VIOL, 0},
              {"256\n", VI_ERROR_INP_PROT_VIOL, 0},
              {"1234567890123456", VI_ERROR_INP_PROT_VIOL, 0},
              {"\n", VI_ERROR_INP_PROT_VIOL, 0}};
  for (const auto& row : rows) {
    Send(row.answer);
    EXPECT_STATUS(visa.viReadSTB(session, &status), row.status) << row.answer;
    EXPECT_EQ(status, row.value);
  }
  visa.viSetAttribute(session, VI_ATTR_TMO_VALUE, 30);
  EXPECT_STATUS(visa.viReadSTB(session, &status), VI_ERROR_TMO);
  std::string arrived = "*CLS\n*TRG\n*STB?\n";
  for (std::size_t i = 0; i < std::size(rows); ++i) arrived += "*STB?\n";
  EXPECT_EQ(Arrived(), arrived);
}

TEST_F(VisaBuffer, FilesOfAnyLengthGoBothWays) {
  const std::string file =
      (std::filesystem::temp_directory_path() / ("zevisa-file-" + peer.Port())).string();
  std::string block(150000, '\0');
  for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 7 + i / 251);
  std::ofstream(file, std::ios::binary) << block;
  EXPECT_STATUS(visa.viWriteFromFile(session, file.c_str(), 999999, &count), VI_SUCCESS);
  EXPECT_EQ(count, block.size());
  EXPECT_TRUE(Got(block.size()) == block);

  Send(block + "more");
  EXPECT_STATUS(visa.viReadToFile(session, file.c_str(), 150000, &count), VI_SUCCESS_MAX_CNT);
  visa.viSetAttribute(session, VI_ATTR_FILE_APPEND_EN, 1);
  visa.viSetAttribute(session, VI_ATTR_TMO_VALUE, 30);
  EXPECT_STATUS(visa.viReadToFile(session, file.c_str(), 9, &count), VI_ERROR_TMO);
  EXPECT_EQ(count, 4U);
  EXPECT_TRUE(ContentOf(file) == block + "more");
  std::filesystem::remove(file);
  EXPECT_STATUS(visa.viWriteFromFile(session, file.c_str(), 1, &count), VI_ERROR_FILE_ACCESS);
  EXPECT_STATUS(visa.viReadToFile(session, (file + "/none").c_str(), 1, &count),
                VI_ERROR_FILE_ACCESS);
}

}  // namespace
