// The entry points that move data to and from the instrument.
#include "visa/EntryPoint.h"

namespace {

using zevisa::Give;
using zevisa::Session;
using zevisa::WithSession;

/// The count that a transfer came to is told whatever became of it.
template <typename Body>
ViStatus Counting(ViSession number, ViUInt32* returned, const Body& body) noexcept {
  ViUInt32 done = 0;
  const ViStatus status =
      WithSession(number, [&](Session& session) -> ViStatus { return body(session, done); });
  Give(returned, done);
  return status;
}

}  // namespace

extern "C" {

ViStatus viRead(ViSession number, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return Counting(number, returned, [&](Session& session, ViUInt32& done) {
    if (buffer == nullptr && count > 0) return VI_ERROR_USER_BUF;
    return session.Read({buffer, count}, done);
  });
}

ViStatus viWrite(ViSession number, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return Counting(number, returned, [&](Session& session, ViUInt32& done) {
    if (buffer == nullptr && count > 0) return VI_ERROR_USER_BUF;
    return session.Write({buffer, count}, done);
  });
}

// Nothing is read ahead of what a client wants, so a buffered read is a read.
ViStatus viBufRead(ViSession number, ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return viRead(number, buffer, count, returned);
}

ViStatus viBufWrite(ViSession number, const ViByte* buffer, ViUInt32 count, ViUInt32* returned) {
  return Counting(number, returned, [&](Session& session, ViUInt32& done) {
    if (buffer == nullptr && count > 0) return VI_ERROR_USER_BUF;
    return session.WriteBuffered({buffer, count}, done);
  });
}

ViStatus viFlush(ViSession number, ViUInt16 mask) {
  return WithSession(number, [&](Session& session) { return session.Flush(mask); });
}

ViStatus viSetBuf(ViSession number, ViUInt16 mask, ViUInt32 size) {
  return WithSession(number, [&](Session& session) { return session.SetBuffers(mask, size); });
}

ViStatus viReadToFile(ViSession number, const char* file_name, ViUInt32 count, ViUInt32* returned) {
  return Counting(number, returned, [&](Session& session, ViUInt32& done) {
    return file_name == nullptr ? VI_ERROR_FILE_ACCESS : session.ReadToFile(file_name, count, done);
  });
}

ViStatus viWriteFromFile(ViSession number, const char* file_name, ViUInt32 count,
                         ViUInt32* returned) {
  return Counting(number, returned, [&](Session& session, ViUInt32& done) {
    return file_name == nullptr ? VI_ERROR_FILE_ACCESS
                                : session.WriteFromFile(file_name, count, done);
  });
}

ViStatus viClear(ViSession number) {
  return WithSession(number, [](Session& session) { return session.Clear(); });
}

ViStatus viReadSTB(ViSession number, ViUInt16* status_byte) {
  return WithSession(number, [&](Session& session) {
    return status_byte == nullptr ? VI_ERROR_USER_BUF : session.ReadStatusByte(*status_byte);
  });
}

ViStatus viAssertTrigger(ViSession number, ViUInt16 protocol) {
  return WithSession(number, [&](Session& session) {
    return protocol != 0 ? VI_ERROR_INV_PROT : session.Trigger();
  });
}

ViStatus viTerminate(ViObject object, ViUInt16 degree, ViJobId job) {
  return WithSession(object, [&](Session& session) {
    if (degree != 0) return VI_ERROR_INV_DEGREE;
    if (job != 0) return VI_ERROR_INV_JOB_ID;  // no operation goes on by itself
    session.Terminate();
    return VI_SUCCESS;
  });
}

}  // extern "C"
