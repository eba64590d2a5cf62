using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Reflection;
using NUnit.Framework;

namespace Orvanth.Core.Math.Tests
{
    // Every golden row, one call of the plain form and one of the form over arrays.
    public class Row
    {
        public string Export, Result, Errno, Text, Tolerance;
        public object[] Arguments;
        public bool Throws;
        public string Line;
    }

    public static class Rows
    {
        static readonly string[] Files =
            { "special", "continuous", "discrete", "kolmogorov", "multiple_comparison", "noncentral_hypergeometric" };

        public static readonly string Root = Environment.GetEnvironmentVariable("ORVANTH_ROOT");

        public static readonly ILookup<string, Row> ByExport = Read().ToLookup(r => r.Export);

        static IEnumerable<Row> Read()
        {
            foreach (string file in Files)
                foreach (string line in File.ReadAllLines(Path.Combine(Root, "tests", "data", "golden", file + ".tsv")))
                {
                    if (line.Length == 0 || line[0] == '#') continue;
                    string[] cells = line.Split('\t');
                    yield return new Row { Export = cells[0], Arguments = cells[1].Split(' ').Select(Cell).ToArray(),
                                           Throws = cells[2] == "throws", Result = cells[3], Errno = cells[4], Text = cells[5],
                                           Tolerance = cells[6], Line = line };
                }
        }

        public static object Cell(string text)
        {
            if (text[0] == '[') return text.Trim('[', ']').Split(',').Select(Number).ToArray();
            return Number(text);
        }

        public static double Number(string text)
        {
            switch (text)
            {
                // double.NaN has its sign bit set, which the library's texts show as -nan.
                case "nan": return BitConverter.Int64BitsToDouble(0x7ff8000000000000);
                case "-0": return -0.0;
                case "inf": return double.PositiveInfinity;
                case "-inf": return double.NegativeInfinity;
            }
            if (!text.Contains("0x")) return double.Parse(text, CultureInfo.InvariantCulture);
            bool minus = text[0] == '-';
            string[] parts = text.Substring(minus ? 3 : 2).Split('p');
            int point = parts[0].IndexOf('.');
            string digits = parts[0].Replace(".", "");
            double value = ulong.Parse(digits, NumberStyles.HexNumber);
            int exponent = int.Parse(parts[1], CultureInfo.InvariantCulture) - (point < 0 ? 0 : 4 * (digits.Length - point));
            for (; exponent > 0; --exponent) value *= 2;
            for (; exponent < 0; ++exponent) value /= 2;
            return minus ? -value : value;
        }
    }

    [TestFixture]
    public class Golden
    {
        const double Reserved = -4.4462302923349974e+196;

        static MethodInfo[] Forms(string export)
        {
            return typeof(Normal).Assembly.GetExportedTypes().SelectMany(t => t.GetMethods()).Where(m =>
                m.GetCustomAttributes(typeof(LibraryExportAttribute), false).Cast<LibraryExportAttribute>().Any(a => a.Name == export)).ToArray();
        }

        static IEnumerable<string> Exports() { return Rows.ByExport.Select(g => g.Key); }

        [TestCaseSource("Exports")]
        public void RowsHold(string export)
        {
            MethodInfo scalar = Forms(export).Single(m => m.ReturnType != typeof(ArrayReport));
            MethodInfo array = Forms(export).Single(m => m.ReturnType == typeof(ArrayReport));
            var wrong = new List<string>();
            foreach (Row row in Rows.ByExport[export])
            {
                string problem = Scalar(row, scalar) ?? Array(row, array);
                if (problem != null) wrong.Add(row.Line + "\n    " + problem);
            }
            Assert.IsEmpty(wrong, string.Join("\n", wrong));
        }

        static object Convert(object cell, Type type)
        {
            if (cell is double[]) return cell;
            double value = (double)cell;
            if (type == typeof(int)) return (int)value;
            if (type == typeof(bool)) return value != 0;
            if (type == typeof(Tail)) return Enum.ToObject(typeof(Tail), (int)value);
            if (type == typeof(Integers)) return (Integers)(long)value;
            if (type == typeof(Values)) return (Values)value;
            return value;
        }

        // The values wanted, or an empty array where every value passes.
        static double[] Wanted(Row row)
        {
            if (row.Throws || row.Result == "any") return new double[0];
            object cell = Rows.Cell(row.Result);
            return cell as double[] ?? new[] { (double)cell };
        }

        static bool IsReserved(Row row, double[] wanted)
        {
            if (wanted.Length == 0) return false;
            if (row.Export == "BinomialPS") return wanted[0] == -1;
            if (!row.Export.StartsWith("FNC")) return false;
            return row.Export.EndsWith("Moments") ? double.IsNaN(wanted[0]) : wanted[0] == Reserved;
        }

