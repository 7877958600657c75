Attribute VB_Name = "ZentrelMeasure"
' Opens the instrument, sets a fixed frequency, steps through a range, prints the traces of all
' channels and what is in the error trail to the Immediate window, and closes.
'
' Needs a reference to "IVI ZentrelK4N 1.2 Type Library" (Tools, References) and 64-bit Office.
Option Explicit

Private Const CwFrequency As Double = 2400000000#   ' Hz
Private Const StartFrequency As Double = 2000000000#
Private Const StopFrequency As Double = 2800000000#
Private Const StepSize As Double = 50000000#
Private Const OutputLevel As Double = -10           ' dBm
Private Const AveragingFactor As Long = 3
Private Const Patience As Double = 10               ' s

Private Declare PtrSafe Sub Sleep Lib "kernel32" (ByVal Milliseconds As Long)

Private Doing As String     ' the member that is called, for the report of a failure

Public Sub RunExample()
    ' The simulated instrument: zk4n simulate --port 8888
    Measure "TCPIP::127.0.0.1::8888::SOCKET"
End Sub

Public Sub Measure(ByVal ResourceName As String, Optional ByVal DetectorFile As String = "")
    Dim Driver As ZentrelK4NLib.ZentrelK4N
    On Error GoTo Failed
    Doing = "New": Set Driver = New ZentrelK4NLib.ZentrelK4N
    OpenSession Driver, ResourceName
    SetFixedFrequency Driver
    SetSweep Driver
    MeasureTraces Driver, DetectorFile
CleanUp:
    On Error GoTo NotClosed
    If Not Driver Is Nothing Then
        ' The truth value is compared as a number: see SetFixedFrequency.
        If CInt(Driver.Initialized) <> 0 Then
            PrintErrorTrail Driver
            Doing = "Close": Driver.Close
            Debug.Print "Closed"
        End If
    End If
    Exit Sub
Failed:
    Debug.Print "Failed: " & Doing & ": 0x" & Hex8(Err.Number) & ": " & Err.Description
    Resume CleanUp
NotClosed:
    Debug.Print "Failed: " & Doing & ": 0x" & Hex8(Err.Number) & ": " & Err.Description
End Sub

Private Sub OpenSession(ByVal Driver As ZentrelK4NLib.ZentrelK4N, ByVal ResourceName As String)
    Dim Instrument As ZentrelK4NLib.IZentrelK4NSystem
    Dim TypeText As String
    Dim SerialNumber As String
    ' An identification query cannot be had. The driver says so by a success code, which VBA does
    ' not show: nor does it show 10057, "no session", so whether there is one is asked for.
    Doing = "Initialize": Driver.Initialize ResourceName, True, False
    If CInt(Driver.Initialized) = 0 Then Err.Raise vbObjectError + 1, , "there is no session"
    Doing = "System": Set Instrument = Driver.System
    Doing = "System.Type": TypeText = Instrument.Type
    Doing = "System.SerialNum": SerialNumber = Instrument.SerialNum
    Debug.Print "Instrument: " & TypeText & ", serial number " & SerialNumber
End Sub

