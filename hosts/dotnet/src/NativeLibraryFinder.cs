using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace Orvanth.Core.Math
{
    /// <summary>Loads the native library before the first call: from beside the assembly, from runtimes/RID/native, or
    /// from where the system looks.</summary>
    internal static class NativeLibraryFinder
    {
        // Read before the first call into the library of every method. A field and not a static constructor: Mono looks
        // for a function while it compiles the method that calls it, and initialises this field when it compiles its use.
        internal static readonly bool IsLoaded = Load();

        private static string message;

        internal static void Throw() { throw new DllNotFoundException(message); }

        // Once loaded by its full path, the library is found under its own name: by the resolver below, by Windows, and
        // on Mono through Orvanth.Core.Math.dll.config.
        private static bool Load()
        {
            var tried = new List<string>();
            IntPtr handle = IntPtr.Zero;
            foreach (string place in Places())
            {
                if (Path.IsPathRooted(place) && !File.Exists(place))
                {
                    tried.Add(place + ": no such file");
                    continue;
                }
                string reason;
                handle = Open(place, out reason);
                if (handle != IntPtr.Zero) break;
                tried.Add(place + ": " + reason);
            }
            if (handle == IntPtr.Zero)
            {
                message = "The native library of Orvanth.Core.Math was not found. Tried:\n  " + string.Join("\n  ", tried);
                return false;
            }
#if NET5_0_OR_GREATER
            NativeLibrary.SetDllImportResolver(typeof(NativeLibraryFinder).Assembly,
                (name, assembly, path) => name == Native.Library ? handle : IntPtr.Zero);
#endif
            return true;
        }

        private static bool IsWindows { get { return RuntimeInformation.IsOSPlatform(OSPlatform.Windows); } }
        private static bool IsMac { get { return RuntimeInformation.IsOSPlatform(OSPlatform.OSX); } }

        private static string[] FileNames()
        {
            const string name = "Orvanth.Core.Math.Shield";
            if (IsWindows) return new[] { name + ".dll" };
            if (IsMac) return new[] { "lib" + name + ".dylib" };
            return new[] { "lib" + name + ".so", "lib" + name + ".so.1" };
        }

        private static string RuntimeIdentifier()
        {
            string system = IsWindows ? "win" : IsMac ? "osx" : "linux";
            return system + "-" + RuntimeInformation.ProcessArchitecture.ToString().ToLowerInvariant();
        }

        private static IEnumerable<string> Places()
        {
            string location = typeof(NativeLibraryFinder).Assembly.Location;
            string beside = string.IsNullOrEmpty(location) ? AppContext.BaseDirectory : Path.GetDirectoryName(location);
            string runtimes = Path.Combine("runtimes", RuntimeIdentifier(), "native");
            // The last one is the place as seen from lib/netstandard2.0 of an unpacked package.
            string[] folders = { beside, Path.Combine(beside, runtimes), Path.GetFullPath(Path.Combine(beside, "..", "..", runtimes)) };
            foreach (string folder in folders)
                foreach (string name in FileNames()) yield return Path.Combine(folder, name);
            foreach (string name in FileNames()) yield return name;
        }

        private static IntPtr Open(string place, out string reason)
        {
            reason = "";
#if NET5_0_OR_GREATER
            IntPtr found;
            if (NativeLibrary.TryLoad(place, out found)) return found;
            reason = "could not be loaded";
            return IntPtr.Zero;
#else
            if (IsWindows)
            {
                IntPtr module = LoadLibraryEx(place, IntPtr.Zero, Path.IsPathRooted(place) ? BesideTheFile : 0);
                if (module == IntPtr.Zero) reason = "error " + Marshal.GetLastWin32Error();
                return module;
            }
            IntPtr handle = IsMac ? OpenMac(place, Now) : OpenLinux(place, Now);
            if (handle == IntPtr.Zero) reason = Marshal.PtrToStringAnsi(IsMac ? ErrorMac() : ErrorLinux());
            return handle;
#endif
        }

        private const int Now = 2;                // RTLD_NOW
        private const uint BesideTheFile = 0x8;   // LOAD_WITH_ALTERED_SEARCH_PATH: its own folder serves what it needs

        [DllImport("libdl.so.2", EntryPoint = "dlopen")]
        private static extern IntPtr OpenLinux(string path, int flags);
        [DllImport("libdl.so.2", EntryPoint = "dlerror")]
        private static extern IntPtr ErrorLinux();
        [DllImport("libSystem.dylib", EntryPoint = "dlopen")]
        private static extern IntPtr OpenMac(string path, int flags);
        [DllImport("libSystem.dylib", EntryPoint = "dlerror")]
        private static extern IntPtr ErrorMac();
        [DllImport("kernel32", CharSet = CharSet.Unicode, SetLastError = true)]
        private static extern IntPtr LoadLibraryEx(string path, IntPtr file, uint flags);
    }
}