        // Null where the value is right.
        static string Differs(double[] got, Row row)
        {
            double[] wanted = Wanted(row);
            for (int i = 0; i < wanted.Length; ++i)
                if (wanted[i] != -12345 && !Matches(got[i], wanted[i], row.Tolerance))  // -12345: left as it was
                    return "gave " + got[i].ToString("R", CultureInfo.InvariantCulture);
            return null;
        }

        static bool Matches(double got, double want, string tolerance)
        {
            if (double.IsNaN(want) || double.IsNaN(got)) return double.IsNaN(want) && double.IsNaN(got);
            if (double.IsInfinity(want) || double.IsInfinity(got)) return got == want;
            if (tolerance == "exact") return BitConverter.DoubleToInt64Bits(got) == BitConverter.DoubleToInt64Bits(want);
            return System.Math.Abs(got - want) <= double.Parse(tolerance, CultureInfo.InvariantCulture) * System.Math.Abs(want) ||
                   (want == 0 && System.Math.Abs(got) <= 1e-300);
        }

        static string Scalar(Row row, MethodInfo method)
        {
            ParameterInfo[] parameters = method.GetParameters();
            var arguments = new object[parameters.Length];
            for (int i = 0; i < row.Arguments.Length; ++i) arguments[i] = Convert(row.Arguments[i], parameters[i].ParameterType);
            double[] wanted = Wanted(row);
            bool isInfinite = wanted.Length > 0 && double.IsInfinity(wanted[0]);
            bool fails = row.Throws || row.Errno == "33" || (row.Errno == "34" && !isInfinite) || IsReserved(row, wanted);
            try
            {
                object result = method.Invoke(null, arguments);
                if (fails) return "threw nothing";
                return Differs(result != null ? new[] { (double)result } : arguments.Skip(row.Arguments.Length).Cast<double>().ToArray(), row);
            }
            catch (Exception error)
            {
                // Mono hands an OverflowException on as it is.
                Exception inner = error is TargetInvocationException ? error.InnerException : error;
                if (!fails && row.Errno != "*") return "threw " + inner;
                if (row.Text != "" && !inner.Message.StartsWith(row.Text.TrimEnd('*'))) return "said " + inner.Message;
                bool isKnown = inner is ArgumentOutOfRangeException || inner is ArithmeticException || inner is OutOfMemoryException;
                if (!isKnown) return "threw " + inner;
                if (row.Errno == "*") return null;
                bool isDomain = row.Result == "std::domain_error" || row.Errno == "33";
                return isDomain == (inner is ArgumentOutOfRangeException) || inner is OutOfMemoryException ? null : "threw " + inner;
            }
        }

        static string Array(Row row, MethodInfo method)
        {
            ParameterInfo[] parameters = method.GetParameters();
            var arguments = new object[parameters.Length];
            for (int i = 0; i < row.Arguments.Length; ++i)
            {
                Type type = parameters[i].ParameterType;
                arguments[i] = Convert(row.Arguments[i], type);
                // Here a choice is -128 to 255.
                if (type == typeof(Tail) && ((int)(Tail)arguments[i] > 255 || (int)(Tail)arguments[i] < -128)) return null;
            }
            for (int i = row.Arguments.Length; i < arguments.Length; ++i) arguments[i] = new double[1];
            double[] wanted = Wanted(row);
            ArrayReport report = (ArrayReport)method.Invoke(null, arguments);
            double[] got = arguments.Skip(row.Arguments.Length).Select(a => ((double[])a)[0]).ToArray();
            bool fails = row.Throws || row.Errno == "33" || row.Errno == "34" || IsReserved(row, wanted);
            if (row.Errno != "*" && fails == report.Succeeded) return "array form: " + report;
            if (row.Throws && !double.IsNaN(got[0])) return "array form: no NaN";
            return Differs(got, row);
        }

        [Test]
        public void EveryExportHasItsPlace()
        {
            var found = System.Text.RegularExpressions.Regex.Matches(
                File.ReadAllText(Path.Combine(Rows.Root, "src", "frame", "exports.def")), @"^EXPORT\((\w+), *(\w+),", System.Text.RegularExpressions.RegexOptions.Multiline);
            Assert.Greater(found.Count, 0);
            Type native = typeof(Normal).Assembly.GetType("Orvanth.Core.Math.Native");
            foreach (System.Text.RegularExpressions.Match match in found)
            {
                string name = match.Groups[2].Value;
                Assert.IsNotNull(native.GetMethod("Safe" + name, BindingFlags.NonPublic | BindingFlags.Static), name);
                bool byHand = match.Groups[1].Value == "random" || match.Groups[1].Value == "optimise";
                Assert.IsTrue(byHand || Forms(name).Length > 0, name);
            }
        }
    }
}
