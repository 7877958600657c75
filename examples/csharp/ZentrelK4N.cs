// Generated from ZentrelK4NLib.idl and IviInherent.idl by server/interface/generate - Do not edit.
// The driver's interfaces for C#: compile them into your program.
//
// Every member gives its HRESULT (PreserveSig), since some successes say more than success: 1 to 6
// are notices of the instrument, 10057 says that there is no session, and Initialize warns by
// 0x00047065 and 0x00047066. Negative ones are failures. Results.Name tells what a result is
// called, Results.Description what the driver says about it.
//
// Truth values are the numbers that travel: 0 is false, and any other one true. Some members read 1
// for true, others -1, so test for "!= 0". To set one, write -1 or 0.
//
// Pass null where a member gives an array or a text back (FetchData, ErrorQuery): the driver
// replaces what stands there, and never frees it.

using System;
using System.Runtime.InteropServices;

namespace ZentrelK4NLib
{
    /// <summary>Values for the pulse output polarity.</summary>
    public enum ZentrelK4NPulseOutputPolarityEnum : int
    {
        ZentrelK4NPulseOutputPolarityNormal = 0,
        ZentrelK4NPulseOutputPolarityInverse = 1,
    }

    /// <summary>Values for the pulse generator trigger source.</summary>
    public enum ZentrelK4NPulseTriggerSourceEnum : int
    {
        ZentrelK4NPulseTriggerSourceInternal = 0,
        ZentrelK4NPulseTriggerSourceExternal = 1,
    }

    /// <summary>Values for the pulse generator external trigger slope.</summary>
    public enum ZentrelK4NPulseExternalTriggerSlopeEnum : int
    {
        ZentrelK4NPulseExternalTriggerSlopePositive = 0,
        ZentrelK4NPulseExternalTriggerSlopeNegative = 1,
    }

    /// <summary>Values for the frequency step scaling mode.</summary>
    public enum ZentrelK4NFrequencyStepScalingEnum : int
    {
        ZentrelK4NFrequencyStepScalingLinear = 0,
        ZentrelK4NFrequencyStepScalingLogarithmic = 1,
    }

    public enum ZentrelK4NTriggerOutputModeEnum : int
    {
        ZentrelK4NTriggerOutputModeNone = 0,
        ZentrelK4NTriggerOutputModeInput = 1,
        ZentrelK4NTriggerOutputModeSweep = 1001,
        ZentrelK4NTriggerOutputModeNextStep = 1002,
        ZentrelK4NTriggerOutputModeSingleStep = 1003,
        ZentrelK4NTriggerOutputModeSoftware = 1004,
        ZentrelK4NTriggerOutputModeSyncGen = 1005,
    }

    public enum ZentrelK4NTriggerOutputPolarityEnum : int
    {
        ZentrelK4NTriggerOutputPolarityNormal = 0,
        ZentrelK4NTriggerOutputPolarityInverse = 1,
    }

    /// <summary>Values for the sweep mode.</summary>
    public enum ZentrelK4NSweepModeEnum : int
    {
        ZentrelK4NSweepModeNone = 0,
        ZentrelK4NSweepModeFrequencyStep = 3,
        ZentrelK4NSweepModePowerStep = 4,
        ZentrelK4NSweepModeList = 5,
    }

    /// <summary>Values for the sweep trigger source.</summary>
    public enum ZentrelK4NSweepTriggerSourceEnum : int
    {
        ZentrelK4NSweepTriggerSourceImmediate = 0,
        ZentrelK4NSweepTriggerSourceExternal = 1,
        ZentrelK4NSweepTriggerSourceSoftware = 2,
    }

    /// <summary>Values for the sweep trigger action.</summary>
    public enum ZentrelK4NSweepTriggerActionEnum : int
    {
        ZentrelK4NSweepTriggerActionSwitch = 0,
        ZentrelK4NSweepTriggerActionMeasure = 1,
    }

    /// <summary>Values for the pulse modulation source.</summary>
    public enum ZentrelK4NPulseModulationSourceEnum : int
    {
        ZentrelK4NPulseModulationSourceInternal = 0,
        ZentrelK4NPulseModulationSourceExternal = 1,
    }

    /// <summary>Values for the pulse modulation external polarity.</summary>
    public enum ZentrelK4NPulseModulationExternalPolarityEnum : int
    {
        ZentrelK4NPulseModulationExternalPolarityNormal = 0,
        ZentrelK4NPulseModulationExternalPolarityInverse = 1,
    }

    public enum ZentrelK4NAcquisitionStatusEnum : int
    {
        ZentrelK4NAcquisitionStatusComplete = 0,
        ZentrelK4NAcquisitionStatusInProgress = 1,
        ZentrelK4NAcquisitionStatusUnknown = 2,
    }

    public enum ZentrelK4NSystemAttenEnum : int
    {
        ZentrelK4NSystemAttenMinHarm = 0,
        ZentrelK4NSystemAttenOptSWR = 1,
        ZentrelK4NSystemAttenOptimum = 2,
        ZentrelK4NSystemAttenCare = 3,
    }

