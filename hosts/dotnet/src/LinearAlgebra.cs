using System;

namespace Orvanth.Core.Math
{
    /// <summary>A = Q R, or the columns of A in the order of Pivots = Q R.</summary>
    public sealed class QrFactors
    {
        internal QrFactors(Matrix q, Matrix r, int[] pivots) { Q = q; R = r; Pivots = pivots; }

        /// <summary>Orthonormal columns.</summary>
        public Matrix Q { get; private set; }
        /// <summary>Upper triangular.</summary>
        public Matrix R { get; private set; }
        /// <summary>The columns in the order chosen, from 0; null without pivoting.</summary>
        public int[] Pivots { get; private set; }
    }

    /// <summary>A = U diag(S) Vt, the singular values descending.</summary>
    public sealed class SingularValues
    {
        internal SingularValues(Matrix u, double[] s, Matrix vt) { U = u; S = s; Vt = vt; }

        /// <summary>Left singular vectors, as columns.</summary>
        public Matrix U { get; private set; }
        /// <summary>Singular values.</summary>
        public double[] S { get; private set; }
        /// <summary>Right singular vectors, as rows.</summary>
        public Matrix Vt { get; private set; }
    }

    /// <summary>Eigenvalues, ascending, and eigenvectors.</summary>
    public sealed class Eigensystem
    {
        internal Eigensystem(double[] values, Matrix vectors) { Values = values; Vectors = vectors; }

        /// <summary>Eigenvalues.</summary>
        public double[] Values { get; private set; }
        /// <summary>Eigenvectors, as columns.</summary>
        public Matrix Vectors { get; private set; }
    }

    // Nothing of the caller's is overwritten.
    public static partial class LinearAlgebra
    {
        /// <summary>QR factorisation, of the reduced form.</summary>
        public static QrFactors Qr(Matrix a, bool pivoting = false)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Matrix factors = Required(a, "a").Clone();
            int k = System.Math.Min(a.Rows, a.Columns);
            var tau = new double[k];
            int[] pivots = pivoting ? new int[a.Columns] : null;
            MatrixDescriptor shape = factors.Descriptor;
            if (pivoting)
            {
                Failure.Check(Native.SafeQRP(factors.Storage, ref shape, tau, pivots));
                for (int j = 0; j < pivots.Length; ++j) --pivots[j];
            }
            else
            {
                Failure.Check(Native.SafeQR(factors.Storage, ref shape, tau));
            }
            var r = new Matrix(k, a.Columns);
            for (int j = 0; j < a.Columns; ++j)
                for (int i = 0; i <= j && i < k; ++i) r[i, j] = factors[i, j];
            Matrix q = factors.Block(a.Rows, k);
            shape = q.Descriptor;
            Failure.Check(Native.SafeQR_Q(q.Storage, ref shape, tau));
            return new QrFactors(q, r, pivots);
        }

