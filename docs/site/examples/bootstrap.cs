// Entrance scores and grades of fifteen law schools: the correlation and its bootstrap interval (B. Efron, 1979).
using System;
using System.Linq;
using Orvanth.Core.Math;

static class Bootstrap
{
    static readonly double[] Score = { 576, 635, 558, 578, 666, 580, 555, 661, 651, 605, 653, 575, 545, 572, 594 };
    static readonly double[] Grade =
        { 3.39, 3.30, 2.81, 3.03, 3.44, 3.07, 3.00, 3.43, 3.36, 3.13, 3.12, 2.74, 2.76, 2.88, 2.96 };

    static double Correlation(int[] index)
    {
        double x = index.Average(i => Score[i]), y = index.Average(i => Grade[i]);
        double xy = index.Sum(i => (Score[i] - x) * (Grade[i] - y));
        double xx = index.Sum(i => (Score[i] - x) * (Score[i] - x)), yy = index.Sum(i => (Grade[i] - y) * (Grade[i] - y));
        return xy / Math.Sqrt(xx * yy);
    }

    static void Main()
    {
        double seen = Correlation(Enumerable.Range(0, 15).ToArray());
        var resampled = new double[2000];
        using (var stream = new RandomStream(1))
        {
            for (int i = 0; i < resampled.Length; ++i) resampled[i] = Correlation(stream.Indices(15));
        }
        Array.Sort(resampled);
        Console.WriteLine("correlation {0:F4}, 95 % interval {1:F4} to {2:F4}", seen, resampled[49], resampled[1950]);
    }
}
