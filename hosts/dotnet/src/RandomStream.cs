using System;
using System.Runtime.InteropServices;

namespace Orvanth.Core.Math
{
    /// <summary>A handle of the library, released once and never while a call uses it.</summary>
    internal abstract class LibraryHandle : SafeHandle
    {
        protected LibraryHandle(IntPtr made) : base(IntPtr.Zero, true)
        {
            if (made == IntPtr.Zero) Failure.Throw(double.NaN);
            SetHandle(made);
        }

        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }

        internal int Use(Func<IntPtr, int> call)
        {
            bool held = false;
            try
            {
                DangerousAddRef(ref held);
                return call(handle);
            }
            finally
            {
                if (held) DangerousRelease();
            }
        }
    }

    /// <summary>Random numbers of the Mersenne Twister, fixed by a seed on every machine.</summary>
    public sealed class RandomStream : IDisposable
    {
        private sealed class StreamHandle : LibraryHandle
        {
            internal StreamHandle(IntPtr made) : base(made) { }

            protected override bool ReleaseHandle() { return Native.SafeDeleteRandomStream(handle) == 0; }
        }

        private readonly StreamHandle stream;

        /// <summary>The stream of a seed; every 32-bit integer is one.</summary>
        public RandomStream(int seed)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            stream = new StreamHandle(Native.SafeCreateRandomStream(seed));
        }

        /// <summary>Draws integers from 0 to count - 1, count of them, with replacement.</summary>
        public int[] Indices(int count)
        {
            if (stream.IsClosed) throw new ObjectDisposedException("RandomStream");
            if (count < 0) throw new ArgumentOutOfRangeException("count", "the count is negative");
            var values = new int[count];
            Failure.Check(stream.Use(handle => Native.SafeRandomUniformInteger(handle, values, count)));
            return values;
        }

        /// <summary>The first normal variates of a seed.</summary>
        public static double[] Normals(int seed, int count, double mean = 0, double sigma = 1)
        {
            if (count < 0) throw new ArgumentOutOfRangeException("count", "the count is negative");
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            var values = new double[count];
            Failure.Check(Native.SafeRandomNormalVariable(values, count, mean, sigma, seed));
            return values;
        }

        /// <summary>A matrix of the first normal variates of a seed, filled by columns.</summary>
        public static Matrix NormalMatrix(int seed, int rows, int columns, double mean = 0, double sigma = 1)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            var made = new Matrix(rows, columns);
            Failure.Check(Native.SafeRandomNormalVariables(made.Storage, rows, columns, mean, sigma, seed));
            return made;
        }

        /// <summary>Releases the stream; a second time does nothing.</summary>
        public void Dispose() { stream.Dispose(); }
    }
}
