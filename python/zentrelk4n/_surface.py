# Generated from ZentrelK4NLib.idl and IviInherent.idl by server/interface/generate - Do not edit.
"""The driver's surface, from the library's source: server/interface/emit_python.py."""

from __future__ import annotations

import ctypes
import enum
from typing import NamedTuple, Optional, SupportsFloat, Union

from ._arrays import ArrayArgument, ArrayResult, Samples, Values
from ._com import TextArgument, TextResult
from ._members import Child, Choice, Group, Reading, Setting, integer, number, switch, text

Quantity = Union[SupportsFloat, str]
"""A number in the unit that is named, or a text with a unit: 2.4e9, "2.4 GHz"."""

LIBRARY = "ZentrelK4NLib 1.2"
PROG_ID = "ZentrelK4NLib.ZentrelK4N"
CLSID = "{D7E137EA-2C85-439A-9B34-4E7BFA67A024}"


class PulseOutputPolarity(enum.IntEnum):
    """Values for the pulse output polarity. (ZentrelK4NPulseOutputPolarityEnum)"""

    NORMAL = 0
    INVERSE = 1


class PulseTriggerSource(enum.IntEnum):
    """Values for the pulse generator trigger source. (ZentrelK4NPulseTriggerSourceEnum)"""

    INTERNAL = 0
    EXTERNAL = 1


class PulseExternalTriggerSlope(enum.IntEnum):
    """Values for the pulse generator external trigger slope.
    (ZentrelK4NPulseExternalTriggerSlopeEnum)
    """

    POSITIVE = 0
    NEGATIVE = 1


class FrequencyStepScaling(enum.IntEnum):
    """Values for the frequency step scaling mode. (ZentrelK4NFrequencyStepScalingEnum)"""

    LINEAR = 0
    LOGARITHMIC = 1


class TriggerOutputMode(enum.IntEnum):
    """(ZentrelK4NTriggerOutputModeEnum)"""

    NONE = 0
    INPUT = 1
    SWEEP = 1001
    NEXT_STEP = 1002
    SINGLE_STEP = 1003
    SOFTWARE = 1004
    SYNC_GEN = 1005


class TriggerOutputPolarity(enum.IntEnum):
    """(ZentrelK4NTriggerOutputPolarityEnum)"""

    NORMAL = 0
    INVERSE = 1


class SweepMode(enum.IntEnum):
    """Values for the sweep mode. (ZentrelK4NSweepModeEnum)"""

    NONE = 0
    FREQUENCY_STEP = 3
    POWER_STEP = 4
    LIST = 5


class SweepTriggerSource(enum.IntEnum):
    """Values for the sweep trigger source. (ZentrelK4NSweepTriggerSourceEnum)"""

    IMMEDIATE = 0
    EXTERNAL = 1
    SOFTWARE = 2


class SweepTriggerAction(enum.IntEnum):
    """Values for the sweep trigger action. (ZentrelK4NSweepTriggerActionEnum)"""

    SWITCH = 0
    MEASURE = 1


class PulseModulationSource(enum.IntEnum):
    """Values for the pulse modulation source. (ZentrelK4NPulseModulationSourceEnum)"""

    INTERNAL = 0
    EXTERNAL = 1


class PulseModulationExternalPolarity(enum.IntEnum):
    """Values for the pulse modulation external polarity.
    (ZentrelK4NPulseModulationExternalPolarityEnum)
    """

    NORMAL = 0
    INVERSE = 1


class AcquisitionStatus(enum.IntEnum):
    """(ZentrelK4NAcquisitionStatusEnum)"""

    COMPLETE = 0
    IN_PROGRESS = 1
    UNKNOWN = 2


class SystemAtten(enum.IntEnum):
    """(ZentrelK4NSystemAttenEnum)"""

    MIN_HARM = 0
    OPT_SWR = 1
    OPTIMUM = 2
    CARE = 3


class SystemSyncSourceDetector(enum.IntEnum):
    """(ZentrelK4NSystemSyncSourceDetectorEnum)"""

    RISE = 0
    FALL = 1


class SystemCompensMode(enum.IntEnum):
    """(ZentrelK4NSystemCompensModeEnum)"""

    DC = 0
    ONCE = 1
    AUTO = 2
    BAND = 3
    AC = 4


class ErrorCodes(enum.IntEnum):
    """IVI RFSigGen class defined HRESULTS (ZentrelK4NErrorCodesEnum)"""

    TRIGGER_NOT_SOFTWARE = -2147217407
    MAX_TIME_EXCEEDED = -2147213309
    LIST_UNKNOWN = -2147213302


class MaxTimeMilliseconds(enum.IntEnum):
    """IVI RFSigGen class defined values for MaxTimeMilliseconds.
    (ZentrelK4NMaxTimeMillisecondsEnum)
    """

    INFINITE = -1
    IMMEDIATE = 0


class SelfTestResult(NamedTuple):
    """What SelfTest gives."""

    test_result: int
    test_message: str


class ErrorQueryResult(NamedTuple):
    """What ErrorQuery gives."""

    error_code: int
    error_message: str


