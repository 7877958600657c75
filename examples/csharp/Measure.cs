// Measure RESOURCE [DETECTOR_FILE] - opens the instrument, sets a fixed frequency, steps through a
// range, prints the traces of all channels and what is in the error trail, and closes. The driver
// must be registered (`zk4n check` tells).

using System;
using System.Diagnostics;
using System.Globalization;
using System.Threading;
using ZentrelK4NLib;

class MeasureExample
{
    const double CwFrequency = 2.4e9, Start = 2.0e9, Stop = 2.8e9, Step = 50e6; // Hz
    const double Level = -10; // dBm
    const int Averaging = 3;
    const int Patience = 10000; // ms
    const int NoSession = 10057;
    const short True = -1, False = 0;

    class Failure : Exception
    {
        public Failure(string text) : base(text) { }
    }

    static void Print(string format, params object[] values)
    {
        Console.Write(string.Format(CultureInfo.InvariantCulture, format, values) + "\n");
    }

    /// Failures are negative. Of the other results only 0 is plain success: 1 to 6 are notices of
    /// the instrument, Initialize has two warnings, and 10057 says that there is no session.
    static void Check(string member, int result)
    {
        // After a success, too: what was said on the way to it is not about a later failure.
        string description = Results.Description();
        if (result < 0 || result == NoSession)
            throw new Failure(string.Format("{0}: 0x{1:X8}", member, result) +
                              (description == null ? "" : ": " + description));
        if (result != 0) Print("Note of {0}: 0x{1:X8}", member, result);
    }

    static void Open(IZentrelK4N driver, string resource)
    {
        // An identification query cannot be had: the driver opens the session, and says so by its
        // result.
        Check("Initialize", driver.Initialize(resource, True, False, null));
        IZentrelK4NSystem system;
        string type, serial;
        Check("System", driver.get_System(out system));
        Check("System.Type", system.get_Type(out type));
        Check("System.SerialNum", system.get_SerialNum(out serial));
        Print("Instrument: {0}, serial number {1}", type, serial);
    }

    static void SetFixedFrequency(IZentrelK4N driver)
    {
        IZentrelK4NRF rf;
        double frequency, level;
        short enabled;
        Check("RF", driver.get_RF(out rf));
        Check("RF.Level", rf.put_Level(Level));
        Check("RF.Frequency", rf.put_Frequency(CwFrequency));
        Check("RF.OutputEnabled", rf.put_OutputEnabled(True));
        Check("RF.Frequency", rf.get_Frequency(out frequency));
        Check("RF.Level", rf.get_Level(out level));
        Check("RF.OutputEnabled", rf.get_OutputEnabled(out enabled));
        // Here true reads 1, in other places -1: only "not 0" is right everywhere.
        Print("Output: {0:F3} GHz, {1:F2} dBm, {2}",
              frequency / 1e9, level, enabled != 0 ? "on" : "off");
    }

    static void SetSweep(IZentrelK4N driver)
    {
        IZentrelK4NSweep sweep;
        IZentrelK4NFrequencyStep steps;
        double start, stop, step;
        Check("Sweep", driver.get_Sweep(out sweep));
        Check("Sweep.FrequencyStep", sweep.get_FrequencyStep(out steps));
        Check("Sweep.FrequencyStep.ConfigureStartStop", steps.ConfigureStartStop(
            Start, Stop, ZentrelK4NFrequencyStepScalingEnum.ZentrelK4NFrequencyStepScalingLinear,
            Step));
        // The instrument may have corrected them.
        Check("Sweep.FrequencyStep.Start", steps.get_Start(out start));
        Check("Sweep.FrequencyStep.Stop", steps.get_Stop(out stop));
        Check("Sweep.FrequencyStep.Size", steps.get_Size(out step));
        Print("Sweep: {0:F3} to {1:F3} GHz in steps of {2:F3} GHz",
              start / 1e9, stop / 1e9, step / 1e9);
        Check("Sweep.Configure", sweep.Configure(
            ZentrelK4NSweepModeEnum.ZentrelK4NSweepModeFrequencyStep,
            ZentrelK4NSweepTriggerSourceEnum.ZentrelK4NSweepTriggerSourceSoftware));
    }

