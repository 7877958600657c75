// What .NET does for the C# example, and Mono does not: it joins the thread to COM, and passes
// arrays of numbers. For Mono the test declares those as pointers.

using System;
using System.Reflection;
using System.Runtime.InteropServices;
using ZentrelK4NLib;

static class Mono
{
    [DllImport("ole32.dll")]
    static extern int CoInitializeEx(IntPtr reserved, int mode);

    [DllImport("oleaut32.dll")]
    static extern int SafeArrayGetUBound(IntPtr array, uint dimension, out int bound);

    [DllImport("oleaut32.dll")]
    static extern int SafeArrayAccessData(IntPtr array, out IntPtr data);

    [DllImport("oleaut32.dll")]
    static extern int SafeArrayUnaccessData(IntPtr array);

    [DllImport("oleaut32.dll")]
    static extern int SafeArrayDestroy(IntPtr array);

    public static int FetchData(this IZentrelK4NChannel channel, ref double[] values,
                                ref double start, ref double step)
    {
        IntPtr array = IntPtr.Zero, data;
        int last;
        int result = channel.FetchData(ref array, ref start, ref step);
        if (array == IntPtr.Zero) return result;
        Marshal.ThrowExceptionForHR(SafeArrayGetUBound(array, 1, out last));
        Marshal.ThrowExceptionForHR(SafeArrayAccessData(array, out data));
        values = new double[last + 1];
        Marshal.Copy(data, values, 0, values.Length);
        SafeArrayUnaccessData(array);
        SafeArrayDestroy(array);
        return result;
    }

    static int Main(string[] arguments)
    {
        CoInitializeEx(IntPtr.Zero, 0);
        MethodInfo main = typeof(MeasureExample).GetMethod(
            "Main", BindingFlags.NonPublic | BindingFlags.Static);
        return (int)main.Invoke(null, new object[] { arguments });
    }
}
