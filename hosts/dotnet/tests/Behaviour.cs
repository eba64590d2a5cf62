using System;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Threading;
using NUnit.Framework;

namespace Orvanth.Core.Math.Tests
{
    [TestFixture]
    public class Failures
    {
        [Test]
        public void ADomainErrorHasTheLibrarysText()
        {
            var error = Assert.Throws<ArgumentOutOfRangeException>(() => Binomial.Cdf(11, 10, 0.5));
            StringAssert.StartsWith("Error in function boost::math::cdf(binomial_distribution<double> const&, double): " +
                                    "Number of Successes argument is 11, but must be <= Number of Trials !", error.Message);
            Assert.AreEqual(Status.Domain, error.Data["Orvanth.Status"]);
        }

        [Test]
        public void ARefusedArgumentIsNamed()
        {
            var error = Assert.Throws<ArgumentOutOfRangeException>(() => LinearAlgebra.Xb(null, new MatrixDescriptor(2, 2), new double[2], new double[2]));
            Assert.AreEqual("x", error.ParamName);
            StringAssert.StartsWith("Xb: argument x is null", error.Message);
        }

        [Test]
        public void OtherFailuresHaveTheirOwnTypes()
        {
            Assert.Throws<ArithmeticException>(() => Binomial.PS(0.05, 5, 10, 2));
            Assert.Throws<OverflowException>(() => SpecialFunctions.GammaLn(1e308));
            Assert.Throws<ArgumentOutOfRangeException>(() => MultipleComparison.Dunnett.Cdf(1, -1, 10, new double[0]));
        }

        [Test]
        public void AnInfiniteValueIsAValue()
        {
            Assert.AreEqual(double.NegativeInfinity, Normal.Quantile(0, 0, 1));
            Assert.AreEqual(double.PositiveInfinity, Normal.Quantile(0, 0, 1, Tail.Upper));
        }

        [Test]
        public void AnArgumentThatIsNotANumberIsAFailureWhereTheLibrarySaysSo()
        {
            Assert.Throws<ArgumentOutOfRangeException>(() => Normal.Cdf(double.NaN, 0, 1));
            Assert.IsNaN(SpecialFunctions.Erf(double.NaN));
        }

        [Test]
        public void ASuccessAfterAFailureIsASuccess()
        {
            Assert.Throws<ArgumentOutOfRangeException>(() => Normal.Cdf(0, 0, -1));
            Assert.AreEqual(0.5, Normal.Cdf(0, 0, 1));
        }

        [Test]
        public void ALambdaThatIsTooShortIsNotRead()
        {
            var error = Assert.Throws<ArgumentException>(() => MultipleComparison.Dunnett.Cdf(1, 3, 10, new double[2]));
            Assert.AreEqual("lambda", error.ParamName);
            Assert.Throws<ArgumentNullException>(() => MultipleComparison.Dunnett.Cdf(1, 3, 10, null));
        }

        [Test]
        public void RefinedFormsHaveTheArgumentsOfThePlainOnes()
        {
            const double h = 0.7071067811865476;
            var lambda = new[] { h, h, h, h };
            Assert.AreEqual(MultipleComparison.Tukey.Cdf(2.5, 4, 12, lambda), MultipleComparison.RefinedTukey.Cdf(2.5, 4, 12, lambda), 2e-7);
            double x = MultipleComparison.RefinedDunnett.Quantile(1e-12, 4, double.PositiveInfinity, lambda, Tail.Upper);
            Assert.AreEqual(1, MultipleComparison.RefinedDunnett.Cdf(x, 4, double.PositiveInfinity, lambda, Tail.Upper) / 1e-12, 1e-7);
            var two = new double[2];
            Assert.IsTrue(MultipleComparison.RefinedHsu.Cdf(new[] { 1.5, 2.5 }, 4, 20, lambda, Tail.Lower, two).Succeeded);
            Assert.AreEqual(MultipleComparison.RefinedHsu.Cdf(2.5, 4, 20, lambda), two[1]);
            var error = Assert.Throws<ArgumentOutOfRangeException>(() => MultipleComparison.RefinedTukey.Cdf(1, 3, -1, lambda));
            StringAssert.Contains("Degrees of freedom argument is -1", error.Message);
        }