Private Sub SetFixedFrequency(ByVal Driver As ZentrelK4NLib.ZentrelK4N)
    Dim RF As ZentrelK4NLib.IZentrelK4NRF
    Dim State As String
    Doing = "RF": Set RF = Driver.RF
    Doing = "RF.Level": RF.Level = OutputLevel
    Doing = "RF.Frequency": RF.Frequency = CwFrequency
    Doing = "RF.OutputEnabled": RF.OutputEnabled = True
    ' Here true reads 1, in other places -1: "= True" and "Not" fail on 1, "<> 0" is right
    ' everywhere.
    If CInt(RF.OutputEnabled) <> 0 Then State = "on" Else State = "off"
    Debug.Print "Output: " & Fixed(RF.Frequency / 1000000000#, 3) & " GHz, " & _
        Fixed(RF.Level, 2) & " dBm, " & State
End Sub

Private Sub SetSweep(ByVal Driver As ZentrelK4NLib.ZentrelK4N)
    Dim Sweep As ZentrelK4NLib.IZentrelK4NSweep
    Dim Steps As ZentrelK4NLib.IZentrelK4NFrequencyStep
    Doing = "Sweep": Set Sweep = Driver.Sweep
    Doing = "Sweep.FrequencyStep": Set Steps = Sweep.FrequencyStep
    Doing = "Sweep.FrequencyStep.ConfigureStartStop"
    Steps.ConfigureStartStop StartFrequency, StopFrequency, _
        ZentrelK4NFrequencyStepScalingLinear, StepSize
    ' The instrument may have corrected them.
    Debug.Print "Sweep: " & Fixed(Steps.Start / 1000000000#, 3) & " to " & _
        Fixed(Steps.Stop / 1000000000#, 3) & " GHz in steps of " & _
        Fixed(Steps.Size / 1000000000#, 3) & " GHz"
    Doing = "Sweep.Configure"
    Sweep.Configure ZentrelK4NSweepModeFrequencyStep, ZentrelK4NSweepTriggerSourceSoftware
End Sub

Private Sub Acquire(ByVal Acquisition As ZentrelK4NLib.IZentrelK4NAcquisition)
    Dim Started As Double
    Dim Waited As Double
    Dim Status As ZentrelK4NAcquisitionStatusEnum
    Started = Timer
    Doing = "Acquisition.Averaging": Acquisition.Averaging = AveragingFactor
    Doing = "Acquisition.Initiate": Acquisition.Initiate
    Do
        Doing = "Acquisition.Status": Status = Acquisition.Status
        If Status = ZentrelK4NAcquisitionStatusComplete Then Exit Do
        If Status = ZentrelK4NAcquisitionStatusUnknown Then
            Err.Raise vbObjectError + 2, , "the measurement failed"
        End If
        Waited = Timer - Started
        If Waited < 0 Then Waited = Waited + 86400  ' midnight
        If Waited > Patience Then Err.Raise vbObjectError + 3, , "no data came"
        DoEvents
        Sleep 5
    Loop
End Sub

Private Sub MeasureTraces(ByVal Driver As ZentrelK4NLib.ZentrelK4N, ByVal DetectorFile As String)
    Dim Acquisition As ZentrelK4NLib.IZentrelK4NAcquisition
    Dim Channels As ZentrelK4NLib.IZentrelK4NChannels
    Dim Channel As ZentrelK4NLib.IZentrelK4NChannel
    Dim Values() As Double
    Dim Traces() As Variant
    Dim StartX As Double    ' Hz
    Dim StepX As Double
    Dim Index As Long
    Dim Point As Long
    Dim Row As String
    Doing = "Acquisition": Set Acquisition = Driver.Acquisition
    Doing = "Acquisition.Channels": Set Channels = Acquisition.Channels
    Doing = "Channels.Count": ReDim Traces(1 To Channels.Count)
    If DetectorFile <> "" Then  ' else the driver has loaded calibr20.det, where there is one
        For Index = 1 To UBound(Traces)
            Doing = "Channels.Item": Set Channel = Channels.Item(Channels.Name(Index))
            Doing = "Channel.LoadDetectorDataFromFile"
            Channel.LoadDetectorDataFromFile DetectorFile
        Next
    End If
    Acquire Acquisition
    Row = "     GHz"
    For Index = 1 To UBound(Traces)
        Doing = "Channels.Item": Set Channel = Channels.Item(Channels.Name(Index))
        Erase Values            ' the driver replaces what stands there, and never frees it
        Doing = "Channel.FetchData": Channel.FetchData Values, StartX, StepX
        Traces(Index) = Values
        Row = Row & "  " & Channels.Name(Index)
    Next
    Debug.Print Row
    For Point = 0 To UBound(Traces(1))
        Row = Padded(Fixed((StartX + StepX * Point) / 1000000000#, 3), 8)
        For Index = 1 To UBound(Traces)
            Row = Row & Padded(Fixed(Traces(Index)(Point), 2), 10)
        Next
        Debug.Print Row
    Next
End Sub

' What the driver has written down: also failures that no result told of.
Private Sub PrintErrorTrail(ByVal Driver As ZentrelK4NLib.ZentrelK4N)
    Dim Utility As ZentrelK4NLib.IIviDriverUtility
    Dim Code As Long
    Dim Message As String
    Dim Errors As Long
    Doing = "Utility": Set Utility = Driver.Utility
    Doing = "Utility.ErrorQuery"
    Do
        Message = vbNullString  ' the driver replaces what stands there, and never frees it
        Utility.ErrorQuery Code, Message
        If Code = 0 Then Exit Do
        Errors = Errors + 1
        Debug.Print "Error: 0x" & Hex8(Code) & " " & Message
    Loop
    If Errors = 0 Then Debug.Print "No errors"
End Sub

Private Function Fixed(ByVal Value As Double, ByVal Digits As Long) As String
    Fixed = Format$(Value, "0." & String$(Digits, "0"))
End Function

Private Function Padded(ByVal Text As String, ByVal Width As Long) As String
    If Len(Text) < Width Then Padded = Space$(Width - Len(Text)) & Text Else Padded = Text
End Function

Private Function Hex8(ByVal Code As Long) As String
    Hex8 = Right$("0000000" & Hex$(Code), 8)
End Function
