// All pairs of three groups: weight of dried plants under a control and two treatments (R's PlantGrowth).
using System;
using System.Linq;
using Orvanth.Core.Math;

static class AllPairs
{
    static void Main()
    {
        string[] names = { "control", "treatment 1", "treatment 2" };
        double[][] groups =
        {
            new[] { 4.17, 5.58, 5.18, 6.11, 4.50, 4.61, 5.17, 4.53, 5.33, 5.14 },
            new[] { 4.81, 4.17, 4.41, 3.59, 5.87, 3.83, 6.03, 4.89, 4.32, 4.69 },
            new[] { 6.31, 5.12, 5.54, 5.50, 5.37, 5.29, 4.92, 6.15, 5.80, 5.26 },
        };
        int k = groups.Length, n = groups[0].Length, df = k * (n - 1);
        double[] means = groups.Select(g => g.Average()).ToArray();
        double squares = groups.Sum(g => g.Sum(v => (v - g.Average()) * (v - g.Average())));
        double error = Math.Sqrt(squares / df * 2 / n);  // of a difference of two means
        double[] equal = Enumerable.Repeat(Math.Sqrt(0.5), k).ToArray();  // groups of equal size
        double half = error * MultipleComparison.Tukey.Quantile(0.95, k, df, equal);
        for (int a = 0; a < k; ++a)
        {
            for (int b = a + 1; b < k; ++b)
            {
                double difference = means[b] - means[a];
                double p = MultipleComparison.Tukey.Cdf(Math.Abs(difference) / error, k, df, equal, Tail.Upper);
                Console.WriteLine("{0} - {1}: {2:F3}, interval {3:F3} to {4:F3}, p = {5:F4}", names[b], names[a],
                                  difference, difference - half, difference + half, p);
            }
        }
    }
}
