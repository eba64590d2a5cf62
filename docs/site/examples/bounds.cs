// Velocity of an enzyme against concentration (R's Puromycin): Michaelis and Menten's curve, top at most 205.
using System;
using Orvanth.Core.Math;

static class Bounds
{
    static readonly double[] Concentration = { 0.02, 0.02, 0.06, 0.06, 0.11, 0.11, 0.22, 0.22, 0.56, 0.56, 1.10, 1.10 };
    static readonly double[] Velocity = { 76, 47, 97, 107, 123, 139, 159, 152, 191, 201, 207, 200 };

    // Residual sum of squares and its gradient; x is the top in hundreds, and the concentration of half of it.
    static double Squares(double[] x, double[] gradient)
    {
        double sum = 0;
        gradient[0] = gradient[1] = 0;
        for (int i = 0; i < Velocity.Length; ++i)
        {
            double share = Concentration[i] / (x[1] + Concentration[i]);
            double residual = 100 * x[0] * share - Velocity[i];
            sum += residual * residual;
            gradient[0] += 2 * residual * 100 * share;
            gradient[1] -= 2 * residual * 100 * x[0] * share / (x[1] + Concentration[i]);
        }
        return sum;
    }

    static void Main()
    {
        var minimizer = new Minimizer { Corrections = 10, ValueTolerance = 1e-15, GradientTolerance = 1e-6 };
        foreach (double top in new[] { double.PositiveInfinity, 2.05 })
        {
            MinimizerResult fit = minimizer.Minimize(Squares, new[] { 1, 0.1 }, new[] { 0, 0.001 },
                                                     new[] { top, double.PositiveInfinity });
            Console.WriteLine("top {0:F2}, half at {1:F5}, sum of squares {2:F2}", 100 * fit.X[0], fit.X[1], fit.Value);
        }
    }
}