        [Test]
        public void TenThousandFailuresOnSeveralThreadsAreSurvived()
        {
            int caught = 0, other = 0;
            var threads = Enumerable.Range(0, 4).Select(number => new Thread(() =>
            {
                for (int i = 0; i < 2500; ++i)
                {
                    int n = 100 * (number + 1) + i % 50;
                    try { Binomial.Cdf(n + 1, n, 0.5); }
                    catch (ArgumentOutOfRangeException error)
                    {
                        // The text is that of this thread's own call.
                        if (error.Message.Contains("argument is " + (n + 1) + ",")) Interlocked.Increment(ref caught);
                    }
                    if (Normal.Cdf(0, 0, 1) != 0.5) Interlocked.Increment(ref other);
                }
            })).ToArray();
            foreach (Thread thread in threads) thread.Start();
            foreach (Thread thread in threads) thread.Join();
            Assert.AreEqual(10000, caught);
            Assert.AreEqual(0, other);
        }
    }

    [TestFixture]
    public class Arrays
    {
        [Test]
        public void AFailedElementDoesNotEndTheLoop()
        {
            var quantiles = new double[3];
            ArrayReport report = Normal.Quantile(new[] { 0.025, 1.5, 0.975 }, 0, 1, Tail.Lower, quantiles);
            Assert.AreEqual(1, report.Failures);
            Assert.AreEqual(1, report.First);
            Assert.AreEqual(Status.Domain, report.Status);
            StringAssert.StartsWith("NormalICDF(p = 1.5, mean = 0, sd = 1, tail = 0): ", report.Text);
            Assert.AreEqual(new[] { Normal.Quantile(0.025, 0, 1), double.NaN, Normal.Quantile(0.975, 0, 1) }, quantiles);
            Assert.Throws<ArgumentOutOfRangeException>(() => report.ThrowIfFailed());
        }

        [Test]
        public void ElementsAreThoseOfThePlainForm()
        {
            double[] x = Enumerable.Range(0, 1000).Select(i => i / 100.0 - 5).ToArray(), df = x.Select(v => 6 + v).ToArray();
            var p = new double[1000];
            Assert.IsTrue(StudentT.Cdf(x, df, Tail.Upper, p).Succeeded);
            for (int i = 0; i < x.Length; ++i) Assert.AreEqual(StudentT.Cdf(x[i], df[i], Tail.Upper), p[i]);
            var lambda = new[] { 0.5, 0.6, 0.7 };
            var two = new double[2];
            Assert.IsTrue(MultipleComparison.Dunnett.Cdf(new[] { 1.5, 2.5 }, 3, 20, lambda, Tail.Lower, two).Succeeded);
            Assert.AreEqual(MultipleComparison.Dunnett.Cdf(2.5, 3, 20, lambda), two[1]);
            Assert.IsTrue(NoncentralHypergeometric.Cdf(new long[] { 1, 2 }, 5, 8, 20, 2.0, Tail.Lower, 1e-10, two).Succeeded);
            Assert.AreEqual(NoncentralHypergeometric.Cdf(2, 5, 8, 20, 2.0, Tail.Lower, 1e-10), two[1]);
            var variances = new double[2];
            Assert.IsTrue(NoncentralHypergeometric.Moments(5, 8, 20, new[] { 1.0, 2.0 }, two, variances).Succeeded);
            double mean, variance;
            NoncentralHypergeometric.Moments(5, 8, 20, 2.0, out mean, out variance);
            Assert.AreEqual(new[] { mean, variance }, new[] { two[1], variances[1] });
        }

        [Test]
        public void LengthsMustAgree()
        {
            var error = Assert.Throws<ArgumentException>(() => Normal.Pdf(new double[3], 0, 1, new double[2]));
            Assert.AreEqual("x", error.ParamName);
            Assert.Throws<ArgumentNullException>(() => Normal.Pdf(new double[3], 0, 1, null));
            Assert.Throws<ArgumentNullException>(() => Normal.Pdf((double[])null, 0, 1, new double[2]));
            // k is checked against the length of lambda.
            var result = new double[1];
            ArrayReport report = MultipleComparison.Dunnett.Cdf(1.0, 4, 20, new double[3], Tail.Lower, result);
            Assert.AreEqual(Status.Argument, report.Status);
            Assert.IsNaN(result[0]);
        }

