// Do these twelve times between failures follow an exponential distribution with mean 100 hours?
using System;
using Orvanth.Core.Math;

static class ExactTest
{
    static void Main()
    {
        double[] hours = { 3.2, 8.1, 11.4, 17.9, 25.0, 31.7, 38.3, 52.6, 60.4, 77.1, 98.5, 143.0 };
        int n = hours.Length;
        double distance = 0;
        for (int i = 0; i < n; ++i)
        {
            double law = Gamma.Cdf(hours[i], 1, 100);  // exponential: gamma with shape 1
            distance = Math.Max(distance, Math.Max((i + 1.0) / n - law, law - (double)i / n));
        }
        double p = Kolmogorov.Cdf(distance, n, Tail.Upper);
        double critical = Kolmogorov.Quantile(0.05, n, Tail.Upper);
        Console.WriteLine("D = {0:F4}, p = {1:F4}, critical value at 5 %: {2:F4}", distance, p, critical);
    }
}