    static void Acquire(IZentrelK4NAcquisition acquisition)
    {
        Stopwatch waited = Stopwatch.StartNew();
        Check("Acquisition.Averaging", acquisition.put_Averaging(Averaging));
        Check("Acquisition.Initiate", acquisition.Initiate());
        for (;;)
        {
            ZentrelK4NAcquisitionStatusEnum status;
            Check("Acquisition.Status", acquisition.get_Status(out status));
            if (status == ZentrelK4NAcquisitionStatusEnum.ZentrelK4NAcquisitionStatusComplete)
                return;
            if (status == ZentrelK4NAcquisitionStatusEnum.ZentrelK4NAcquisitionStatusUnknown)
                throw new Failure("the measurement failed");
            if (waited.ElapsedMilliseconds > Patience) throw new Failure("no data came");
            Thread.Sleep(5);
        }
    }

    static void Measure(IZentrelK4N driver, string detectorFile)
    {
        IZentrelK4NAcquisition acquisition;
        IZentrelK4NChannels channels;
        int count;
        Check("Acquisition", driver.get_Acquisition(out acquisition));
        Check("Acquisition.Channels", acquisition.get_Channels(out channels));
        Check("Channels.Count", channels.get_Count(out count));
        IZentrelK4NChannel[] all = new IZentrelK4NChannel[count];
        double[][] traces = new double[count][]; // dBm
        string heading = "     GHz";
        for (int i = 0; i < count; ++i)
        {
            string name;
            Check("Channels.Name", channels.get_Name(i + 1, out name));
            Check("Channels.Item", channels.get_Item(name, out all[i]));
            heading += "  " + name;
            // Without a file the driver has loaded calibr20.det, where there is one.
            if (detectorFile == null) continue;
            Check("Channel.LoadDetectorDataFromFile",
                  all[i].LoadDetectorDataFromFile(detectorFile));
        }
        Acquire(acquisition);
        double start = 0, step = 0; // Hz
        for (int i = 0; i < count; ++i)
            // The array is null before.
            Check("Channel.FetchData", all[i].FetchData(ref traces[i], ref start, ref step));
        Print("{0}", heading);
        for (int point = 0; point < traces[0].Length; ++point)
        {
            double gigahertz = (start + step * point) / 1e9;
            string row = string.Format(CultureInfo.InvariantCulture, "{0,8:F3}", gigahertz);
            foreach (double[] trace in traces)
                row += string.Format(CultureInfo.InvariantCulture, "{0,10:F2}", trace[point]);
            Print("{0}", row);
        }
    }

    /// What the driver has written down: also failures that no result told of. Whether there is
    /// nothing.
    static bool PrintErrorTrail(IZentrelK4N driver)
    {
        IIviDriverUtility utility;
        int errors = 0;
        Check("Utility", driver.get_Utility(out utility));
        for (;; ++errors)
        {
            int code = 0;
            string message = null; // what stood here would be lost
            Check("Utility.ErrorQuery", utility.ErrorQuery(ref code, ref message));
            if (code == 0) break;
            Print("Error: 0x{0:X8} {1}", code, message);
        }
        if (errors == 0) Print("No errors");
        return errors == 0;
    }

    /// Whether the action came to its end; if not, says why.
    static bool Attempt(Action action)
    {
        try
        {
            action();
            return true;
        }
        catch (Failure failure)
        {
            Print("Failed: {0}", failure.Message);
            return false;
        }
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length < 1)
        {
            Console.Error.WriteLine("usage: Measure RESOURCE [DETECTOR_FILE]");
            return 2;
        }
        IZentrelK4N driver = (IZentrelK4N)new ZentrelK4N();
        bool done = Attempt(() =>
        {
            Open(driver, arguments[0]);
            SetFixedFrequency(driver);
            SetSweep(driver);
            Measure(driver, arguments.Length > 1 ? arguments[1] : null);
        });
        short open;
        driver.get_Initialized(out open);
        if (open == False) return done ? 0 : 1;
        bool clean = false;
        bool closed = Attempt(() =>
        {
            clean = PrintErrorTrail(driver);
            Check("Close", driver.Close());
            Print("Closed");
        });
        return done && clean && closed ? 0 : 1;
    }
}
