// Dunnett's test: which of two drugs changes the blood count against the control? C. W. Dunnett, "A multiple comparison
// procedure for comparing several treatments with a control", JASA 50, 1955.
using System;
using System.Linq;
using Orvanth.Core.Math;

static class Dunnett
{
    static void Main()
    {
        double[][] groups =  // the control last
        {
            new[] { 9.76, 8.80, 7.68, 9.36 },
            new[] { 12.80, 9.68, 12.16, 9.20, 10.55 },
            new[] { 7.40, 8.50, 7.20, 8.24, 9.84, 8.32 },
        };
        int k = groups.Length;
        double df = groups.Sum(g => g.Length - 1);
        double s = Math.Sqrt(groups.Sum(g => g.Sum(v => (v - g.Average()) * (v - g.Average()))) / df);
        double[] control = groups[k - 1];
        double[] lambda = groups.Select(g => Math.Sqrt(g.Length / (double)(g.Length + control.Length))).ToArray();
        for (int i = 0; i < k - 1; ++i)
        {
            double error = s * Math.Sqrt(1.0 / groups[i].Length + 1.0 / control.Length);
            double t = (groups[i].Average() - control.Average()) / error;
            double p = MultipleComparison.Dunnett.Cdf(Math.Abs(t), k, df, lambda, Tail.Upper);
            Console.WriteLine("drug {0}: t = {1:F3}, p = {2:F4}", i + 1, t, p);
        }
    }
}
/* prints:
drug 1: t = 0.857, p = 0.6201
drug 2: t = 3.694, p = 0.0058
*/
