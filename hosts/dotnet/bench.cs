// What a scalar call and an element cost through the assembly, the fastest of several runs, beside a call into the C
// library (erf of libm through P/Invoke) in the same run.
using System;
using System.Diagnostics;
using System.Runtime.InteropServices;
using Orvanth.Core.Math;

static class Bench
{
    [DllImport("libm.so.6", EntryPoint = "erf")]
    static extern double PeerErf(double x);

    static double Fastest(int count, Action run)
    {
        double best = double.PositiveInfinity;
        for (int i = 0; i < 300; ++i)
        {
            Stopwatch watch = Stopwatch.StartNew();
            run();
            best = Math.Min(best, watch.Elapsed.TotalMilliseconds * 1e6 / count);
        }
        return best;
    }

    static void Main()
    {
        const int count = 2000;  // short runs: other work disturbs the fastest least
        double[] x = new double[count], result = new double[count];
        for (int i = 0; i < count; ++i) x[i] = i * 8.0 / count - 4;
        double sum = 0;
        double peer = Fastest(count, () => { for (int i = 0; i < count; ++i) sum += PeerErf(x[i]); });
        double erf = Fastest(count, () => { for (int i = 0; i < count; ++i) sum += SpecialFunctions.Erf(x[i]); });
        double erfs = Fastest(count, () => SpecialFunctions.Erf(x, result));
        double normal = Fastest(count, () => { for (int i = 0; i < count; ++i) sum += Normal.Cdf(x[i], 0, 1); });
        double normals = Fastest(count, () => Normal.Cdf(x, 0, 1, Tail.Lower, result));
        double t = Fastest(count, () => { for (int i = 0; i < count; ++i) sum += StudentT.Cdf(x[i], 17); });
        double ts = Fastest(count, () => StudentT.Cdf(x, 17, Tail.Lower, result));
        double failing = Fastest(20, () =>
        {
            for (int i = 0; i < 20; ++i)
                try { Normal.Cdf(0, 0, -1); } catch (ArgumentOutOfRangeException) { }
        });
        Console.WriteLine("| .NET on Mono | ns a scalar call | ns an element |");
        Console.WriteLine("|---|---|---|");
        Console.WriteLine("| erf of the C library by P/Invoke | {0:F0} | |", peer);
        Console.WriteLine("| SpecialFunctions.Erf | {0:F0} ({1:F1} of the line above) | {2:F0} |", erf, erf / peer, erfs);
        Console.WriteLine("| Normal.Cdf | {0:F0} | {1:F0} |", normal, normals);
        Console.WriteLine("| StudentT.Cdf, 17 df | {0:F0} | {1:F0} |", t, ts);
        Console.WriteLine("| Normal.Cdf that fails and is caught | {0:F0} | |", failing);
    }
}
