// Convictions of like-sex twins of criminals: 2 of 17 dizygotic and 10 of 13 monozygotic twins (R. A. Fisher, 1962).
using System;
using System.Linq;
using Orvanth.Core.Math;

static class OddsRatio
{
    // The odds ratio with a tail of this size, by bisection of its logarithm; the tail rises with the odds.
    static double Root(Func<double, double> tail, double target)
    {
        double low = -30, high = 30;
        for (int i = 0; i < 80; ++i)
        {
            double middle = (low + high) / 2;
            if (tail(Math.Exp(middle)) < target) low = middle; else high = middle;
        }
        return Math.Exp(low);
    }

    static void Main()
    {
        // convicted dizygotic twins, dizygotic twins, all convicted, all
        const int x = 2, n = 17, m = 12, population = 30;
        double lower = Root(odds => NoncentralHypergeometric.Cdf(x - 1, n, m, population, odds, Tail.Upper, 0), 0.025);
        double upper = Root(odds => 1 - NoncentralHypergeometric.Cdf(x, n, m, population, odds, Tail.Lower, 0), 0.975);
        double seen = Hypergeometric.Pdf(x, m, n, population);
        double p = Enumerable.Range(0, m + 1).Select(i => Hypergeometric.Pdf(i, m, n, population))
            .Where(q => q <= seen * (1 + 1e-7)).Sum();
        Console.WriteLine("95 % interval of the odds ratio: {0:F5} to {1:F5}, p = {2:F7}", lower, upper, p);
    }
}
