// The first measurement from C#: an evenly lit target, and the luminous intensity of what lights it.
//
//     csc FirstMeasurement.cs TqImage20.cs
using System;
using System.Globalization;
using System.Runtime.InteropServices;
using TqImage20;

static class FirstMeasurement {
    static int Main() {
        // [measurement]
        var header = new TqImageHeader {
            PelCols = 640, PelRows = 480, BinCols = 1, BinRows = 1,
            PelsPerMeterX = 1000, PelsPerMeterY = 1000, SourceDistance = 2,
            CenterCol = 319.5f, CenterRow = 239.5f, LuxPerGrey = 0.01f
        };
        IntPtr image = IntPtr.Zero, pels = IntPtr.Zero;
        int low;
        if (Tq.tqCreateImageA(ref image, out low, ref pels, header.PelCols, header.PelRows) != 0) return 1;
        Tq.tqSetImageInfo(image, ref header);
        var captured = new short[header.PelCols * header.PelRows]; // unsigned grey levels, row 0 first
        for (int i = 0; i < captured.Length; ++i) captured[i] = 12000;
        Marshal.Copy(captured, 0, pels, captured.Length);

        double candela, horizontal, vertical, offAxis;
        int status = Tq.tqCalcCandela(image, 320, 240, out candela, out horizontal, out vertical, out offAxis, 21, 21, 0);
        Tq.tqImageFree(ref image);
        // [measurement]
        if (status != 0) return 1;
        Console.WriteLine(candela.ToString("F2", CultureInfo.InvariantCulture) + " cd");
        return 0;
    }
}
