// Yield against variety and dose, with a column for each variety beside the intercept: one column is redundant.
using System;
using System.Collections.Generic;
using System.Linq;
using Orvanth.Core.Math;

static class Regression
{
    static void Main()
    {
        var columns = new List<KeyValuePair<string, double[]>>
        {
            new KeyValuePair<string, double[]>("intercept", new double[] { 1, 1, 1, 1, 1, 1, 1, 1, 1 }),
            new KeyValuePair<string, double[]>("variety A", new double[] { 1, 1, 1, 0, 0, 0, 0, 0, 0 }),
            new KeyValuePair<string, double[]>("variety B", new double[] { 0, 0, 0, 1, 1, 1, 0, 0, 0 }),
            new KeyValuePair<string, double[]>("variety C", new double[] { 0, 0, 0, 0, 0, 0, 1, 1, 1 }),
            new KeyValuePair<string, double[]>("dose", new double[] { 1, 2, 4, 1, 3, 4, 2, 3, 5 }),
        };
        double[] y = { 5.1, 5.9, 8.2, 6.3, 8.1, 9.0, 4.9, 6.2, 8.1 };
        double[] coefficients = null;
        while (coefficients == null)
        {
            var x = new Matrix(y.Length, columns.Count);
            for (int i = 0; i < y.Length; ++i)
            {
                for (int j = 0; j < columns.Count; ++j) x[i, j] = columns[j].Value[i];
            }
            try
            {
                coefficients = LinearAlgebra.Ols(x, y);
            }
            catch (CollinearityException error)
            {
                Console.WriteLine(columns[error.Column].Key + " is redundant");
                columns.RemoveAt(error.Column);
            }
        }
        for (int j = 0; j < columns.Count; ++j) Console.WriteLine("{0}: {1:F4}", columns[j].Key, coefficients[j]);
    }
}