        /// <summary>Singular value decomposition. With `full` U and Vt are square; that form takes small matrices only.</summary>
        public static SingularValues Svd(Matrix a, bool full = false)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Matrix work = Finite(Required(a, "a")).Clone();
            int m = a.Rows, n = a.Columns, k = System.Math.Min(m, n);
            Matrix u = new Matrix(m, full ? m : k), vt = new Matrix(full ? n : k, n);
            var s = new double[k];
            if (k == 0) return full ? new SingularValues(Matrix.Identity(m), s, Matrix.Identity(n)) : new SingularValues(u, s, vt);
            MatrixDescriptor shape = work.Descriptor, uShape = u.Descriptor, vtShape = vt.Descriptor;
            Failure.Check(full ? Native.SafeFullSVD(work.Storage, ref shape, s, u.Storage, ref uShape, vt.Storage, ref vtShape)
                               : Native.SafeThinSVD(work.Storage, ref shape, s, u.Storage, ref uShape, vt.Storage, ref vtShape));
            return new SingularValues(u, s, vt);
        }

        /// <summary>Eigenvalues and eigenvectors of a symmetric matrix, of which the lower triangle is read.</summary>
        public static Eigensystem Eigen(Matrix a)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Square(a);
            Matrix work = Finite(a).Clone(), vectors = new Matrix(a.Rows, a.Rows);
            var values = new double[a.Rows];
            MatrixDescriptor shape = work.Descriptor, vectorShape = vectors.Descriptor;
            if (a.Rows > 0)
                Failure.Check(Native.SafeEigenSymmetric(work.Storage, ref shape, values, new int[1], vectors.Storage, ref vectorShape));
            return new Eigensystem(values, vectors);
        }

        /// <summary>The x that makes a x closest to b for a of full rank, or the shortest x where a is wide.</summary>
        public static Matrix LeastSquares(Matrix a, Matrix b)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Matrix work = Required(a, "a").Clone();
            SameRows(a, Required(b, "b"));
            var x = new Matrix(System.Math.Max(a.Rows, a.Columns), b.Columns);
            for (int j = 0; j < b.Columns; ++j) Array.Copy(b.Storage, j * b.Rows, x.Storage, j * x.Rows, b.Rows);
            MatrixDescriptor shape = work.Descriptor, xShape = x.Descriptor;
            if (work.Storage.Length > 0 && b.Columns > 0) Failure.Check(Native.SafeLS(work.Storage, ref shape, x.Storage, ref xShape));
            return x.Block(a.Columns, b.Columns);
        }

        /// <summary>Ordinary least squares that keeps the columns in their order and names the first redundant one.</summary>
        /// <param name="x">the design, at least as many rows as columns</param>
        /// <param name="y">the response</param>
        /// <param name="tolerance">a column is redundant if what is left of its length is at most this part of it</param>
        /// <returns>the coefficients</returns>
        /// <exception cref="CollinearityException">a column is a combination of the columns before it</exception>
        public static double[] Ols(Matrix x, double[] y, double tolerance = 1e-9)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Matrix work = Required(x, "x").Clone();
            if (y == null) throw new ArgumentNullException("y");
            if (x.Rows < x.Columns) throw new ArgumentException("the design has fewer rows than columns", "x");
            if (y.Length != x.Rows) throw new ArgumentException("y has " + y.Length + " elements for " + x.Rows + " rows", "y");
            var b = (double[])y.Clone();
            var coefficients = new double[x.Columns];
            var tau = new double[x.Columns];
            MatrixDescriptor shape = work.Descriptor, bShape = new MatrixDescriptor(x.Rows, 1), cShape = new MatrixDescriptor(x.Columns, 1);
            int info = Native.SafeOLS(work.Storage, ref shape, b, ref bShape, coefficients, ref cShape, tau, tolerance);
            if (info > 0) throw new CollinearityException(Failure.LastText(), info - 1);
            Failure.Check(info);
            return coefficients;
        }

        /// <summary>The x with a x = b for a triangular a, or for its transpose.</summary>
        public static Matrix SolveTriangular(Matrix a, Matrix b, bool lower = false, bool transpose = false)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            Square(a);
            SameRows(a, Required(b, "b"));
            Matrix x = b.Clone();
            MatrixDescriptor shape = a.Descriptor, xShape = x.Descriptor;
            if (x.Storage.Length > 0)
                Failure.Check(Native.SafeSolveTriangularSystem(a.Storage, ref shape, lower ? 0 : 1, transpose ? 1 : 0, x.Storage, ref xShape));
            return x;
        }

        /// <summary>The sum of squares of y - x b.</summary>
        public static double ResidualSumOfSquares(Matrix x, double[] b, double[] y)
        {
            if (!NativeLibraryFinder.IsLoaded) NativeLibraryFinder.Throw();
            if (Required(x, "x").Columns != b.Length || x.Rows != y.Length) throw new ArgumentException("the shapes do not fit");
            MatrixDescriptor shape = x.Descriptor;
            double total = Native.SafeXb(x.Storage, ref shape, b, y);
            if (LastStatus.IsFailure) Failure.Throw(total);
            return total;
        }

        private static Matrix Required(Matrix a, string name)
        {
            if (a == null) throw new ArgumentNullException(name);
            return a;
        }

        private static void Square(Matrix a)
        {
            if (Required(a, "a").Rows != a.Columns) throw new ArgumentException("a is " + a.Rows + " by " + a.Columns + ", not square", "a");
        }

        private static void SameRows(Matrix a, Matrix b)
        {
            if (a.Rows != b.Rows) throw new ArgumentException("b has " + b.Rows + " rows, a has " + a.Rows, "b");
        }

        // LAPACK's iterations answer an infinity or a NaN with NaNs or with a status, depending on the order.
        private static Matrix Finite(Matrix a)
        {
            foreach (double element in a.Storage)
                if (double.IsNaN(element) || double.IsInfinity(element))
                    throw new ArgumentOutOfRangeException("a", "the matrix has an element that is not finite");
            return a;
        }
    }
}