class IviDriverUtility(Group):
    """IVI Driver utility interface (IIviDriverUtility)"""

    __slots__ = ()
    INTERFACE = "IIviDriverUtility"
    IID = "{47ED5189-A398-11D4-BA58-000064657374}"
    SLOTS = 10

    def reset(self) -> None:
        """Places the instrument in a known state and configures instrument options on which the IVI
        specific driver depends (for example, enabling/disabling headers).  For an IEEE 488.2
        instrument, Reset sends the command string *RST to the instrument.
        """
        self._call("Reset", 3)

    Reset = reset

    def reset_with_defaults(self) -> None:
        """Does the equivalent of Reset and then, (1) disables class extension capability groups,
        (2) sets attributes to initial values defined by class specs, and (3) configures the driver
        to option string settings used when Initialize was last executed.
        """
        self._call("ResetWithDefaults", 4)

    ResetWithDefaults = reset_with_defaults

    def disable(self) -> None:
        """Quickly places the instrument in a state where it has no, or minimal, effect on the
        external system to which it is connected.  This state is not necessarily a known state.
        """
        self._call("Disable", 5)

    Disable = disable

    def self_test(self) -> SelfTestResult:
        """Performs an instrument self test, waits for the instrument to complete the test, and
        queries the instrument for the results.  If the instrument passes the test, TestResult is
        zero and TestMessage is 'Self test passed'.

        Gives test_result: integer; test_message: text.
        """
        test_result_ = ctypes.c_int32()
        test_message_ = TextResult()
        self._call("SelfTest", 6, ctypes.byref(test_result_), test_message_)
        return SelfTestResult(test_result_.value, test_message_.text())

    SelfTest = self_test

    def error_query(self) -> ErrorQueryResult:
        """Queries the instrument and returns instrument specific error information.  This function
        can be used when QueryInstrumentStatus is True to retrieve error details when the driver
        detects an instrument error.

        Gives error_code: integer; error_message: text.
        """
        error_code_ = ctypes.c_int32()
        error_message_ = TextResult()
        self._call("ErrorQuery", 7, ctypes.byref(error_code_), error_message_)
        return ErrorQueryResult(error_code_.value, error_message_.text())

    ErrorQuery = error_query

    def lock_object(self) -> None:
        """Obtains a multithread lock on the driver after waiting until all other execution threads
        have released their locks on the instrument session.
        """
        self._call("LockObject", 8)

    LockObject = lock_object

    def unlock_object(self) -> None:
        """Releases a previously obtained mutlithread lock."""
        self._call("UnlockObject", 9)

    UnlockObject = unlock_object


class ZentrelK4NRF(Group):
    """IVI RFSigGen class-compliant RF interface (IZentrelK4NRF)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NRF"
    IID = "{2ABE1589-9E6D-4FA1-BA34-F36A173CD045}"
    SLOTS = 13

    def configure(self, frequency: Quantity, power_level: Quantity) -> None:
        """This function configures the frequency and the power level of the RF output signal.

        Takes frequency: number in Hz; power_level: number in dBm.
        """
        self._call(
            "Configure",
            3,
            number.encode(frequency, "Hz", "frequency"),
            number.encode(power_level, "dBm", "power_level"),
        )

    Configure = configure
    frequency = Frequency = Setting[float, Quantity](
        number,
        "Frequency",
        5,
        4,
        "Hz",
        "Specifies the frequency of the generated RF output signal.",
    )
    level = Level = Setting[float, Quantity](
        number,
        "Level",
        7,
        6,
        "dBm",
        "Specifies the amplitude (power/level) of the RF output signal.",
    )
    output_enabled = OutputEnabled = Setting[bool, bool](
        switch, "OutputEnabled", 9, 8, "", "Enables or disables the RF output signal."
    )

    def is_settled(self) -> bool:
        """This function queries the state of the RF output signal.

        Gives true or false.
        """
        done_ = ctypes.c_int16()
        self._call("IsSettled", 10, ctypes.byref(done_))
        return bool(done_.value)

    IsSettled = is_settled

    def wait_until_settled(self, max_time_milliseconds: int) -> None:
        """This function returns if the state of the RF output signal has settled.

        Takes max_time_milliseconds: integer in ms.
        """
        self._call(
            "WaitUntilSettled",
            11,
            integer.encode(max_time_milliseconds, "", "max_time_milliseconds"),
        )

    WaitUntilSettled = wait_until_settled

    def disable_all_modulation(self) -> None:
        """This function disables all currently enabled modulations."""
        self._call("DisableAllModulation", 12)

    DisableAllModulation = disable_all_modulation


class ZentrelK4NPulseGeneratorDouble(Group):
    """IVI RFSigGen class-compliant pulse double generator interface
    (IZentrelK4NPulseGeneratorDouble)
    """

    __slots__ = ()
    INTERFACE = "IZentrelK4NPulseGeneratorDouble"
    IID = "{1303E794-5612-431A-BB2D-86F1971A7054}"
    SLOTS = 8

    def configure(self, enabled: bool, delay: Quantity) -> None:
        """This function configures the double pulse state and delay.

        Takes enabled: true or false; delay: number in s.
        """
        self._call(
            "Configure",
            3,
            switch.encode(enabled, "", "enabled"),
            number.encode(delay, "s", "delay"),
        )

    Configure = configure
    enabled = Enabled = Setting[bool, bool](
        switch, "Enabled", 5, 4, "", "Turns double pulse mode on/off."
    )
    delay = Delay = Setting[float, Quantity](
        number, "Delay", 7, 6, "s", "Specifies the delay of the second pulse."
    )


class ZentrelK4NPulseGeneratorOutput(Group):
    """IVI RFSigGen class-compliant pulse generator output interface
    (IZentrelK4NPulseGeneratorOutput)
    """

    __slots__ = ()
    INTERFACE = "IZentrelK4NPulseGeneratorOutput"
    IID = "{8AEE33BF-016E-444F-993D-D6F5F4E3FFD3}"
    SLOTS = 8

    def configure(self, polarity: int, enabled: bool) -> None:
        """This function configures the output and polarity of the pulse generator.

        Takes polarity: one of PulseOutputPolarity; enabled: true or false.
        """
        self._call(
            "Configure",
            3,
            integer.encode(polarity, "", "polarity"),
            switch.encode(enabled, "", "enabled"),
        )

    Configure = configure
    polarity = Polarity = Setting[PulseOutputPolarity, int](
        Choice(PulseOutputPolarity),
        "Polarity",
        5,
        4,
        "",
        "Specifies the polarity of the output signal.",
    )
    enabled = Enabled = Setting[bool, bool](
        switch, "Enabled", 7, 6, "", "Enables or disables the pulse generator external output."
    )


class ZentrelK4NPulsePacketGenerator(Group):
    """(IZentrelK4NPulsePacketGenerator)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NPulsePacketGenerator"
    IID = "{4AE6DB7C-F044-420C-B310-42EF3FC16B9F}"
    SLOTS = 6

    enabled = Enabled = Setting[bool, bool](switch, "Enabled", 4, 3, "", "")

    def configure(self, enabled: bool, width: Optional[Values], delay: Optional[Values]) -> None:
        """Configure

        Takes enabled: true or false; width: numbers in s; delay: numbers in s.

        Values that the instrument corrects come back in lists and writable buffers.
        """
        with ArrayArgument(width, "s", "width") as width_array:
            with ArrayArgument(delay, "s", "delay") as delay_array:
                self._call(
                    "Configure", 5, switch.encode(enabled, "", "enabled"), width_array, delay_array
                )

    Configure = configure


