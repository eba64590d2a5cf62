using System;
using System.Runtime.InteropServices;

namespace Orvanth.Core.Math
{
    /// <summary>A function of several variables: returns its value at x and writes its gradient.</summary>
    public delegate double Objective(double[] x, double[] gradient);

    /// <summary>How a minimisation ended.</summary>
    public enum MinimizerOutcome
    {
        /// <summary>A minimum was found.</summary>
        Converged,
        /// <summary>The iterations or the evaluations allowed were not enough.</summary>
        LimitReached,
        /// <summary>The line search failed for good; the result is the last good point.</summary>
        LineSearchFailed,
        /// <summary>The callback asked for the end.</summary>
        Stopped,
    }

    /// <summary>What a minimisation found.</summary>
    public sealed class MinimizerResult
    {
        internal MinimizerResult() { }

        /// <summary>The point.</summary>
        public double[] X { get; internal set; }
        /// <summary>The value there.</summary>
        public double Value { get; internal set; }
        /// <summary>The gradient there.</summary>
        public double[] Gradient { get; internal set; }
        /// <summary>How often the function was evaluated.</summary>
        public int Evaluations { get; internal set; }
        /// <summary>Iterations.</summary>
        public int Iterations { get; internal set; }
        /// <summary>How it ended.</summary>
        public MinimizerOutcome Outcome { get; internal set; }
    }

    /// <summary>Minimisation of a smooth function under bounds on its variables, by L-BFGS-B 3.0.</summary>
    public sealed class Minimizer
    {
        private const int Evaluate = 1, NewIterate = 2, Converged = 3, Rejected = 5;  // codes of a step

        private sealed class StateHandle : LibraryHandle
        {
            internal StateHandle(IntPtr made) : base(made) { }

            protected override bool ReleaseHandle()
            {
                Native.SafeLBFGSBEnd(handle);
                return true;
            }
        }

        /// <summary>With the usual tolerances.</summary>
        public Minimizer()
        {
            Corrections = 10;
            ValueTolerance = 2.220446049250313e-09;
            GradientTolerance = 1e-5;
            MaxIterations = MaxEvaluations = 15000;
        }

        /// <summary>Correction pairs kept; 3 to 20 for most problems.</summary>
        public int Corrections { get; set; }
        /// <summary>Ends where the value falls by at most this part of it.</summary>
        public double ValueTolerance { get; set; }
        /// <summary>Ends where no component of the projected gradient is larger.</summary>
        public double GradientTolerance { get; set; }
        /// <summary>Iterations allowed.</summary>
        public int MaxIterations { get; set; }
        /// <summary>Evaluations allowed.</summary>
        public int MaxEvaluations { get; set; }

        /// <summary>Minimises a function. Exceptions of the function and of the callback pass through.</summary>
        /// <param name="objective">the function and its gradient</param>
        /// <param name="start">where to begin; moved onto the bounds, not overwritten</param>
        /// <param name="lower">lower bounds, negative infinity for none; null: no lower bounds</param>
        /// <param name="upper">upper bounds, infinity for none; null: no upper bounds</param>
        /// <param name="afterIteration">called with the point after each iteration; false ends the run</param>
        public MinimizerResult Minimize(Objective objective, double[] start, double[] lower = null, double[] upper = null,
                                        Func<double[], bool> afterIteration = null)
        {
            if (objective == null) throw new ArgumentNullException("objective");
            if (start == null) throw new ArgumentNullException("start");
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            int n = start.Length;
            double[] l = Bounds(lower, n, double.NegativeInfinity, "lower"), u = Bounds(upper, n, double.PositiveInfinity, "upper");
            var kinds = new int[n];
            for (int i = 0; i < n; ++i)
                kinds[i] = double.IsInfinity(l[i]) ? double.IsInfinity(u[i]) ? 0 : 3 : double.IsInfinity(u[i]) ? 1 : 2;
            var result = new MinimizerResult { X = (double[])start.Clone(), Gradient = new double[n] };
            double factor = ValueTolerance / 2.220446049250313e-16;
            using (var state = new StateHandle(Native.SafeLBFGSBStart(n, Corrections, l, u, kinds, factor, GradientTolerance)))
                Run(state, result, objective, afterIteration);
            return result;
        }

        private void Run(StateHandle state, MinimizerResult result, Objective objective, Func<double[], bool> afterIteration)
        {
            var value = new double[1];
            result.Outcome = MinimizerOutcome.LimitReached;
            for (;;)
            {
                int code = state.Use(handle => Native.SafeLBFGSBStep(handle, result.X, value, result.Gradient));
                result.Value = value[0];
                if (code == Evaluate)
                {
                    if (result.Evaluations >= MaxEvaluations) return;
                    ++result.Evaluations;
                    value[0] = objective((double[])result.X.Clone(), result.Gradient);
                }
                else if (code == NewIterate)
                {
                    ++result.Iterations;
                    if (afterIteration != null && !afterIteration((double[])result.X.Clone()))
                    {
                        result.Outcome = MinimizerOutcome.Stopped;
                        return;
                    }
                    if (result.Iterations >= MaxIterations) return;
                }
                else
                {
                    if (code == Rejected) Failure.Throw(double.NaN);
                    result.Outcome = code == Converged ? MinimizerOutcome.Converged : MinimizerOutcome.LineSearchFailed;
                    return;
                }
            }
        }

        private static double[] Bounds(double[] given, int n, double none, string name)
        {
            var made = new double[n];
            if (given != null && given.Length != n)
                throw new ArgumentException(given.Length + " bounds for " + n + " variables", name);
            for (int i = 0; i < n; ++i) made[i] = given == null ? none : given[i];
            return made;
        }
    }
}