    public enum ZentrelK4NSystemSyncSourceDetectorEnum : int
    {
        ZentrelK4NSystemSyncSourceDetectorRise = 0,
        ZentrelK4NSystemSyncSourceDetectorFall = 1,
    }

    public enum ZentrelK4NSystemCompensModeEnum : int
    {
        ZentrelK4NSystemCompensModeDC = 0,
        ZentrelK4NSystemCompensModeOnce = 1,
        ZentrelK4NSystemCompensModeAuto = 2,
        ZentrelK4NSystemCompensModeBand = 3,
        ZentrelK4NSystemCompensModeAC = 4,
    }

    /// <summary>IVI RFSigGen class defined HRESULTS</summary>
    public enum ZentrelK4NErrorCodesEnum : int
    {
        E_ZENTRELK4N_TRIGGER_NOT_SOFTWARE = -2147217407,
        E_ZENTRELK4N_MAX_TIME_EXCEEDED = -2147213309,
        E_ZENTRELK4N_LIST_UNKNOWN = -2147213302,
    }

    /// <summary>IVI RFSigGen class defined values for MaxTimeMilliseconds.</summary>
    public enum ZentrelK4NMaxTimeMillisecondsEnum : int
    {
        ZentrelK4NMaxTimeMillisecondsInfinite = -1,
        ZentrelK4NMaxTimeMillisecondsImmediate = 0,
    }