class ZentrelK4NPulseGenerator(Group):
    """IVI RFSigGen class-compliant pulse generator interface (IZentrelK4NPulseGenerator)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NPulseGenerator"
    IID = "{6F7B2E9A-14BD-4AC0-9278-5BD72354B25F}"
    SLOTS = 20

    double = Double = Child(
        ZentrelK4NPulseGeneratorDouble,
        "Double",
        3,
        "Pointer to the class-compliant IIviRFSigGenPulseGeneratorDouble interface",
    )
    output = Output = Child(
        ZentrelK4NPulseGeneratorOutput,
        "Output",
        4,
        "Pointer to the class-compliant IIviRFSigGenPulseGeneratorOutput interface",
    )
    packet = Packet = Child(ZentrelK4NPulsePacketGenerator, "Packet", 5, "")

    def configure(
        self, pulse_trigger_source: int, pulse_width: Quantity, gating_enabled: bool
    ) -> None:
        """This function configures the pulse generator within the RF signal generator.

        Takes pulse_trigger_source: one of PulseTriggerSource; pulse_width: number in s;
        gating_enabled: true or false.
        """
        self._call(
            "Configure",
            6,
            integer.encode(pulse_trigger_source, "", "pulse_trigger_source"),
            number.encode(pulse_width, "s", "pulse_width"),
            switch.encode(gating_enabled, "", "gating_enabled"),
        )

    Configure = configure

    def configure_external_trigger(self, slope: int, delay: Quantity) -> None:
        """This function configures the external trigger for the pulse generator.

        Takes slope: one of PulseExternalTriggerSlope; delay: number in s.
        """
        self._call(
            "ConfigureExternalTrigger",
            7,
            integer.encode(slope, "", "slope"),
            number.encode(delay, "s", "delay"),
        )

    ConfigureExternalTrigger = configure_external_trigger
    internal_trigger_period = InternalTriggerPeriod = Setting[float, Quantity](
        number,
        "InternalTriggerPeriod",
        9,
        8,
        "s",
        "Specifies the period of the pulse generator's output signal.",
    )
    width = Width = Setting[float, Quantity](
        number, "Width", 11, 10, "s", "Specifies the width of the output pulse."
    )
    gating_enabled = GatingEnabled = Setting[bool, bool](
        switch, "GatingEnabled", 13, 12, "", "Enables or disables trigger gating."
    )
    trigger_source = TriggerSource = Setting[PulseTriggerSource, int](
        Choice(PulseTriggerSource),
        "TriggerSource",
        15,
        14,
        "",
        "Specifies the source of the signal the pulse generator uses to generate one pulse.",
    )
    external_trigger_slope = ExternalTriggerSlope = Setting[PulseExternalTriggerSlope, int](
        Choice(PulseExternalTriggerSlope),
        "ExternalTriggerSlope",
        17,
        16,
        "",
        "Specifies whether the event occurs on the rising or falling edge of the trigger input "
        "signal.",
    )
    external_trigger_delay = ExternalTriggerDelay = Setting[float, Quantity](
        number,
        "ExternalTriggerDelay",
        19,
        18,
        "s",
        "Specifies the delay for starting the output signal with respect to the trigger input.",
    )


class ZentrelK4NFrequencyStep(Group):
    """IVI RFSigGen class-compliant frequency step interface (IZentrelK4NFrequencyStep)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NFrequencyStep"
    IID = "{3E97F05F-4AF3-422A-9F72-A1D6E46C9460}"
    SLOTS = 18

    def configure_start_stop(
        self, start: Quantity, stop: Quantity, scaling: int, step_size: Quantity
    ) -> None:
        """This function configures the attributes that control the step frequencies of the
        generator's RF output signal.

        Takes start: number in Hz; stop: number in Hz; scaling: one of FrequencyStepScaling;
        step_size: number in Hz.
        """
        self._call(
            "ConfigureStartStop",
            3,
            number.encode(start, "Hz", "start"),
            number.encode(stop, "Hz", "stop"),
            integer.encode(scaling, "", "scaling"),
            number.encode(step_size, "Hz", "step_size"),
        )

    ConfigureStartStop = configure_start_stop
    start = Start = Setting[float, Quantity](
        number, "Start", 5, 4, "Hz", "Specifies the start frequency of the stepped sweep."
    )
    stop = Stop = Setting[float, Quantity](
        number, "Stop", 7, 6, "Hz", "Specifies the stop frequency of the stepped sweep."
    )
    scaling = Scaling = Setting[FrequencyStepScaling, int](
        Choice(FrequencyStepScaling), "Scaling", 9, 8, "", "Specifies the spacing of the steps."
    )
    size = Size = Setting[float, Quantity](number, "Size", 11, 10, "Hz", "Specifies the step size.")

    def configure_dwell(self, single_step_enabled: bool, dwell: Quantity) -> None:
        """This function configures the attributes that control the stepping.

        Takes single_step_enabled: true or false; dwell: number in s.
        """
        self._call(
            "ConfigureDwell",
            12,
            switch.encode(single_step_enabled, "", "single_step_enabled"),
            number.encode(dwell, "s", "dwell"),
        )

    ConfigureDwell = configure_dwell
    single_step_enabled = SingleStepEnabled = Setting[bool, bool](
        switch, "SingleStepEnabled", 14, 13, "", "Turns single step on/off."
    )
    dwell = Dwell = Setting[float, Quantity](
        number, "Dwell", 16, 15, "s", "Specifies the duration of one step."
    )

    def reset(self) -> None:
        """This function resets the stepping if single step is enabled."""
        self._call("Reset", 17)

    Reset = reset


