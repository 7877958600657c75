// The entry points that a raw socket has no use for: present, so that clients which look all names
// up find them, and answering that the operation is not supported.
#include "visa/EntryPoint.h"

namespace {

ViStatus NotSupported(const char* call, ViSession session) noexcept {
  return zevisa::Traced(call, session, [] { return VI_ERROR_NSUP_OPER; });
}

}  // namespace

extern "C" {
ViStatus viWaitOnEvent(ViSession session, ViEventType, ViUInt32, ViEventType*, ViEvent*) {
  return NotSupported(__func__, session);
}
ViStatus viInstallHandler(ViSession session, ViEventType, ViHndlr, void*) {
  return NotSupported(__func__, session);
}
ViStatus viUninstallHandler(ViSession session, ViEventType, ViHndlr, void*) {
  return NotSupported(__func__, session);
}
ViStatus viReadAsync(ViSession session, ViByte*, ViUInt32, ViJobId*) {
  return NotSupported(__func__, session);
}
ViStatus viWriteAsync(ViSession session, const ViByte*, ViUInt32, ViJobId*) {
  return NotSupported(__func__, session);
}
ViStatus viPrintf(ViSession session, const char*, ...) { return NotSupported(__func__, session); }
ViStatus viVPrintf(ViSession session, const char*, ViVAList) {
  return NotSupported(__func__, session);
}
ViStatus viSPrintf(ViSession session, ViByte*, const char*, ...) {
  return NotSupported(__func__, session);
}
ViStatus viVSPrintf(ViSession session, ViByte*, const char*, ViVAList) {
  return NotSupported(__func__, session);
}
ViStatus viScanf(ViSession session, const char*, ...) { return NotSupported(__func__, session); }
ViStatus viVScanf(ViSession session, const char*, ViVAList) {
  return NotSupported(__func__, session);
}
ViStatus viSScanf(ViSession session, const ViByte*, const char*, ...) {
  return NotSupported(__func__, session);
}
ViStatus viVSScanf(ViSession session, const ViByte*, const char*, ViVAList) {
  return NotSupported(__func__, session);
}
ViStatus viQueryf(ViSession session, const char*, const char*, ...) {
  return NotSupported(__func__, session);
}
ViStatus viVQueryf(ViSession session, const char*, const char*, ViVAList) {
  return NotSupported(__func__, session);
}
ViStatus viIn8(ViSession session, ViUInt16, ViBusAddress, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viOut8(ViSession session, ViUInt16, ViBusAddress, ViUInt8) {
  return NotSupported(__func__, session);
}
ViStatus viIn16(ViSession session, ViUInt16, ViBusAddress, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viOut16(ViSession session, ViUInt16, ViBusAddress, ViUInt16) {
  return NotSupported(__func__, session);
}
ViStatus viIn32(ViSession session, ViUInt16, ViBusAddress, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viOut32(ViSession session, ViUInt16, ViBusAddress, ViUInt32) {
  return NotSupported(__func__, session);
}
ViStatus viIn64(ViSession session, ViUInt16, ViBusAddress, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viOut64(ViSession session, ViUInt16, ViBusAddress, ViUInt64) {
  return NotSupported(__func__, session);
}
ViStatus viIn8Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viOut8Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt8) {
  return NotSupported(__func__, session);
}
ViStatus viIn16Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viOut16Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt16) {
  return NotSupported(__func__, session);
}
ViStatus viIn32Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viOut32Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt32) {
  return NotSupported(__func__, session);
}
ViStatus viIn64Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viOut64Ex(ViSession session, ViUInt16, ViBusAddress64, ViUInt64) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn8(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut8(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn16(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut16(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn32(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut32(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn64(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut64(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn8Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut8Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt8*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn16Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut16Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt16*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn32Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut32Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveIn64Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveOut64Ex(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViUInt64*) {
  return NotSupported(__func__, session);
}
ViStatus viMove(ViSession session, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress,
                ViUInt16, ViBusSize) {
  return NotSupported(__func__, session);
}
ViStatus viMoveAsync(ViSession session, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress,
                     ViUInt16, ViBusSize, ViJobId*) {
  return NotSupported(__func__, session);
}
ViStatus viMoveEx(ViSession session, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16, ViBusAddress64,
                  ViUInt16, ViBusSize) {
  return NotSupported(__func__, session);
}
ViStatus viMoveAsyncEx(ViSession session, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16,
                       ViBusAddress64, ViUInt16, ViBusSize, ViJobId*) {
  return NotSupported(__func__, session);
}
ViStatus viMapAddress(ViSession session, ViUInt16, ViBusAddress, ViBusSize, ViBoolean, void*,
                      void**) {
  return NotSupported(__func__, session);
}
ViStatus viUnmapAddress(ViSession session) { return NotSupported(__func__, session); }
ViStatus viMapAddressEx(ViSession session, ViUInt16, ViBusAddress64, ViBusSize, ViBoolean, void*,
                        void**) {
  return NotSupported(__func__, session);
}
void viPeek8(ViSession, void*, ViUInt8*) {}
void viPoke8(ViSession, void*, ViUInt8) {}
void viPeek16(ViSession, void*, ViUInt16*) {}
void viPoke16(ViSession, void*, ViUInt16) {}
void viPeek32(ViSession, void*, ViUInt32*) {}
void viPoke32(ViSession, void*, ViUInt32) {}
void viPeek64(ViSession, void*, ViUInt64*) {}
void viPoke64(ViSession, void*, ViUInt64) {}
ViStatus viMemAlloc(ViSession session, ViBusSize, ViBusAddress*) {
  return NotSupported(__func__, session);
}
ViStatus viMemFree(ViSession session, ViBusAddress) { return NotSupported(__func__, session); }
ViStatus viMemAllocEx(ViSession session, ViBusSize, ViBusAddress64*) {
  return NotSupported(__func__, session);
}
ViStatus viMemFreeEx(ViSession session, ViBusAddress64) { return NotSupported(__func__, session); }
ViStatus viGpibControlREN(ViSession session, ViUInt16) { return NotSupported(__func__, session); }
ViStatus viGpibControlATN(ViSession session, ViUInt16) { return NotSupported(__func__, session); }
ViStatus viGpibSendIFC(ViSession session) { return NotSupported(__func__, session); }
ViStatus viGpibCommand(ViSession session, const ViByte*, ViUInt32, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viGpibPassControl(ViSession session, ViUInt16, ViUInt16) {
  return NotSupported(__func__, session);
}
ViStatus viVxiCommandQuery(ViSession session, ViUInt16, ViUInt32, ViUInt32*) {
  return NotSupported(__func__, session);
}
ViStatus viAssertUtilSignal(ViSession session, ViUInt16) { return NotSupported(__func__, session); }
ViStatus viAssertIntrSignal(ViSession session, ViInt16, ViUInt32) {
  return NotSupported(__func__, session);
}
ViStatus viMapTrigger(ViSession session, ViInt16, ViInt16, ViUInt16) {
  return NotSupported(__func__, session);
}
ViStatus viUnmapTrigger(ViSession session, ViInt16, ViInt16) {
  return NotSupported(__func__, session);
}
ViStatus viUsbControlOut(ViSession session, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16,
                         const ViByte*) {
  return NotSupported(__func__, session);
}
ViStatus viUsbControlIn(ViSession session, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16, ViByte*,
                        ViUInt16*) {
  return NotSupported(__func__, session);
}
}  // extern "C"
