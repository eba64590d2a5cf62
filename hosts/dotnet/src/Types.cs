using System;
using System.Runtime.InteropServices;

namespace Orvanth.Core.Math
{
    /// <summary>Which tail a probability is.</summary>
    public enum Tail
    {
        /// <summary>P(X &lt;= x).</summary>
        Lower = 0,
        /// <summary>1 - P(X &lt;= x), where that can be had without subtraction.</summary>
        Upper = 1,
    }

    /// <summary>The name of the C export behind a method.</summary>
    [AttributeUsage(AttributeTargets.Method)]
    public sealed class LibraryExportAttribute : Attribute
    {
        /// <summary>Of the export with this name.</summary>
        public LibraryExportAttribute(string name) { Name = name; }

        /// <summary>The export's name.</summary>
        public string Name { get; private set; }
    }

    /// <summary>A view of storage by columns: element (i, j), from 0, lies at Offset + i + j * LeadingDimension.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct MatrixDescriptor
    {
        /// <summary>Elements before the first one of the view.</summary>
        public int Offset;
        /// <summary>Elements between the starts of two adjacent columns.</summary>
        public int LeadingDimension;
        /// <summary>Rows.</summary>
        public int Rows;
        /// <summary>Columns.</summary>
        public int Columns;

        /// <summary>A whole array as a matrix.</summary>
        public MatrixDescriptor(int rows, int columns)
        {
            Offset = 0;
            LeadingDimension = System.Math.Max(1, rows);
            Rows = rows;
            Columns = columns;
        }
    }
}