class ZentrelK4NPowerStep(Group):
    """IVI RFSigGen class-compliant power step interface (IZentrelK4NPowerStep)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NPowerStep"
    IID = "{521B6313-F63B-41D6-A6A0-BE04B5933E85}"
    SLOTS = 16

    def configure_start_stop(self, start: Quantity, stop: Quantity, step_size: Quantity) -> None:
        """This function configures the attributes that control the power steps of the generator's
        RF output signal.

        Takes start: number in dBm; stop: number in dBm; step_size: number in dB.
        """
        self._call(
            "ConfigureStartStop",
            3,
            number.encode(start, "dBm", "start"),
            number.encode(stop, "dBm", "stop"),
            number.encode(step_size, "dB", "step_size"),
        )

    ConfigureStartStop = configure_start_stop
    start = Start = Setting[float, Quantity](
        number, "Start", 5, 4, "dBm", "Specifies the start power of the stepped sweep."
    )
    stop = Stop = Setting[float, Quantity](
        number, "Stop", 7, 6, "dBm", "Specifies the stop power of the stepped sweep."
    )
    size = Size = Setting[float, Quantity](number, "Size", 9, 8, "dB", "Specifies the step size.")

    def configure_dwell(self, single_step_enabled: bool, dwell: Quantity) -> None:
        """This function configures the attributes that control the stepping.

        Takes single_step_enabled: true or false; dwell: number in s.
        """
        self._call(
            "ConfigureDwell",
            10,
            switch.encode(single_step_enabled, "", "single_step_enabled"),
            number.encode(dwell, "s", "dwell"),
        )

    ConfigureDwell = configure_dwell
    single_step_enabled = SingleStepEnabled = Setting[bool, bool](
        switch, "SingleStepEnabled", 12, 11, "", "Turns single step on/off."
    )
    dwell = Dwell = Setting[float, Quantity](
        number, "Dwell", 14, 13, "s", "Specifies the duration of one step."
    )

    def reset(self) -> None:
        """This function resets the stepping if single step is enabled."""
        self._call("Reset", 15)

    Reset = reset


class ZentrelK4NList(Group):
    """IVI RFSigGen class-compliant sweep list interface (IZentrelK4NList)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NList"
    IID = "{63891ED8-547A-4C50-B4C8-59A3A41F2A15}"
    SLOTS = 15

    def configure_dwell(self, single_step_enabled: bool, dwell: Quantity) -> None:
        """This function configures the attributes that control the stepping.

        Takes single_step_enabled: true or false; dwell: number in s.
        """
        self._call(
            "ConfigureDwell",
            3,
            switch.encode(single_step_enabled, "", "single_step_enabled"),
            number.encode(dwell, "s", "dwell"),
        )

    ConfigureDwell = configure_dwell
    single_step_enabled = SingleStepEnabled = Setting[bool, bool](
        switch, "SingleStepEnabled", 5, 4, "", "Turns single step on/off."
    )
    dwell = Dwell = Setting[float, Quantity](
        number, "Dwell", 7, 6, "s", "Specifies the duration of one step."
    )
    selected_name = SelectedName = Setting[str, Optional[str]](
        text, "SelectedName", 8, 9, "", "Specifies the name of the selected list to become active."
    )

    def clear_all(self) -> None:
        """This function deletes all lists from the pool of lists."""
        self._call("ClearAll", 10)

    ClearAll = clear_all

    def create_frequency(self, name: Optional[str], frequency: Optional[Values]) -> None:
        """This function creates a named list of frequency values.

        Takes name: text; frequency: numbers in Hz.

        Values that the instrument corrects come back in lists and writable buffers.
        """
        with ArrayArgument(frequency, "Hz", "frequency") as frequency_array:
            self._call("CreateFrequency", 11, TextArgument(name), frequency_array)

    CreateFrequency = create_frequency

    def create_power(self, name: Optional[str], power: Optional[Values]) -> None:
        """This function creates a named list of power values.

        Takes name: text; power: numbers in dBm.

        Values that the instrument corrects come back in lists and writable buffers.
        """
        with ArrayArgument(power, "dBm", "power") as power_array:
            self._call("CreatePower", 12, TextArgument(name), power_array)

    CreatePower = create_power

    def create_frequency_power(
        self, name: Optional[str], frequency: Optional[Values], power: Optional[Values]
    ) -> None:
        """This function creates a named list of frequency and power value pairs.

        Takes name: text; frequency: numbers in Hz; power: numbers in dBm.

        Values that the instrument corrects come back in lists and writable buffers.
        """
        with ArrayArgument(frequency, "Hz", "frequency") as frequency_array:
            with ArrayArgument(power, "dBm", "power") as power_array:
                self._call(
                    "CreateFrequencyPower", 13, TextArgument(name), frequency_array, power_array
                )

    CreateFrequencyPower = create_frequency_power

    def reset(self) -> None:
        """This function resets the stepping if single step is enabled."""
        self._call("Reset", 14)

    Reset = reset


