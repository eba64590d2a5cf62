// Twenty thousand t tests in one call: which genes differ between five treated and five untreated samples?
using System;
using System.Linq;
using System.Threading.Tasks;
using Orvanth.Core.Math;

static class Cluster
{
    const int Genes = 20000;

    static double Mean(Matrix data, int gene, int first, out double variance)
    {
        double[] values = Enumerable.Range(first, 5).Select(j => data[gene, j]).ToArray();
        double mean = values.Average();
        variance = values.Sum(v => (v - mean) * (v - mean)) / 4;
        return mean;
    }

    static void Main()
    {
        // Simulated data, a row a gene; the first 500 genes respond to the treatment.
        Matrix data = RandomStream.NormalMatrix(1, Genes, 10);
        for (int i = 0; i < 500; ++i)
        {
            for (int j = 0; j < 5; ++j) data[i, j] += 4;
        }
        // All cores of the machine work on the statistics, and one call gives all upper tails.
        var t = new double[Genes];
        Parallel.For(0, Genes, i =>
        {
            double treated, control;
            double difference = Mean(data, i, 0, out treated) - Mean(data, i, 5, out control);
            t[i] = Math.Abs(difference) / Math.Sqrt((treated + control) / 5);
        });
        var p = new double[Genes];
        StudentT.Cdf(t, 8, Tail.Upper, p).ThrowIfFailed();

        // Benjamini and Hochberg: at most 5 % of what is found is expected to be false.
        int[] order = Enumerable.Range(0, Genes).OrderBy(i => p[i]).ToArray();
        int found = Genes;
        while (found > 0 && 2 * p[order[found - 1]] > 0.05 * found / Genes) --found;
        Console.WriteLine("found {0} genes, {1} of them by chance", found, order.Take(found).Count(i => i >= 500));
    }
}