    /// <summary>IVI RFSigGen class-compliant root interface</summary>
    [ComImport, Guid("C63AE521-7C9B-4DF3-A6C6-6319D401488B"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4N
    {
        /// <summary>Pointer to the IIviDriverUtility interface</summary>
        [PreserveSig]
        int get_Utility(out IIviDriverUtility pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenRF interface</summary>
        [PreserveSig]
        int get_RF(out IZentrelK4NRF pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenPulseGenerator interface</summary>
        [PreserveSig]
        int get_PulseGenerator(out IZentrelK4NPulseGenerator pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenSweep interface</summary>
        [PreserveSig]
        int get_Sweep(out IZentrelK4NSweep pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenPulseModulation interface</summary>
        [PreserveSig]
        int get_PulseModulation(out IZentrelK4NPulseModulation pVal);

        /// <summary>Sends a software trigger, which will cause the signal generator to start signal generation.</summary>
        [PreserveSig]
        int SendSoftwareTrigger();

        /// <summary>ZentrelK4N acquisition interface</summary>
        [PreserveSig]
        int get_Acquisition(out IZentrelK4NAcquisition pVal);

        [PreserveSig]
        int get_System(out IZentrelK4NSystem pVal);

        [PreserveSig]
        int get_SyncGenerator(out IZentrelK4NSyncGenerator pVal);

        /// <summary>Opens the I/O session to the instrument.  Driver methods and properties that access the instrument are only accessible after Initialize is called.  Initialize optionally performs a Reset and queries the instrument to validate the instrument model.</summary>
        /// <param name="IdQuery">0: false; any other number: true</param>
        /// <param name="Reset">0: false; any other number: true</param>
        /// <param name="OptionString">May be null.</param>
        [PreserveSig]
        int Initialize([MarshalAs(UnmanagedType.BStr)] string ResourceName, short IdQuery, short Reset, [MarshalAs(UnmanagedType.BStr)] string OptionString);

        /// <summary>Initialized is True between a successful call to the Initialize method and a successful call to the Close method, and False at all other times.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Initialized(out short pVal);

        /// <summary>Closes the I/O session to the instrument.  Driver methods and properties that access the instrument are not accessible after Close is called.</summary>
        [PreserveSig]
        int Close();
    }

    /// <summary>IVI Driver utility interface</summary>
    [ComImport, Guid("47ED5189-A398-11D4-BA58-000064657374"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IIviDriverUtility
    {
        /// <summary>Places the instrument in a known state and configures instrument options on which the IVI specific driver depends (for example, enabling/disabling headers).  For an IEEE 488.2 instrument, Reset sends the command string *RST to the instrument.</summary>
        [PreserveSig]
        int Reset();

        /// <summary>Does the equivalent of Reset and then, (1) disables class extension capability groups, (2) sets attributes to initial values defined by class specs, and (3) configures the driver to option string settings used when Initialize was last executed.</summary>
        [PreserveSig]
        int ResetWithDefaults();

        /// <summary>Quickly places the instrument in a state where it has no, or minimal, effect on the external system to which it is connected.  This state is not necessarily a known state.</summary>
        [PreserveSig]
        int Disable();

        /// <summary>Performs an instrument self test, waits for the instrument to complete the test, and queries the instrument for the results.  If the instrument passes the test, TestResult is zero and TestMessage is 'Self test passed'.</summary>
        [PreserveSig]
        int SelfTest([In, Out] ref int TestResult, [In, Out, MarshalAs(UnmanagedType.BStr)] ref string TestMessage);

        /// <summary>Queries the instrument and returns instrument specific error information.  This function can be used when QueryInstrumentStatus is True to retrieve error details when the driver detects an instrument error.</summary>
        [PreserveSig]
        int ErrorQuery([In, Out] ref int ErrorCode, [In, Out, MarshalAs(UnmanagedType.BStr)] ref string ErrorMessage);

        /// <summary>Obtains a multithread lock on the driver after waiting until all other execution threads have released their locks on the instrument session.</summary>
        [PreserveSig]
        int LockObject();

        /// <summary>Releases a previously obtained mutlithread lock.</summary>
        [PreserveSig]
        int UnlockObject();
    }

    /// <summary>IVI RFSigGen class-compliant RF interface</summary>
    [ComImport, Guid("2ABE1589-9E6D-4FA1-BA34-F36A173CD045"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NRF
    {
        /// <summary>This function configures the frequency and the power level of the RF output signal.</summary>
        /// <param name="Frequency">In Hz.</param>
        /// <param name="PowerLevel">In dBm.</param>
        [PreserveSig]
        int Configure(double Frequency, double PowerLevel);

        /// <summary>Specifies the frequency of the generated RF output signal.</summary>
        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_Frequency(double value);

        /// <summary>Specifies the frequency of the generated RF output signal.</summary>
        /// <param name="pVal">In Hz.</param>
        [PreserveSig]
        int get_Frequency(out double pVal);

        /// <summary>Specifies the amplitude (power/level) of the RF output signal.</summary>
        /// <param name="value">In dBm.</param>
        [PreserveSig]
        int put_Level(double value);

        /// <summary>Specifies the amplitude (power/level) of the RF output signal.</summary>
        /// <param name="pVal">In dBm.</param>
        [PreserveSig]
        int get_Level(out double pVal);

        /// <summary>Enables or disables the RF output signal.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_OutputEnabled(short value);

        /// <summary>Enables or disables the RF output signal.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_OutputEnabled(out short pVal);

        /// <summary>This function queries the state of the RF output signal.</summary>
        /// <param name="Done">0: false; any other number: true</param>
        [PreserveSig]
        int IsSettled(out short Done);

        /// <summary>This function returns if the state of the RF output signal has settled.</summary>
        /// <param name="MaxTimeMilliseconds">In ms.</param>
        [PreserveSig]
        int WaitUntilSettled(int MaxTimeMilliseconds);

        /// <summary>This function disables all currently enabled modulations.</summary>
        [PreserveSig]
        int DisableAllModulation();
    }

    /// <summary>IVI RFSigGen class-compliant pulse generator interface</summary>
    [ComImport, Guid("6F7B2E9A-14BD-4AC0-9278-5BD72354B25F"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPulseGenerator
    {
        /// <summary>Pointer to the class-compliant IIviRFSigGenPulseGeneratorDouble interface</summary>
        [PreserveSig]
        int get_Double(out IZentrelK4NPulseGeneratorDouble pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenPulseGeneratorOutput interface</summary>
        [PreserveSig]
        int get_Output(out IZentrelK4NPulseGeneratorOutput pVal);

        [PreserveSig]
        int get_Packet(out IZentrelK4NPulsePacketGenerator pVal);

        /// <summary>This function configures the pulse generator within the RF signal generator.</summary>
        /// <param name="PulseWidth">In s.</param>
        /// <param name="GatingEnabled">0: false; any other number: true</param>
        [PreserveSig]
        int Configure(ZentrelK4NPulseTriggerSourceEnum PulseTriggerSource, double PulseWidth, short GatingEnabled);

        /// <summary>This function configures the external trigger for the pulse generator.</summary>
        /// <param name="Delay">In s.</param>
        [PreserveSig]
        int ConfigureExternalTrigger(ZentrelK4NPulseExternalTriggerSlopeEnum Slope, double Delay);

        /// <summary>Specifies the period of the pulse generator's output signal.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_InternalTriggerPeriod(double value);

        /// <summary>Specifies the period of the pulse generator's output signal.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_InternalTriggerPeriod(out double pVal);

        /// <summary>Specifies the width of the output pulse.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Width(double value);

        /// <summary>Specifies the width of the output pulse.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Width(out double pVal);

        /// <summary>Enables or disables trigger gating.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_GatingEnabled(short value);

        /// <summary>Enables or disables trigger gating.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_GatingEnabled(out short pVal);

        /// <summary>Specifies the source of the signal the pulse generator uses to generate one pulse.</summary>
        [PreserveSig]
        int put_TriggerSource(ZentrelK4NPulseTriggerSourceEnum value);

        /// <summary>Specifies the source of the signal the pulse generator uses to generate one pulse.</summary>
        [PreserveSig]
        int get_TriggerSource(out ZentrelK4NPulseTriggerSourceEnum pVal);

        /// <summary>Specifies whether the event occurs on the rising or falling edge of the trigger input signal.</summary>
        [PreserveSig]
        int put_ExternalTriggerSlope(ZentrelK4NPulseExternalTriggerSlopeEnum value);

        /// <summary>Specifies whether the event occurs on the rising or falling edge of the trigger input signal.</summary>
        [PreserveSig]
        int get_ExternalTriggerSlope(out ZentrelK4NPulseExternalTriggerSlopeEnum pVal);

        /// <summary>Specifies the delay for starting the output signal with respect to the trigger input.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_ExternalTriggerDelay(double value);

        /// <summary>Specifies the delay for starting the output signal with respect to the trigger input.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_ExternalTriggerDelay(out double pVal);
    }

    /// <summary>IVI RFSigGen class-compliant pulse double generator interface</summary>
    [ComImport, Guid("1303E794-5612-431A-BB2D-86F1971A7054"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPulseGeneratorDouble
    {
        /// <summary>This function configures the double pulse state and delay.</summary>
        /// <param name="Enabled">0: false; any other number: true</param>
        /// <param name="Delay">In s.</param>
        [PreserveSig]
        int Configure(short Enabled, double Delay);

        /// <summary>Turns double pulse mode on/off.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <summary>Turns double pulse mode on/off.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short pVal);

        /// <summary>Specifies the delay of the second pulse.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Delay(double value);

        /// <summary>Specifies the delay of the second pulse.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Delay(out double pVal);
    }

    /// <summary>IVI RFSigGen class-compliant pulse generator output interface</summary>
    [ComImport, Guid("8AEE33BF-016E-444F-993D-D6F5F4E3FFD3"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPulseGeneratorOutput
    {
        /// <summary>This function configures the output and polarity of the pulse generator.</summary>
        /// <param name="Enabled">0: false; any other number: true</param>
        [PreserveSig]
        int Configure(ZentrelK4NPulseOutputPolarityEnum Polarity, short Enabled);

        /// <summary>Specifies the polarity of the output signal.</summary>
        [PreserveSig]
        int put_Polarity(ZentrelK4NPulseOutputPolarityEnum value);

        /// <summary>Specifies the polarity of the output signal.</summary>
        [PreserveSig]
        int get_Polarity(out ZentrelK4NPulseOutputPolarityEnum pVal);

        /// <summary>Enables or disables the pulse generator external output.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <summary>Enables or disables the pulse generator external output.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short pVal);
    }

    [ComImport, Guid("4AE6DB7C-F044-420C-B310-42EF3FC16B9F"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPulsePacketGenerator
    {
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short pVal);

        /// <param name="Enabled">0: false; any other number: true</param>
        /// <param name="Width">In s.</param>
        /// <param name="Delay">In s.</param>
        [PreserveSig]
        int Configure(short Enabled, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Width, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Delay);
    }

    /// <summary>IVI RFSigGen class-compliant sweep interface</summary>
    [ComImport, Guid("D6865169-D30B-4B41-9AB3-335FD228C357"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NSweep
    {
        /// <summary>Pointer to the class-compliant IIviRFSigGenFrequencyStep interface</summary>
        [PreserveSig]
        int get_FrequencyStep(out IZentrelK4NFrequencyStep pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenPowerStep interface</summary>
        [PreserveSig]
        int get_PowerStep(out IZentrelK4NPowerStep pVal);

        /// <summary>Pointer to the class-compliant IIviRFSigGenList interface</summary>
        [PreserveSig]
        int get_List(out IZentrelK4NList pVal);

        [PreserveSig]
        int get_TriggerOutput(out IZentrelK4NTriggerOutput pVal);

        /// <summary>This function configures the signal generator whether the RF output signal is a continuous wave or the frequency, the power level or both are swept or stepped.</summary>
        [PreserveSig]
        int Configure(ZentrelK4NSweepModeEnum Mode, ZentrelK4NSweepTriggerSourceEnum TriggerSource);

        /// <summary>Specifies whether the RF output signal is a continuous wave or the frequency, the power level or both are swept or stepped.</summary>
        [PreserveSig]
        int put_Mode(ZentrelK4NSweepModeEnum value);

        /// <summary>Specifies whether the RF output signal is a continuous wave or the frequency, the power level or both are swept or stepped.</summary>
        [PreserveSig]
        int get_Mode(out ZentrelK4NSweepModeEnum pVal);

        /// <summary>Specifies the way to start the sweep or run the sweep continuously.</summary>
        [PreserveSig]
        int put_TriggerSource(ZentrelK4NSweepTriggerSourceEnum value);

        /// <summary>Specifies the way to start the sweep or run the sweep continuously.</summary>
        [PreserveSig]
        int get_TriggerSource(out ZentrelK4NSweepTriggerSourceEnum pVal);

        /// <summary>Selects trigger action between switching to point and measurement of a point.</summary>
        [PreserveSig]
        int put_TriggerAction(ZentrelK4NSweepTriggerActionEnum value);

        /// <summary>Selects trigger action between switching to point and measurement of a point.</summary>
        [PreserveSig]
        int get_TriggerAction(out ZentrelK4NSweepTriggerActionEnum pVal);
    }

    /// <summary>IVI RFSigGen class-compliant frequency step interface</summary>
    [ComImport, Guid("3E97F05F-4AF3-422A-9F72-A1D6E46C9460"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NFrequencyStep
    {
        /// <summary>This function configures the attributes that control the step frequencies of the generator's RF output signal.</summary>
        /// <param name="Start">In Hz.</param>
        /// <param name="Stop">In Hz.</param>
        /// <param name="StepSize">In Hz.</param>
        [PreserveSig]
        int ConfigureStartStop(double Start, double Stop, ZentrelK4NFrequencyStepScalingEnum Scaling, double StepSize);

        /// <summary>Specifies the start frequency of the stepped sweep.</summary>
        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_Start(double value);

        /// <summary>Specifies the start frequency of the stepped sweep.</summary>
        /// <param name="pVal">In Hz.</param>
        [PreserveSig]
        int get_Start(out double pVal);

        /// <summary>Specifies the stop frequency of the stepped sweep.</summary>
        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_Stop(double value);

        /// <summary>Specifies the stop frequency of the stepped sweep.</summary>
        /// <param name="pVal">In Hz.</param>
        [PreserveSig]
        int get_Stop(out double pVal);

        /// <summary>Specifies the spacing of the steps.</summary>
        [PreserveSig]
        int put_Scaling(ZentrelK4NFrequencyStepScalingEnum value);

        /// <summary>Specifies the spacing of the steps.</summary>
        [PreserveSig]
        int get_Scaling(out ZentrelK4NFrequencyStepScalingEnum pVal);

        /// <summary>Specifies the step size.</summary>
        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_Size(double value);

        /// <summary>Specifies the step size.</summary>
        /// <param name="pVal">In Hz.</param>
        [PreserveSig]
        int get_Size(out double pVal);

        /// <summary>This function configures the attributes that control the stepping.</summary>
        /// <param name="SingleStepEnabled">0: false; any other number: true</param>
        /// <param name="Dwell">In s.</param>
        [PreserveSig]
        int ConfigureDwell(short SingleStepEnabled, double Dwell);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_SingleStepEnabled(short value);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_SingleStepEnabled(out short pVal);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Dwell(double value);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Dwell(out double pVal);

        /// <summary>This function resets the stepping if single step is enabled.</summary>
        [PreserveSig]
        int Reset();
    }

    /// <summary>IVI RFSigGen class-compliant power step interface</summary>
    [ComImport, Guid("521B6313-F63B-41D6-A6A0-BE04B5933E85"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPowerStep
    {
        /// <summary>This function configures the attributes that control the power steps of the generator's RF output signal.</summary>
        /// <param name="Start">In dBm.</param>
        /// <param name="Stop">In dBm.</param>
        /// <param name="StepSize">In dB.</param>
        [PreserveSig]
        int ConfigureStartStop(double Start, double Stop, double StepSize);

        /// <summary>Specifies the start power of the stepped sweep.</summary>
        /// <param name="value">In dBm.</param>
        [PreserveSig]
        int put_Start(double value);

        /// <summary>Specifies the start power of the stepped sweep.</summary>
        /// <param name="pVal">In dBm.</param>
        [PreserveSig]
        int get_Start(out double pVal);

        /// <summary>Specifies the stop power of the stepped sweep.</summary>
        /// <param name="value">In dBm.</param>
        [PreserveSig]
        int put_Stop(double value);

        /// <summary>Specifies the stop power of the stepped sweep.</summary>
        /// <param name="pVal">In dBm.</param>
        [PreserveSig]
        int get_Stop(out double pVal);

        /// <summary>Specifies the step size.</summary>
        /// <param name="value">In dB.</param>
        [PreserveSig]
        int put_Size(double value);

        /// <summary>Specifies the step size.</summary>
        /// <param name="pVal">In dB.</param>
        [PreserveSig]
        int get_Size(out double pVal);

        /// <summary>This function configures the attributes that control the stepping.</summary>
        /// <param name="SingleStepEnabled">0: false; any other number: true</param>
        /// <param name="Dwell">In s.</param>
        [PreserveSig]
        int ConfigureDwell(short SingleStepEnabled, double Dwell);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_SingleStepEnabled(short value);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_SingleStepEnabled(out short pVal);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Dwell(double value);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Dwell(out double pVal);

        /// <summary>This function resets the stepping if single step is enabled.</summary>
        [PreserveSig]
        int Reset();
    }

    /// <summary>IVI RFSigGen class-compliant sweep list interface</summary>
    [ComImport, Guid("63891ED8-547A-4C50-B4C8-59A3A41F2A15"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NList
    {
        /// <summary>This function configures the attributes that control the stepping.</summary>
        /// <param name="SingleStepEnabled">0: false; any other number: true</param>
        /// <param name="Dwell">In s.</param>
        [PreserveSig]
        int ConfigureDwell(short SingleStepEnabled, double Dwell);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_SingleStepEnabled(short value);

        /// <summary>Turns single step on/off.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_SingleStepEnabled(out short pVal);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Dwell(double value);

        /// <summary>Specifies the duration of one step.</summary>
        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Dwell(out double pVal);

        /// <summary>Specifies the name of the selected list to become active.</summary>
        [PreserveSig]
        int get_SelectedName([MarshalAs(UnmanagedType.BStr)] out string pVal);

        /// <summary>Specifies the name of the selected list to become active.</summary>
        [PreserveSig]
        int put_SelectedName([MarshalAs(UnmanagedType.BStr)] string value);

        /// <summary>This function deletes all lists from the pool of lists.</summary>
        [PreserveSig]
        int ClearAll();

        /// <summary>This function creates a named list of frequency values.</summary>
        /// <param name="Frequency">In Hz.</param>
        [PreserveSig]
        int CreateFrequency([MarshalAs(UnmanagedType.BStr)] string Name, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Frequency);

        /// <summary>This function creates a named list of power values.</summary>
        /// <param name="Power">In dBm.</param>
        [PreserveSig]
        int CreatePower([MarshalAs(UnmanagedType.BStr)] string Name, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Power);

        /// <summary>This function creates a named list of frequency and power value pairs.</summary>
        /// <param name="Frequency">In Hz.</param>
        /// <param name="Power">In dBm.</param>
        [PreserveSig]
        int CreateFrequencyPower([MarshalAs(UnmanagedType.BStr)] string Name, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Frequency, [In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] Power);

        /// <summary>This function resets the stepping if single step is enabled.</summary>
        [PreserveSig]
        int Reset();
    }

    [ComImport, Guid("E5117C5D-81C7-489A-ACFE-3B23D8131BF8"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NTriggerOutput
    {
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Width(double value);

        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Width(out double pVal);

        [PreserveSig]
        int put_Mode(ZentrelK4NTriggerOutputModeEnum value);

        [PreserveSig]
        int get_Mode(out ZentrelK4NTriggerOutputModeEnum pVal);

        [PreserveSig]
        int put_Polarity(ZentrelK4NTriggerOutputPolarityEnum value);

        [PreserveSig]
        int get_Polarity(out ZentrelK4NTriggerOutputPolarityEnum pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short pVal);
    }

    /// <summary>IVI RFSigGen class-compliant pulse modulation interface</summary>
    [ComImport, Guid("CD618A6E-77C2-476A-AB8E-129A0E76E394"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NPulseModulation
    {
        /// <summary>Enables or disables pulse modulation of the RF output signal.</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <summary>Enables or disables pulse modulation of the RF output signal.</summary>
        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short pVal);

        /// <summary>Specifies the source of the signal that is used as the modulating signal.</summary>
        [PreserveSig]
        int put_Source(ZentrelK4NPulseModulationSourceEnum value);

        /// <summary>Specifies the source of the signal that is used as the modulating signal.</summary>
        [PreserveSig]
        int get_Source(out ZentrelK4NPulseModulationSourceEnum pVal);

        /// <summary>Specifies the polarity of the external source signal.</summary>
        [PreserveSig]
        int put_ExternalPolarity(ZentrelK4NPulseModulationExternalPolarityEnum value);

        /// <summary>Specifies the polarity of the external source signal.</summary>
        [PreserveSig]
        int get_ExternalPolarity(out ZentrelK4NPulseModulationExternalPolarityEnum pVal);
    }

    /// <summary>ZentrelK4N acquisition</summary>
    [ComImport, Guid("3D33FD42-06AA-4CD2-89ED-F9619FBBBD57"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NAcquisition
    {
        /// <summary>Averaging factor</summary>
        [PreserveSig]
        int get_Averaging(out int pVal);

        /// <summary>Averaging factor</summary>
        [PreserveSig]
        int put_Averaging(int value);

        /// <summary>Measurement status</summary>
        [PreserveSig]
        int get_Status(out ZentrelK4NAcquisitionStatusEnum pVal);

        /// <summary>Измерительные каналы</summary>
        [PreserveSig]
        int get_Channels(out IZentrelK4NChannels pVal);

        /// <summary>Initiate measurement</summary>
        [PreserveSig]
        int Initiate();

        /// <summary>Abort measurement</summary>
        [PreserveSig]
        int Abort();
    }

    /// <summary>ZentrelK4N Channels interface. Measurement channel</summary>
    [ComImport, Guid("CCDEF72B-B025-4C01-8147-31D24B36DD5F"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NChannels
    {
        /// <summary>Measurement channels count</summary>
        [PreserveSig]
        int get_Count(out int pVal);

        /// <summary>Measurement channel names</summary>
        [PreserveSig]
        int get_Name(int Index, [MarshalAs(UnmanagedType.BStr)] out string Name);

        /// <summary>Measurement channel</summary>
        [PreserveSig]
        int get_Item([MarshalAs(UnmanagedType.BStr)] string Name, out IZentrelK4NChannel Item);
    }

    /// <summary>ZentrelK4N Channels interface. Measurement channel</summary>
    [ComImport, Guid("2D43C433-D110-44FE-86D1-4EA2B4317FF3"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NChannel
    {
        /// <summary>Measurement channel activity</summary>
        /// <param name="Value">0: false; any other number: true</param>
        [PreserveSig]
        int get_Enabled(out short Value);

        /// <summary>Measurement channel activity</summary>
        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Enabled(short value);

        /// <summary>Load detector charasterictics</summary>
        [PreserveSig]
        int LoadDetectorDataFromFile([MarshalAs(UnmanagedType.BStr)] string FileName);

        /// <summary>Fetch measured data</summary>
        [PreserveSig]
        int FetchData([In, Out, MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)] ref double[] DataArray, [In, Out] ref double InitialX, [In, Out] ref double XIncrement);

        /// <summary>Measurement channel frequency offset</summary>
        /// <param name="Value">In Hz.</param>
        [PreserveSig]
        int get_FrequencyOffset(out double Value);

        /// <summary>Measurement channel frequency offset</summary>
        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_FrequencyOffset(double value);

        /// <summary>Measurement channel frequency multiplier</summary>
        [PreserveSig]
        int get_FrequencyMultiplier(out double Value);

        /// <summary>Measurement channel frequency multiplier</summary>
        [PreserveSig]
        int put_FrequencyMultiplier(double value);

        /// <summary>Measurement channel frequency divider</summary>
        [PreserveSig]
        int get_FrequencyDivider(out double Value);

        /// <summary>Measurement channel frequency divider</summary>
        [PreserveSig]
        int put_FrequencyDivider(double value);
    }

    [ComImport, Guid("F976F8F9-D3E9-44B8-BE3B-5FE9DAA8A081"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NSystem
    {
        [PreserveSig]
        int get_SerialNum([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_Type([MarshalAs(UnmanagedType.BStr)] out string pVal);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_RFButton(out short pVal);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_PLLState(out short pVal);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_ERGState(out short pVal);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_LevelState(out short pVal);

        [PreserveSig]
        int put_Atten(ZentrelK4NSystemAttenEnum value);

        [PreserveSig]
        int get_Atten(out ZentrelK4NSystemAttenEnum pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_ExtRefGenEnabled(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_ExtRefGenEnabled(out short pVal);

        /// <param name="value">In Hz.</param>
        [PreserveSig]
        int put_ExtRefGenFrequency(double value);

        /// <param name="pVal">In Hz.</param>
        [PreserveSig]
        int get_ExtRefGenFrequency(out double pVal);

        [PreserveSig]
        int put_SyncSourceDetection(ZentrelK4NSystemSyncSourceDetectorEnum value);

        [PreserveSig]
        int get_SyncSourceDetection(out ZentrelK4NSystemSyncSourceDetectorEnum pVal);

        [PreserveSig]
        int put_ExtRefPhaseDelay(int value);

        [PreserveSig]
        int get_ExtRefPhaseDelay(out int pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_ExtPwrCtrl(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_ExtPwrCtrl(out short pVal);

        [PreserveSig]
        int get_CompensMode(out ZentrelK4NSystemCompensModeEnum pVal);

        [PreserveSig]
        int put_CompensMode(ZentrelK4NSystemCompensModeEnum value);
    }

    [ComImport, Guid("189882E7-1498-4B68-A876-8B92A9512BA0"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IZentrelK4NSyncGenerator
    {
        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Width(double value);

        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Width(out double pVal);

        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Period(double value);

        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Period(out double pVal);

        /// <param name="value">In s.</param>
        [PreserveSig]
        int put_Delay(double value);

        /// <param name="pVal">In s.</param>
        [PreserveSig]
        int get_Delay(out double pVal);
    }

    [ComImport, Guid("47ED5186-A398-11D4-BA58-000064657374"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IIviDriverIdentity
    {
        [PreserveSig]
        int get_Description([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_Revision([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_Vendor([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_InstrumentManufacturer([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_InstrumentModel([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_InstrumentFirmwareRevision([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_Identifier([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_SupportedInstrumentModels([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_SpecificationMajorVersion(out int pVal);

        [PreserveSig]
        int get_SpecificationMinorVersion(out int pVal);

        [PreserveSig]
        int get_GroupCapabilities([MarshalAs(UnmanagedType.BStr)] out string pVal);
    }

    [ComImport, Guid("47ED5188-A398-11D4-BA58-000064657374"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IIviDriverOperation
    {
        [PreserveSig]
        int get_LogicalName([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int get_IoResourceDescriptor([MarshalAs(UnmanagedType.BStr)] out string pVal);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Cache(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Cache(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_InterchangeCheck(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_InterchangeCheck(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_QueryInstrumentStatus(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_QueryInstrumentStatus(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_RangeCheck(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_RangeCheck(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_RecordCoercions(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_RecordCoercions(short value);

        /// <param name="pVal">0: false; any other number: true</param>
        [PreserveSig]
        int get_Simulate(out short pVal);

        /// <param name="value">0: false; any other number: true</param>
        [PreserveSig]
        int put_Simulate(short value);

        [PreserveSig]
        int get_DriverSetup([MarshalAs(UnmanagedType.BStr)] out string pVal);

        [PreserveSig]
        int InvalidateAllAttributes();

        [PreserveSig]
        int ClearInterchangeWarnings();

        [PreserveSig]
        int GetNextInterchangeWarning([MarshalAs(UnmanagedType.BStr)] out string Warning);

        [PreserveSig]
        int ResetInterchangeCheck();

        [PreserveSig]
        int GetNextCoercionRecord([MarshalAs(UnmanagedType.BStr)] out string Record);
    }

    /// <summary>The driver: (IZentrelK4N)new ZentrelK4N() gives an object of its own, where the driver is registered.</summary>
    [ComImport, Guid("D7E137EA-2C85-439A-9B34-4E7BFA67A024"), ClassInterface(ClassInterfaceType.None)]
    public class ZentrelK4N
    {
    }

    [ComImport, Guid("1CF2B120-547D-101B-8E65-08002B2BD119"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    interface IErrorInfo
    {
        [PreserveSig]
        int GetGUID(out Guid guid);

        [PreserveSig]
        int GetSource([MarshalAs(UnmanagedType.BStr)] out string source);

        [PreserveSig]
        int GetDescription([MarshalAs(UnmanagedType.BStr)] out string description);
    }

    /// <summary>What results mean.</summary>
    public static class Results
    {
        /// <summary>The name of an HRESULT, or of a code that ErrorQuery gives.</summary>
        public static string Name(int result)
        {
            uint bits = unchecked((uint)result);
            switch (bits)
            {
                case 0x00000000: return "S_OK";
                case 0x00000001: return "S_FALSE";
                case 0x00002749: return "no instrument session";
                case 0x00047065: return "identification query not supported";
                case 0x00047066: return "reset not supported";
                case 0x80004001: return "E_NOTIMPL";
                case 0x80004002: return "E_NOINTERFACE";
                case 0x80004003: return "E_POINTER";
                case 0x80004005: return "E_FAIL";
                case 0x80040110: return "CLASS_E_NOAGGREGATION";
                case 0x80040111: return "CLASS_E_CLASSNOTAVAILABLE";
                case 0x80040154: return "REGDB_E_CLASSNOTREG";
                case 0x80047000: return "cannot recover";
                case 0x80047001: return "instrument error";
                case 0x80047002: return "cannot open file";
                case 0x80047003: return "cannot read file";
                case 0x80047010: return "invalid value";
                case 0x80047011: return "method not supported";
                case 0x80047012: return "property not supported";
                case 0x80047013: return "enumeration value not supported";
                case 0x8004701D: return "not connected";
                case 0x80047020: return "unknown channel name";
                case 0x80047056: return "out of memory";
                case 0x80047057: return "operation in progress";
                case 0x80047059: return "unexpected response";
                case 0x8004705B: return "file not found";
                case 0x8004705C: return "invalid file format";
                case 0x8004705E: return "identification failed";
                case 0x80047060: return "unknown resource";
                case 0x800401F3: return "CO_E_CLASSSTRING";
                case 0x800401F8: return "CO_E_DLLNOTFOUND";
                case 0x800401F9: return "CO_E_ERRORINDLL";
                case 0x8002801C: return "TYPE_E_REGISTRYACCESS";
                case 0x80029C4A: return "TYPE_E_CANTLOADLIBRARY";
                case 0x80070005: return "E_ACCESSDENIED";
                case 0x8007000B: return "unreadable registration script";
                case 0x8007001D: return "registry cannot be written";
                case 0x800703F1: return "registry file is damaged";
                case 0x80070057: return "E_INVALIDARG";
                case 0x8007000E: return "E_OUTOFMEMORY";
                case 0xBFFF000F: return "VI_ERROR_RSRC_LOCKED";
                case 0xBFFF0011: return "VI_ERROR_RSRC_NFOUND";
                case 0xBFFF0012: return "VI_ERROR_INV_RSRC_NAME";
                case 0xBFFF0015: return "VI_ERROR_TMO";
                case 0xBFFF0037: return "VI_ERROR_INP_PROT_VIOL";
                case 0xBFFF003C: return "VI_ERROR_ALLOC";
                case 0xBFFF003E: return "VI_ERROR_IO";
                case 0xBFFF0067: return "VI_ERROR_NSUP_OPER";
                case 0xBFFF009E: return "VI_ERROR_LIBRARY_NFOUND";
                case 0xBFFF00A6: return "VI_ERROR_CONN_LOST";
                case 0xFFFF8002: return "instrument: request not supported";
                case 0xFFFF8003: return "instrument: form not supported";
                case 0xFFFF8007: return "instrument: PLL unlocked";
                case 0xFFFF801C: return "instrument: ERG fault";
                case 0xFFFF8103: return "instrument: no such file";
            }
            if (bits >= 1 && bits <= 6) return "instrument notice";
            if (bits >= 0xFFFF8000) return "instrument error code";
            return bits >> 16 == 0xBFFF ? "VISA error" : "unnamed result";
        }

        /// <summary>The driver's words about the last failure on this thread, which it then
        /// forgets; null when there are none. Take them right after the failure. A success leaves
        /// older ones where they are.</summary>
        public static string Description()
        {
            IErrorInfo info;
            string text;
            if (GetErrorInfo(0, out info) != 0 || info == null) return null;
            return info.GetDescription(out text) == 0 ? text : null;
        }

        [DllImport("oleaut32.dll")]
        static extern int GetErrorInfo(int reserved, out IErrorInfo info);
    }
}
