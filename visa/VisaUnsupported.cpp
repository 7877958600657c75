// The entry points that a raw socket has no use for: present, so that clients which look all names
// up find them, and answering that the operation is not supported.
#include "visa/Visa.h"

extern "C" {
ViStatus viWaitOnEvent(ViSession, ViEventType, ViUInt32, ViEventType*, ViEvent*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viInstallHandler(ViSession, ViEventType, ViHndlr, void*) { return VI_ERROR_NSUP_OPER; }
ViStatus viUninstallHandler(ViSession, ViEventType, ViHndlr, void*) { return VI_ERROR_NSUP_OPER; }
ViStatus viReadAsync(ViSession, ViByte*, ViUInt32, ViJobId*) { return VI_ERROR_NSUP_OPER; }
ViStatus viWriteAsync(ViSession, const ViByte*, ViUInt32, ViJobId*) { return VI_ERROR_NSUP_OPER; }
ViStatus viPrintf(ViSession, const char*, ...) { return VI_ERROR_NSUP_OPER; }
ViStatus viVPrintf(ViSession, const char*, ViVAList) { return VI_ERROR_NSUP_OPER; }
ViStatus viSPrintf(ViSession, ViByte*, const char*, ...) { return VI_ERROR_NSUP_OPER; }
ViStatus viVSPrintf(ViSession, ViByte*, const char*, ViVAList) { return VI_ERROR_NSUP_OPER; }
ViStatus viScanf(ViSession, const char*, ...) { return VI_ERROR_NSUP_OPER; }
ViStatus viVScanf(ViSession, const char*, ViVAList) { return VI_ERROR_NSUP_OPER; }
ViStatus viSScanf(ViSession, const ViByte*, const char*, ...) { return VI_ERROR_NSUP_OPER; }
ViStatus viVSScanf(ViSession, const ViByte*, const char*, ViVAList) { return VI_ERROR_NSUP_OPER; }
ViStatus viQueryf(ViSession, const char*, const char*, ...) { return VI_ERROR_NSUP_OPER; }
ViStatus viVQueryf(ViSession, const char*, const char*, ViVAList) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn8(ViSession, ViUInt16, ViBusAddress, ViUInt8*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut8(ViSession, ViUInt16, ViBusAddress, ViUInt8) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn16(ViSession, ViUInt16, ViBusAddress, ViUInt16*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut16(ViSession, ViUInt16, ViBusAddress, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn32(ViSession, ViUInt16, ViBusAddress, ViUInt32*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut32(ViSession, ViUInt16, ViBusAddress, ViUInt32) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn64(ViSession, ViUInt16, ViBusAddress, ViUInt64*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut64(ViSession, ViUInt16, ViBusAddress, ViUInt64) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn8Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt8*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut8Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt8) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn16Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt16*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut16Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn32Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt32*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut32Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt32) { return VI_ERROR_NSUP_OPER; }
ViStatus viIn64Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt64*) { return VI_ERROR_NSUP_OPER; }
ViStatus viOut64Ex(ViSession, ViUInt16, ViBusAddress64, ViUInt64) { return VI_ERROR_NSUP_OPER; }
ViStatus viMoveIn8(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt8*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut8(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt8*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn16(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt16*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut16(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt16*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn32(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt32*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut32(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt32*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn64(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt64*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut64(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViUInt64*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn8Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt8*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut8Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt8*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn16Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt16*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut16Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt16*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn32Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt32*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut32Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt32*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveIn64Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt64*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveOut64Ex(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViUInt64*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMove(ViSession, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress, ViUInt16,
                ViBusSize) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveAsync(ViSession, ViUInt16, ViBusAddress, ViUInt16, ViUInt16, ViBusAddress, ViUInt16,
                     ViBusSize, ViJobId*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveEx(ViSession, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16, ViBusAddress64, ViUInt16,
                  ViBusSize) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMoveAsyncEx(ViSession, ViUInt16, ViBusAddress64, ViUInt16, ViUInt16, ViBusAddress64,
                       ViUInt16, ViBusSize, ViJobId*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viMapAddress(ViSession, ViUInt16, ViBusAddress, ViBusSize, ViBoolean, void*, void**) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viUnmapAddress(ViSession) { return VI_ERROR_NSUP_OPER; }
ViStatus viMapAddressEx(ViSession, ViUInt16, ViBusAddress64, ViBusSize, ViBoolean, void*, void**) {
  return VI_ERROR_NSUP_OPER;
}
void viPeek8(ViSession, void*, ViUInt8*) {}
void viPoke8(ViSession, void*, ViUInt8) {}
void viPeek16(ViSession, void*, ViUInt16*) {}
void viPoke16(ViSession, void*, ViUInt16) {}
void viPeek32(ViSession, void*, ViUInt32*) {}
void viPoke32(ViSession, void*, ViUInt32) {}
void viPeek64(ViSession, void*, ViUInt64*) {}
void viPoke64(ViSession, void*, ViUInt64) {}
ViStatus viMemAlloc(ViSession, ViBusSize, ViBusAddress*) { return VI_ERROR_NSUP_OPER; }
ViStatus viMemFree(ViSession, ViBusAddress) { return VI_ERROR_NSUP_OPER; }
ViStatus viMemAllocEx(ViSession, ViBusSize, ViBusAddress64*) { return VI_ERROR_NSUP_OPER; }
ViStatus viMemFreeEx(ViSession, ViBusAddress64) { return VI_ERROR_NSUP_OPER; }
ViStatus viGpibControlREN(ViSession, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viGpibControlATN(ViSession, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viGpibSendIFC(ViSession) { return VI_ERROR_NSUP_OPER; }
ViStatus viGpibCommand(ViSession, const ViByte*, ViUInt32, ViUInt32*) { return VI_ERROR_NSUP_OPER; }
ViStatus viGpibPassControl(ViSession, ViUInt16, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viVxiCommandQuery(ViSession, ViUInt16, ViUInt32, ViUInt32*) { return VI_ERROR_NSUP_OPER; }
ViStatus viAssertUtilSignal(ViSession, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viAssertIntrSignal(ViSession, ViInt16, ViUInt32) { return VI_ERROR_NSUP_OPER; }
ViStatus viMapTrigger(ViSession, ViInt16, ViInt16, ViUInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viUnmapTrigger(ViSession, ViInt16, ViInt16) { return VI_ERROR_NSUP_OPER; }
ViStatus viUsbControlOut(ViSession, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16, const ViByte*) {
  return VI_ERROR_NSUP_OPER;
}
ViStatus viUsbControlIn(ViSession, ViInt16, ViInt16, ViUInt16, ViUInt16, ViUInt16, ViByte*,
                        ViUInt16*) {
  return VI_ERROR_NSUP_OPER;
}
}  // extern "C"