class ZentrelK4NTriggerOutput(Group):
    """(IZentrelK4NTriggerOutput)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NTriggerOutput"
    IID = "{E5117C5D-81C7-489A-ACFE-3B23D8131BF8}"
    SLOTS = 11

    width = Width = Setting[float, Quantity](number, "Width", 4, 3, "s", "")
    mode = Mode = Setting[TriggerOutputMode, int](Choice(TriggerOutputMode), "Mode", 6, 5, "", "")
    polarity = Polarity = Setting[TriggerOutputPolarity, int](
        Choice(TriggerOutputPolarity), "Polarity", 8, 7, "", ""
    )
    enabled = Enabled = Setting[bool, bool](switch, "Enabled", 10, 9, "", "")


class ZentrelK4NSweep(Group):
    """IVI RFSigGen class-compliant sweep interface (IZentrelK4NSweep)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NSweep"
    IID = "{D6865169-D30B-4B41-9AB3-335FD228C357}"
    SLOTS = 14

    frequency_step = FrequencyStep = Child(
        ZentrelK4NFrequencyStep,
        "FrequencyStep",
        3,
        "Pointer to the class-compliant IIviRFSigGenFrequencyStep interface",
    )
    power_step = PowerStep = Child(
        ZentrelK4NPowerStep,
        "PowerStep",
        4,
        "Pointer to the class-compliant IIviRFSigGenPowerStep interface",
    )
    list = List = Child(
        ZentrelK4NList, "List", 5, "Pointer to the class-compliant IIviRFSigGenList interface"
    )
    trigger_output = TriggerOutput = Child(ZentrelK4NTriggerOutput, "TriggerOutput", 6, "")

    def configure(self, mode: int, trigger_source: int) -> None:
        """This function configures the signal generator whether the RF output signal is a
        continuous wave or the frequency, the power level or both are swept or stepped.

        Takes mode: one of SweepMode; trigger_source: one of SweepTriggerSource.
        """
        self._call(
            "Configure",
            7,
            integer.encode(mode, "", "mode"),
            integer.encode(trigger_source, "", "trigger_source"),
        )

    Configure = configure
    mode = Mode = Setting[SweepMode, int](
        Choice(SweepMode),
        "Mode",
        9,
        8,
        "",
        "Specifies whether the RF output signal is a continuous wave or the frequency, the "
        "power level or both are swept or stepped.",
    )
    trigger_source = TriggerSource = Setting[SweepTriggerSource, int](
        Choice(SweepTriggerSource),
        "TriggerSource",
        11,
        10,
        "",
        "Specifies the way to start the sweep or run the sweep continuously.",
    )
    trigger_action = TriggerAction = Setting[SweepTriggerAction, int](
        Choice(SweepTriggerAction),
        "TriggerAction",
        13,
        12,
        "",
        "Selects trigger action between switching to point and measurement of a point.",
    )


