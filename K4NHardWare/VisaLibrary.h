// The VISA library, loaded at run time, and its entry points.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "platform/os/Module.h"
#include "visa/Visa.h"

namespace uDevice {

/// Stands in for an entry point that the library lacks: does nothing, and returns
/// VI_ERROR_LIBRARY_NFOUND if the function returns a status.
template <typename Signature>
struct StandBy;

template <typename... Arguments>
struct StandBy<ViStatus(Arguments...)> {
  static ViStatus Call(Arguments...) { return VI_ERROR_LIBRARY_NFOUND; }
};

template <typename... Arguments>
struct StandBy<ViStatus(Arguments..., ...)> {
  static ViStatus Call(Arguments..., ...) { return VI_ERROR_LIBRARY_NFOUND; }
};

template <typename... Arguments>
struct StandBy<void(Arguments...)> {
  static void Call(Arguments...) {}
};

/// One slot of the table: always callable.
class EntryPointBase {
 public:
  using Address = void (*)();

  EntryPointBase(std::vector<EntryPointBase*>& table, const char* name, Address stand_by)
      : name_(name), stand_by_(stand_by), address_(stand_by) {
    table.push_back(this);
  }
  EntryPointBase(const EntryPointBase&) = delete;
  EntryPointBase& operator=(const EntryPointBase&) = delete;

  void Reset() { address_ = stand_by_; }
  /// False when the module lacks the name; the stand-by stays then.
  bool Bind(const os::Module& module);

 protected:
  ~EntryPointBase() = default;
  [[nodiscard]] Address address() const { return address_; }

 private:
  const char* name_;
  Address stand_by_;
  Address address_;
};

/// The slot of one function of VISA, called like the function.
template <typename Signature>
class EntryPoint;

template <typename Result, typename... Arguments>
class EntryPoint<Result(Arguments...)> final : public EntryPointBase {
  using Signature = Result(Arguments...);

 public:
  EntryPoint(std::vector<EntryPointBase*>& table, const char* name)
      : EntryPointBase(table, name, reinterpret_cast<Address>(&StandBy<Signature>::Call)) {}

  Result operator()(Arguments... arguments) const {
    return reinterpret_cast<Signature*>(address())(arguments...);
  }
};

/// The same for a function with further arguments of any kind.
template <typename Result, typename... Arguments>
class EntryPoint<Result(Arguments..., ...)> final : public EntryPointBase {
  using Signature = Result(Arguments..., ...);

 public:
  EntryPoint(std::vector<EntryPointBase*>& table, const char* name)
      : EntryPointBase(table, name, reinterpret_cast<Address>(&StandBy<Signature>::Call)) {}

  template <typename... Further>
  Result operator()(Arguments... arguments, Further... further) const {
    return reinterpret_cast<Signature*>(address())(arguments..., further...);
  }
};

// The argument lists of the v-functions carry an attribute on Windows that plays no part in a
// signature.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-attributes"

/// Owns the loaded module. The driver calls nine of the entry points; the others complete the
/// table.
class VisaLibrary {
  std::vector<EntryPointBase*> entries_;  ///< in the order of the declarations below

 public:
  static constexpr int kNotLoaded = -1;

  VisaLibrary() = default;
  VisaLibrary(const VisaLibrary&) = delete;
  VisaLibrary& operator=(const VisaLibrary&) = delete;

  /// Unloads what is loaded, then loads the named file, or without a name "zevisa64.dll", or else
  /// "zevisa.dll", by the system's search. Returns how many entry points the library lacks, which
  /// is no error, or kNotLoaded.
  int Bind(const std::filesystem::path& name);
  /// Unloads the library and puts the stand-by into every slot.
  void Reset();
  /// The result of the last Bind; kNotLoaded after a reset.
  [[nodiscard]] int missing_count() const { return missing_count_; }