        [Test]
        public void NoElementsAreNoFailure()
        {
            Assert.IsTrue(Normal.Pdf(new double[0], 0, 1, new double[0]).Succeeded);
        }
    }

    [TestFixture]
    public class Handles
    {
        [Test]
        public void AStreamIsThatOfItsSeed()
        {
            using (var stream = new RandomStream(1)) Assert.AreEqual(new[] { 0, 2, 4, 4, 3 }, stream.Indices(5));
            double[] z = RandomStream.Normals(1, 3);
            Assert.AreEqual(-1.105995, z[0], 1e-6);
            Assert.AreEqual(z[2], RandomStream.NormalMatrix(1, 2, 2)[0, 1]);
        }

        [Test]
        public void ADisposedStreamSaysSo()
        {
            var stream = new RandomStream(1);
            stream.Dispose();
            stream.Dispose();
            Assert.Throws<ObjectDisposedException>(() => stream.Indices(5));
        }

        [Test]
        public void WrongCountsAreNamed()
        {
            using (var stream = new RandomStream(1))
                Assert.AreEqual("count", Assert.Throws<ArgumentOutOfRangeException>(() => stream.Indices(-1)).ParamName);
            Assert.AreEqual("sigma", Assert.Throws<ArgumentOutOfRangeException>(() => RandomStream.Normals(1, 3, 0, 0)).ParamName);
        }

        [Test]
        public void OneStreamOnSeveralThreadsIsServedOrRefused()
        {
            using (var stream = new RandomStream(1))
            {
                int wrong = 0;
                var threads = Enumerable.Range(0, 4).Select(_ => new Thread(() =>
                {
                    for (int i = 0; i < 200; ++i)
                        try { stream.Indices(1000); }
                        catch (InvalidOperationException error) { if (error is ObjectDisposedException) Interlocked.Increment(ref wrong); }
                        catch (Exception) { Interlocked.Increment(ref wrong); }
                })).ToArray();
                foreach (Thread thread in threads) thread.Start();
                foreach (Thread thread in threads) thread.Join();
                Assert.AreEqual(0, wrong);
            }
        }

        // What the library says of a handle: 0 while it lives.
        static int Answer(IntPtr handle)
        {
            Type native = typeof(RandomStream).Assembly.GetType("Orvanth.Core.Math.Native");
            return (int)native.GetMethod("SafeRandomUniformInteger", BindingFlags.NonPublic | BindingFlags.Static)
                .Invoke(null, new object[] { handle, new int[1], 1 });
        }

        static IntPtr HandleOf(RandomStream stream)
        {
            var handle = (SafeHandle)typeof(RandomStream).GetField("stream", BindingFlags.NonPublic | BindingFlags.Instance).GetValue(stream);
            return handle.DangerousGetHandle();
        }

        [Test]
        public void DisposingReleases()
        {
            var stream = new RandomStream(1);
            IntPtr handle = HandleOf(stream);
            Assert.AreEqual(0, Answer(handle));
            stream.Dispose();
            Assert.AreEqual(-1006, Answer(handle));
        }

        [Test]
        public void ForgottenStreamsAreReleased()
        {
            // On a thread of their own, so that no word of this stack looks like a reference to one of them.
            var handles = new IntPtr[100];
            var maker = new Thread(() => { for (int i = 0; i < handles.Length; ++i) handles[i] = HandleOf(new RandomStream(i)); });
            maker.Start();
            maker.Join();
            GC.Collect();
            GC.WaitForPendingFinalizers();
            Assert.Less(handles.Count(h => Answer(h) == 0), 10);
        }
    }

    [TestFixture]
    public class Minimisations
    {
        static double Rosenbrock(double[] x, double[] gradient)
        {
            double a = 1 - x[0], b = x[1] - x[0] * x[0];
            gradient[0] = -2 * a - 400 * x[0] * b;
            gradient[1] = 200 * b;
            return a * a + 100 * b * b;
        }