class ZentrelK4NPulseModulation(Group):
    """IVI RFSigGen class-compliant pulse modulation interface (IZentrelK4NPulseModulation)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NPulseModulation"
    IID = "{CD618A6E-77C2-476A-AB8E-129A0E76E394}"
    SLOTS = 9

    enabled = Enabled = Setting[bool, bool](
        switch, "Enabled", 4, 3, "", "Enables or disables pulse modulation of the RF output signal."
    )
    source = Source = Setting[PulseModulationSource, int](
        Choice(PulseModulationSource),
        "Source",
        6,
        5,
        "",
        "Specifies the source of the signal that is used as the modulating signal.",
    )
    external_polarity = ExternalPolarity = Setting[PulseModulationExternalPolarity, int](
        Choice(PulseModulationExternalPolarity),
        "ExternalPolarity",
        8,
        7,
        "",
        "Specifies the polarity of the external source signal.",
    )


class FetchDataResult(NamedTuple):
    """What FetchData gives."""

    data_array: Samples
    initial_x: float
    x_increment: float


class ZentrelK4NChannel(Group):
    """ZentrelK4N Channels interface. Measurement channel (IZentrelK4NChannel)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NChannel"
    IID = "{2D43C433-D110-44FE-86D1-4EA2B4317FF3}"
    SLOTS = 13

    enabled = Enabled = Setting[bool, bool](
        switch, "Enabled", 3, 4, "", "Measurement channel activity"
    )

    def load_detector_data_from_file(self, file_name: Optional[str]) -> None:
        """Load detector charasterictics

        Takes file_name: text.
        """
        self._call("LoadDetectorDataFromFile", 5, TextArgument(file_name))

    LoadDetectorDataFromFile = load_detector_data_from_file

    def fetch_data(self) -> FetchDataResult:
        """Fetch measured data

        Gives data_array: numbers; initial_x: number; x_increment: number.
        """
        data_array_ = ArrayResult()
        initial_x_ = ctypes.c_double()
        x_increment_ = ctypes.c_double()
        self._call(
            "FetchData", 6, data_array_, ctypes.byref(initial_x_), ctypes.byref(x_increment_)
        )
        return FetchDataResult(data_array_.values(), initial_x_.value, x_increment_.value)

    FetchData = fetch_data
    frequency_offset = FrequencyOffset = Setting[float, Quantity](
        number, "FrequencyOffset", 7, 8, "Hz", "Measurement channel frequency offset"
    )
    frequency_multiplier = FrequencyMultiplier = Setting[float, Quantity](
        number, "FrequencyMultiplier", 9, 10, "", "Measurement channel frequency multiplier"
    )
    frequency_divider = FrequencyDivider = Setting[float, Quantity](
        number, "FrequencyDivider", 11, 12, "", "Measurement channel frequency divider"
    )


class ZentrelK4NChannels(Group):
    """ZentrelK4N Channels interface. Measurement channel (IZentrelK4NChannels)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NChannels"
    IID = "{CCDEF72B-B025-4C01-8147-31D24B36DD5F}"
    SLOTS = 6

    count = Count = Reading[int](integer, "Count", 3, "", "Measurement channels count")

    def name(self, index: int) -> str:
        """Measurement channel names

        Takes index: integer.

        Gives text.
        """
        name_ = TextResult()
        self._call("Name", 4, integer.encode(index, "", "index"), name_)
        return name_.text()

    Name = name

    def item(self, name: Optional[str]) -> ZentrelK4NChannel:
        """Measurement channel

        Takes name: text.
        """
        item_ = ctypes.c_void_p()
        self._call("Item", 5, TextArgument(name), ctypes.byref(item_))
        return self._adopt(ZentrelK4NChannel, item_, f"Item({name!r})")

    Item = item


class ZentrelK4NAcquisition(Group):
    """ZentrelK4N acquisition (IZentrelK4NAcquisition)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NAcquisition"
    IID = "{3D33FD42-06AA-4CD2-89ED-F9619FBBBD57}"
    SLOTS = 9

    averaging = Averaging = Setting[int, int](integer, "Averaging", 3, 4, "", "Averaging factor")
    status = Status = Reading[AcquisitionStatus](
        Choice(AcquisitionStatus), "Status", 5, "", "Measurement status"
    )
    channels = Channels = Child(ZentrelK4NChannels, "Channels", 6, "Измерительные каналы")

    def initiate(self) -> None:
        """Initiate measurement"""
        self._call("Initiate", 7)

    Initiate = initiate

    def abort(self) -> None:
        """Abort measurement"""
        self._call("Abort", 8)

    Abort = abort


