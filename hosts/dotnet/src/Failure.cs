using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Orvanth.Core.Math
{
    /// <summary>A column of a design is a combination of the columns before it.</summary>
    public sealed class CollinearityException : ArithmeticException
    {
        internal CollinearityException(string message, int column) : base(message) { Column = column; }

        /// <summary>The number of the column, from 0.</summary>
        public int Column { get; private set; }
    }

    /// <summary>The status of this thread's last call, read where the library keeps it: a call to ask for it costs as much
    /// as the call that it judges.</summary>
    internal static unsafe class LastStatus
    {
        [ThreadStatic] private static IntPtr address;

        internal static bool IsFailure
        {
            get
            {
                IntPtr at = address;
                if (at == IntPtr.Zero) address = at = (IntPtr)Native.LastStatusAddress();
                return *(int*)at != 0;
            }
        }
    }

    /// <summary>The one place where a failure of the library becomes an exception.</summary>
    internal static class Failure
    {
        // An exception holds its status under this key of Exception.Data.
        internal const string StatusKey = "Orvanth.Status";

        /// <summary>Throws for the last failing call of this thread. An overflow whose value is infinite is a value, as it
        /// is in System.Math: Normal.Quantile(0, 0, 1) is negative infinity.</summary>
        internal static void Throw(double value)
        {
            var status = (Status)Native.LastStatus();
            if (status == Status.Overflow && double.IsInfinity(value)) return;
            throw Exception(status, Text(Native.LastErrorText()), Text(Native.LastErrorArgument()));
        }

        /// <summary>For exports that return a status; 0 is success.</summary>
        internal static void Check(int info)
        {
            if (info != 0) Throw(double.NaN);
        }

        internal static Exception Exception(Status status, string text, string argument)
        {
            Exception made = Make(status, text, argument.Length == 0 ? null : argument);
            made.Data[StatusKey] = status;
            return made;
        }

        private static Exception Make(Status status, string text, string argument)
        {
            switch (status)
            {
                case Status.Domain:
                case Status.Argument: return new ArgumentOutOfRangeException(argument, text);
                case Status.Overflow: return new OverflowException(text);
                case Status.Memory: return new OutOfMemoryException(text);
                case Status.NotReentrant: return new InvalidOperationException(text);
                case Status.Handle: return new ObjectDisposedException(argument, text);
                default: return new ArithmeticException(text);
            }
        }

        internal static string LastText() { return Text(Native.LastErrorText()); }

        internal static unsafe string Text(IntPtr utf8)
        {
            byte* at = (byte*)utf8;
            int length = 0;
            while (at[length] != 0) ++length;
            return length == 0 ? "" : Encoding.UTF8.GetString(at, length);
        }
    }

    internal static class Guard
    {
        internal static void Length(double[] array, int count, string name)
        {
            if (array == null) throw new ArgumentNullException(name);
            if (array.Length < count)
                throw new ArgumentException(name + " has " + array.Length + " elements; " + count + " are read", name);
        }

        internal static void Fits(double[] array, MatrixDescriptor view, string name)
        {
            if (array == null || view.Rows <= 0 || view.Columns <= 0) return;
            long end = view.Offset + view.Rows + (view.Columns - 1L) * view.LeadingDimension;
            if (view.Offset < 0 || view.LeadingDimension < view.Rows || end > array.Length)
                throw new ArgumentException("the matrix does not lie within the array of " + array.Length + " elements", name);
        }
    }
}