        [Test]
        public void AMinimumIsFound()
        {
            var start = new[] { -1.2, 1.0 };
            MinimizerResult found = new Minimizer { GradientTolerance = 1e-8, ValueTolerance = 0 }.Minimize(Rosenbrock, start);
            Assert.AreEqual(MinimizerOutcome.Converged, found.Outcome);
            Assert.AreEqual(1, found.X[0], 1e-6);
            Assert.AreEqual(new[] { -1.2, 1.0 }, start);
            Assert.Greater(found.Evaluations, found.Iterations);
        }

        [Test]
        public void BoundsHold()
        {
            MinimizerResult found = new Minimizer().Minimize(Rosenbrock, new[] { -1.2, 1.0 }, upper: new[] { 0.5, double.PositiveInfinity });
            Assert.AreEqual(0.5, found.X[0]);
            Assert.AreEqual(0.25, found.X[1], 1e-4);
        }

        [Test]
        public void ExceptionsOfTheFunctionPass()
        {
            Assert.Throws<NotSupportedException>(() => new Minimizer().Minimize((x, g) => { throw new NotSupportedException(); }, new[] { 1.0 }));
        }

        // Each state holds 3.5 MB.
        [Test]
        public void StatesAreReleased()
        {
            long before = System.Diagnostics.Process.GetCurrentProcess().WorkingSet64;
            for (int i = 0; i < 100; ++i)
                Assert.Throws<NotSupportedException>(() => new Minimizer { Corrections = 20 }.Minimize(
                    (x, g) => { throw new NotSupportedException(); }, new double[10000]));
            Assert.Less(System.Diagnostics.Process.GetCurrentProcess().WorkingSet64 - before, 150000000);
        }

        [Test]
        public void TheCallbackEndsTheRun()
        {
            MinimizerResult found = new Minimizer().Minimize(Rosenbrock, new[] { -1.2, 1.0 }, afterIteration: x => false);
            Assert.AreEqual(MinimizerOutcome.Stopped, found.Outcome);
            Assert.AreEqual(1, found.Iterations);
            Assert.AreEqual(MinimizerOutcome.LimitReached, new Minimizer { MaxEvaluations = 3 }.Minimize(Rosenbrock, new[] { -1.2, 1.0 }).Outcome);
        }

        [Test]
        public void RejectedArgumentsAreTold()
        {
            var error = Assert.Throws<ArgumentOutOfRangeException>(
                () => new Minimizer().Minimize(Rosenbrock, new[] { 0.0, 0.0 }, new[] { 2.0, 0.0 }, new[] { 1.0, 1.0 }));
            StringAssert.Contains("a lower bound is above its upper bound", error.Message);
            Assert.AreEqual("lower", Assert.Throws<ArgumentException>(() => new Minimizer().Minimize(Rosenbrock, new[] { 0.0, 0.0 }, new double[1])).ParamName);
        }
    }

    [TestFixture]
    public class Matrices
    {
        static readonly Matrix Tall = new Matrix(new double[,] { { 1, 2 }, { 1, 3 }, { 1, 5 }, { 1, 7 } });

        static void Same(Matrix a, Matrix b)
        {
            Assert.AreEqual(a.Rows, b.Rows);
            Assert.AreEqual(a.Columns, b.Columns);
            for (int i = 0; i < a.Storage.Length; ++i) Assert.AreEqual(a.Storage[i], b.Storage[i], 1e-12);
        }

        static Matrix Diagonal(double[] s)
        {
            var made = new Matrix(s.Length, s.Length);
            for (int i = 0; i < s.Length; ++i) made[i, i] = s[i];
            return made;
        }

        [Test]
        public void FactorsMultiplyToTheMatrix()
        {
            QrFactors qr = LinearAlgebra.Qr(Tall);
            Same(Tall, qr.Q * qr.R);
            Same(Matrix.Identity(2), qr.Q.Transpose() * qr.Q);
            QrFactors pivoted = LinearAlgebra.Qr(Tall, true);
            Assert.AreEqual(new[] { 1, 0 }, pivoted.Pivots);
            SingularValues svd = LinearAlgebra.Svd(Tall);
            Same(Tall, svd.U * Diagonal(svd.S) * svd.Vt);
            Assert.AreEqual(4, LinearAlgebra.Svd(Tall, true).U.Columns);
            Matrix gram = Tall.Transpose() * Tall;
            Eigensystem eigen = LinearAlgebra.Eigen(gram);
            Same(gram, eigen.Vectors * Diagonal(eigen.Values) * eigen.Vectors.Transpose());
        }