class ZentrelK4NSystem(Group):
    """(IZentrelK4NSystem)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NSystem"
    IID = "{F976F8F9-D3E9-44B8-BE3B-5FE9DAA8A081}"
    SLOTS = 23

    serial_num = SerialNum = Reading[str](text, "SerialNum", 3, "", "")
    type = Type = Reading[str](text, "Type", 4, "", "")
    rf_button = RFButton = Reading[bool](switch, "RFButton", 5, "", "")
    pll_state = PLLState = Reading[bool](switch, "PLLState", 6, "", "")
    erg_state = ERGState = Reading[bool](switch, "ERGState", 7, "", "")
    level_state = LevelState = Reading[bool](switch, "LevelState", 8, "", "")
    atten = Atten = Setting[SystemAtten, int](Choice(SystemAtten), "Atten", 10, 9, "", "")
    ext_ref_gen_enabled = ExtRefGenEnabled = Setting[bool, bool](
        switch, "ExtRefGenEnabled", 12, 11, "", ""
    )
    ext_ref_gen_frequency = ExtRefGenFrequency = Setting[float, Quantity](
        number, "ExtRefGenFrequency", 14, 13, "Hz", ""
    )
    sync_source_detection = SyncSourceDetection = Setting[SystemSyncSourceDetector, int](
        Choice(SystemSyncSourceDetector), "SyncSourceDetection", 16, 15, "", ""
    )
    ext_ref_phase_delay = ExtRefPhaseDelay = Setting[int, int](
        integer, "ExtRefPhaseDelay", 18, 17, "", ""
    )
    ext_pwr_ctrl = ExtPwrCtrl = Setting[bool, bool](switch, "ExtPwrCtrl", 20, 19, "", "")
    compens_mode = CompensMode = Setting[SystemCompensMode, int](
        Choice(SystemCompensMode), "CompensMode", 21, 22, "", ""
    )


class ZentrelK4NSyncGenerator(Group):
    """(IZentrelK4NSyncGenerator)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4NSyncGenerator"
    IID = "{189882E7-1498-4B68-A876-8B92A9512BA0}"
    SLOTS = 9

    width = Width = Setting[float, Quantity](number, "Width", 4, 3, "s", "")
    period = Period = Setting[float, Quantity](number, "Period", 6, 5, "s", "")
    delay = Delay = Setting[float, Quantity](number, "Delay", 8, 7, "s", "")


class ZentrelK4N(Group):
    """IVI RFSigGen class-compliant root interface (IZentrelK4N)"""

    __slots__ = ()
    INTERFACE = "IZentrelK4N"
    IID = "{C63AE521-7C9B-4DF3-A6C6-6319D401488B}"
    SLOTS = 15

    utility = Utility = Child(
        IviDriverUtility, "Utility", 3, "Pointer to the IIviDriverUtility interface"
    )
    rf = RF = Child(
        ZentrelK4NRF, "RF", 4, "Pointer to the class-compliant IIviRFSigGenRF interface"
    )
    pulse_generator = PulseGenerator = Child(
        ZentrelK4NPulseGenerator,
        "PulseGenerator",
        5,
        "Pointer to the class-compliant IIviRFSigGenPulseGenerator interface",
    )
    sweep = Sweep = Child(
        ZentrelK4NSweep, "Sweep", 6, "Pointer to the class-compliant IIviRFSigGenSweep interface"
    )
    pulse_modulation = PulseModulation = Child(
        ZentrelK4NPulseModulation,
        "PulseModulation",
        7,
        "Pointer to the class-compliant IIviRFSigGenPulseModulation interface",
    )

    def send_software_trigger(self) -> None:
        """Sends a software trigger, which will cause the signal generator to start signal
        generation.
        """
        self._call("SendSoftwareTrigger", 8)

    SendSoftwareTrigger = send_software_trigger
    acquisition = Acquisition = Child(
        ZentrelK4NAcquisition, "Acquisition", 9, "ZentrelK4N acquisition interface"
    )
    system = System = Child(ZentrelK4NSystem, "System", 10, "")
    sync_generator = SyncGenerator = Child(ZentrelK4NSyncGenerator, "SyncGenerator", 11, "")

    def initialize(
        self,
        resource_name: Optional[str],
        id_query: bool,
        reset: bool,
        option_string: Optional[str] = None,
    ) -> None:
        """Opens the I/O session to the instrument.  Driver methods and properties that access the
        instrument are only accessible after Initialize is called.  Initialize optionally performs a
        Reset and queries the instrument to validate the instrument model.

        Takes resource_name: text; id_query: true or false; reset: true or false; option_string:
        text (may be left out).
        """
        self._call(
            "Initialize",
            12,
            TextArgument(resource_name),
            switch.encode(id_query, "", "id_query"),
            switch.encode(reset, "", "reset"),
            TextArgument(option_string),
        )

    Initialize = initialize
    initialized = Initialized = Reading[bool](
        switch,
        "Initialized",
        13,
        "",
        "Initialized is True between a successful call to the Initialize method and a "
        "successful call to the Close method, and False at all other times.",
    )

    def close(self) -> None:
        """Closes the I/O session to the instrument.  Driver methods and properties that access the
        instrument are not accessible after Close is called.
        """
        self._call("Close", 14)

    Close = close


