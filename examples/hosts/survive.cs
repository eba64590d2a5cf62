// A host in .NET that goes on after failures.
using System;
using Orvanth.Core.Math;

static class Survive
{
    static void Main()
    {
        // More successes than trials.
        try
        {
            Binomial.Cdf(11, 10, 0.5);
        }
        catch (ArgumentOutOfRangeException error)
        {
            Console.WriteLine(error.Message);
        }

        // A stream that was disposed of.
        var stream = new RandomStream(1);
        Console.WriteLine(string.Join(" ", stream.Indices(5)));
        stream.Dispose();
        try
        {
            stream.Indices(5);
        }
        catch (ObjectDisposedException error)
        {
            Console.WriteLine("disposed: " + error.ObjectName);
        }

        // Three quantiles in one call; the middle one fails and the loop goes on.
        var quantiles = new double[3];
        ArrayReport report = Normal.Quantile(new[] { 0.025, 1.5, 0.975 }, 0, 1, Tail.Lower, quantiles);
        Console.WriteLine("{0:F4} {1} {2:F4}, {3} failed", quantiles[0], double.IsNaN(quantiles[1]) ? "nan" : "a number", quantiles[2], report.Failures);
        Console.WriteLine(report.Text);

        // A design with a redundant column.
        var x = new Matrix(new double[,] { { 1, 1, 2 }, { 1, 2, 4 }, { 1, 4, 8 }, { 1, 7, 14 }, { 1, 9, 18 } });
        try
        {
            LinearAlgebra.Ols(x, new double[] { 1, 2, 3, 4, 5 });
        }
        catch (CollinearityException error)
        {
            Console.WriteLine(error.Message);
        }
    }
}
/* prints:
Error in function boost::math::cdf(binomial_distribution<double> const&, double): Number of Successes argument is 11, but must be <= Number of Trials !
0 2 4 4 3
disposed: RandomStream
-1.9600 nan 1.9600, 1 failed
NormalICDF(p = 1.5, mean = 0, sd = 1, tail = 0): a parameter or an argument is outside its range, or the calculation did not converge
OLS: column 3 is collinear with the columns before it
*/
