using System;
using System.Runtime.InteropServices;

namespace Orvanth.Core.Math
{
    /// <summary>One double for all elements, or an array with one for each.</summary>
    public struct Values
    {
        internal readonly double[] Array;
        internal readonly double Value;
        private Values(double[] array, double value) { Array = array; Value = value; }

        /// <summary>The same for all elements.</summary>
        public static implicit operator Values(double value) { return new Values(null, value); }

        /// <summary>One for each element.</summary>
        public static implicit operator Values(double[] array)
        {
            if (array == null) throw new ArgumentNullException("array");
            return new Values(array, 0);
        }
    }

    /// <summary>One integer for all elements, or an array with one for each.</summary>
    public struct Integers
    {
        internal readonly long[] Array;
        internal readonly long Value;
        private Integers(long[] array, long value) { Array = array; Value = value; }

        /// <summary>The same for all elements.</summary>
        public static implicit operator Integers(long value) { return new Integers(null, value); }

        /// <summary>One for each element.</summary>
        public static implicit operator Integers(long[] array)
        {
            if (array == null) throw new ArgumentNullException("array");
            return new Integers(array, 0);
        }
    }

    /// <summary>What a call over arrays reported. An element that failed is NaN where the library has no value.</summary>
    public sealed class ArrayReport
    {
        internal ArrayReport(long failures, long first, Status status, string text)
        {
            Failures = failures;
            First = first;
            Status = status;
            Text = text;
        }

        /// <summary>How many elements failed.</summary>
        public long Failures { get; private set; }
        /// <summary>The first of them, from 0; -1 if there is none.</summary>
        public long First { get; private set; }
        /// <summary>The kind of the first failure.</summary>
        public Status Status { get; private set; }
        /// <summary>The library's text about the first failure.</summary>
        public string Text { get; private set; }
        /// <summary>Whether no element failed.</summary>
        public bool Succeeded { get { return Failures == 0; } }

        /// <summary>Throws what a call with the first failing element alone would throw.</summary>
        public void ThrowIfFailed()
        {
            if (Failures != 0) throw Failure.Exception(Status, Text, "");
        }

        /// <summary>The report in one line.</summary>
        public override string ToString()
        {
            return Succeeded ? "no failures" : Failures + " failed, the first is element " + First + ": " + Text;
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    internal unsafe struct EachReport
    {
        internal IntPtr Failures, First;
        internal int Status;
        internal uint Kinds;
        internal fixed byte Text[384];
    }

    /// <summary>An argument of an array form: 64 bits for all elements, an array, or an array inside each element.</summary>
    internal struct Argument
    {
        internal string Name;
        internal Array Array;
        internal long Bits;
        internal bool IsInner;

        internal static Argument Of(string name, Values values)
        {
            return new Argument { Name = name, Array = values.Array, Bits = BitConverter.DoubleToInt64Bits(values.Value) };
        }

        internal static Argument Of(string name, Integers values)
        {
            return new Argument { Name = name, Array = values.Array, Bits = values.Value };
        }

        internal static Argument Of(string name, double[] inner)
        {
            if (inner == null) throw new ArgumentNullException(name);
            return new Argument { Name = name, Array = inner, IsInner = true };
        }

        internal static Argument Choice(string name, long value) { return new Argument { Name = name, Bits = value }; }
    }

    internal unsafe delegate void EachForm(IntPtr* pointers, IntPtr* dimensions, IntPtr* steps, EachReport* report);

    internal static unsafe class ArrayCall
    {
        internal static ArrayReport Run(EachForm form, double[][] results, params Argument[] arguments)
        {
            int n = arguments.Length, all = n + results.Length;
            if (results[0] == null) throw new ArgumentNullException("result");
            int count = results[0].Length;
            IntPtr* pointers = stackalloc IntPtr[all];
            IntPtr* steps = stackalloc IntPtr[all + 1];
            IntPtr* dimensions = stackalloc IntPtr[2];
            long* scalars = stackalloc long[n];
            var pins = new GCHandle[all];
            dimensions[0] = (IntPtr)count;
            dimensions[1] = IntPtr.Zero;
            steps[all] = (IntPtr)sizeof(double);
            try
            {
                for (int i = 0; i < n; ++i)
                {
                    Argument argument = arguments[i];
                    scalars[i] = argument.Bits;
                    bool isScalar = argument.Array == null;
                    pointers[i] = isScalar ? (IntPtr)(scalars + i) : Pin(pins, i, argument.Array);
                    steps[i] = (IntPtr)(isScalar || argument.IsInner ? 0 : sizeof(double));
                    if (argument.IsInner)
                        dimensions[1] = (IntPtr)argument.Array.Length;
                    else if (!isScalar)
                        RequireLength(argument.Array, count, argument.Name);
                }
                for (int i = 0; i < results.Length; ++i)
                {
                    RequireLength(results[i], count, "result");
                    pointers[n + i] = Pin(pins, n + i, results[i]);
                    steps[n + i] = (IntPtr)sizeof(double);
                }
                EachReport report;
                form(pointers, dimensions, steps, &report);
                return new ArrayReport((long)report.Failures, (long)report.First, (Status)report.Status,
                                       Failure.Text((IntPtr)report.Text));
            }
            finally
            {
                foreach (GCHandle pin in pins)
                    if (pin.IsAllocated) pin.Free();
            }
        }

        private static IntPtr Pin(GCHandle[] pins, int i, Array array)
        {
            pins[i] = GCHandle.Alloc(array, GCHandleType.Pinned);
            return pins[i].AddrOfPinnedObject();
        }

        private static void RequireLength(Array array, int count, string name)
        {
            if (array == null) throw new ArgumentNullException(name);
            if (array.Length != count)
                throw new ArgumentException(name + " has " + array.Length + " elements, the result has " + count, name);
        }
    }
}