        [Test]
        public void LeastSquaresAgree()
        {
            var y = new double[] { 1, 2, 3, 5 };
            double[] b = LinearAlgebra.Ols(Tall, y);
            Same(Matrix.Column(b), LinearAlgebra.LeastSquares(Tall, Matrix.Column(y)));
            Assert.AreEqual(0.7627118644, b[1], 1e-9);
            Assert.AreEqual(10.0 / 59, LinearAlgebra.ResidualSumOfSquares(Tall, b, y), 1e-9);
            QrFactors qr = LinearAlgebra.Qr(Tall);
            Same(Matrix.Column(b), LinearAlgebra.SolveTriangular(qr.R, qr.Q.Transpose() * Matrix.Column(y)));
        }

        [Test]
        public void ARedundantColumnIsNamed()
        {
            var x = new Matrix(new double[,] { { 1, 2, 3 }, { 1, 3, 4 }, { 1, 5, 6 }, { 1, 7, 8 } });
            var error = Assert.Throws<CollinearityException>(() => LinearAlgebra.Ols(x, new double[] { 1, 2, 3, 5 }));
            Assert.AreEqual(2, error.Column);
            Assert.AreEqual("OLS: column 3 is collinear with the columns before it", error.Message);
        }

        [Test]
        public void TheExportsThemselvesAreThereToo()
        {
            var a = new double[] { 1, 2, 3, 2, 4, 6 };
            MatrixDescriptor design = new MatrixDescriptor(3, 2), column = new MatrixDescriptor(3, 1), two = new MatrixDescriptor(2, 1);
            // A positive status is an answer: the collinear column, from 1.
            Assert.AreEqual(2, LinearAlgebra.OLS(a, design, new double[3], column, new double[2], two, new double[2], 1e-7));
            // A negative one is a failure.
            design.LeadingDimension = -1;
            var error = Assert.Throws<ArgumentOutOfRangeException>(() => LinearAlgebra.QR(null, design, new double[2]));
            Assert.IsNotEmpty(error.Message);
        }

        [Test]
        public void WrongShapesAreRefused()
        {
            Assert.Throws<ArgumentException>(() => LinearAlgebra.Eigen(Tall));
            Assert.Throws<ArgumentException>(() => LinearAlgebra.Ols(Tall, new double[3]));
            Assert.Throws<ArgumentException>(() => LinearAlgebra.QR(new double[3], new MatrixDescriptor(2, 2), new double[2]));
            Assert.Throws<ArgumentOutOfRangeException>(() => LinearAlgebra.Svd(new Matrix(new double[,] { { double.NaN } })));
            Assert.Throws<ArgumentOutOfRangeException>(() => new Matrix(-1, 1));
            Assert.Throws<ArgumentOutOfRangeException>(() => Tall[4, 0].ToString());
        }

        [Test]
        public void MatricesMayBeEmpty()
        {
            Assert.AreEqual(0, LinearAlgebra.Qr(new Matrix(3, 0)).R.Storage.Length);
            Assert.AreEqual(0, LinearAlgebra.Ols(new Matrix(3, 0), new double[3]).Length);
            Assert.AreEqual(3, LinearAlgebra.Svd(new Matrix(3, 0), true).U.Columns);
            Assert.AreEqual(0, LinearAlgebra.Eigen(new Matrix(0, 0)).Values.Length);
        }

        [Test]
        public void ThreadsShareTheWorkspaceInTurn()
        {
            var y = Matrix.Column(new double[] { 1, 2, 3, 5 });
            double[] wanted = LinearAlgebra.LeastSquares(Tall, y).Storage;
            int wrong = 0;
            var threads = Enumerable.Range(0, 4).Select(_ => new Thread(() =>
            {
                for (int i = 0; i < 500; ++i)
                    if (!LinearAlgebra.LeastSquares(Tall, y).Storage.SequenceEqual(wanted)) Interlocked.Increment(ref wrong);
            })).ToArray();
            foreach (Thread thread in threads) thread.Start();
            foreach (Thread thread in threads) thread.Join();
            Assert.AreEqual(0, wrong);
        }
    }
}
