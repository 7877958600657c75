// The built library with the entry points in use, and the instrument's end of a connection.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <asio.hpp>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os/Module.h"
#include "visa/Visa.h"

struct VisaModule {
  VisaModule() : is_loaded(module.Load(ZK_VISA_MODULE)) {}

  os::Module module;
  bool is_loaded;
  decltype(::viOpenDefaultRM)* viOpenDefaultRM = Entry("viOpenDefaultRM");
  decltype(::viParseRsrc)* viParseRsrc = Entry("viParseRsrc");
  decltype(::viParseRsrcEx)* viParseRsrcEx = Entry("viParseRsrcEx");
  decltype(::viOpen)* viOpen = Entry("viOpen");
  decltype(::viFindRsrc)* viFindRsrc = Entry("viFindRsrc");
  decltype(::viClose)* viClose = Entry("viClose");
  decltype(::viSetAttribute)* viSetAttribute = Entry("viSetAttribute");
  decltype(::viGetAttribute)* viGetAttribute = Entry("viGetAttribute");
  decltype(::viStatusDesc)* viStatusDesc = Entry("viStatusDesc");
  decltype(::viTerminate)* viTerminate = Entry("viTerminate");
  decltype(::viLock)* viLock = Entry("viLock");
  decltype(::viUnlock)* viUnlock = Entry("viUnlock");
  decltype(::viEnableEvent)* viEnableEvent = Entry("viEnableEvent");
  decltype(::viDisableEvent)* viDisableEvent = Entry("viDisableEvent");
  decltype(::viDiscardEvents)* viDiscardEvents = Entry("viDiscardEvents");
  decltype(::viRead)* viRead = Entry("viRead");
  decltype(::viBufRead)* viBufRead = Entry("viBufRead");
  decltype(::viBufWrite)* viBufWrite = Entry("viBufWrite");
  decltype(::viFlush)* viFlush = Entry("viFlush");
  decltype(::viSetBuf)* viSetBuf = Entry("viSetBuf");
  decltype(::viReadToFile)* viReadToFile = Entry("viReadToFile");
  decltype(::viWriteFromFile)* viWriteFromFile = Entry("viWriteFromFile");
  decltype(::viReadSTB)* viReadSTB = Entry("viReadSTB");
  decltype(::viAssertTrigger)* viAssertTrigger = Entry("viAssertTrigger");
  decltype(::viWrite)* viWrite = Entry("viWrite");
  decltype(::viClear)* viClear = Entry("viClear");

 private:
  /// Becomes a pointer of the type that it initialises.
  struct Address {
    template <typename Function>
    operator Function*() const {  // NOLINT(google-explicit-constructor): it is the purpose
      return reinterpret_cast<Function*>(symbol);
    }
    void* symbol;
  };
  [[nodiscard]] Address Entry(const char* name) const { return {module.Symbol(name)}; }
};

/// Listens on a free port; a connection waits in its queue until it is accepted.
class Peer {
 public:
  explicit Peer(const char* address = "127.0.0.1")
      : address_(address), acceptor_(io_, {asio::ip::make_address(address), 0}) {}

  [[nodiscard]] std::string Port() const {
    return std::to_string(acceptor_.local_endpoint().port());
  }
  [[nodiscard]] std::string Name() const {
    return "TCPIP::" + address_ + "::" + Port() + "::SOCKET";
  }
  asio::ip::tcp::socket Accept() { return acceptor_.accept(); }

 private:
  std::string address_;
  asio::io_context io_;
  asio::ip::tcp::acceptor acceptor_;
};

/// The one place of its queue is taken: further attempts to connect get no answer.
class FullListener {
 public:
  FullListener() : listener_(io_, asio::ip::tcp::v4()) {
    listener_.bind({asio::ip::address_v4::loopback(), 0});
    listener_.listen(0);
    for (int i = 0; i < 3; ++i) {
      fillers_.emplace_back(io_).async_connect(listener_.local_endpoint(), [](asio::error_code) {});
    }
  }
  [[nodiscard]] std::string Name() const {
    return "TCPIP::127.0.0.1::" + std::to_string(listener_.local_endpoint().port()) + "::SOCKET";
  }

 private:
  asio::io_context io_;
  asio::ip::tcp::acceptor listener_;
  std::vector<asio::ip::tcp::socket> fillers_;
};

inline std::string Hex(ViStatus status) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(status));
  return text.data();
}
#define EXPECT_STATUS(actual, expected) EXPECT_EQ(Hex(actual), Hex(expected))

/// A manager, and a session to a peer when a test opens one.
class VisaTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(visa.is_loaded);
    ASSERT_EQ(visa.viOpenDefaultRM(&manager), VI_SUCCESS);
  }
  void TearDown() override { EXPECT_EQ(visa.viClose(manager), VI_SUCCESS); }

  ViStatus Open(const std::string& name, ViAccessMode mode, ViSession& opened,
                ViUInt32 timeout = 2000) {
    return visa.viOpen(manager, name.c_str(), mode, timeout, &opened);
  }
  /// An open session, with the time-out that most tests want to run into.
  ViSession OpenSession(const std::string& name, ViUInt32 timeout = 30) {
    ViSession opened = 0;
    EXPECT_EQ(Open(name, 0, opened), VI_SUCCESS) << name;
    EXPECT_EQ(visa.viSetAttribute(opened, VI_ATTR_TMO_VALUE, timeout), VI_SUCCESS);
    return opened;
  }
  /// A number among the attributes; it has the size of T.
  template <typename T = ViUInt32>
  T Number(ViObject object, ViAttr attribute) {
    T value = 99;
    EXPECT_EQ(visa.viGetAttribute(object, attribute, &value), VI_SUCCESS);
    return value;
  }
  /// A text among them, or the failure.
  std::string Text(ViObject object, ViAttr attribute) {
    std::array<char, 256> text{'?'};
    const ViStatus status = visa.viGetAttribute(object, attribute, text.data());
    return status == VI_SUCCESS ? text.data() : Hex(status);
  }
  ViStatus Read(ViSession session, ViUInt32 count, std::string& text) {
    std::vector<ViByte> buffer(count + 1);
    ViUInt32 returned = 0xDEAD;
    const ViStatus status = visa.viRead(session, buffer.data(), count, &returned);
    text.assign(buffer.begin(), buffer.begin() + returned);
    return status;
  }
  ViStatus Write(ViSession session, std::string_view text) {
    return visa.viWrite(session, reinterpret_cast<const ViByte*>(text.data()),
                        static_cast<ViUInt32>(text.size()), nullptr);
  }

  VisaModule visa;
  ViSession manager = 0;
};

/// A session, and the instrument's end of its connection.
class VisaSession : public VisaTest {
 protected:
  explicit VisaSession(ViUInt32 timeout = 30) : timeout_(timeout) {}
  void SetUp() override {
    VisaTest::SetUp();
    session = OpenSession(peer.Name(), timeout_);
    instrument = peer.Accept();
  }
  void Send(std::string_view text) { asio::write(instrument, asio::buffer(text)); }
  /// So many bytes as the instrument gets them.
  std::string Got(std::size_t size) {
    std::string text(size, '\0');
    asio::read(instrument, asio::buffer(text));
    return text;
  }

  Peer peer;
  ViSession session = 0;
  asio::io_context io;
  asio::ip::tcp::socket instrument{io};

 private:
  ViUInt32 timeout_;
};
