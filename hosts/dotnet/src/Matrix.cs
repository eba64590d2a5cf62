using System;

namespace Orvanth.Core.Math
{
    /// <summary>A dense matrix of doubles, stored by columns.</summary>
    public sealed class Matrix
    {
        /// <summary>Zeros.</summary>
        public Matrix(int rows, int columns)
        {
            if (rows < 0) throw new ArgumentOutOfRangeException("rows", "the number of rows is negative");
            if (columns < 0) throw new ArgumentOutOfRangeException("columns", "the number of columns is negative");
            Rows = rows;
            Columns = columns;
            Storage = new double[checked(rows * columns)];
        }

        /// <summary>A copy of an array, element by element.</summary>
        public Matrix(double[,] elements) : this(elements.GetLength(0), elements.GetLength(1))
        {
            for (int j = 0; j < Columns; ++j)
                for (int i = 0; i < Rows; ++i) this[i, j] = elements[i, j];
        }

        /// <summary>A column.</summary>
        public static Matrix Column(double[] elements)
        {
            var made = new Matrix(elements.Length, 1);
            elements.CopyTo(made.Storage, 0);
            return made;
        }

        /// <summary>Ones on the diagonal, zeros elsewhere.</summary>
        public static Matrix Identity(int size)
        {
            var made = new Matrix(size, size);
            for (int i = 0; i < size; ++i) made[i, i] = 1;
            return made;
        }

        /// <summary>Rows.</summary>
        public int Rows { get; private set; }
        /// <summary>Columns.</summary>
        public int Columns { get; private set; }
        /// <summary>The elements, column after column; not a copy.</summary>
        public double[] Storage { get; private set; }

        /// <summary>An element; both numbers count from 0.</summary>
        public double this[int row, int column]
        {
            get { return Storage[Index(row, column)]; }
            set { Storage[Index(row, column)] = value; }
        }

        private int Index(int row, int column)
        {
            if ((uint)row >= (uint)Rows) throw new ArgumentOutOfRangeException("row");
            if ((uint)column >= (uint)Columns) throw new ArgumentOutOfRangeException("column");
            return row + column * Rows;
        }

        internal MatrixDescriptor Descriptor { get { return new MatrixDescriptor(Rows, Columns); } }

        /// <summary>A copy.</summary>
        public Matrix Clone() { return Block(Rows, Columns); }

        /// <summary>The first rows and columns.</summary>
        internal Matrix Block(int rows, int columns)
        {
            var made = new Matrix(rows, columns);
            for (int j = 0; j < columns; ++j) Array.Copy(Storage, j * Rows, made.Storage, j * rows, rows);
            return made;
        }

        /// <summary>Rows as columns.</summary>
        public Matrix Transpose()
        {
            var made = new Matrix(Columns, Rows);
            for (int j = 0; j < Columns; ++j)
                for (int i = 0; i < Rows; ++i) made[j, i] = this[i, j];
            return made;
        }

        /// <summary>The product of two matrices.</summary>
        public static Matrix operator *(Matrix a, Matrix b)
        {
            if (a.Columns != b.Rows)
                throw new ArgumentException("a matrix with " + a.Columns + " columns times one with " + b.Rows + " rows");
            var made = new Matrix(a.Rows, b.Columns);
            for (int j = 0; j < b.Columns; ++j)
                for (int k = 0; k < a.Columns; ++k)
                    for (int i = 0; i < a.Rows; ++i) made.Storage[i + j * a.Rows] += a.Storage[i + k * a.Rows] * b.Storage[k + j * b.Rows];
            return made;
        }
    }
}