  EntryPoint<decltype(::viOpenDefaultRM)> viOpenDefaultRM{entries_, "viOpenDefaultRM"};
  EntryPoint<decltype(::viParseRsrcEx)> viParseRsrcEx{entries_, "viParseRsrcEx"};
  EntryPoint<decltype(::viOpen)> viOpen{entries_, "viOpen"};
  EntryPoint<decltype(::viFindRsrc)> viFindRsrc{entries_, "viFindRsrc"};
  EntryPoint<decltype(::viFindNext)> viFindNext{entries_, "viFindNext"};
  EntryPoint<decltype(::viParseRsrc)> viParseRsrc{entries_, "viParseRsrc"};
  EntryPoint<decltype(::viClose)> viClose{entries_, "viClose"};
  EntryPoint<decltype(::viSetAttribute)> viSetAttribute{entries_, "viSetAttribute"};
  EntryPoint<decltype(::viGetAttribute)> viGetAttribute{entries_, "viGetAttribute"};
  EntryPoint<decltype(::viStatusDesc)> viStatusDesc{entries_, "viStatusDesc"};
  EntryPoint<decltype(::viTerminate)> viTerminate{entries_, "viTerminate"};
  EntryPoint<decltype(::viLock)> viLock{entries_, "viLock"};
  EntryPoint<decltype(::viUnlock)> viUnlock{entries_, "viUnlock"};
  EntryPoint<decltype(::viEnableEvent)> viEnableEvent{entries_, "viEnableEvent"};
  EntryPoint<decltype(::viDisableEvent)> viDisableEvent{entries_, "viDisableEvent"};
  EntryPoint<decltype(::viDiscardEvents)> viDiscardEvents{entries_, "viDiscardEvents"};
  EntryPoint<decltype(::viWaitOnEvent)> viWaitOnEvent{entries_, "viWaitOnEvent"};
  EntryPoint<decltype(::viInstallHandler)> viInstallHandler{entries_, "viInstallHandler"};
  EntryPoint<decltype(::viUninstallHandler)> viUninstallHandler{entries_, "viUninstallHandler"};
  EntryPoint<decltype(::viRead)> viRead{entries_, "viRead"};
  EntryPoint<decltype(::viReadAsync)> viReadAsync{entries_, "viReadAsync"};
  EntryPoint<decltype(::viReadToFile)> viReadToFile{entries_, "viReadToFile"};
  EntryPoint<decltype(::viWrite)> viWrite{entries_, "viWrite"};
  EntryPoint<decltype(::viWriteAsync)> viWriteAsync{entries_, "viWriteAsync"};
  EntryPoint<decltype(::viWriteFromFile)> viWriteFromFile{entries_, "viWriteFromFile"};
  EntryPoint<decltype(::viAssertTrigger)> viAssertTrigger{entries_, "viAssertTrigger"};
  EntryPoint<decltype(::viReadSTB)> viReadSTB{entries_, "viReadSTB"};
  EntryPoint<decltype(::viClear)> viClear{entries_, "viClear"};
  EntryPoint<decltype(::viSetBuf)> viSetBuf{entries_, "viSetBuf"};
  EntryPoint<decltype(::viFlush)> viFlush{entries_, "viFlush"};
  EntryPoint<decltype(::viBufWrite)> viBufWrite{entries_, "viBufWrite"};
  EntryPoint<decltype(::viBufRead)> viBufRead{entries_, "viBufRead"};
  EntryPoint<decltype(::viPrintf)> viPrintf{entries_, "viPrintf"};
  EntryPoint<decltype(::viVPrintf)> viVPrintf{entries_, "viVPrintf"};
  EntryPoint<decltype(::viSPrintf)> viSPrintf{entries_, "viSPrintf"};
  EntryPoint<decltype(::viVSPrintf)> viVSPrintf{entries_, "viVSPrintf"};
  EntryPoint<decltype(::viScanf)> viScanf{entries_, "viScanf"};
  EntryPoint<decltype(::viVScanf)> viVScanf{entries_, "viVScanf"};
  EntryPoint<decltype(::viSScanf)> viSScanf{entries_, "viSScanf"};
  EntryPoint<decltype(::viVSScanf)> viVSScanf{entries_, "viVSScanf"};
  EntryPoint<decltype(::viQueryf)> viQueryf{entries_, "viQueryf"};
  EntryPoint<decltype(::viVQueryf)> viVQueryf{entries_, "viVQueryf"};
  EntryPoint<decltype(::viIn8)> viIn8{entries_, "viIn8"};
  EntryPoint<decltype(::viOut8)> viOut8{entries_, "viOut8"};
  EntryPoint<decltype(::viIn16)> viIn16{entries_, "viIn16"};
  EntryPoint<decltype(::viOut16)> viOut16{entries_, "viOut16"};
  EntryPoint<decltype(::viIn32)> viIn32{entries_, "viIn32"};
  EntryPoint<decltype(::viOut32)> viOut32{entries_, "viOut32"};
  EntryPoint<decltype(::viIn64)> viIn64{entries_, "viIn64"};
  EntryPoint<decltype(::viOut64)> viOut64{entries_, "viOut64"};
  EntryPoint<decltype(::viIn8Ex)> viIn8Ex{entries_, "viIn8Ex"};
  EntryPoint<decltype(::viOut8Ex)> viOut8Ex{entries_, "viOut8Ex"};
  EntryPoint<decltype(::viIn16Ex)> viIn16Ex{entries_, "viIn16Ex"};
  EntryPoint<decltype(::viOut16Ex)> viOut16Ex{entries_, "viOut16Ex"};
  EntryPoint<decltype(::viIn32Ex)> viIn32Ex{entries_, "viIn32Ex"};
  EntryPoint<decltype(::viOut32Ex)> viOut32Ex{entries_, "viOut32Ex"};
  EntryPoint<decltype(::viIn64Ex)> viIn64Ex{entries_, "viIn64Ex"};
  EntryPoint<decltype(::viOut64Ex)> viOut64Ex{entries_, "viOut64Ex"};
  EntryPoint<decltype(::viMoveIn8)> viMoveIn8{entries_, "viMoveIn8"};
  EntryPoint<decltype(::viMoveOut8)> viMoveOut8{entries_, "viMoveOut8"};
  EntryPoint<decltype(::viMoveIn16)> viMoveIn16{entries_, "viMoveIn16"};
  EntryPoint<decltype(::viMoveOut16)> viMoveOut16{entries_, "viMoveOut16"};
  EntryPoint<decltype(::viMoveIn32)> viMoveIn32{entries_, "viMoveIn32"};
  EntryPoint<decltype(::viMoveOut32)> viMoveOut32{entries_, "viMoveOut32"};
  EntryPoint<decltype(::viMoveIn64)> viMoveIn64{entries_, "viMoveIn64"};
  EntryPoint<decltype(::viMoveOut64)> viMoveOut64{entries_, "viMoveOut64"};
  EntryPoint<decltype(::viMoveIn8Ex)> viMoveIn8Ex{entries_, "viMoveIn8Ex"};
  EntryPoint<decltype(::viMoveOut8Ex)> viMoveOut8Ex{entries_, "viMoveOut8Ex"};
  EntryPoint<decltype(::viMoveIn16Ex)> viMoveIn16Ex{entries_, "viMoveIn16Ex"};
  EntryPoint<decltype(::viMoveOut16Ex)> viMoveOut16Ex{entries_, "viMoveOut16Ex"};
  EntryPoint<decltype(::viMoveIn32Ex)> viMoveIn32Ex{entries_, "viMoveIn32Ex"};
  EntryPoint<decltype(::viMoveOut32Ex)> viMoveOut32Ex{entries_, "viMoveOut32Ex"};
  EntryPoint<decltype(::viMoveIn64Ex)> viMoveIn64Ex{entries_, "viMoveIn64Ex"};
  EntryPoint<decltype(::viMoveOut64Ex)> viMoveOut64Ex{entries_, "viMoveOut64Ex"};
  EntryPoint<decltype(::viMove)> viMove{entries_, "viMove"};
  EntryPoint<decltype(::viMoveAsync)> viMoveAsync{entries_, "viMoveAsync"};
  EntryPoint<decltype(::viMoveEx)> viMoveEx{entries_, "viMoveEx"};
  EntryPoint<decltype(::viMoveAsyncEx)> viMoveAsyncEx{entries_, "viMoveAsyncEx"};
  EntryPoint<decltype(::viMapAddress)> viMapAddress{entries_, "viMapAddress"};
  EntryPoint<decltype(::viUnmapAddress)> viUnmapAddress{entries_, "viUnmapAddress"};
  EntryPoint<decltype(::viMapAddressEx)> viMapAddressEx{entries_, "viMapAddressEx"};
  EntryPoint<decltype(::viPeek8)> viPeek8{entries_, "viPeek8"};
  EntryPoint<decltype(::viPoke8)> viPoke8{entries_, "viPoke8"};
  EntryPoint<decltype(::viPeek16)> viPeek16{entries_, "viPeek16"};
  EntryPoint<decltype(::viPoke16)> viPoke16{entries_, "viPoke16"};
  EntryPoint<decltype(::viPeek32)> viPeek32{entries_, "viPeek32"};
  EntryPoint<decltype(::viPoke32)> viPoke32{entries_, "viPoke32"};
  EntryPoint<decltype(::viPeek64)> viPeek64{entries_, "viPeek64"};
  EntryPoint<decltype(::viPoke64)> viPoke64{entries_, "viPoke64"};
  EntryPoint<decltype(::viMemAlloc)> viMemAlloc{entries_, "viMemAlloc"};
  EntryPoint<decltype(::viMemFree)> viMemFree{entries_, "viMemFree"};
  EntryPoint<decltype(::viMemAllocEx)> viMemAllocEx{entries_, "viMemAllocEx"};
  EntryPoint<decltype(::viMemFreeEx)> viMemFreeEx{entries_, "viMemFreeEx"};
  EntryPoint<decltype(::viGpibControlREN)> viGpibControlREN{entries_, "viGpibControlREN"};
  EntryPoint<decltype(::viGpibControlATN)> viGpibControlATN{entries_, "viGpibControlATN"};
  EntryPoint<decltype(::viGpibSendIFC)> viGpibSendIFC{entries_, "viGpibSendIFC"};
  EntryPoint<decltype(::viGpibCommand)> viGpibCommand{entries_, "viGpibCommand"};
  EntryPoint<decltype(::viGpibPassControl)> viGpibPassControl{entries_, "viGpibPassControl"};
  EntryPoint<decltype(::viVxiCommandQuery)> viVxiCommandQuery{entries_, "viVxiCommandQuery"};
  EntryPoint<decltype(::viAssertUtilSignal)> viAssertUtilSignal{entries_, "viAssertUtilSignal"};
  EntryPoint<decltype(::viAssertIntrSignal)> viAssertIntrSignal{entries_, "viAssertIntrSignal"};
  EntryPoint<decltype(::viMapTrigger)> viMapTrigger{entries_, "viMapTrigger"};
  EntryPoint<decltype(::viUnmapTrigger)> viUnmapTrigger{entries_, "viUnmapTrigger"};
  EntryPoint<decltype(::viUsbControlOut)> viUsbControlOut{entries_, "viUsbControlOut"};
  EntryPoint<decltype(::viUsbControlIn)> viUsbControlIn{entries_, "viUsbControlIn"};

 private:
  os::Module module_;
  int missing_count_ = kNotLoaded;
};

#pragma GCC diagnostic pop

}  // namespace uDevice
