// The driver object that clients create.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "K4NHardWare/K4NManager.h"
#include "driver/CallFrame.h"
#include "driver/ComObject.h"
#include "driver/ErrorMessage.h"
#include "driver/OwnerLink.h"
#include "measurement/TraceMatrix.h"
#include "platform/com/Com.h"
#include "platform/com/Raii.h"
#include "platform/os/Text.h"
#include "server/interface/IErrorTrail.h"
#include "server/interface/IviInherent.h"
#include "server/interface/ZentrelK4NLib.h"

/// One I/O session: the root object owns the instrument manager and the child objects, which all
/// act on this one session. Members may be called from any thread; they take no lock of their own
/// but the one of the trace, and the manager lets one operation at a time reach the instrument.
/// Units are hertz, seconds, dBm and dB. Members that need the instrument fail with 0x8004701D
/// while no session is open.
class CZentrelK4N : public driver::CallFrame,
                    public IProvideClassInfo2,
                    public ISupportErrorInfo,
                    public IZentrelK4N,
                    public IZentrelK4NRF,
                    public IIviDriverIdentity,
                    public IIviDriverOperation,
                    public IIviDriverUtility,
                    public IZentrelK4NSweep,
                    public IZentrelK4NFrequencyStep,
                    public IZentrelK4NAcquisition,
                    public IZentrelK4NChannels,
                    public IZentrelK4NList,
                    public IZentrelK4NSystem,
                    public IErrorTrail {
 public:
  using Interfaces =
      driver::InterfaceList<IZentrelK4N, IProvideClassInfo, IProvideClassInfo2, ISupportErrorInfo,
                            IIviDriverIdentity, IIviDriverOperation, IIviDriverUtility,
                            IIviComponentIdentity, IZentrelK4NRF, IZentrelK4NSweep,
                            IZentrelK4NFrequencyStep, IZentrelK4NChannels, IZentrelK4NList,
                            IZentrelK4NAcquisition, IZentrelK4NSystem, IErrorTrail>;

  CZentrelK4N();
  /// Creates the children. One that cannot be made is missing: its getter fails.
  void FinalConstruct();
  /// Cuts the link to the children that clients still hold.
  void FinalRelease() { link_->Cut(); }

  // --- For the children
  CK4NManager& manager() { return manager_; }

  /// Frame for a member that needs an open session: otherwise 0x8004701D against `iid`.
  template <typename Body>
  HRESULT SessionFrame(REFIID iid, Body&& body) const noexcept {
    return driver::Frame([&]() -> HRESULT {
      if (!manager_.IsConnected()) {
        return Error(driver::kNotConnectedText, iid, Status::kNotConnected);
      }
      return static_cast<HRESULT>(std::forward<Body>(body)());
    });
  }
  /// The same for a member with out pointers.
  template <typename Body>
  HRESULT SessionFrame(REFIID iid, driver::OutPointers out, Body&& body) const noexcept {
    return driver::AreGiven(out) ? SessionFrame(iid, std::forward<Body>(body)) : E_POINTER;
  }

  // --- Operations of the class itself, which no COM interface exposes
  /// The interfaces that the root has no property for. A failure is reported against IIviDriver.
  virtual HRESULT get_DriverOperation(IIviDriverOperation** value);
  virtual HRESULT get_Identity(IIviDriverIdentity** value);
  /// One channel's values of the newest trace as a new array, with the frequency axis (start and
  /// step of the sweep, not transformed by the channel). What `data` held is neither read nor
  /// destroyed.
  virtual HRESULT FetchData(std::size_t channel, SAFEARRAY** data, double* initial_x,
                            double* x_increment);
  /// Loads a detector file into the table of one channel: the name as given, then in the Cyrillic
  /// code page, then in the shared detector folder. Kept: if the second attempt can open a file, an
  /// error in its content is not reported.
  virtual HRESULT LoadDetectorDataFromFile(std::size_t channel, os::WideView file_name);

  // --- IProvideClassInfo2, ISupportErrorInfo
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;

  // --- IErrorTrail
  STDMETHODIMP GetRun(ULONG number, LONG* status, BSTR* location, std::uint64_t* count) override;

  // --- IZentrelK4N
  STDMETHODIMP get_Utility(IIviDriverUtility** value) override;
  STDMETHODIMP get_RF(IZentrelK4NRF** value) override;
  STDMETHODIMP get_PulseGenerator(IZentrelK4NPulseGenerator** value) override;
  STDMETHODIMP get_Sweep(IZentrelK4NSweep** value) override;
  STDMETHODIMP get_PulseModulation(IZentrelK4NPulseModulation** value) override;
  STDMETHODIMP SendSoftwareTrigger() override;
  STDMETHODIMP get_Acquisition(IZentrelK4NAcquisition** value) override;
  STDMETHODIMP get_System(IZentrelK4NSystem** value) override;
  STDMETHODIMP get_SyncGenerator(IZentrelK4NSyncGenerator** value) override;
  STDMETHODIMP Initialize(BSTR resource_name, VARIANT_BOOL id_query, VARIANT_BOOL reset,
                          BSTR option_string) override;
  STDMETHODIMP get_Initialized(VARIANT_BOOL* value) override;
  STDMETHODIMP Close() override;

  // --- IZentrelK4NRF
  STDMETHODIMP Configure(double frequency, double power_level) override;
  STDMETHODIMP put_Frequency(double frequency) override;
  STDMETHODIMP get_Frequency(double* value) override;
  STDMETHODIMP put_Level(double level) override;
  STDMETHODIMP get_Level(double* value) override;
  STDMETHODIMP put_OutputEnabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_OutputEnabled(VARIANT_BOOL* value) override;
  STDMETHODIMP IsSettled(VARIANT_BOOL* done) override;
  STDMETHODIMP WaitUntilSettled(LONG max_time_milliseconds) override;
  STDMETHODIMP DisableAllModulation() override;

  // --- IIviDriverIdentity
  STDMETHODIMP get_Description(BSTR* value) override;
  STDMETHODIMP get_Revision(BSTR* value) override;
  STDMETHODIMP get_Vendor(BSTR* value) override;
  STDMETHODIMP get_InstrumentManufacturer(BSTR* value) override;
  STDMETHODIMP get_InstrumentModel(BSTR* value) override;
  STDMETHODIMP get_InstrumentFirmwareRevision(BSTR* value) override;
  STDMETHODIMP get_Identifier(BSTR* value) override;
  STDMETHODIMP get_SupportedInstrumentModels(BSTR* value) override;
  STDMETHODIMP get_SpecificationMajorVersion(LONG* value) override;
  STDMETHODIMP get_SpecificationMinorVersion(LONG* value) override;
  STDMETHODIMP get_GroupCapabilities(BSTR* value) override;

  // --- IIviDriverOperation
  STDMETHODIMP get_LogicalName(BSTR* value) override;
  STDMETHODIMP get_IoResourceDescriptor(BSTR* value) override;
  STDMETHODIMP get_Cache(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Cache(VARIANT_BOOL value) override;
  STDMETHODIMP get_InterchangeCheck(VARIANT_BOOL* value) override;
  STDMETHODIMP put_InterchangeCheck(VARIANT_BOOL value) override;
  STDMETHODIMP get_QueryInstrumentStatus(VARIANT_BOOL* value) override;
  STDMETHODIMP put_QueryInstrumentStatus(VARIANT_BOOL value) override;
  STDMETHODIMP get_RangeCheck(VARIANT_BOOL* value) override;
  STDMETHODIMP put_RangeCheck(VARIANT_BOOL value) override;
  STDMETHODIMP get_RecordCoercions(VARIANT_BOOL* value) override;
  STDMETHODIMP put_RecordCoercions(VARIANT_BOOL value) override;
  STDMETHODIMP get_Simulate(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Simulate(VARIANT_BOOL value) override;
  STDMETHODIMP get_DriverSetup(BSTR* value) override;
  STDMETHODIMP InvalidateAllAttributes() override;
  STDMETHODIMP ClearInterchangeWarnings() override;
  STDMETHODIMP GetNextInterchangeWarning(BSTR* value) override;
  STDMETHODIMP ResetInterchangeCheck() override;
  STDMETHODIMP GetNextCoercionRecord(BSTR* value) override;

  // --- IIviDriverUtility (Reset serves the frequency step and the list, too)
  STDMETHODIMP Reset() override;
  STDMETHODIMP ResetWithDefaults() override;
  STDMETHODIMP Disable() override;
  STDMETHODIMP SelfTest(LONG* test_result, BSTR* test_message) override;
  STDMETHODIMP ErrorQuery(LONG* error_code, BSTR* error_message) override;
  STDMETHODIMP LockObject() override;
  STDMETHODIMP UnlockObject() override;

  // --- IZentrelK4NSweep
  STDMETHODIMP get_FrequencyStep(IZentrelK4NFrequencyStep** value) override;
  STDMETHODIMP get_PowerStep(IZentrelK4NPowerStep** value) override;
  STDMETHODIMP get_List(IZentrelK4NList** value) override;
  STDMETHODIMP get_TriggerOutput(IZentrelK4NTriggerOutput** value) override;
  STDMETHODIMP Configure(ZentrelK4NSweepModeEnum mode,
                         ZentrelK4NSweepTriggerSourceEnum trigger_source) override;
  STDMETHODIMP put_Mode(ZentrelK4NSweepModeEnum mode) override;
  STDMETHODIMP get_Mode(ZentrelK4NSweepModeEnum* value) override;
  STDMETHODIMP put_TriggerSource(ZentrelK4NSweepTriggerSourceEnum source) override;
  STDMETHODIMP get_TriggerSource(ZentrelK4NSweepTriggerSourceEnum* value) override;
  STDMETHODIMP put_TriggerAction(ZentrelK4NSweepTriggerActionEnum action) override;
  STDMETHODIMP get_TriggerAction(ZentrelK4NSweepTriggerActionEnum* value) override;

  // --- IZentrelK4NFrequencyStep (single step and dwell serve the list, too)
  STDMETHODIMP ConfigureStartStop(double start, double stop,
                                  ZentrelK4NFrequencyStepScalingEnum scaling,
                                  double step_size) override;
  STDMETHODIMP put_Start(double start) override;
  STDMETHODIMP get_Start(double* value) override;
  STDMETHODIMP put_Stop(double stop) override;
  STDMETHODIMP get_Stop(double* value) override;
  STDMETHODIMP put_Scaling(ZentrelK4NFrequencyStepScalingEnum scaling) override;
  STDMETHODIMP get_Scaling(ZentrelK4NFrequencyStepScalingEnum* value) override;
  STDMETHODIMP put_Size(double size) override;
  STDMETHODIMP get_Size(double* value) override;
  STDMETHODIMP ConfigureDwell(VARIANT_BOOL single_step_enabled, double dwell) override;
  STDMETHODIMP put_SingleStepEnabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_SingleStepEnabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Dwell(double dwell) override;
  STDMETHODIMP get_Dwell(double* value) override;

  // --- IZentrelK4NList
  STDMETHODIMP get_SelectedName(BSTR* value) override;
  STDMETHODIMP put_SelectedName(BSTR name) override;
  STDMETHODIMP ClearAll() override;
  STDMETHODIMP CreateFrequency(BSTR name, SAFEARRAY** frequency) override;
  STDMETHODIMP CreatePower(BSTR name, SAFEARRAY** power) override;
  STDMETHODIMP CreateFrequencyPower(BSTR name, SAFEARRAY** frequency, SAFEARRAY** power) override;

  // --- IZentrelK4NAcquisition
  STDMETHODIMP get_Averaging(LONG* value) override;
  STDMETHODIMP put_Averaging(LONG count) override;
  STDMETHODIMP get_Status(ZentrelK4NAcquisitionStatusEnum* value) override;
  STDMETHODIMP get_Channels(IZentrelK4NChannels** value) override;
  STDMETHODIMP Initiate() override;
  STDMETHODIMP Abort() override;

  // --- IZentrelK4NChannels
  STDMETHODIMP get_Count(LONG* value) override;
  STDMETHODIMP get_Name(LONG index, BSTR* name) override;
  STDMETHODIMP get_Item(BSTR name, IZentrelK4NChannel** item) override;

  // --- IZentrelK4NSystem
  STDMETHODIMP get_SerialNum(BSTR* value) override;
  STDMETHODIMP get_Type(BSTR* value) override;
  STDMETHODIMP get_RFButton(VARIANT_BOOL* value) override;
  STDMETHODIMP get_PLLState(VARIANT_BOOL* value) override;
  STDMETHODIMP get_ERGState(VARIANT_BOOL* value) override;
  STDMETHODIMP get_LevelState(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Atten(ZentrelK4NSystemAttenEnum mode) override;
  STDMETHODIMP get_Atten(ZentrelK4NSystemAttenEnum* value) override;
  STDMETHODIMP put_ExtRefGenEnabled(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_ExtRefGenEnabled(VARIANT_BOOL* value) override;
  STDMETHODIMP put_ExtRefGenFrequency(double frequency) override;
  STDMETHODIMP get_ExtRefGenFrequency(double* value) override;
  STDMETHODIMP put_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum edge) override;
  STDMETHODIMP get_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum* value) override;
  STDMETHODIMP put_ExtRefPhaseDelay(LONG delay) override;
  STDMETHODIMP get_ExtRefPhaseDelay(LONG* value) override;
  STDMETHODIMP put_ExtPwrCtrl(VARIANT_BOOL enabled) override;
  STDMETHODIMP get_ExtPwrCtrl(VARIANT_BOOL* value) override;
  STDMETHODIMP get_CompensMode(ZentrelK4NSystemCompensModeEnum* value) override;
  STDMETHODIMP put_CompensMode(ZentrelK4NSystemCompensModeEnum mode) override;

 protected:
  ~CZentrelK4N() = default;

 private:
  /// The newest trace and the status of its measurement.
  struct Acquisition {
    std::mutex lock;  ///< held for a conversion, and for the copy of a row
    ZentrelK4NAcquisitionStatusEnum status = ZentrelK4NAcquisitionStatusUnknown;
    TraceMatrix trace;
    double initial_x = 0.0;    ///< hertz or dBm, as the sweep
    double x_increment = 0.0;  ///< hertz or dB
  };

  IUnknown* Self() { return static_cast<IZentrelK4N*>(this); }
  /// Writes 1 or 0. If the manager fails, the value is unchanged and the failure is returned.
  Status ReadStateBit(VARIANT_BOOL& value, StatusAnd<bool> (CK4NManager::*read)());
  /// Takes the newest block into the trace; needs the acquisition's lock.
  Status UpdateAcquisition();
  void SetAcquisitionStatus(ZentrelK4NAcquisitionStatusEnum status);
  HRESULT LoadFromDetectorFolder(std::size_t channel, os::WideView file_name);

  Acquisition acquisition_;
  CK4NManager manager_;
  std::shared_ptr<driver::OwnerLink> link_;
  std::array<ComPtr<IZentrelK4NChannel>, measurement::kTraceChannels> channels_;
  ComPtr<IZentrelK4NPowerStep> power_step_;
  ComPtr<IZentrelK4NPulseGenerator> pulse_generator_;
  ComPtr<IZentrelK4NPulseModulation> pulse_modulation_;
  ComPtr<IZentrelK4NTriggerOutput> trigger_output_;
  ComPtr<IZentrelK4NSyncGenerator> sync_generator_;
};