class IviDriverIdentity(Group):
    """(IIviDriverIdentity)"""

    __slots__ = ()
    INTERFACE = "IIviDriverIdentity"
    IID = "{47ED5186-A398-11D4-BA58-000064657374}"
    SLOTS = 14

    description = Description = Reading[str](text, "Description", 3, "", "")
    revision = Revision = Reading[str](text, "Revision", 4, "", "")
    vendor = Vendor = Reading[str](text, "Vendor", 5, "", "")
    instrument_manufacturer = InstrumentManufacturer = Reading[str](
        text, "InstrumentManufacturer", 6, "", ""
    )
    instrument_model = InstrumentModel = Reading[str](text, "InstrumentModel", 7, "", "")
    instrument_firmware_revision = InstrumentFirmwareRevision = Reading[str](
        text, "InstrumentFirmwareRevision", 8, "", ""
    )
    identifier = Identifier = Reading[str](text, "Identifier", 9, "", "")
    supported_instrument_models = SupportedInstrumentModels = Reading[str](
        text, "SupportedInstrumentModels", 10, "", ""
    )
    specification_major_version = SpecificationMajorVersion = Reading[int](
        integer, "SpecificationMajorVersion", 11, "", ""
    )
    specification_minor_version = SpecificationMinorVersion = Reading[int](
        integer, "SpecificationMinorVersion", 12, "", ""
    )
    group_capabilities = GroupCapabilities = Reading[str](text, "GroupCapabilities", 13, "", "")


class IviDriverOperation(Group):
    """(IIviDriverOperation)"""

    __slots__ = ()
    INTERFACE = "IIviDriverOperation"
    IID = "{47ED5188-A398-11D4-BA58-000064657374}"
    SLOTS = 23

    logical_name = LogicalName = Reading[str](text, "LogicalName", 3, "", "")
    io_resource_descriptor = IoResourceDescriptor = Reading[str](
        text, "IoResourceDescriptor", 4, "", ""
    )
    cache = Cache = Setting[bool, bool](switch, "Cache", 5, 6, "", "")
    interchange_check = InterchangeCheck = Setting[bool, bool](
        switch, "InterchangeCheck", 7, 8, "", ""
    )
    query_instrument_status = QueryInstrumentStatus = Setting[bool, bool](
        switch, "QueryInstrumentStatus", 9, 10, "", ""
    )
    range_check = RangeCheck = Setting[bool, bool](switch, "RangeCheck", 11, 12, "", "")
    record_coercions = RecordCoercions = Setting[bool, bool](
        switch, "RecordCoercions", 13, 14, "", ""
    )
    simulate = Simulate = Setting[bool, bool](switch, "Simulate", 15, 16, "", "")
    driver_setup = DriverSetup = Reading[str](text, "DriverSetup", 17, "", "")

    def invalidate_all_attributes(self) -> None:
        """InvalidateAllAttributes"""
        self._call("InvalidateAllAttributes", 18)

    InvalidateAllAttributes = invalidate_all_attributes

    def clear_interchange_warnings(self) -> None:
        """ClearInterchangeWarnings"""
        self._call("ClearInterchangeWarnings", 19)

    ClearInterchangeWarnings = clear_interchange_warnings

    def get_next_interchange_warning(self) -> str:
        """GetNextInterchangeWarning

        Gives text.
        """
        warning_ = TextResult()
        self._call("GetNextInterchangeWarning", 20, warning_)
        return warning_.text()

    GetNextInterchangeWarning = get_next_interchange_warning

    def reset_interchange_check(self) -> None:
        """ResetInterchangeCheck"""
        self._call("ResetInterchangeCheck", 21)

    ResetInterchangeCheck = reset_interchange_check

    def get_next_coercion_record(self) -> str:
        """GetNextCoercionRecord

        Gives text.
        """
        record_ = TextResult()
        self._call("GetNextCoercionRecord", 22, record_)
        return record_.text()

    GetNextCoercionRecord = get_next_coercion_record


__all__ = [
    "AcquisitionStatus",
    "ErrorCodes",
    "FrequencyStepScaling",
    "IviDriverIdentity",
    "IviDriverOperation",
    "IviDriverUtility",
    "MaxTimeMilliseconds",
    "PulseExternalTriggerSlope",
    "PulseModulationExternalPolarity",
    "PulseModulationSource",
    "PulseOutputPolarity",
    "PulseTriggerSource",
    "SweepMode",
    "SweepTriggerAction",
    "SweepTriggerSource",
    "SystemAtten",
    "SystemCompensMode",
    "SystemSyncSourceDetector",
    "TriggerOutputMode",
    "TriggerOutputPolarity",
    "ZentrelK4N",
    "ZentrelK4NAcquisition",
    "ZentrelK4NChannel",
    "ZentrelK4NChannels",
    "ZentrelK4NFrequencyStep",
    "ZentrelK4NList",
    "ZentrelK4NPowerStep",
    "ZentrelK4NPulseGenerator",
    "ZentrelK4NPulseGeneratorDouble",
    "ZentrelK4NPulseGeneratorOutput",
    "ZentrelK4NPulseModulation",
    "ZentrelK4NPulsePacketGenerator",
    "ZentrelK4NRF",
    "ZentrelK4NSweep",
    "ZentrelK4NSyncGenerator",
    "ZentrelK4NSystem",
    "ZentrelK4NTriggerOutput",
]
