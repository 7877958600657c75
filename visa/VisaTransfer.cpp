// The entry points that move data to and from the instrument.
#include "visa/EntryPoint.h"

namespace {

using zevisa::Give;
using zevisa::Session;
using zevisa::TextOf;
using zevisa::TraceLine;
using zevisa::WithSession;

/// The count that a transfer came to is told whatever became of it.
template <typename Body, typename Tell>
ViStatus Counting(const char* call, ViSession number, ViUInt32 count, ViUInt32* returned,
                  const Body& body, const Tell& tell) noexcept {
  ViUInt32 done = 0;
  const ViStatus status = WithSession(
      call, number, [&](Session& session) -> ViStatus { return body(session, done); },
      [&](TraceLine& line) {
        line.Bytes(done, count);
        tell(line, done);
      });
  Give(returned, done);
  return status;
}

/// A transfer between the instrument and the client's memory.
template <typename Byte, typename Body>
ViStatus Transferring(const char* call, ViSession number, Byte* buffer, ViUInt32 count,
                      ViUInt32* returned, const Body& body) noexcept {
  const auto checked = [&](Session& session, ViUInt32& done) {
    return buffer == nullptr && count > 0 ? VI_ERROR_USER_BUF : body(session, done);
  };
  return Counting(call, number, count, returned, checked,
                  [&](TraceLine& line, ViUInt32 done) { line.Data(buffer, done); });
}

/// A transfer between the instrument and a file.
template <typename Body>
ViStatus WithFile(const char* call, ViSession number, const char* file_name, ViUInt32 count,
                  ViUInt32* returned, const Body& body) noexcept {
  const auto checked = [&](Session& session, ViUInt32& done) {
    return file_name == nullptr ? VI_ERROR_FILE_ACCESS : body(session, done);
  };
  return Counting(call, number, count, returned, checked,
                  [&](TraceLine& line, ViUInt32) { line.Text("file", TextOf(file_name)); });
}

ViStatus ReadInto(const char* call, ViSession number, ViByte* buffer, ViUInt32 count,
                  ViUInt32* returned) noexcept {
  return Transferring(call, number, buffer, count, returned, [&](Session& session, ViUInt32& done) {
    return session.Read({buffer, count}, done);
  });
}

}  // namespace

extern "C" {

ViStatus viRead(ViSession number, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return ReadInto(__func__, number, buffer, count, returned);
}

// Nothing is read ahead of what a client wants, so a buffered read is a read.
ViStatus viBufRead(ViSession number, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return ReadInto(__func__, number, buffer, count, returned);
}

ViStatus viWrite(ViSession number, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return Transferring(__func__, number, buffer, count, returned,
                      [&](Session& session, ViUInt32& done) {
                        return session.Write({buffer, count}, done);
                      });
}

ViStatus viBufWrite(ViSession number, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return Transferring(__func__, number, buffer, count, returned,
                      [&](Session& session, ViUInt32& done) {
                        return session.WriteBuffered({buffer, count}, done);
                      });
}

ViStatus viFlush(ViSession number, ViUInt16 mask) {
  return WithSession(
      __func__, number, [&](Session& session) { return session.Flush(mask); },
      [&](TraceLine& line) { line.Number("mask", mask); });
}

ViStatus viSetBuf(ViSession number, ViUInt16 mask, ViUInt32 size) {
  return WithSession(
      __func__, number, [&](Session& session) { return session.SetBuffers(mask, size); },
      [&](TraceLine& line) {
        line.Number("mask", mask);
        line.Number("size", size);
      });
}

ViStatus viReadToFile(ViSession number, const char* file_name, ViUInt32 count, ViUInt32* returned) {
  return WithFile(
      __func__, number, file_name, count, returned,
      [&](Session& session, ViUInt32& done) { return session.ReadToFile(file_name, count, done); });
}

ViStatus viWriteFromFile(ViSession number, const char* file_name, ViUInt32 count,
                         ViUInt32* returned) {
  return WithFile(__func__, number, file_name, count, returned,
                  [&](Session& session, ViUInt32& done) {
                    return session.WriteFromFile(file_name, count, done);
                  });
}

ViStatus viClear(ViSession number) {
  return WithSession(__func__, number, [](Session& session) { return session.Clear(); });
}

ViStatus viReadSTB(ViSession number, ViUInt16* status_byte) {
  return WithSession(
      __func__, number,
      [&](Session& session) {
        return status_byte == nullptr ? VI_ERROR_USER_BUF : session.ReadStatusByte(*status_byte);
      },
      [&](TraceLine& line) {
        if (line.IsGood()) line.Number("value", *status_byte);
      });
}

ViStatus viAssertTrigger(ViSession number, ViUInt16 protocol) {
  return WithSession(__func__, number, [&](Session& session) {
    return protocol != 0 ? VI_ERROR_INV_PROT : session.Trigger();
  });
}

ViStatus viTerminate(ViObject object, ViUInt16 degree, ViJobId job) {
  return WithSession(__func__, object, [&](Session& session) {
    if (degree != 0) return VI_ERROR_INV_DEGREE;
    if (job != 0) return VI_ERROR_INV_JOB_ID;  // no operation goes on by itself
    session.Terminate();
    return VI_SUCCESS;
  });
}

}  // extern "C"
