// Which of three treatments gives the heaviest plants? Hsu's comparison of each with the best of the others.
using System;
using System.Linq;
using Orvanth.Core.Math;

static class Best
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
        double[] equal = Enumerable.Repeat(Math.Sqrt(0.5), k).ToArray();
        double half = Math.Sqrt(squares / df * 2 / n) * MultipleComparison.Hsu.Quantile(0.95, k, df, equal);
        for (int i = 0; i < k; ++i)
        {
            double difference = means[i] - means.Where((m, j) => j != i).Max();
            double low = Math.Min(0, difference - half), high = Math.Max(0, difference + half);
            Console.WriteLine("{0}: {1:F3} from the best of the others, interval {2:F3} to {3:F3}: {4}", names[i],
                              difference, low, high, high > 0 ? "may be the best" : "is not the best");
        }
    }
}
